#include "base/file_handle.h"
#include "scene/phaser.h"
#include "unit/temp_folder.h"

#include <cmath>

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
    ExpectRun(2, "lp", 0, {{0.5, 0.25f, "r"}, {2, 1}, {2.5, 0.75f}, {4.5, 0.25f}, {6.5, 0.75f}});
    // The second run starts where the first one ended, unless that is more than a run ago.
    ExpectRun(1, "l", 10, {{10.5, 0.5f, "r"}, {11.25, 0.25f}, {12, 0}, {13.75, 0.75f}});
    ExpectRun(90, "l", 0, {{1000, 0}, {1045, 0.5f}});
    ExpectRun(90, "l", 0, {{150, 60 / 90.0f}});
    ExpectRun(0, "l", 5, {{5, 1}, {5, 1}, {99, 1}}); // without a length: over at once
    FXPhaser drifting;
    for (int i = 1; i < 100000; ++i) // frames that hardly ever meet the end of a run
        drifting.OnRender(nullptr, i * 0.0703125);
    EXPECT_EQ(drifting.start, std::floor(99999 * 0.0703125));
}

TEST(Phaser, IsARecordOf18Bytes) {
    const TempFolder folder;
    for (std::size_t flag = 12; flag < 18; ++flag) {
        std::string record("\0\0\x80\x3E\0\0\0\0\0\0\x29\x40\0\0\0\0\0\0", 18); // phase 0.25, 12.5 seconds
        record[12] = 2;                                                         // is not true
        record[flag] = 1;
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
