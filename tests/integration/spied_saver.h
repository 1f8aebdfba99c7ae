// The saver with the library platform_spy (platform_spy.h) before all others.
#pragma once

#include "integration/platform_spy.h"
#include "integration/saver_process.h"
#include "unit/how_often.h"

#include <random>

class SpiedSaver : public SaverProcess {
public:
    SpiedSaver() {
        environment["LD_PRELOAD"] = PLATFORM_SPY;
        environment["ASAN_OPTIONS"] = "detect_leaks=0:verify_asan_link_order=0:alloc_dealloc_mismatch=0";
        environment["TAMBLOR_SPY"] = data.Write("spy", std::string(sizeof(PlatformSpy), '\0'));
        spy = MapShared<PlatformSpy>(environment["TAMBLOR_SPY"].c_str());
    }
    bool Draws(std::uint32_t frames = 1) {
        const std::uint32_t before = spy->frames;
        return Eventually([&] { return spy->frames - before >= frames || !Running(); }) && Running();
    }
    // Stops the next frame there, until it may go on.
    bool HoldFrame(PlatformSpy::Place place) {
        spy->place = place;
        return Eventually([this] { return spy->isHeld != 0 || !Running(); }) && Running();
    }
    void GoOn() { spy->place = PlatformSpy::Nowhere; }

    PlatformSpy* spy;
};

// Of a show, in milliseconds after its start; half of them lie in its start, before it has a window.
inline unsigned AnyMoment(std::mt19937* random) {
    constexpr unsigned kStart = 300, kMost = 1500;
    const unsigned most = (*random)() % 2 == 0 ? kStart : kMost;
    return static_cast<unsigned>((*random)() % most);
}

// The stages of a cycle, by a time on the clock that lies in each, and one between them.
constexpr std::uint32_t kInEachStage[] = {0, 1000, 4000, 25000, 41000, 50000};
