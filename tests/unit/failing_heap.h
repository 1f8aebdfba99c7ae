// A machine whose memory runs out where a test wants it.
#pragma once

#include <gtest/gtest.h>

#include <new>

// While one lives, allocation n (from 0) of this thread fails: malloc, calloc and realloc as this program's
// own code calls them, and new also where the C++ library calls it. The picture codec's own are not counted.
class FailingHeap {
public:
    FailingHeap(int n, bool alsoAllLater);
    ~FailingHeap();
    FailingHeap(const FailingHeap&) = delete;
    FailingHeap& operator=(const FailingHeap&) = delete;

    bool HasFailed() const;

    // Nothing fails, and nothing is counted, while one lives: for what stands in for another library.
    class Pause {
    public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        int left_;
    };
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
                failed = heap.HasFailed();
            } catch (const std::bad_alloc&) {
                ADD_FAILURE() << "an exception left it";
            }
            check(!failed);
        }
    }
}
