#include "platform/clock.h"
#include "platform/threads.h"
#include "platform/trace.h"
#include "unit/temp_folder.h"
#include "win32/win32.h"

#include <cstdio>
#include <sstream>

namespace {

std::string shown; // in the last message box

} // namespace

int MessageBoxA(HWND owner, const char* text, const char* title, UINT type) {
    shown = std::string(title) + "|" + text;
    return owner == nullptr && type == MB_ICONHAND ? 42 : 0;
}

namespace {

const std::string kLine = std::string(48, '-') + "\n";

class Trace : public testing::Test {
protected:
    Trace() {
        fxSetTickSource([] { return 40000001u; }); // a millisecond that single precision cannot hold
    }
    ~Trace() override {
        fxCloseTraces();
        fxSetTickSource(nullptr);
    }
    std::string Log() const { return folder_.Read("tamb.log"); }

    TempFolder folder_;
    std::string name_ = folder_.File("tamb.log");
    std::string banner_ = kLine + " fxOpenTraces (filename:" + name_ + ")\n" + kLine + "\n";
};

TEST_F(Trace, WritesEachEntryAtOnceIntoTheFirstFileUntilItIsClosed) {
    err("nobody hears %d\n", 1);
    EXPECT_FALSE(fxOpenTraces(folder_.File("no/such/folder").c_str()));
    EXPECT_FALSE(fxTracesOpened());
    folder_.Write("tamb.log", "an old trace");
    ASSERT_TRUE(fxOpenTraces(name_.c_str()));
    EXPECT_TRUE(fxTracesOpened());
    trc("started %s\n", "well");
    err("no %d\n", 7);
    char prefix[64];
    std::snprintf(prefix, sizeof prefix, "%08x: [40000.000] ", static_cast<unsigned>(GetCurrentThreadId()));
    std::string whole = banner_ + prefix + "started well\n#ERROR: " + prefix + "no 7\n";
    EXPECT_EQ(Log(), whole);
    EXPECT_FALSE(fxOpenTraces("other.log"));
    whole += kLine + "fxOpenTraces - attempt to open another traces\n               (filename:other.log)\n" +
             kLine + "\n";
    trc1("%s", std::string(4096, 'a').c_str());
    trc1("%s", std::string(5000, 'b').c_str());
    whole += std::string(4096, 'a') + std::string(4096, 'b');
    EXPECT_EQ(Log(), whole);
    fxCloseTraces();
    trc("nobody hears\n");
    EXPECT_EQ(Log(), whole + "\n" + kLine + " end of traces\n" + kLine + "\n");
}

TEST_F(Trace, ShowsAMessageAlsoWhileItIsClosed) {
    EXPECT_EQ(errmsg("lost %d", 3), 42);
    EXPECT_EQ(shown, "Error|lost 3");
    ASSERT_TRUE(fxOpenTraces(name_.c_str()));
    errmsg("%s", std::string(5000, '%').c_str());
    EXPECT_EQ(shown, "Error|" + std::string(4096, '%'));
    EXPECT_TRUE(Log().ends_with("] " + std::string(4096, '%')) && Log().starts_with(banner_ + "#ERROR: "));
}

TEST_F(Trace, KeepsTheEntriesOfTwoThreadsApartAlsoWhileItCloses) {
    ASSERT_TRUE(fxOpenTraces(name_.c_str()));
    const auto work = [](void*) {
        for (int i = 0; i < 2000; ++i)
            trc("loop %d ends\n", i);
    };
    FXThread* thread = fxCreateThread(work, nullptr);
    for (int i = 0; i < 200; ++i)
        err("main %d ends\n", i);
    fxCloseTraces();
    EXPECT_TRUE(fxWaitThread(thread, 60.0));
    fxDestroyThread(thread);

    std::istringstream log(Log().substr(banner_.size()));
    int mine = 0;
    for (std::string line; std::getline(log, line) && !line.empty();) {
        const bool isMine = line.starts_with("#ERROR: ");
        mine += isMine;
        char who[8] = "", rest[8] = "";
        std::sscanf(line.c_str() + (isMine ? 8 : 0), "%*8[0-9a-f]: [40000.000] %4s %*d %7s", who, rest);
        EXPECT_STREQ(who, isMine ? "main" : "loop") << line;
        EXPECT_STREQ(rest, "ends") << line;
    }
    EXPECT_EQ(mine, 200);
}

} // namespace
