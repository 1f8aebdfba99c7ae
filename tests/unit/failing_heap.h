// A machine whose memory runs out where a test wants it.
#pragma once

#include <gtest/gtest.h>

#include <new>

// While one lives, allocation n (from 0) of this thread fails: malloc, calloc and realloc as this program's
// own code calls them, and new also where the C++ library calls it. The picture codec's own are not counted.
class FailingHeap {
public:
    FailingHeap(int n, bool alsoAllLater) {
        failed = false;
        goesOn = alsoAllLater;
        left = n;
    }
    ~FailingHeap() { left = -1; }
    FailingHeap(const FailingHeap&) = delete;
    FailingHeap& operator=(const FailingHeap&) = delete;

    static bool Refuses() {
        if (left < 0 || left-- > 0)
            return false;
        failed = true;
        if (goesOn)
            left = 0;
        return true;
    }

    static inline thread_local int left = -1; // allocations until one fails; -1: none will
    static inline thread_local bool goesOn = false;
    static inline thread_local bool failed = false;
};

// Attempts the same again and again: allocation 0 fails, then 1, 2, ... until nothing fails; first that one
// alone, then all behind it too. After each attempt check(whole) says whether nothing failed.
template <class Attempt, class Check> void FailEachAllocation(Attempt attempt, Check check) {
    for (const bool alsoAllLater : {false, true}) {
        bool failed = true;
        for (int n = 0; failed && !testing::Test::HasFailure(); ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (alsoAllLater ? " and all later" : ""));
            try {
                const FailingHeap heap(n, alsoAllLater);
                attempt();
                failed = FailingHeap::failed;
            } catch (const std::bad_alloc&) {
                ADD_FAILURE() << "an exception left it";
            }
            check(!failed);
        }
    }
}
