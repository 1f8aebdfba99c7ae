// A picture codec that fails at one of its calls: a module (failing_codec.cpp) that stands before the real
// one, and how a test says where.
#pragma once

#include <dlfcn.h>

struct FailingCodecState {
    int callsLeft;      // until one fails; below 0: none will
    int alsoAllLater;   // which fail then, too
    const char* failed; // the function that failed first; null: none has
};

#ifndef FAILING_CODEC_MODULE
class FailingCodec {
public:
    explicit FailingCodec(void* module)
        : state_(module != nullptr ? static_cast<FailingCodecState*>(dlsym(module, "failingCodec"))
                                   : nullptr) {}

    bool IsThere() const { return state_ != nullptr; }
    void FailAt(int call, bool alsoAllLater) const { *state_ = {call, alsoAllLater ? 1 : 0, nullptr}; }
    bool HasFailed() const { return state_->failed != nullptr; }
    const char* FailedFunction() const { return HasFailed() ? state_->failed : "none"; }

private:
    FailingCodecState* state_;
};
#endif
