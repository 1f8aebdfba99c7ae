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
    // It has a window inside the one that had the focus, if one had it.
    bool SaverTakesTheFocus() const {
        return Eventually([this] {
            const Window focus = display.Focus();
            const std::vector<Window> inside = display.VisibleWindows(other, 1);
            return focus == display.WaitForWindow() || std::ranges::count(inside, focus) == 1;
        });
    }
    // As those programs have it that lock the screen.
    Window CreateLockWindow() const {
        XSetWindowAttributes wishes = {};
        wishes.background_pixel = kRed;
        wishes.override_redirect = True;
        return XCreateWindow(display.connection, display.Root(), 1, 1, 318, 238, 0, CopyFromParent,
                             InputOutput, nullptr, CWBackPixel | CWOverrideRedirect, &wishes);
    }
    // As patient as the least patient of those programs: the first ones give up after half a second.
    bool GetsTheInput() const {
        for (int i = 0; i < 10; ++i, usleep(50000))
            if (display.GrabInput() == granted)
                return true;
        return false;
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

    static constexpr unsigned long kRed = 0xFF0000;
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

TEST_F(OtherPrograms, AKeyHeldForAnotherOneMayBeReleasedAndOneEndsItAfterItsInputWasTakenAway) {
    display.TurnKey(XK_Return, true);
    Start();
    display.TurnKey(XK_Return, false);
    saver.ExpectItGoesOn();
    ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
    XGrabServer(display.connection); // no time in between for the saver to react
    XUnmapWindow(display.connection, display.WaitForWindow());
    EXPECT_EQ(display.GrabInput(), granted);
    XUngrabServer(display.connection);
    display.Sync();
    EXPECT_TRUE(SaverTakesTheFocus());
    ExpectAKeyEndsItWhen(other);
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
    ExpectNoFight();
    saver.SetClock(4001);
    display.MovePointer(310, 10); // on a black window
    EXPECT_EQ(saver.WaitForExit(), 0);
}

// It takes the input, or the focus where somebody else holds the input.
TEST_F(OtherPrograms, AllIsAsItWasHoweverItEnds) {
    const struct {
        Window focus;
        bool inputIsHeld;
        std::vector<int> ends;
    } cases[] = {{other, false, {0, SIGINT, SIGTERM, SIGHUP, SIGKILL}},
                 {other, true, {0, SIGKILL, SIGSEGV}},
                 {PointerRoot, true, {0, SIGKILL}},
                 {None, true, {0, SIGSEGV}}};
    for (const auto& c : cases)
        for (const int signal : c.ends) {
            display.TakeFocus(c.focus);
            ASSERT_TRUE(!c.inputIsHeld || display.GrabInput() == granted);
            Start();
            ASSERT_TRUE(c.inputIsHeld ? Eventually([&] { return display.Focus() != c.focus; })
                                      : display.WaitUntilInputIsGrabbed() && display.WaitForHiddenCursor());
            display.ReleaseInput();
            signal == 0 ? display.PressKey(XK_space) : saver.Signal(signal); // a key for 0
            const int status = saver.WaitForExit();
            const bool atOnce = signal == SIGKILL || signal == SIGSEGV;
            EXPECT_TRUE(atOnce ? status != -1 : status == 0 && saver.Trace().ends_with("unload devil\n"))
                << status;
            ExpectTheDesktop({}, c.focus);
            EXPECT_TRUE(display.VisibleWindows(other, 1).empty());
        }
}

TEST_F(OtherPrograms, AProgramThatLocksTheScreenGetsTheInputAndStaysAbove) {
    for (const bool shownFirst : {false, true}) {
        Start();
        ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
        const Window lock = CreateLockWindow();
        if (shownFirst)
            XMapRaised(display.connection, lock);
        ASSERT_TRUE(GetsTheInput()) << shownFirst;
        XMapRaised(display.connection, lock);
        display.Sync();
        usleep(1300000); // longer than it lets others be above
        EXPECT_EQ(display.PixelAt(160, 120), kRed);
        display.PressKey(XK_a);
        saver.ExpectItGoesOn();
        XEvent key;
        EXPECT_TRUE(XCheckTypedEvent(display.connection, KeyPress, &key)) << "it is the lock program's";
        display.DestroyWindow(lock);
        ExpectAKeyEndsItWhen(other);
    }
}

TEST_F(OtherPrograms, AKeyEndsItAlsoWhileItLeavesTheInputToALockProgramThatDoesNotTakeIt) {
    Start();
    ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
    const Window lock = CreateLockWindow();
    ASSERT_TRUE(GetsTheInput());
    display.ReleaseInput();
    ASSERT_TRUE(SaverTakesTheFocus());
    ExpectAKeyEndsIt();
    Start();
    ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
    display.DestroyWindow(lock);
    CreateLockWindow();
    ASSERT_TRUE(GetsTheInput());
    display.ReleaseInput();
    EXPECT_TRUE(display.WaitUntilInputIsGrabbed()) << "the saver takes it back";
}

} // namespace
