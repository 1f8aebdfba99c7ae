#include "platform/clock.h"
#include "platform/paths.h"
#include "platform/random.h"
#include "platform/threads.h"
#include "platform/trace.h"
#include "unit/temp_folder.h"
#include "win32/win32.h"

#include <atomic>
#include <cmath>
#include <cstring>
#include <set>
#include <thread>

namespace fs = std::filesystem;

namespace {

// What the platform is asked for.
std::string endCalls;
std::atomic<bool> endNow;
std::atomic<DWORD> slept;
std::vector<DWORD> asked; // priority classes
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
    asked.push_back(priorityClass);
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
}

TEST(Random, RunsFromZeroToOneForAllThreadsAndStartsByTheClock) {
    std::set<float> values, firsts;
    for (unsigned seed = 0; seed < 1u << 16; ++seed) {
        fxSeedRandom(seed << 16);
        values.insert(fxGetRandom());
    }
    EXPECT_EQ(*values.begin(), 0.0f);
    EXPECT_EQ(*values.rbegin(), 1.0f);
    static std::uint32_t ticks = 1000;
    fxSetTickSource([] { return ++ticks; });
    for (int i = 0; i < 10; ++i) {
        fxSeedRandom(5);
        fxResetRandom();
        firsts.insert(fxGetRandom());
    }
    fxSetTickSource(nullptr);
    EXPECT_EQ(firsts.size(), 10u);
    fxSeedRandom(3);
    const float drawn[] = {fxGetRandom(), fxGetRandom()};
    fxSeedRandom(3);
    std::thread([&] { EXPECT_EQ(fxGetRandom(), drawn[0]); }).join();
    EXPECT_EQ(fxGetRandom(), drawn[1]);
}

void RunUntilToldToEnd(void* started) {
    *static_cast<std::atomic<bool>*>(started) = true;
    while (!endNow)
        fxSleep(0.001);
}

TEST(Threads, AreWaitedForAndEndedByForceOnlyWhenTheyHaveNotEnded) {
    for (const bool runs : {true, false}) {
        std::atomic<bool> started = false;
        endNow = false;
        FXThread* thread = fxCreateThread(RunUntilToldToEnd, &started);
        endCalls.clear();
        EXPECT_FALSE(fxWaitThread(thread, 0.0005));
        EXPECT_EQ(endCalls, "wait 0, ") << "cut to whole milliseconds";
        while (!started) // the argument comes through
            fxSleep(0.001);
        endNow = !runs;
        EXPECT_TRUE(runs || (fxWaitThread(thread, 100000.0) && fxWaitThread(thread, 0.0))) << "also again";
        endCalls.clear();
        fxTerminateThread(thread);
        EXPECT_TRUE(fxWaitThread(thread, 100000.0)) << "closed counts as ended";
        fxDestroyThread(thread);
        EXPECT_EQ(endCalls, runs ? "wait 0, terminate 0, close" : "wait 0, close");
    }
    EXPECT_TRUE(fxWaitThread(nullptr, 1.0));
    for (const int priority : {0, 7, -7})
        fxSetAppPriority(priority);
    EXPECT_EQ(asked, (std::vector<DWORD>{NORMAL_PRIORITY_CLASS, REALTIME_PRIORITY_CLASS,
                                         BELOW_NORMAL_PRIORITY_CLASS}));
}

TEST(Paths, EndWithTheSeparatorTheyUse) {
    const std::string tooLong(300, 'x');
    for (const auto& [path, stored] : {std::pair<std::string, std::string>{"C:/a\\b", "C:/a\\b\\"},
                                       {tooLong, tooLong.substr(0, 259) + "\\"}}) {
        fxSetTypePath(1, path.c_str());
        EXPECT_EQ(fxGetTypePath(1), stored);
    }
    const TempFolder folder;
    const fs::path start = fs::current_path();
    fxSetTypePath(1, folder.Path().c_str());
    EXPECT_TRUE(fxSetPath(1));
    fxInitPaths();
    EXPECT_EQ(fxGetTypePath(1), folder.File(""));
    EXPECT_GT(std::strlen(fxGetTypePath(2)), 1u);
    for (const std::size_t depth : {100u, 200u}) { // too deep for the buffer
        fs::create_directory(std::string(depth, 'd'));
        fs::current_path(std::string(depth, 'd'));
    }
    EXPECT_STREQ(fxGetActPath(), ".\\");
    fs::current_path(start);
}

const std::string kLine = std::string(48, '-') + "\n";

TEST(Trace, WritesEachEntryAtOnceIntoTheFirstFileUntilItIsClosed) {
    const TempFolder folder;
    fxSetTickSource([] { return 40000001u; }); // a millisecond that single precision cannot hold
    err("nobody hears %d\n", 1);
    EXPECT_FALSE(fxOpenTraces(folder.File("no/such/folder").c_str()) || fxTracesOpened());
    const std::string name = folder.Write("tamb.log", "an old trace");
    ASSERT_TRUE(fxOpenTraces(name.c_str()));
    trc("started %s\n", "well");
    err("%s", std::string(5000, 'b').c_str());
    char prefix[64];
    std::snprintf(prefix, sizeof prefix, "%08x: [40000.000] ", static_cast<unsigned>(GetCurrentThreadId()));
    std::string whole = kLine + " fxOpenTraces (filename:" + name + ")\n" + kLine + "\n" + prefix +
                        "started well\n#ERROR: " + prefix + std::string(4096, 'b');
    EXPECT_EQ(folder.Read("tamb.log"), whole);
    EXPECT_FALSE(fxOpenTraces("other.log"));
    whole += kLine + "fxOpenTraces - attempt to open another traces\n               (filename:other.log)\n" +
             kLine + "\n";
    EXPECT_EQ(folder.Read("tamb.log"), whole);
    fxCloseTraces();
    EXPECT_FALSE(fxTracesOpened());
    trc("nobody hears\n");
    EXPECT_EQ(folder.Read("tamb.log"), whole + "\n" + kLine + " end of traces\n" + kLine + "\n");
    fxSetTickSource(nullptr);
}

} // namespace
