// What people see, stage by stage, beside pictures that somebody looked at and found right: references/.
//
// After a change that is meant to be seen, run
//     TAMBLOR_UPDATE_REFERENCES=1 build/release/tests/picture_test
// look at every picture that changed, and commit them with the change. A failing test leaves the frame it
// drew and the one it expected in tests/pictures of the build folder, and names them.
#include "film/show_driver.h"
#include "picture/comparison.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace {

// Four colours, darker to the right and down, with a line every twenty pixels: turned, mirrored or stretched
// it is another picture.
Picture TestDesktop(int width, int height) {
    Picture picture{width, height, {}};
    const std::uint32_t corners[2][2] = {{0xF04030, 0x30C050}, {0x4060F0, 0xE0D040}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint32_t colour = corners[2 * y / height][2 * x / width];
            const bool line = x % 20 == 0 || y % 20 == 0;
            const auto light = static_cast<std::uint32_t>(255 - 100 * x / width - 100 * y / height);
            std::uint32_t pixel = 0xFF000000u;
            for (const int shift : {0, 8, 16})
                pixel |= (line ? 0xE8u : (colour >> shift & 255u) * light / 255u) << shift;
            picture.pixels.push_back(pixel);
        }
    return picture;
}

// The show small, over that desktop.
ShowDriver::Settings TestShow() {
    setenv("LP_NUM_THREADS", "0", 1); // Mesa draws on our thread, and takes the same memory every time
    ShowDriver::Settings settings;
    settings.width = 320;
    settings.height = 180;
    settings.step = 0.1; // seconds
    settings.dataFolder = TAMBLOR_DATA_DIR;
    settings.desktop = TestDesktop(settings.width, settings.height);
    return settings;
}

constexpr double kLongest = 120; // seconds; one cycle is half of that

// Plays frame by frame and knows when the stage began.
class Play {
public:
    explicit Play(const ShowDriver::Settings& settings) : step_(settings.step) {
        std::string error;
        EXPECT_TRUE(driver_.Open(settings, &error)) << error;
    }

    // The frame so many seconds after the first one of a stage.
    Picture FrameOf(int stage, double seconds) {
        for (const double limit = now_ + kLongest; driver_.Stage() != stage && now_ < limit; now_ += step_) {
            driver_.RunTo(now_ + step_);
            stageStart_ = now_ + step_;
        }
        now_ = stageStart_ + seconds;
        Picture frame = NextFrame();
        EXPECT_EQ(driver_.Stage(), stage) << "is over, or never came";
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

} // namespace

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
