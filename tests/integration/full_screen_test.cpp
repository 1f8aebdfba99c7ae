// The show on a whole screen: what it covers, what ends it, and what it writes down.
#include "integration/saver_process.h"

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
    for (const KeySym key : {XK_space, XK_Shift_L, XK_F10, XK_Escape}) {
        Start();
        EXPECT_TRUE(display.WaitForHiddenCursor());
        ExpectAKeyEndsIt(key);
    }
    EXPECT_FALSE(display.CursorIsHidden());
}

TEST_F(FullScreen, TheMouseDoesNothingForFourSecondsAndClosesAfter) {
    for (const bool byButton : {true, false}) {
        StartAndSeeFrames();
        saver.SetClock(4000);
        display.MovePointer(20, 20);
        display.ClickButton(1);
        ExpectItGoesOn();
        saver.SetClock(4001);
        byButton ? display.ClickButton(3) : display.MovePointer(50, 50);
        EXPECT_EQ(saver.WaitForExit(), 0);
    }
}

TEST_F(FullScreen, TheFirstFrameShowsTheDesktopPixelForPixel) {
    // Before the saver draws, its window shows the desktop too: so frames are seen to fade it first. Turned
    // back to the start, the clock makes every frame the first one.
    StartAndSeeFrames();
    saver.SetClock(0);
    EXPECT_TRUE(
        display.WaitForPixel(kWidth / 2, kHeight / 2, display.DesktopPixel(kWidth / 2, kHeight / 2), 3));
    const ScreenPicture picture = display.Photograph();
    int worst = 0, different = 0;
    for (int i = 0; i < kWidth * kHeight; ++i) {
        const int x = i % kWidth, y = i / kWidth;
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
    const std::string dashes(48, '-'), entry = "[0-9a-f]{8}: \\[1000\\.000\\] ";
    const std::regex whole("^" + dashes + "\n fxOpenTraces \\(filename:tamb\\.log\\)\n" + dashes + "\n\n" +
                           entry + "loading devil\n" + entry + "loading ok\n" + entry + "OpenGL info:\n" +
                           entry + "vendor: [^\n]+\n" + entry + "renderer: [^\n]+\n" + entry +
                           "version: [^\n]+\n(" + entry + "[A-Z]+_[a-z_A-Z]+\n)+" + entry +
                           "unload devil\n$");
    EXPECT_TRUE(std::regex_match(saver.Trace(), whole)) << saver.Trace();
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
