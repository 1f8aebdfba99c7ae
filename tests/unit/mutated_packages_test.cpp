// The whole show of damaged packages: it is built, drawn and taken down, in bounded time and memory.
//
// TAMBLOR_MUTATION=17 does that one alone: a number means the same damage on every machine.
#include "image/canvas.h"
#include "image/codec.h"
#include "unit/how_often.h"
#include "unit/mutated_package.h"
#include "unit/whole_show.h"

#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

// The codec keeps a little of each picture that it refuses; it stays loaded, to be known for that.
const void* const codec = dlopen("libIL.so.1", RTLD_NOW);
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libIL.so\n";
}

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

// What a show may take of a processor and of the memory, however damaged its package is.
constexpr double kMostForAFrame = 0.05 * (kIsSanitized ? 20 : 1); // seconds
constexpr double kMostForTheStart = 5 * (kIsSanitized ? 20 : 1);
constexpr long kMostMiB = 1024; // sanitizers have their own
constexpr unsigned kHangSeconds = 300;

// Both threads'.
double ProcessorSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// The most that was resident since the last call.
long PeakMiB() {
    std::ifstream status("/proc/self/status");
    std::string word;
    long kilobytes = 0;
    while (status >> word)
        if (word == "VmHWM:")
            status >> kilobytes;
    std::ofstream("/proc/self/clear_refs") << 5;
    return kilobytes / 1024;
}

// The default show's models and morph, with a corner of each picture.
std::vector<TestEntry> WithSmallPictures(const std::string& packageFile, const TempFolder& folder) {
    constexpr int kSide = 24;
    std::vector<TestEntry> entries = EntriesOf(packageFile);
    FXPackage package;
    EXPECT_TRUE(package.Load(packageFile.c_str()) && fxLoadDevil());
    for (TestEntry& entry : entries) {
        FXCanvas canvas;
        if (entry.type == kRaw || !canvas.CreateFromPictCN(&package, entry.id))
            continue;
        canvas.usedWidth = canvas.usedHeight = kSide;
        const auto* kind = std::ranges::find(kPictureEndings, entry.type, &FXPictureEnding::type);
        const std::string name = std::string("picture.") + kind->ending;
        EXPECT_TRUE(canvas.SaveToPict(folder.File(name).c_str()));
        entry.bytes = folder.Read(name);
    }
    fxUnloadDevil();
    return entries;
}

// The show of a file, with 30 frames from all stages that it comes to.
struct Played {
    double start = 0, frame = 0; // seconds; the longest frame
    int stages = 0;              // bits
};
Played Play(const TempFolder& folder, const std::string& file) {
    folder.Write("tamb.dat", file);
    Played played;
    WholeShow whole(folder);
    double time = 100, before = ProcessorSeconds();
    whole.Build(time);
    played.start = ProcessorSeconds() - before;
    for (int frame = 0, inMorph = 0; frame < 30; ++frame) {
        constexpr double kSteps[] = {0.75, 4, 8, 1, 0.75}; // seconds, in each stage
        time += kSteps[show::stage];
        if (show::stage == show::kRebuilding &&
            ++inMorph == 6) // it has more key frames than there are frames
            show::reopen.frame = std::max(show::reopen.frameTimes.count - 4, 0);
        before = ProcessorSeconds();
        whole.Draw(time);
        played.frame = std::max(played.frame, ProcessorSeconds() - before);
        played.stages |= 1 << show::stage;
    }
    whole.TakeDown();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0);
    return played;
}

TEST(MutatedPackages, AreShownWithinTheirBounds) {
    const TempFolder folder;
    const std::string shown = TAMBLOR_DATA_DIR "/tamb.dat";
    const std::vector<TestEntry> kinds[] = {WithSmallPictures(shown, folder), SmallShow(folder),
                                            EntriesOf(shown)};
    for (const std::vector<TestEntry>& kind : kinds)
        EXPECT_EQ(Play(folder, PackageOf(kind)).stages, 31) << "undamaged, it goes through all stages";
    // What is said of each would be half a gigabyte.
    const int errors = dup(STDERR_FILENO);
    if (!kIsSanitized) {
        EXPECT_GE(dup2(open("/dev/null", O_WRONLY), STDERR_FILENO), 0);
    }

    const char* one = std::getenv("TAMBLOR_MUTATION");
    const unsigned first = one != nullptr ? static_cast<unsigned>(std::atoi(one)) : 1;
    const unsigned count = one != nullptr ? 1 : static_cast<unsigned>(Times(300, 10000));
    Played most;
    long mostMiB = 0;
    PeakMiB(); // of those before
    for (unsigned number = first; number < first + count && !testing::Test::HasFailure(); ++number) {
        SCOPED_TRACE(number);
        std::printf("\rmutation %u ", number); // known also when it ends the process
        std::fflush(stdout);
        alarm(kHangSeconds);
        // Whole pictures take most of a second: few of them.
        const std::size_t kind = number % 32 == 0 ? 2 : number % 4 == 1 ? 1 : 0;
        const Played played = Play(folder, Mutation(number).Of(kinds[kind]));
        const long peak = PeakMiB();
        most.start = std::max(most.start, played.start);
        most.frame = std::max(most.frame, played.frame);
        mostMiB = std::max(mostMiB, peak);
        EXPECT_LE(played.start, kMostForTheStart);
        EXPECT_LE(played.frame, kMostForAFrame);
        EXPECT_TRUE(kIsSanitized || peak <= kMostMiB) << peak << " MiB";
    }
    alarm(0);
    dup2(errors, STDERR_FILENO);
    close(errors);
    std::printf("%u packages; the most: %.3f s for the start, %.1f ms for a frame, %ld MiB\n", count,
                most.start, most.frame * 1000, mostMiB);
}

} // namespace
