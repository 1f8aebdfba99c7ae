// What the user's tamblor.conf changes of the show.
#include "integration/saver_process.h"

namespace {

class UserSettings : public ShowFixture {
protected:
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
    saver.Configure("mouse_threshold = 10\n");
    Start();
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

} // namespace
