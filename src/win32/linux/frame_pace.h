// How often the loop's thread draws: no more often than the user's max_fps, for drivers that do not wait for
// the monitor, and not at all while nobody sees the picture. The thread sleeps in Await, after each frame; an
// end wakes it at once.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

class FramePace {
public:
    static constexpr int kByDefault = -1; // 60 frames a second, and 30 on battery

    // Main thread.
    void Begin(int framesPerSecond); // 0: no limit
    void SetSeen(bool seen);
    void End(); // Await returns at once, until the next Begin

    // The loop's thread, when a frame has been shown: returns when the next one is due.
    void Await();

private:
    using Clock = std::chrono::steady_clock; // not the show's, which may stand still

    Clock::duration Interval(int limit, Clock::time_point now); // zero: no limit

    std::mutex mutex_;
    std::condition_variable changed_;
    int limit_ = 0;
    bool seen_ = true;
    bool ended_ = false;
    Clock::time_point due_;
    // The loop's thread's own.
    Clock::time_point nextLook_;
    bool onBattery_ = false;
};

// Whether the machine runs on its battery; the folder is the system's /sys/class/power_supply. False where it
// has none, or does not say.
bool IsOnBattery(const char* folder);
