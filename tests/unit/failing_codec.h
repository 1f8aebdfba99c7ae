// A picture codec that fails at one of its calls: a module (failing_codec.cpp) that stands before the real
// one, and how a test says where.
#pragma once

struct FailingCodecState {
    int callsLeft;      // until one fails; below 0: none will
    int alsoAllLater;   // which fail then, too
    const char* failed; // the function that failed first; null: none has
};
