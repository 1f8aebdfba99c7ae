#include "base/file_handle.h"
#include "package/package_data.h"
#include "scene/pausing_phaser.h"
#include "unit/temp_folder.h"

#include <cmath>
#include <cstring>

namespace {

// Time, phase, and what else is true: r: is running, w: has ended a run.
struct Step {
    double time;
    float phase;
    std::string state = "rw";
};

void ExpectRun(double duration, const std::string& flags, double start, const std::vector<Step>& steps) {
    FXPhaser phaser;
    phaser.SetPlain(duration, flags.find('l') != std::string::npos);
    phaser.pingPong = flags.find('p') != std::string::npos;
    phaser.Restart(start);
    phaser.reverse = flags == "r";
    for (const Step& step : steps) {
        SCOPED_TRACE(testing::Message() << duration << " " << flags << " at " << step.time);
        phaser.OnRender(nullptr, step.time);
        EXPECT_FLOAT_EQ(phaser.phase, step.phase);
        EXPECT_EQ(std::string(phaser.running ? "r" : "") + (phaser.wrapped ? "w" : ""), step.state);
    }
    phaser.Restart(500);
    EXPECT_TRUE(phaser.phase == 0 && phaser.running && !phaser.wrapped && !phaser.reverse);
}

TEST(Phaser, RunsOnceLoopsOrGoesThereAndBack) {
    ExpectRun(2, "", 10, {{9, 0, "r"}, {11.5, 0.75f, "r"}, {12, 1, "w"}, {99, 1, "w"}});
    ExpectRun(4, "r", 0, {{1, 0.75f, "r"}, {3, 0.25f, "r"}, {4, 0, "w"}, {9, 0, "w"}});
    ExpectRun(2, "lp", 0, {{0.5, 0.25f, "r"}, {2, 1}, {2.5, 0.75f}, {4.5, 0.25f}, {6.5, 0.75f}});
    // The second run starts where the first one ended, unless that is more than a run ago.
    ExpectRun(1, "l", 10, {{10.5, 0.5f, "r"}, {11.25, 0.25f}, {12, 0}, {13.75, 0.75f}});
    ExpectRun(90, "l", 0, {{1000, 0}, {1045, 0.5f}});
    ExpectRun(90, "l", 0, {{150, 60 / 90.0f}});
    ExpectRun(1, "l", 0, {{2, 1}, {2.25, 0.25f}});
    // Without a length, or with less: over at once.
    ExpectRun(0, "", 5, {{5, 1, "w"}, {6, 1, "w"}});
    ExpectRun(0, "l", 5, {{5, 1}, {5, 1}, {99, 1}});
    ExpectRun(-1, "l", 5, {{5, 1}, {6, 1}});
}

TEST(Phaser, PausesBetweenRunsThereAndBack) {
    for (const bool pauses : {false, true}) {
        FXPhaser1 phaser;
        phaser.SetPlain(1, false);
        phaser.pingPong = true;
        phaser.autoRestart = pauses;
        phaser.pause = 2;
        phaser.Restart(10);
        const auto at = [&](double time) {
            static_cast<FXPhaser&>(phaser).OnRender(nullptr, time);
            return phaser.phase;
        };
        EXPECT_EQ(at(10.5), 0.5f);
        EXPECT_EQ(at(11.75), 0.25f);
        EXPECT_EQ(at(12), 0.0f);
        EXPECT_EQ(at(13.75), pauses ? 0.0f : 0.25f);
        EXPECT_EQ(at(14), 0.0f);
        EXPECT_EQ(at(14.5), 0.5f);
        EXPECT_EQ(at(15.5), 0.5f);
        EXPECT_EQ(at(16.25), pauses ? 0 : 0.25f);
        EXPECT_EQ(at(17.75), pauses ? 0 : 0.25f);
        EXPECT_EQ(at(18.25), pauses ? 0 : 0.25f);
        EXPECT_EQ(at(18.75), pauses ? 0.5f : 0.75f);
    }
}

TEST(Phaser, LoopsDoNotDrift) {
    FXPhaser phaser;
    for (int i = 1; i < 100000; ++i) // frames that hardly ever meet the end of a run
        phaser.OnRender(nullptr, i * 0.0703125);
    EXPECT_EQ(phaser.start, std::floor(99999 * 0.0703125));
}

TEST(Phaser, IsShaped) {
    const auto expect = [](bool FXPhaser::*shape, float quarter, float half, float most) {
        FXPhaser phaser;
        phaser.*shape = true;
        for (const auto& [time, phase] :
             {std::pair{0.0, 0.0f}, {0.25, quarter}, {0.5, half}, {0.9375, most}}) {
            phaser.OnRender(nullptr, time);
            EXPECT_NEAR(phaser.phase, phase, 1e-6) << most << " at " << time;
        }
    };
    expect(&FXPhaser::smooth, 0.15625f, 0.5f, 0.9887695f);
    expect(&FXPhaser::smoothHalf, 0.203125f, 0.5f, 0.9631348f);
    expect(&FXPhaser::cubicFirst, 0.015625f, 0.125f, 0.8239746f);
    expect(&FXPhaser::steepStart, 0.3676663f - std::pow(0.67f, 12.0f), 0.5f, 0.9375f);
    FXPhaser back; // shaped first, then turned
    back.smooth = back.pingPong = true;
    back.OnRender(nullptr, 1.25);
    EXPECT_EQ(back.phase, 0.84375f);
    FXPhaser first;
    first.cubicFirst = true;
    first.nextDuration = 4;
    for (const double time : {1, 5})
        first.OnRender(nullptr, time);
    EXPECT_TRUE(!first.cubicFirst && first.duration == 4 && first.phase == 0.25f);
}

TEST(Phaser, IsARecordOf18Bytes) {
    const TempFolder folder;
    const float phase = 0.25f;
    const double duration = 12.5;
    std::string bytes(18, '\0');
    std::memcpy(bytes.data(), &phase, sizeof phase);
    std::memcpy(bytes.data() + 4, &duration, sizeof duration);
    for (std::size_t flag = 12; flag < 18; ++flag) {
        std::string record = bytes;
        record[flag] = 1;
        record[12] = flag == 12 ? 1 : 2; // 2 is not true
        FXPhaser loaded;
        EXPECT_TRUE(loaded.Load(fxOpenFile(folder.Write("phaser", record).c_str(), "rb").get()));
        EXPECT_TRUE(loaded.phase == 0.25f && loaded.duration == 12.5 && loaded.smooth == (flag == 16));
        EXPECT_FALSE(loaded.Load(fxOpenFile(folder.Write("phaser", record.substr(1)).c_str(), "rb").get()));
        EXPECT_TRUE(loaded.Save(fxOpenFile(folder.File("phaser").c_str(), "wb").get()));
        record[12] &= 1;
        EXPECT_EQ(folder.Read("phaser"), record);
    }
}

} // namespace
