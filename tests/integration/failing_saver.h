// The saver on a machine that fails: with the library failing_platform (failing_platform.h) before all
// others.
#pragma once

#include "integration/failing_platform.h"
#include "integration/saver_process.h"
#include "unit/how_often.h"

#include <random>

class FailingSaver : public SaverProcess {
public:
    FailingSaver() {
        environment["LD_PRELOAD"] = FAILING_PLATFORM;
        environment["ASAN_OPTIONS"] += ":verify_asan_link_order=0:alloc_dealloc_mismatch=0";
        environment["TAMBLOR_HOLD"] = data.Write("hold", std::string(sizeof(Hold), '\0'));
        const int file = open(environment["TAMBLOR_HOLD"].c_str(), O_RDWR);
        hold_ = static_cast<Hold*>(mmap(nullptr, sizeof(Hold), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        close(file);
    }
    ~FailingSaver() {
        Kill();
        munmap(hold_, sizeof(Hold));
    }

    std::uint32_t Shown() const { return std::atomic_ref(hold_->frames); }
    bool Draws(std::uint32_t frames = 1) {
        const std::uint32_t before = Shown();
        return Eventually([&] { return Shown() - before >= frames || !Running(); }) && Running();
    }
    // Stops the next frame there, until it may go on.
    bool HoldFrame(Hold::Place place) {
        std::atomic_ref(hold_->place) = place;
        return Eventually([this] { return std::atomic_ref(hold_->isHeld) != 0 || !Running(); }) && Running();
    }
    void ForgetFrames() { std::atomic_ref(hold_->frames) = 0; }
    void GoOn() { std::atomic_ref(hold_->place) = Hold::Nowhere; }

private:
    Hold* hold_ = nullptr;
};

// Moments of a show, in milliseconds after its start; half of them lie in its start, before it has a window.
class Moments {
public:
    explicit Moments(unsigned seed) : random_(seed) {}
    unsigned Next() {
        const unsigned most = random_() % 2 == 0 ? kStart : kMost;
        return static_cast<unsigned>(random_() % most);
    }

private:
    static constexpr unsigned kStart = 300, kMost = 1500;
    std::mt19937 random_;
};

// The stages of a cycle, by a time on the clock that lies in each, and one between them.
constexpr std::uint32_t kInEachStage[] = {0, 1000, 4000, 25000, 41000, 50000};
