#include "platform/clock.h"
#include "platform/paths.h"
#include "platform/random.h"
#include "platform/threads.h"
#include "unit/temp_folder.h"
#include "win32/win32.h"

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

namespace {

// What the platform is asked for.
std::string endCalls;
std::atomic<bool> endNow;
std::atomic<DWORD> slept;
std::vector<int> asked;
extern "C" {
DWORD WINAPI __real_WaitForSingleObject(HANDLE handle, DWORD milliseconds);
BOOL WINAPI __real_CloseHandle(HANDLE handle);
DWORD WINAPI __wrap_WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    endCalls += "wait " + std::to_string(milliseconds) + ", ";
    return __real_WaitForSingleObject(handle, milliseconds);
}
void WINAPI __real_Sleep(DWORD milliseconds);
void WINAPI __wrap_Sleep(DWORD milliseconds) {
    slept = milliseconds;
    __real_Sleep(milliseconds);
}
BOOL WINAPI __wrap_TerminateThread(HANDLE handle, DWORD exitCode) {
    endCalls += "terminate " + std::to_string(exitCode) + ", ";
    endNow = true; // not by force, so that the sanitizers can follow
    return __real_WaitForSingleObject(handle, INFINITE) == WAIT_OBJECT_0;
}
BOOL WINAPI __wrap_SetPriorityClass(HANDLE, DWORD priorityClass) {
    asked.push_back(static_cast<int>(priorityClass));
    return TRUE;
}
BOOL WINAPI __wrap_SetThreadPriority(HANDLE, int priority) {
    asked.push_back(priority);
    return TRUE;
}
BOOL WINAPI __wrap_CloseHandle(HANDLE handle) {
    endCalls += "close";
    return __real_CloseHandle(handle);
}
}

TEST(Clock, CountsAndSleepsInMilliseconds) {
    fxSetTickSource([] { return 0xFFFFFFFFu; });
    EXPECT_EQ(fxGetTime(), 4294967.295);
    fxSetTickSource(nullptr);
    const double before = fxGetTime();
    for (const auto& [seconds, milliseconds] :
         {std::pair{0.0, 0u}, {0.0014, 1u}, {0.0015, 2u}, {0.0195, 20u}, {-1e30, 0u}, {std::nan(""), 0u}}) {
        fxSleep(seconds);
        EXPECT_EQ(slept, milliseconds) << seconds;
    }
    EXPECT_GE(fxGetTime() - before, 0.022);
    static std::uint32_t ticks = 5000;
    fxSetTickSource([] { return ticks; });
    FXTimeDiff diff;
    EXPECT_EQ(diff.OnTime(), 5.0) << "since the clock's start";
    ticks = 5250;
    EXPECT_EQ(diff.OnTime(), 0.25);
    fxSetTickSource(nullptr);
}

TEST(Random, RunsFromZeroToOneAndStartsByTheClock) {
    std::set<float> values, firsts;
    for (unsigned seed = 0; seed < 1u << 16; ++seed) {
        fxSeedRandom(seed << 16);
        values.insert(fxGetRandom());
    }
    EXPECT_EQ(*values.begin(), 0.0f);
    EXPECT_EQ(*values.rbegin(), 1.0f);
    static std::uint32_t ticks;
    fxSetTickSource([] { return ticks; });
    for (ticks = 1000; ticks < 1010; ++ticks) {
        fxSeedRandom(5);
        fxResetRandom();
        firsts.insert(fxGetRandom());
    }
    fxSetTickSource(nullptr);
    EXPECT_EQ(firsts.size(), 10u);
}

TEST(Random, IsOneSequenceForAllThreads) {
    fxSeedRandom(3);
    const float drawn[] = {fxGetRandom(), fxGetRandom()};
    float elsewhere = -1;
    fxSeedRandom(3);
    std::thread([&] { elsewhere = fxGetRandom(); }).join();
    EXPECT_EQ(elsewhere, drawn[0]);
    EXPECT_EQ(fxGetRandom(), drawn[1]);
}

void RunUntilToldToEnd(void* started) {
    if (started != nullptr)
        *static_cast<std::atomic<bool>*>(started) = true;
    while (!endNow)
        fxSleep(0.001);
}

TEST(Threads, AreWaitedForAndAsEagerAsAsked) {
    std::atomic<bool> started = false;
    endNow = false;
    asked.clear();
    FXThread* thread = fxCreateThread(RunUntilToldToEnd, &started);
    endCalls.clear();
    EXPECT_FALSE(fxWaitThread(thread, 0.0005));
    EXPECT_EQ(endCalls, "wait 0, ") << "cut to whole milliseconds";
    for (const int priority : {0, 7, -7}) {
        fxSetAppPriority(priority);
        fxSetThreadPriority(thread, priority);
        fxSetThreadPriority(nullptr, priority);
    }
    EXPECT_EQ(asked, (std::vector<int>{NORMAL_PRIORITY_CLASS, THREAD_PRIORITY_NORMAL, REALTIME_PRIORITY_CLASS,
                                       THREAD_PRIORITY_TIME_CRITICAL, BELOW_NORMAL_PRIORITY_CLASS,
                                       THREAD_PRIORITY_LOWEST}));
    endNow = true;
    EXPECT_TRUE(fxWaitThread(thread, 100000.0));
    EXPECT_TRUE(started) << "the argument came through";
    EXPECT_TRUE(fxWaitThread(thread, 0.0)) << "an ended thread can be asked again";
    fxTerminateThread(thread);
    EXPECT_TRUE(fxWaitThread(thread, 100000.0)) << "closed counts as ended";
    fxDestroyThread(thread);
    EXPECT_TRUE(fxWaitThread(nullptr, 1.0));
    fxDestroyThread(nullptr);
}

TEST(Threads, AreEndedByForceOnlyWhenTheyHaveNotEnded) {
    for (const bool runs : {true, false}) {
        endNow = !runs;
        FXThread* thread = fxCreateThread(RunUntilToldToEnd, nullptr);
        EXPECT_TRUE(runs || fxWaitThread(thread, 100000.0));
        endCalls.clear();
        fxDestroyThread(thread);
        EXPECT_EQ(endCalls, runs ? "wait 0, terminate 0, close" : "wait 0, close");
    }
}

TEST(Paths, EndWithTheSeparatorTheyUse) {
    const std::string tooLong(300, 'x');
    const std::pair<const char*, std::string> cases[] = {
        {nullptr, "\\"},
        {"/a/b", "/a/b/"},
        {"/a/b/", "/a/b/"},
        {"C:/a\\b", "C:/a\\b\\"},
        {tooLong.c_str(), tooLong.substr(0, 259) + "\\"},
    };
    for (const auto& [path, stored] : cases) {
        fxSetTypePath(1, path);
        EXPECT_EQ(fxGetTypePath(1), stored);
    }
    fxSetTypePath(3, "/a");
    EXPECT_EQ(fxGetTypePath(3), nullptr);
    EXPECT_FALSE(fxSetPath(3));
}

TEST(Paths, ChooseTheCurrentFolder) {
    const TempFolder folder;
    const fs::path start = fs::current_path();
    EXPECT_FALSE(fxSetActPath(folder.File("missing").c_str()));
    fxSetTypePath(1, folder.File("").c_str());
    EXPECT_TRUE(fxSetPath(1));
    fxInitPaths();
    EXPECT_TRUE(fs::equivalent(fxGetTypePath(1), folder.File("")));
    EXPECT_GT(std::strlen(fxGetTypePath(2)), 1u);
    EXPECT_STREQ(fxGetActPath(), fxGetTypePath(1));
    fs::create_directory(folder.File("sub"));
    for (const auto& [sub, there] : {std::pair{"/sub", true}, {"none", false}, {"sub/../sub/.", true}}) {
        EXPECT_EQ(fxSetSubPath(1, sub), there) << sub;
        EXPECT_TRUE(!there || fs::equivalent(fxGetActPath(), folder.File("sub"))) << sub;
    }
    EXPECT_FALSE(fxSetSubPath(3, "sub"));
    for (const std::string& path : {std::string("../sub"), std::string("../sub\\"), folder.Write("file", "")})
        EXPECT_TRUE(fxPathExists(path.c_str())) << path;
    for (const char* path : {"sub", "", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(fxPathExists(path));
    for (const int depth : {100, 200}) { // too deep for the buffer
        fs::create_directory(std::string(static_cast<std::size_t>(depth), 'd'));
        fs::current_path(std::string(static_cast<std::size_t>(depth), 'd'));
    }
    EXPECT_STREQ(fxGetActPath(), ".\\");
    fs::current_path(start);
}

} // namespace
