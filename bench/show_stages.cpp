#include "show_stages.h"

#include "platform/clock.h"
#include "scene/show.h"

#include <cstdint>

namespace {

double now = 1000; // the clock's, seconds; it goes on from stage to stage

double localDrawFor(double seconds) {
    constexpr double kStep = 0.5; // coarse: only where the show then stands matters
    for (const double end = now + seconds; now < end; now += kStep)
        show::sc.OnRender(&show::gr, now);
    return now;
}

} // namespace

double EnterStage(int stage) {
    fxSetTickSource([] { return static_cast<std::uint32_t>(now * 1000); });
    if (show::demo.waiting)
        localDrawFor(20); // the cube comes after 15 seconds and takes 2
    show::fire.ReCreate();
    show::stage = stage;
    switch (stage) {
    case show::kDissolving:
        show::scr_phaser.Restart(now);
        return localDrawFor(1);
    case show::kBurning:
        return localDrawFor(10); // half of the screen is burnt
    case show::kPause:
        show::delay_phaser.Restart(now);
        return localDrawFor(1);
    default:
        show::stage = show::kRebuilding;
        show::reopen.backwards = false;
        show::reopen.StartAnim(now);
        while (stage == show::kReturning && show::stage == show::kRebuilding)
            localDrawFor(0.5);
        return localDrawFor(1);
    }
}
