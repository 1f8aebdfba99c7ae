// The show on a whole screen: what it covers, what ends it, and how the desktop burns.
#include "integration/show_fixture.h"

#include <X11/keysym.h>

#include <cmath>
#include <regex>

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;

class FullScreen : public ShowFixture {
protected:
    FullScreen() : ShowFixture(kWidth, kHeight) {}

    void StartAndSeeFrames() {
        ASSERT_NO_FATAL_FAILURE(Start());
        ASSERT_TRUE(saver.SeeFrames(display)) << "nothing was drawn";
    }
};

TEST_F(FullScreen, CoversTheScreenHidesThePointerAndEndsWithAnyKey) {
    for (const unsigned long key : {XK_space, XK_Shift_L, XK_F10, XK_Escape}) {
        SaverProcess one;
        one.Start(&display, {"/s"});
        ASSERT_TRUE(one.WaitUntilShown(display));
        EXPECT_TRUE(display.WaitForHiddenCursor());
        display.PressKey(key);
        EXPECT_EQ(one.WaitForExit(), 0) << "key " << key;
    }
    EXPECT_FALSE(display.CursorIsHidden());
}

TEST_F(FullScreen, TheMouseDoesNothingForFourSecondsAndClosesAfter) {
    StartAndSeeFrames();
    saver.SetClock(SaverProcess::kStartMs + 4000);
    display.MovePointer(20, 20);
    display.ClickButton(1);
    display.MovePointer(30, 40);
    usleep(300000); // time for a wrong close to happen; the saver's own clock stands
    EXPECT_TRUE(saver.Running());
    saver.SetClock(SaverProcess::kStartMs + 4001);
    display.MovePointer(50, 50);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

TEST_F(FullScreen, AButtonClosesAfterTheGraceTime) {
    StartAndSeeFrames();
    saver.SetClock(SaverProcess::kStartMs + 4001);
    display.ClickButton(3);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

TEST_F(FullScreen, TheFirstFrameShowsTheDesktopPixelForPixel) {
    // Before the saver draws, its window shows the desktop too: so frames are seen to fade it first. Turned
    // back to the start, the clock makes every frame the first one.
    StartAndSeeFrames();
    saver.SetClock(SaverProcess::kStartMs);
    ASSERT_TRUE(
        display.WaitForPixel(kWidth / 2, kHeight / 2, display.DesktopPixel(kWidth / 2, kHeight / 2), 3));
    const ScreenPicture picture = display.Photograph();
    int worst = 0;
    int different = 0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const int distance = ChannelDistance(picture.At(x, y), display.DesktopPixel(x, y));
            worst = std::max(worst, distance);
            different += distance > 1;
        }
    EXPECT_LE(worst, 3);
    EXPECT_LE(different, kWidth * kHeight / 1000);
    display.PressKey(XK_space);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

// The share of pixels within a ring around the centre (in half screens) that still show the desktop.
double DesktopShare(const VirtualDisplay& display, double from, double to) {
    const ScreenPicture picture = display.Photograph();
    int seen = 0;
    int kept = 0;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const double r = std::hypot(2.0 * x / kWidth - 1, 2.0 * y / kHeight - 1);
            if (r < from || r >= to)
                continue;
            ++seen;
            kept += ChannelDistance(picture.At(x, y), display.DesktopPixel(x, y)) <= 4;
        }
    return seen ? static_cast<double>(kept) / seen : 0;
}

TEST_F(FullScreen, TheHoleGrowsFromTheCentreUntilTheDesktopIsGone) {
    saver.Start(&display, {"/s"});
    ASSERT_TRUE(saver.WaitUntilShown(display));
    // In steps of a tenth of a second, as a slow machine would draw it: one long jump would move nothing far.
    double inner = 1;
    double outer = 1;
    std::uint32_t ms = SaverProcess::kStartMs;
    const auto advance = [&](std::uint32_t until) {
        for (; ms < SaverProcess::kStartMs + until; ms += 100) {
            saver.SetClock(ms);
            usleep(30000);
        }
    };
    advance(8000);
    inner = DesktopShare(display, 0.0, 0.1);
    outer = DesktopShare(display, 0.8, 1.4);
    EXPECT_LT(inner, 0.1);
    EXPECT_GT(outer, 0.9);
    advance(13000);
    EXPECT_LT(DesktopShare(display, 0.0, 0.3), 0.1);
    EXPECT_LT(DesktopShare(display, 0.0, 1.4), 0.95);
    advance(24000);
    EXPECT_LT(DesktopShare(display, 0.0, 1.4), 0.05) << "something of the desktop is left";
    EXPECT_TRUE(saver.Running()) << "the show goes on";
    display.PressKey(XK_space);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

TEST_F(FullScreen, TheTraceFileHoldsTheStartUpFacts) {
    saver.Start(&display, {"/s"});
    ASSERT_TRUE(saver.WaitUntilShown(display));
    display.PressKey(XK_space);
    ASSERT_EQ(saver.WaitForExit(), 0);
    const std::string log = saver.Data().Read("tamb.log");
    const std::string dashes(48, '-');
    const std::string entry = "[0-9a-f]{8}: \\[1000\\.000\\] ";
    const std::regex whole("^" + dashes + "\n fxOpenTraces \\(filename:tamb\\.log\\)\n" + dashes + "\n\n" +
                           entry + "loading devil\n" + entry + "loading ok\n" + entry + "OpenGL info:\n" +
                           entry + "vendor: [^\n]+\n" + entry + "renderer: [^\n]+\n" + entry +
                           "version: [^\n]+\n(" + entry + "[A-Z]+_[a-z_A-Z]+\n)+" + entry +
                           "unload devil\n$");
    EXPECT_TRUE(std::regex_match(log, whole)) << log;
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
