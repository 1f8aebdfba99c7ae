// The saver's process ended from outside, at any moment, or stopped for minutes: the desktop is as it was.
#include "integration/failing_saver.h"

#include <sstream>

namespace {

class FailingProcess : public testing::Test {
protected:
    FailingProcess() : display(320, 240) {}
    void SetUp() override {
        ASSERT_NE(display.connection, nullptr);
        below_ = display.ShowWindow({0, 0, 40, 30}, 0x808080);
        display.TakeFocus(below_);
    }

    // Of shared memory, which outlives a process that does not give it back: whether one of these made any
    // that is there.
    static bool HasSharedMemory(const std::vector<pid_t>& makers) {
        std::ifstream list("/proc/sysvipc/shm");
        std::string line;
        std::getline(list, line); // names
        while (std::getline(list, line)) {
            std::istringstream words(line);
            long word = 0;
            for (int i = 0; i < 5; ++i) // the fifth: who made it
                words >> word;
            if (std::ranges::find(makers, word) != makers.end())
                return true;
        }
        return false;
    }
    // What the user had before: the focus, the keyboard, the pointer and its picture, the keyboard's repeats,
    // and no window in between.
    void ExpectTheDesktop() {
        EXPECT_TRUE(Eventually([this] { return display.VisibleWindows() == std::vector{below_}; }));
        EXPECT_TRUE(Eventually([this] {
            const auto answers = display.GrabInput();
            display.ReleaseInput();
            return answers == std::pair{GrabSuccess, GrabSuccess};
        }));
        EXPECT_FALSE(display.CursorIsHidden());
        EXPECT_TRUE(Eventually([this] { return display.Focus() == below_; }));
        XKeyboardState keyboard = {};
        XGetKeyboardControl(display.connection, &keyboard);
        EXPECT_EQ(keyboard.global_auto_repeat, AutoRepeatModeOn);
        XSync(display.connection, True);
        display.PressKey(XK_a);
        XEvent event = {};
        EXPECT_TRUE(
            Eventually([&] { return XCheckWindowEvent(display.connection, below_, KeyPressMask, &event); }));
    }
    void EndAtMoments(int number, int count) {
        Moments moments(static_cast<unsigned>(number));
        std::vector<pid_t> savers;
        for (int i = 0; i < count; ++i) {
            const unsigned moment = moments.Next();
            SCOPED_TRACE(testing::Message() << "signal " << number << " after " << moment << " ms");
            saver.Start(display, {"/s"});
            savers.push_back(saver.Id());
            saver.SetClock(kInEachStage[static_cast<std::size_t>(i) % std::size(kInEachStage)]);
            usleep(moment * 1000);
            saver.Signal(number);
            const int status = saver.WaitForExit();
            // Before it listens, the signal is the system's.
            EXPECT_TRUE(status == 0 || (status == -2 && saver.EndSignal() == number))
                << status << saver.Errors();
            ExpectTheDesktop();
            if (HasFailure())
                return;
        }
        EXPECT_TRUE(Eventually([&] { return !HasSharedMemory(savers); }));
        saver.Start(display, {"/s"});
        ASSERT_TRUE(saver.WaitUntilShown(display) && saver.Draws());
        EXPECT_TRUE(display.WaitUntilInputIsGrabbed());
        display.PressKey(XK_space);
        EXPECT_EQ(saver.WaitForExit(), 0);
        EXPECT_EQ(saver.Errors(), "");
    }

    VirtualDisplay display;
    FailingSaver saver;
    Window below_ = None;
};

TEST_F(FailingProcess, EndedByARequestAtAnyMomentItLeavesTheDesktopAsItWas) {
    EndAtMoments(SIGTERM, Times(8, 200));
}

TEST_F(FailingProcess, KilledAtAnyMomentItLeavesTheDesktopAsItWas) {
    EndAtMoments(SIGKILL, Times(5, 50));
}

TEST_F(FailingProcess, StoppedForMinutesItGoesOnAndEndsAsEver) {
    saver.Start(display, {"/s"});
    ASSERT_TRUE(saver.WaitUntilShown(display) && saver.Draws());
    for (const std::uint32_t ms : kInEachStage) {
        static std::uint32_t clock = 0;
        saver.Signal(SIGSTOP);
        saver.SetClock(clock += 600000 + ms);
        usleep(100000);
        saver.Signal(SIGCONT);
        ASSERT_TRUE(saver.Draws(3)) << saver.Errors();
    }
    EXPECT_TRUE(display.WaitUntilInputIsGrabbed());
    display.PressKey(XK_space);
    EXPECT_EQ(saver.WaitForExit(), 0) << saver.Errors();
    ExpectTheDesktop();
}

} // namespace
