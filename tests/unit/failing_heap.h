// A machine whose memory runs out where a test wants it: allocation n of this process fails, of malloc,
// calloc and realloc as this program's own code calls them, and of new also where the C++ library calls it,
// but not of the picture codec's own. Calls of that may fail instead. For one source file of a program: the
// linker sends the calls of malloc and its kin from our objects, and from nobody else's, to __wrap_... here
// (failing_machine.cmake names them); __real_... is what was meant.
#pragma once

#include "unit/failing_new.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <dlfcn.h>

inline std::atomic<int> heapLeft = -1; // allocations until one fails; -1: none will
inline std::atomic<bool> heapGoesOn = false;
inline std::atomic<bool> heapFailed = false;
inline bool codecFails = false; // calls of the codec are counted, not allocations

inline bool Refuses(bool isCall = false) {
    int left = isCall == codecFails ? heapLeft.load() : -1;
    while (left >= 0 && !heapLeft.compare_exchange_weak(left, (left > 0 || !heapGoesOn) ? left - 1 : 0))
        continue; // another thread has taken one
    heapFailed = heapFailed || left == 0;
    return left == 0;
}

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);

void* __wrap_malloc(std::size_t size) {
    return Refuses() ? nullptr : __real_malloc(size);
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return Refuses() ? nullptr : __real_calloc(count, size);
}
void* __wrap_realloc(void* block, std::size_t size) {
    return Refuses() ? nullptr : __real_realloc(block, size);
}
}

void* AnswerToNew(std::size_t size, const void* caller) {
    Dl_info module;
    const bool isCodecs =
        heapLeft >= 0 && dladdr(caller, &module) != 0 && std::strstr(module.dli_fname, "libIL") != nullptr;
    return !isCodecs && Refuses() ? nullptr : __real_malloc(size);
}

// Attempts the same again and again: allocation 0 fails, then 1, 2, ... until nothing fails; first that one
// alone, then all behind it too. After each attempt check(whole) says whether nothing failed.
template <class Attempt, class Check> void FailEachAllocation(Attempt attempt, Check check) {
    for (const bool alsoAllLater : {false, true})
        for (int n = 0; n == 0 || (heapFailed && !testing::Test::HasFailure()); ++n) {
            SCOPED_TRACE(testing::Message() << "failure at " << n << (alsoAllLater ? " and all later" : ""));
            bool threw = false;
            heapFailed = false;
            heapGoesOn = alsoAllLater;
            heapLeft = n;
            try {
                attempt();
            } catch (const std::bad_alloc&) {
                threw = true;
            }
            heapLeft = -1;
            EXPECT_FALSE(threw) << "an exception left it";
            check(!heapFailed);
        }
}
