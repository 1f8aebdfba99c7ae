// What the running show has given up: of every thread, the driver's too.
#include "integration/saver_process.h"

namespace {

using TheShow = ShowFixture;

TEST_F(TheShow, HasGivenUpWhatItDoesNotNeedInEveryThread) {
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
    ExpectAKeyEndsIt();
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
