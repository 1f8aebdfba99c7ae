// What the running show has given up, in every thread, the driver's too, and what it heeds of tamblor.conf.
#include "integration/saver_process.h"

namespace {

using TheShow = ShowFixture;

TEST_F(TheShow, HasGivenUpWhatItDoesNotNeedAndAPointerThatTremblesDoesNotEndItButOneThatIsMoved) {
    saver.Configure("mouse_threshold = 10\n");
    Start();
    ASSERT_TRUE(saver.SeeFrames(display));
    int threads = 0;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(saver.Id()) + "/task")) {
        std::ifstream file(task.path() / "status");
        const std::string status(std::istreambuf_iterator<char>(file), {});
        EXPECT_NE(status.find("\nNoNewPrivs:\t1\n"), std::string::npos) << status;
        EXPECT_NE(status.find("\nSeccomp:\t2\n"), std::string::npos) << "there is no filter: " << status;
        ++threads;
    }
    EXPECT_GE(threads, 2) << "the window's and the loop's";

    saver.SetClock(0);
    display.MovePointer(20, 20); // while the mouse does nothing: the saver has been put away
    for (int now = 5000, at = 20; at < 45; now += 2000, at += 5) {
        usleep(50000); // the saver has read it before its clock goes on
        saver.SetClock(static_cast<std::uint32_t>(now));
        for (int i = 0; i < 6; ++i) // it trembles, and wanders by more than the threshold in the end
            display.MovePointer(at + 4 * (i % 2), at + 4 * (i / 2 % 2));
    }
    saver.ExpectItGoesOn();
    display.MovePointer(60, 45);
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
