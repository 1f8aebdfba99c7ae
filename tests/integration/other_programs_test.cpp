// The show among other programs: they hold the keyboard, take the focus, come to the front.
#include "integration/other_program.h"
#include "integration/show_fixture.h"

#include <X11/keysym.h>

#include <unistd.h>

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr unsigned long kWhite = 0xFFFFFF;

class OtherPrograms : public ShowFixture {
protected:
    OtherPrograms() : ShowFixture(kWidth, kHeight) {}

    // As small as one must be that the display does not take for the saver's.
    void ShowAWindowThatNobodySees() { other.ShowWindow(0, 0, 1, 1, kWhite); }
    // Longer than any time after which the saver might give up. The program that held the input has the focus
    // when it lets go, as one has whose menu closes.
    void HoldInputForAWhile() {
        usleep(3000000);
        EXPECT_TRUE(saver.Running());
        other.TakeFocus();
        other.ReleaseInput();
    }
    void ExpectAKeyEndsIt() {
        EXPECT_TRUE(other.WaitUntilInputIsGrabbed());
        display.PressKey(XK_a);
        EXPECT_EQ(saver.WaitForExit(), 0);
        EXPECT_FALSE(other.ReceivedAKey());
    }

    OtherProgram other{display};
};

TEST_F(OtherPrograms, AKeyEndsItAfterTheInputWasHeldAtItsStart) {
    ShowAWindowThatNobodySees();
    ASSERT_TRUE(other.GrabInput());
    Start();
    HoldInputForAWhile();
    ExpectAKeyEndsIt();
}

TEST_F(OtherPrograms, AKeyEndsItAfterItsInputWasTakenAway) {
    ShowAWindowThatNobodySees();
    Start();
    ASSERT_TRUE(other.WaitUntilInputIsGrabbed());
    ASSERT_TRUE(other.UnmapAndGrabInput(display.VisibleWindows().back()));
    HoldInputForAWhile();
    ExpectAKeyEndsIt();
}

TEST_F(OtherPrograms, AKeyEndsItWhoeverHasTheFocus) {
    Start();
    ASSERT_TRUE(other.WaitUntilInputIsGrabbed());
    other.ShowWindow(0, 0, kWidth, kHeight, kWhite);
    other.TakeFocus();
    ExpectAKeyEndsIt();
}

TEST_F(OtherPrograms, ItComesUpAboveNewWindowsOnceEach) {
    other.SetMonitor({"left", 0, 0, kWidth / 2, kHeight, true});
    other.SetMonitor({"right", kWidth / 2, 0, kWidth / 2, kHeight, false});
    Start();
    for (const unsigned long colour : {0xFFFFFFul, 0xFFFF00ul}) {
        other.ShowWindow(40, 40, kWidth - 80, kHeight - 80, colour);
        EXPECT_TRUE(display.WaitForPixel(60, 60, display.DesktopPixel(60, 60), 12)) << "the show";
        EXPECT_TRUE(display.WaitForPixel(kWidth - 60, 60, 0x000000, 0)) << "the black window";
    }
    EXPECT_EQ(other.CountChangesOfWindows(1200), 0) << "it does not fight against itself";
    EXPECT_TRUE(saver.Running());
}

} // namespace
