// The show on a whole screen: what it covers, what ends it, and what it writes down.
#include "integration/show_fixture.h"

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
    ExpectItGoesOn();
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
}

TEST_F(FullScreen, TheTraceFileHoldsTheStartUpFacts) {
    Start();
    ExpectAKeyEndsIt();
    const std::string dashes(48, '-');
    const std::string entry = "[0-9a-f]{8}: \\[1000\\.000\\] ";
    const std::regex whole("^" + dashes + "\n fxOpenTraces \\(filename:tamb\\.log\\)\n" + dashes + "\n\n" +
                           entry + "loading devil\n" + entry + "loading ok\n" + entry + "OpenGL info:\n" +
                           entry + "vendor: [^\n]+\n" + entry + "renderer: [^\n]+\n" + entry +
                           "version: [^\n]+\n(" + entry + "[A-Z]+_[a-z_A-Z]+\n)+" + entry +
                           "unload devil\n$");
    EXPECT_TRUE(std::regex_match(saver.Trace(), whole)) << saver.Trace();
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
