// The whole show on a machine without memory, and with a codec that fails: it is built of what there is, goes
// through its cycle, and leaves nothing behind.
#include "image/codec.h"
#include "unit/failing_codec.h"
#include "unit/failing_heap.h"
#include "unit/small_show.h"
#include "unit/whole_show.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

// The codec keeps what it had begun with when it is made to fail; it stays loaded, to be known for that.
const void* const codec = dlopen("libIL.so.1", RTLD_NOW);
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libIL.so\n";
}

namespace {

class FailingShow : public testing::Test {
protected:
    FailingShow() : whole_(folder_) {
        folder_.Write("tamb.dat", PackageOf(SmallShow(folder_)));
        show::fire_num = 32;
        // What is missing is said again and again.
        if (dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO) < 0)
            ADD_FAILURE();
    }
    ~FailingShow() override {
        show::fire_num = 1024;
        dup2(errors_, STDERR_FILENO);
        close(errors_);
    }

    // A whole cycle. Also without anything to show, each stage comes, and the first one again.
    void PlayACycle() {
        constexpr double kStart = 100, kLongest = 60;
        stages_ = 0;
        cycleEnded_ = false;
        textures_ = 0;
        whole_.Build(kStart);
        textures_ = GLRecorder::LiveTextures();
        for (double time = kStart; time < kStart + kLongest && !cycleEnded_; time += 0.5) {
            const bool wasReturning = show::stage == show::kReturning;
            whole_.Draw(time);
            stages_ |= 1 << show::stage;
            cycleEnded_ = wasReturning && show::stage == show::kDissolving;
        }
        whole_.TakeDown();
    }
    void ExpectACycle(bool isAllThere) {
        EXPECT_TRUE(cycleEnded_ && stages_ == 31) << stages_;
        EXPECT_EQ(GLRecorder::LiveTextures(), 0);
        EXPECT_TRUE(!isAllThere || textures_ == kTextures) << textures_;
        EXPECT_LE(textures_, kTextures);
    }

    static constexpr int kTextures = 9; // all pictures but the preview's
    const TempFolder folder_;
    WholeShow whole_;
    const int errors_ = dup(STDERR_FILENO);
    int stages_ = 0, textures_ = 0;
    bool cycleEnded_ = false;
};

TEST_F(FailingShow, GoesThroughItsCycleWithoutTheMemoryThatIsRefused) {
    FailEachAllocation([this] { PlayACycle(); }, [this](bool whole) { ExpectACycle(whole); });
}

TEST_F(FailingShow, GoesThroughItsCycleWhicheverCallOfTheCodecFails) {
    fxSetDevilNames("failing_codec", "failing_codec");
    // Kept loaded, and with it its numbers.
    void* const module = dlopen("libfailing_codec.so", RTLD_NOW);
    ASSERT_NE(module, nullptr) << dlerror();
    FailingCodecState& codecs = *static_cast<FailingCodecState*>(dlsym(module, "failingCodec"));
    for (const int alsoAllLater : {0, 1})
        for (int n = 0; n == 0 || (codecs.failed != nullptr && !HasFailure()); ++n) {
            codecs = {n, alsoAllLater, nullptr};
            PlayACycle();
            SCOPED_TRACE(testing::Message() << "call " << n << ", of " << codecs.failed);
            ExpectACycle(codecs.failed == nullptr);
        }
    fxSetDevilNames(nullptr, nullptr);
}

} // namespace
