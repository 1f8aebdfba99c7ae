// The show among other programs: they hold the keyboard, take the focus, come to the front, ask it to end.
#include "integration/show_fixture.h"

#include <csignal>

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr unsigned long kWhite = 0xFFFFFF;

class OtherPrograms : public ShowFixture {
protected:
    OtherPrograms() : ShowFixture(kWidth, kHeight) {}

    // As small as one must be that the display does not take for the saver's.
    unsigned long ShowAWindowThatNobodySees() { return display.ShowWindow(0, 0, 1, 1, kWhite); }
    bool SaverTakesTheFocus() const {
        return Eventually([this] { return display.HasFocus(display.WaitForWindow()); });
    }
    // The program that held the input has the focus when it lets go, as one has whose menu closes.
    void ExpectAKeyEndsItWhen(unsigned long otherLetsGo) {
        EXPECT_TRUE(saver.Running());
        display.TakeFocus(otherLetsGo);
        display.ReleaseInput();
        EXPECT_TRUE(display.WaitUntilInputIsGrabbed());
        ExpectAKeyEndsIt();
        EXPECT_FALSE(display.ReceivedAKey());
    }
};

TEST_F(OtherPrograms, AKeyEndsItAfterTheInputWasHeldAtItsStart) {
    const unsigned long other = ShowAWindowThatNobodySees();
    ASSERT_TRUE(display.GrabInput());
    Start();
    // It gives up asking soon, takes the focus instead, and goes on asking.
    EXPECT_TRUE(SaverTakesTheFocus());
    ExpectAKeyEndsItWhen(other);
}

TEST_F(OtherPrograms, AKeyEndsItAfterItsInputWasTakenAway) {
    const unsigned long other = ShowAWindowThatNobodySees();
    Start();
    ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
    ASSERT_TRUE(display.UnmapAndGrabInput(display.WaitForWindow()));
    EXPECT_TRUE(SaverTakesTheFocus());
    ExpectAKeyEndsItWhen(other);
}

TEST_F(OtherPrograms, AKeyEndsItWhoeverHasTheFocus) {
    Start();
    ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
    ExpectAKeyEndsItWhen(display.ShowWindow(0, 0, kWidth, kHeight, kWhite));
}

TEST_F(OtherPrograms, AKeyHeldForAnotherOneMayBeReleased) {
    display.HoldKey(XK_Return);
    Start();
    display.ReleaseKey(XK_Return);
    ExpectItGoesOn();
    ExpectAKeyEndsIt(XK_Return);
}

TEST_F(OtherPrograms, LosingTheFocusEndsItOnceThePointerHasMoved) {
    const unsigned long other = ShowAWindowThatNobodySees();
    ASSERT_TRUE(display.GrabInput());
    Start();
    EXPECT_TRUE(SaverTakesTheFocus());
    saver.SetClock(SaverProcess::kStartMs + 4001);
    display.MovePointer(20, 20); // which the holder of the pointer alone is told
    display.TakeFocus(other);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

TEST_F(OtherPrograms, ItComesUpAboveNewWindowsOnceEach) {
    display.SetMonitor("left", 0, 0, kWidth / 2, kHeight, true);
    display.SetMonitor("right", kWidth / 2, 0, kWidth / 2, kHeight, false);
    Start();
    for (const unsigned long colour : {0xFFFFFFul, 0xFFFF00ul}) {
        display.ShowWindow(40, 40, kWidth - 80, kHeight - 80, colour);
        EXPECT_TRUE(display.WaitForPixel(60, 60, display.DesktopPixel(60, 60), 12)) << "the show";
        EXPECT_TRUE(display.WaitForPixel(kWidth - 60, 60, 0x000000, 0)) << "the black window";
    }
    EXPECT_EQ(display.CountChangesOfWindows(1200), 0) << "it does not fight against itself";
    EXPECT_TRUE(saver.Running());
}

TEST_F(OtherPrograms, ASignalTakesItDownInGoodOrder) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        SaverProcess one;
        one.Start(&display, {"/s"});
        ASSERT_TRUE(one.WaitUntilShown(display));
        one.Signal(number);
        EXPECT_EQ(one.WaitForExit(), 0);
        EXPECT_TRUE(one.Trace().ends_with("unload devil\n")) << one.Trace();
    }
}

} // namespace
