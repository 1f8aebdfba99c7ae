// What the user's tamblor.conf changes of the show.
#include "integration/saver_process.h"

namespace {

using UserSettings = ShowFixture;

TEST_F(UserSettings, APointerThatTremblesDoesNotEndItAndOneThatIsMovedDoes) {
    saver.Configure("mouse_threshold = 10\n");
    Start();
    ASSERT_TRUE(saver.SeeFrames(display));
    saver.SetClock(0);
    display.MovePointer(20, 20); // while the mouse does nothing: the saver has been put away
    for (int now = 5000, at = 20; at < 45; now += 2000, at += 5) {
        usleep(50000); // the saver has read it before its clock goes on
        saver.SetClock(static_cast<std::uint32_t>(now));
        for (int i = 0; i < 6; ++i) // it trembles, and wanders by more than the threshold in the end
            display.MovePointer(at + 4 * (i % 2), at + 4 * (i / 2 % 2));
    }
    ExpectItGoesOn();
    display.MovePointer(60, 45);
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
