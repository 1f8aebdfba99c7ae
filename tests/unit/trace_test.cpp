#include "platform/clock.h"
#include "platform/threads.h"
#include "platform/trace.h"
#include "unit/temp_folder.h"
#include "win32/win32.h"

#include <cstdio>
#include <sstream>

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
    trc("started %s\n", "well");
    err("%s", std::string(5000, 'b').c_str());
    char prefix[64];
    std::snprintf(prefix, sizeof prefix, "%08x: [40000.000] ", static_cast<unsigned>(GetCurrentThreadId()));
    std::string whole = banner_ + prefix + "started well\n#ERROR: " + prefix + std::string(4096, 'b');
    EXPECT_EQ(folder_.Read("tamb.log"), whole);
    EXPECT_FALSE(fxOpenTraces("other.log"));
    whole += kLine + "fxOpenTraces - attempt to open another traces\n               (filename:other.log)\n" +
             kLine + "\n";
    EXPECT_EQ(folder_.Read("tamb.log"), whole);
    fxCloseTraces();
    trc("nobody hears\n");
    EXPECT_EQ(folder_.Read("tamb.log"), whole + "\n" + kLine + " end of traces\n" + kLine + "\n");
}

TEST_F(Trace, KeepsTheEntriesOfTwoThreadsApartAlsoWhileItCloses) {
    ASSERT_TRUE(fxOpenTraces(name_.c_str()));
    const auto work = [](void*) {
        for (int i = 0; i < 2000; ++i)
            trc("loop ends\n");
    };
    FXThread* thread = fxCreateThread(work, nullptr);
    for (int i = 0; i < 200; ++i)
        err("main ends\n");
    fxCloseTraces();
    EXPECT_TRUE(fxWaitThread(thread, 60.0));
    fxDestroyThread(thread);

    std::istringstream log(folder_.Read("tamb.log").substr(banner_.size()));
    int mine = 0;
    for (std::string line; std::getline(log, line) && !line.empty();) {
        const bool isMine = line.starts_with("#ERROR: ");
        mine += isMine;
        EXPECT_EQ(line.substr(isMine ? 16 : 8),
                  isMine ? ": [40000.000] main ends" : ": [40000.000] loop ends");
    }
    EXPECT_EQ(mine, 200);
}

} // namespace
