// The whole show on a machine without memory, and with a codec that fails: it is built of what there is, goes
// through its cycle, and leaves nothing behind.
#include "image/codec.h"
#include "unit/failing_heap.h"
#include "unit/whole_show.h"

#include <bit>
#include <string_view>

// The codec keeps what it had begun with when it is made to fail; it stays loaded, to be known for that.
const void* const codec = dlopen("libIL.so.1", RTLD_NOW);
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libIL.so\n";
}

namespace {

// An entry point of the codec that gives nothing when it fails.
template <auto Entry> struct Failing;
template <class Result, class... Arguments, Result (APIENTRY* FXCodec::*Entry)(Arguments...)>
struct Failing<Entry> {
    static inline Result(APIENTRY* real)(Arguments...) = nullptr;
    static Result APIENTRY Call(Arguments... arguments) {
        return Refuses(true) ? Result() : real(arguments...);
    }
    static FARPROC Before(FARPROC function) {
        real = std::bit_cast<decltype(real)>(function);
        return std::bit_cast<FARPROC>(&Call);
    }
};

// The codec is bound by it.
extern "C" FARPROC WINAPI __real_GetProcAddress(HMODULE module, const char* name);
extern "C" FARPROC WINAPI __wrap_GetProcAddress(HMODULE module, const char* name) {
#define FAILING(function) std::pair(std::string_view(#function), &Failing<&FXCodec::function>::Before)
    constexpr std::pair<std::string_view, FARPROC (*)(FARPROC)> kAll[] = {
        FAILING(ilInit),          FAILING(ilShutDown),     FAILING(ilEnable),          FAILING(ilDisable),
        FAILING(ilSetInteger),    FAILING(ilGenImages),    FAILING(ilDeleteImages),    FAILING(ilBindImage),
        FAILING(ilGetInteger),    FAILING(ilLoadImage),    FAILING(ilLoadL),           FAILING(ilSaveImage),
        FAILING(ilCloneCurImage), FAILING(ilConvertImage), FAILING(ilCopyPixels),      FAILING(ilSetPixels),
        FAILING(ilGetData),       FAILING(iluScale),       FAILING(iluImageParameter), FAILING(ilTexImage)};
#undef FAILING
    const FARPROC real = __real_GetProcAddress(module, name);
    const auto* failing = std::ranges::find(kAll, name, [](const auto& each) { return each.first; });
    return failing != std::end(kAll) ? failing->second(real) : real;
}

class FailingShow : public testing::Test {
protected:
    FailingShow() : whole_(folder_) {
        folder_.Write("tamb.dat", PackageOf(SmallShow(folder_)));
        show::fire_num = 32;
        testing::internal::CaptureStderr(); // what is missing is said again and again
    }
    ~FailingShow() override { testing::internal::GetCapturedStderr(); }

    // A whole cycle at each failure. Also without anything to show, each stage comes, and the first one
    // again.
    void PlayACycleForEach() {
        int stages = 0, textures = 0;
        bool ended = false;
        const auto play = [&] {
            constexpr double kStart = 100, kLongest = 60;
            stages = textures = 0;
            ended = false;
            whole_.Build(kStart);
            textures = GLRecorder::LiveTextures();
            for (double time = kStart; time < kStart + kLongest && !ended; time += 0.5) {
                const bool wasReturning = show::stage == show::kReturning;
                whole_.Draw(time);
                stages |= 1 << show::stage;
                ended = wasReturning && show::stage == show::kDissolving;
            }
            whole_.TakeDown();
        };
        FailEachAllocation(play, [&](bool isAllThere) {
            constexpr int kTextures = 9; // all pictures but the preview's
            EXPECT_TRUE(ended && stages == 31) << stages;
            EXPECT_EQ(GLRecorder::LiveTextures(), 0);
            EXPECT_TRUE(isAllThere ? textures == kTextures : textures <= kTextures) << textures;
        });
    }

    const TempFolder folder_;
    WholeShow whole_;
};

TEST_F(FailingShow, GoesThroughItsCycleWithoutTheMemoryThatIsRefused) {
    PlayACycleForEach();
}

TEST_F(FailingShow, GoesThroughItsCycleWhicheverCallOfTheCodecFails) {
    codecFails = true;
    PlayACycleForEach();
    codecFails = false;
}

} // namespace
