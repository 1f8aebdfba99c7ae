// The show among other programs: they hold the keyboard, take the focus, come to the front, ask it to end.
#include "integration/saver_process.h"

namespace {

class OtherPrograms : public ShowFixture {
protected:
    void SetUp() override {
        ShowFixture::SetUp();
        // As small as one must be that the display does not take for the saver's.
        other = display.ShowWindow({0, 0, 1, 1});
    }
    bool SaverTakesTheFocus() const {
        return Eventually([this] {
            Window focus = None;
            int revert = 0;
            XGetInputFocus(display.connection, &focus, &revert);
            return focus == display.WaitForWindow();
        });
    }
    // The program that held the input has the focus when it lets go, as one has whose menu closes.
    void ExpectAKeyEndsItWhen(Window otherLetsGo) {
        EXPECT_TRUE(saver.Running());
        display.TakeFocus(otherLetsGo);
        display.ReleaseInput();
        EXPECT_TRUE(display.WaitUntilInputIsGrabbed());
        ExpectAKeyEndsIt();
        XEvent event;
        EXPECT_FALSE(XCheckTypedEvent(display.connection, KeyPress, &event));
    }

    const std::pair<int, int> granted = {GrabSuccess, GrabSuccess};
    Window other = 0;
};

TEST_F(OtherPrograms, AfterTheInputWasHeldAtItsStartTheLostFocusOrAKeyEndsIt) {
    for (const bool byKey : {false, true}) {
        ASSERT_EQ(display.GrabInput(), granted);
        Start();
        ASSERT_TRUE(SaverTakesTheFocus()) << "it gives up asking soon, and goes on asking";
        if (byKey) {
            ExpectAKeyEndsItWhen(other);
        } else {
            saver.SetClock(4001);
            display.MovePointer(20, 20); // which the holder of the pointer alone is told
            display.TakeFocus(other);
            ASSERT_EQ(saver.WaitForExit(), 0);
        }
    }
}

TEST_F(OtherPrograms, AKeyEndsItAfterItsInputWasTakenAway) {
    Start();
    ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
    XGrabServer(display.connection); // no time in between for the saver to react
    XUnmapWindow(display.connection, display.WaitForWindow());
    EXPECT_EQ(display.GrabInput(), granted);
    XUngrabServer(display.connection);
    display.Sync();
    EXPECT_TRUE(SaverTakesTheFocus());
    ExpectAKeyEndsItWhen(other);
}

TEST_F(OtherPrograms, AKeyEndsItWhoeverHasTheFocus) {
    Start();
    ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
    ExpectAKeyEndsItWhen(display.ShowWindow({0, 0, 320, 240}, 0xFFFFFF));
}

TEST_F(OtherPrograms, AKeyHeldForAnotherOneMayBeReleased) {
    display.TurnKey(XK_Return, true);
    Start();
    display.TurnKey(XK_Return, false);
    ExpectItGoesOn();
    ExpectAKeyEndsIt(XK_Return);
}

TEST_F(OtherPrograms, ItComesUpAboveNewWindowsOnceEachAndAMoveOnABlackMonitorCounts) {
    display.SetMonitor("left", {0, 0, 160, 240}, true);
    display.SetMonitor("right", {160, 0, 160, 240}, false);
    Start();
    for (const unsigned long colour : {0xFFFFFFul, 0xFFFF00ul}) {
        display.ShowWindow({40, 40, 240, 160}, colour);
        ASSERT_TRUE(display.WaitForPixel(60, 60, display.DesktopPixel(60, 60), 12)) << "the show";
        ASSERT_TRUE(display.WaitForPixel(260, 60, 0x000000, 0)) << "the black window";
    }
    XSelectInput(display.connection, display.Root(), SubstructureNotifyMask);
    XSync(display.connection, True);
    usleep(1200000);
    EXPECT_EQ(XPending(display.connection), 0) << "it does not fight against itself";
    saver.SetClock(4001);
    display.MovePointer(310, 10); // on a black window
    EXPECT_EQ(saver.WaitForExit(), 0);
}

TEST_F(OtherPrograms, ASignalTakesItDownInGoodOrder) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        Start();
        saver.Signal(number);
        EXPECT_EQ(saver.WaitForExit(), 0);
        EXPECT_TRUE(saver.Trace().ends_with("unload devil\n")) << saver.Trace();
    }
}

} // namespace
