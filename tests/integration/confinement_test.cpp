// What the running show has given up: of every thread, the driver's too.
#include "integration/saver_process.h"

namespace {

struct Rights {
    std::string noNewPrivileges, filter; // as the system says them; "2": there is a filter
    bool operator==(const Rights&) const = default;
};

Rights RightsOf(const std::filesystem::path& task) {
    Rights rights;
    std::ifstream status(task / "status");
    for (std::string word; status >> word;)
        if (word == "NoNewPrivs:" || word == "Seccomp:")
            status >> (word == "Seccomp:" ? rights.filter : rights.noNewPrivileges);
    return rights;
}

using TheShow = ShowFixture;

TEST_F(TheShow, HasGivenUpWhatItDoesNotNeedInEveryThread) {
    Start();
    ASSERT_TRUE(saver.SeeFrames(display));
    int threads = 0;
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(saver.Id()) + "/task")) {
        EXPECT_EQ(RightsOf(task.path()), (Rights{"1", "2"})) << task.path();
        ++threads;
    }
    EXPECT_GE(threads, 2) << "the window's and the loop's";
    ExpectAKeyEndsIt();
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
