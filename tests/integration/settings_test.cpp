// What the user's tamblor.conf changes of the show.
#include "integration/saver_process.h"

namespace {

class UserSettings : public ShowFixture {
protected:
    void StartWith(const std::string& settings) {
        std::filesystem::create_directories(saver.data.File("config/tamblor"));
        saver.data.Write("config/tamblor/tamblor.conf", settings);
        Start();
    }
    // The pointer jumps to and fro by so many pixels; two seconds later it rests.
    void Tremble(int x, int y, int by) {
        for (int i = 0; i < 6; ++i)
            display.MovePointer(x + by * (i % 2), y + by * (i / 2 % 2));
        now_ += 2000;
        usleep(50000); // the saver has read them before its clock goes on
        saver.SetClock(now_);
    }

private:
    std::uint32_t now_ = 5000;
};

TEST_F(UserSettings, APointerThatTremblesDoesNotEndItAndOneThatIsMovedDoes) {
    StartWith("mouse_threshold = 10\n");
    ASSERT_TRUE(saver.SeeFrames(display));
    saver.SetClock(0);
    display.MovePointer(20, 20); // while the mouse does nothing: the saver has been put away
    usleep(50000);
    saver.SetClock(5000);
    for (int i = 0; i < 5; ++i)
        Tremble(20 + 5 * i, 20 + 5 * i, 4); // and wanders, by more than the threshold in the end
    ExpectItGoesOn();
    display.MovePointer(60, 45);
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_EQ(saver.Errors(), "");
}

TEST_F(UserSettings, AFileThatIsNotGoodIsReportedOnceAndChangesNothing) {
    StartWith("mouse_threshold = 10\nmax_fps = fast\n");
    saver.SetClock(5000);
    display.MovePointer(display.width / 3 + 1, display.height / 3);
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_EQ(saver.Errors(), "tamblor: configuration: " + saver.data.File("config/tamblor/tamblor.conf") +
                                  ":2: max_fps must be a whole number from 0 to 1000\n");
}

} // namespace
