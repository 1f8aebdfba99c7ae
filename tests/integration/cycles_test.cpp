// The show goes on for ever: three whole cycles of the real executable, its loop on its own thread, its clock
// turned faster than the time. Under the sanitizers a finding ends it with another exit code.
#include "integration/saver_process.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

#include <unistd.h>

namespace {

constexpr int kWidth = 160;
constexpr int kHeight = 120;

enum class Desktop { There, Gone, Partly };

// By two opposite corners: the burn reaches them last, and the cube hides one of them at the most.
Desktop DesktopOn(const VirtualDisplay& display) {
    int there = 0;
    for (const auto& [x, y] : {std::pair{1, 1}, {kWidth - 2, kHeight - 2}})
        there += ChannelDistance(display.PixelAt(x, y), display.DesktopPixel(x, y)) <= 12;
    return there == 2 ? Desktop::There : there == 0 ? Desktop::Gone : Desktop::Partly;
}

TEST(Cycles, TheDesktopBurnsAndReturnsThreeTimes) {
    constexpr std::uint32_t kStep = 80;     // of the show's time: what a slow machine would draw
    constexpr std::uint32_t kMost = 400000; // more than six cycles
    VirtualDisplay display(kWidth, kHeight);
    ASSERT_TRUE(display.Ok());
    SaverProcess saver;
    saver.Start(&display, {"/s"});
    ASSERT_TRUE(saver.WaitUntilShown(display));
    int returns = 0;
    bool gone = false;
    for (std::uint32_t ms = 0; ms < kMost && returns < 3 && saver.Running(); ms += kStep) {
        saver.SetClock(SaverProcess::kStartMs + ms);
        usleep(8000);
        const Desktop now = DesktopOn(display);
        if (now == Desktop::Gone)
            gone = true;
        if (now == Desktop::There && gone) {
            gone = false;
            ++returns;
        }
    }
    EXPECT_EQ(returns, 3);
    EXPECT_TRUE(saver.Running());
    display.PressKey(XK_space);
    EXPECT_EQ(saver.WaitForExit(), 0) << saver.Data().Read("stderr");
}

} // namespace
