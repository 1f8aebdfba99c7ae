// What people see, stage by stage, beside pictures that somebody looked at and found right: references/.
//
// After a change that is meant to be seen, run
//     TAMBLOR_UPDATE_REFERENCES=1 build/release/tests/picture_test
// look at every picture that changed, and commit them with the change. A failing test leaves the frame it
// drew and the one it expected in tests/pictures of the build folder, and names them.
#include "picture/comparison.h"
#include "picture/own_heap.h"
#include "picture/test_show.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <thread>

namespace {

constexpr double kLongest = 120;              // seconds; one cycle is half of that
constexpr std::ptrdiff_t kRoundingMay = 1024; // bytes
constexpr std::size_t kDriverMay = 1 << 20;   // keep of its buffers, in bytes

// Plays frame by frame and knows when the stage began.
class Play {
public:
    explicit Play(const ShowDriver::Settings& settings) : step_(settings.step) {
        std::string error;
        EXPECT_TRUE(driver_.Open(settings, &error)) << error;
    }

    void RunToStage(int stage) {
        if (driver_.Stage() == stage)
            return;
        for (const double limit = now_ + kLongest; driver_.Stage() != stage && now_ < limit; now_ += step_)
            driver_.RunTo(now_ + step_);
        EXPECT_EQ(driver_.Stage(), stage);
        stageStart_ = now_;
    }

    // The frame so many seconds after the first one of a stage.
    Picture FrameOf(int stage, double seconds) {
        RunToStage(stage);
        now_ = stageStart_ + seconds;
        Picture frame = NextFrame();
        EXPECT_EQ(driver_.Stage(), stage) << "is over";
        return frame;
    }

    Picture NextFrame() {
        Picture frame = driver_.FrameAt(now_);
        now_ += step_;
        return frame;
    }

    // The frame with which the stage ends.
    Picture LastFrame() {
        const int stage = driver_.Stage();
        Picture frame;
        while (driver_.Stage() == stage && now_ < kLongest)
            frame = NextFrame();
        return frame;
    }

    // Next to nothing moves from the last frame to this one, so that a jump is the show's own.
    Picture FrameAtOnce() { return driver_.FrameAt(now_ - step_ + 0.001); }

private:
    ShowDriver driver_;
    double step_;
    double now_ = 0; // of the next frame
    double stageStart_ = 0;
};

class Pictures : public testing::Test {
protected:
    void TearDown() override {
        if (UpdatingReferences())
            GTEST_SKIP() << "the references are new; nothing was compared with them";
    }
};

// Dim stars and a bright disc, as the show has them; change(x, y, pixel) gives every pixel.
template <class Change> Picture Sky(Change change) {
    Picture sky{160, 96, {}};
    for (int y = 0; y < sky.height; ++y)
        for (int x = 0; x < sky.width; ++x) {
            const bool disc = (x - 40) * (x - 40) + (y - 60) * (y - 60) < 900;
            const auto star = static_cast<std::uint32_t>((x * 7 + y * 13) % 16) * 0x010101u;
            sky.pixels.push_back(change(x, y, disc ? 0xFFE0A040u : 0xFF101828u + star));
        }
    return sky;
}

} // namespace

TEST(Comparison, LetsRoundingPassAndNothingThatIsSeen) {
    const Picture sky = Sky([](int, int, std::uint32_t p) { return p; });
    const auto expect = [&](const char* what, bool alike, auto change) {
        EXPECT_EQ(Alike(Sky(change), sky), alike) << what;
    };
    expect("every other pixel one off", true,
           [](int x, int, std::uint32_t p) { return x % 2 != 0 ? p + 0x010101u : p; });
    expect("a few pixels of an edge", true,
           [](int x, int y, std::uint32_t p) { return x % 16 == 0 && y % 16 == 0 ? p ^ 0x00808080u : p; });
    expect("red and blue exchanged", false,
           [](int, int, std::uint32_t p) { return (p & 0xFF00FF00u) | (p & 255u) << 16 | (p >> 16 & 255u); });
    expect("a small thing missing", false, [](int x, int y, std::uint32_t p) {
        return x >= 36 && x < 48 && y >= 52 && y < 64 ? 0xFF101828u : p;
    });
    expect("a faint veil missing", false, [](int, int, std::uint32_t p) { return p + 0x020202u; });
}

TEST_F(Pictures, OfAWholeCycle) {
    const struct {
        const char* name;
        int stage;
        double after; // seconds from the stage's first frame
    } moments[] = {
        {"desktop-half-faded", 0, 1}, {"burn-early", 1, 5},
        {"burn-late", 1, 9},          {"pause", 2, 0.4},
        {"pause-with-cube", 2, 12},   {"morph-embers", 3, 2.5},
        {"morph-bird", 3, 9},         {"morph-unfolding", 3, 12},
        {"desktop-returning", 4, 1},
    };
    const ShowDriver::Settings settings = TestShow();
    Play play(settings);
    EXPECT_EQ(DiffersFrom(settings.desktop, "desktop", play.NextFrame()), ""); // nobody sees the show begin
    for (const auto& moment : moments) {
        SCOPED_TRACE(moment.name);
        EXPECT_EQ(DiffersFromReference(moment.name, play.FrameOf(moment.stage, moment.after)), "");
    }

    // The morph ends as the desktop, and the desktop that burns next takes over from it unseen.
    const Picture last = play.LastFrame();
    EXPECT_EQ(DiffersFrom(last, "next-cycle", play.FrameAtOnce()), "");
    EXPECT_EQ(DiffersFromReference("burn-again", play.FrameOf(1, 5)), "");
}

TEST_F(Pictures, OfThePreview) {
    ShowDriver::Settings settings = TestShow();
    settings.preview = true;
    Play play(settings);
    Picture frame;
    std::thread([&] { frame = play.NextFrame(); }).join(); // as in the saver: not on the thread that built it
    EXPECT_EQ(DiffersFromReference("preview", frame), "");
}

// Mesa leaves out what is younger than the year; multitexture came in 1998.
TEST_F(Pictures, OfAShowOnPoorOpenGl) {
    ASSERT_EQ(setenv("MESA_EXTENSION_MAX_YEAR", "1997", 1), 0);
    Play play(TestShow());
    unsetenv("MESA_EXTENSION_MAX_YEAR");
    EXPECT_EQ(DiffersFromReference("error", play.FrameOf(0, 1)), "");
}

// The show goes round for days.
TEST(Cycles, LeaveTheHeapAsItWas) {
    ShowDriver::Settings settings = TestShow();
    settings.step = 0.2;
    Play play(settings);
    std::ptrdiff_t own[3] = {}, blocks[3] = {};
    std::size_t process[3] = {}; // bytes in use
    for (int cycle = 0; cycle < 3; ++cycle) {
        play.RunToStage(1);
        play.RunToStage(0);
        own[cycle] = ownHeapInUse;
        blocks[cycle] = ownBlocksInUse;
        const struct mallinfo2 heap = mallinfo2();
        process[cycle] = heap.uordblks + heap.hblkhd;
    }
    EXPECT_GT(own[0], 1 << 20) << "our blocks are not counted";
    EXPECT_EQ(blocks[2], blocks[0]);
    EXPECT_LE(own[2], own[0] + kRoundingMay);
    // Nothing, and passes, under a sanitizer with a heap of its own.
    EXPECT_LE(process[2], process[0] + kDriverMay);
}
