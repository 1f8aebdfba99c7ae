// The show goes on for ever: three whole cycles of the real executable, its loop on its own thread, its clock
// turned faster than the time. Under the sanitizers a finding ends it with another exit code.
#include "integration/show_fixture.h"

namespace {

class Cycles : public ShowFixture {
protected:
    Cycles() : ShowFixture(160, 120) {}

    // Of two opposite corners, how many show the desktop: the burn reaches them last, and the cube hides one
    // of them at the most.
    int DesktopCorners() const {
        int there = 0;
        for (const auto& [x, y] : {std::pair{1, 1}, {158, 118}})
            there += ChannelDistance(display.PixelAt(x, y), display.DesktopPixel(x, y)) <= 12;
        return there;
    }
};

TEST_F(Cycles, TheDesktopBurnsAndReturnsThreeTimes) {
    constexpr std::uint32_t kStep = 80;     // of the show's time: what a slow machine would draw
    constexpr std::uint32_t kMost = 400000; // more than six cycles
    Start();
    int changes = 0; // gone, there, gone, ...
    for (std::uint32_t ms = 0; ms < kMost && changes < 6 && saver.Running(); ms += kStep) {
        saver.SetClock(SaverProcess::kStartMs + ms);
        usleep(8000);
        changes += DesktopCorners() == (changes % 2 == 0 ? 0 : 2);
    }
    EXPECT_EQ(changes, 6);
    EXPECT_TRUE(saver.Running());
    ExpectAKeyEndsIt();
}

} // namespace
