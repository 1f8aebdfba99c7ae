// The saver's process ended from outside, at any moment, or stopped for minutes: the desktop is as it was.
#include "integration/spied_saver.h"

#include <sstream>

namespace {

class FailingProcess : public ShowOf<SpiedSaver> {
protected:
    void SetUp() override {
        ShowOf::SetUp();
        below_ = display.ShowWindow({0, 0, 40, 30}, 0x808080);
        display.TakeFocus(below_);
    }

    // Whether there is shared memory that one of these made: it outlives who does not give it back.
    static bool HasSharedMemory(const std::vector<pid_t>& makers) {
        std::ifstream list("/proc/sysvipc/shm");
        std::string line;
        std::getline(list, line); // names
        while (std::getline(list, line)) {
            std::istringstream words(line);
            const std::vector<long> numbers(std::istream_iterator<long>(words), {});
            if (std::ranges::count(makers, numbers.at(4)) != 0) // who made it
                return true;
        }
        return false;
    }
    // And the keyboard's repeats, and that it is heard.
    void ExpectTheDesktop() {
        ShowOf::ExpectTheDesktop({below_}, below_);
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
        std::mt19937 random(static_cast<unsigned>(number));
        std::vector<pid_t> savers;
        for (int i = 0; i < count; ++i) {
            const unsigned moment = AnyMoment(&random);
            SCOPED_TRACE(testing::Message() << "signal " << number << " after " << moment << " ms");
            saver.Start({"/s"});
            savers.push_back(saver.Id());
            saver.SetClock(kInEachStage[static_cast<std::size_t>(i) % std::size(kInEachStage)]);
            usleep(moment * 1000);
            const int status = saver.End(number);
            // Before it listens, the signal is the system's.
            EXPECT_TRUE(status == 0 || (status == -2 && saver.EndSignal() == number))
                << status << saver.Errors();
            ExpectTheDesktop();
            if (HasFailure())
                return;
        }
        EXPECT_TRUE(Eventually([&] { return !HasSharedMemory(savers); }));
        Start();
        ASSERT_TRUE(saver.Draws() && display.WaitUntilInputIsGrabbed());
        ExpectAKeyEndsIt();
        EXPECT_EQ(saver.Errors(), "");
    }

    Window below_ = None;
};

TEST_F(FailingProcess, EndedByARequestAtAnyMomentItLeavesTheDesktopAsItWas) {
    EndAtMoments(SIGTERM, Times(8, 200));
}

TEST_F(FailingProcess, KilledAtAnyMomentItLeavesTheDesktopAsItWas) {
    EndAtMoments(SIGKILL, Times(5, 50));
}

TEST_F(FailingProcess, StoppedForMinutesItGoesOnAndEndsAsEver) {
    Start();
    std::uint32_t clock = 0;
    for (const std::uint32_t ms : kInEachStage) {
        ASSERT_TRUE(saver.Draws()) << saver.Errors();
        saver.Signal(SIGSTOP);
        saver.SetClock(clock += 600000 + ms);
        usleep(100000);
        saver.Signal(SIGCONT);
        ASSERT_TRUE(saver.Draws(3)) << saver.Errors();
    }
    EXPECT_TRUE(display.WaitUntilInputIsGrabbed());
    ExpectAKeyEndsIt();
    ExpectTheDesktop();
}

} // namespace
