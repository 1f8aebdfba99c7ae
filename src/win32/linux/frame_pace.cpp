#include "win32/linux/frame_pace.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;

constexpr int kDefault = 60;
constexpr int kDefaultOnBattery = 30;
constexpr auto kBetweenLooks = 30s; // at the battery: a laptop's firmware may take milliseconds to answer
// A frame that is due so soon is due now: the driver waits for a monitor that is a little faster, and would
// have to wait for its next picture.
constexpr auto kClose = 1ms;

std::string Word(const std::filesystem::path& file) {
    std::string word;
    std::ifstream(file) >> word;
    return word;
}

} // namespace

void FramePace::Begin(int framesPerSecond) {
    const std::lock_guard lock(mutex_);
    limit_ = framesPerSecond;
    seen_ = true;
    ended_ = false;
}

void FramePace::SetSeen(bool seen) {
    const std::lock_guard lock(mutex_);
    seen_ = seen;
    changed_.notify_all();
}

void FramePace::End() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    changed_.notify_all();
}

FramePace::Clock::duration FramePace::Interval(int limit, Clock::time_point now) {
    if (limit == kByDefault) {
        if (now >= nextLook_) {
            onBattery_ = IsOnBattery("/sys/class/power_supply");
            nextLook_ = now + kBetweenLooks;
        }
        limit = onBattery_ ? kDefaultOnBattery : kDefault;
    }
    return limit > 0 ? Clock::duration(1s) / limit : Clock::duration(0);
}

void FramePace::Await() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return seen_ || ended_; });
    const int limit = limit_;
    lock.unlock(); // an end does not wait for the battery's answer
    const auto interval = Interval(limit, Clock::now());
    lock.lock();
    const auto now = Clock::now();
    due_ += interval;
    if (due_ - now < kClose)
        due_ = now;
    else
        changed_.wait_until(lock, due_, [this] { return ended_; });
}

// A supply that gives power settles it. Only where none does is the battery itself asked.
bool IsOnBattery(const char* folder) {
    std::vector<std::filesystem::path> batteries;
    std::error_code failed;
    for (const auto& supply : std::filesystem::directory_iterator(folder, failed)) {
        if (Word(supply.path() / "scope") == "Device") // a mouse's
            continue;
        if (Word(supply.path() / "type") == "Battery")
            batteries.push_back(supply.path());
        else if (Word(supply.path() / "online") == "1")
            return false;
    }
    return std::ranges::any_of(batteries,
                               [](const auto& path) { return Word(path / "status") == "Discharging"; });
}
