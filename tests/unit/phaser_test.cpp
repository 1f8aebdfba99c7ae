#include "base/file_handle.h"
#include "package/package_data.h"
#include "scene/pausing_phaser.h"
#include "unit/temp_folder.h"

#include <cmath>
#include <cstring>

namespace {

TEST(Phaser, RunsAsItsFlagsSay) {
    struct Step {
        double time;
        float phase;
        bool running = true;
        bool wrapped = true;
    };
    const struct {
        double duration;
        std::string flags; // loop, there and back, reversed
        double start;
        std::vector<Step> steps;
    } cases[] = {
        {2, "", 10, {{9, 0, true, false}, {11.5, 0.75f, true, false}, {12, 1, false}, {99, 1, false}}},
        {4, "r", 0, {{1, 0.75f, true, false}, {3, 0.25f, true, false}, {4, 0, false}, {9, 0, false}}},
        // The second run starts where the first one ended,
        {1, "l", 10, {{10.5, 0.5f, true, false}, {11.25, 0.25f}, {12, 0}, {13.75, 0.75f}}},
        // unless that is more than a run ago.
        {90, "l", 0, {{1000, 0}, {1045, 0.5f}}},
        {90, "l", 0, {{150, 60 / 90.0f}}},
        {1, "l", 0, {{2, 1}, {2.25, 0.25f}}},
        {2, "lt", 0, {{0.5, 0.25f, true, false}, {2, 1}, {2.5, 0.75f}, {4.5, 0.25f}, {6.5, 0.75f}}},
        // Without a length, or with less: over at once.
        {0, "", 5, {{5, 1, false}, {6, 1, false}}},
        {0, "l", 5, {{5, 1}, {5, 1}, {99, 1}}},
        {-1, "", 5, {{5, 1, false}}},
        {-1, "l", 5, {{5, 1}, {6, 1}}},
    };
    for (const auto& c : cases) {
        FXPhaser phaser;
        phaser.SetPlain(c.duration, c.flags.find('l') != std::string::npos);
        phaser.pingPong = c.flags.find('t') != std::string::npos;
        phaser.Restart(c.start);
        phaser.reverse = c.flags == "r";
        for (const Step& step : c.steps) {
            SCOPED_TRACE(testing::Message() << c.duration << " " << c.flags << " at " << step.time);
            phaser.OnRender(nullptr, step.time);
            EXPECT_FLOAT_EQ(phaser.phase, step.phase);
            EXPECT_TRUE(phaser.running == step.running && phaser.wrapped == step.wrapped);
        }
        phaser.Restart(500);
        EXPECT_TRUE(phaser.phase == 0 && phaser.running && !phaser.wrapped && !phaser.reverse);
    }
}

TEST(Phaser, PausesBetweenRunsThereAndBack) {
    const struct {
        bool autoRestart;
        std::vector<std::pair<double, float>> steps; // time, phase
    } kCases[] = {{true,
                   {{10.5, 0.5f},
                    {11.25, 0.75f},
                    {11.75, 0.25f},
                    {12, 0},
                    {13, 0},
                    {13.75, 0},
                    {14, 0},
                    {14.5, 0.5f},
                    {15.5, 0.5f},
                    {16.25, 0},
                    {17.75, 0},
                    {18.25, 0},
                    {18.75, 0.5f}}},
                  {false, {{10.5, 0.5f}, {11.25, 0.75f}, {12, 0}, {12.25, 0.25f}, {13.25, 0.75f}}}};
    for (const bool restartForward : {true, false})
        for (const auto& c : kCases) {
            FXPhaser1 phaser;
            phaser.SetPlain(1, false);
            phaser.pingPong = true;
            phaser.autoRestart = c.autoRestart;
            phaser.restartForward = restartForward;
            phaser.pause = 2;
            phaser.Restart(10);
            FXPhaser& plain = phaser;
            for (const auto& [time, phase] : c.steps) {
                plain.OnRender(nullptr, time);
                EXPECT_FLOAT_EQ(phaser.phase, phase) << c.autoRestart << " at " << time;
            }
        }
}

TEST(Phaser, LoopsDoNotDrift) {
    FXPhaser phaser;
    for (int i = 1; i < 100000; ++i) // frames that hardly ever meet the end of a run
        phaser.OnRender(nullptr, i * 0.0703125);
    EXPECT_EQ(phaser.start, std::floor(99999 * 0.0703125));
}

TEST(Phaser, IsShaped) {
    const struct {
        bool FXPhaser::*shape;
        float quarter, half, most; // at 0.25, 0.5, 0.9375
    } kCases[] = {
        {&FXPhaser::smooth, 0.15625f, 0.5f, 0.9887695f},
        {&FXPhaser::smoothHalf, 0.203125f, 0.5f, 0.9631348f},
        {&FXPhaser::cubicFirst, 0.015625f, 0.125f, 0.8239746f},
        {&FXPhaser::steepStart, 0.3676663f - std::pow(0.67f, 12.0f), 0.5f, 0.9375f},
        {&FXPhaser::loop, 0.25f, 0.5f, 0.9375f}, // not at all
    };
    for (const auto& c : kCases) {
        FXPhaser phaser;
        phaser.*c.shape = true;
        for (const auto& [time, phase] :
             {std::pair{0.0, 0.0f}, {0.25, c.quarter}, {0.5, c.half}, {0.9375, c.most}}) {
            phaser.OnRender(nullptr, time);
            EXPECT_NEAR(phaser.phase, phase, 1e-6) << &c - kCases << " at " << time;
        }
    }
    FXPhaser none; // without a length, it never waits for a run to be over
    none.SetPlain(0, true);
    none.Restart(10);
    none.OnRender(nullptr, 10.5);
    EXPECT_EQ(none.start, 10.5);
    FXPhaser back; // shaped first, then turned
    back.smooth = back.pingPong = true;
    back.OnRender(nullptr, 1.25);
    EXPECT_EQ(back.phase, 0.84375f);
    FXPhaser first;
    first.cubicFirst = true;
    first.nextDuration = 4;
    first.OnRender(nullptr, 1);
    first.OnRender(nullptr, 5);
    EXPECT_TRUE(!first.cubicFirst && first.duration == 4 && first.phase == 0.25f);
}

TEST(Phaser, IsARecordOf18Bytes) {
    const TempFolder folder;
    const float phase = 0.25f;
    const double duration = 12.5;
    std::string bytes(18, '\0');
    std::memcpy(bytes.data(), &phase, sizeof phase);
    std::memcpy(bytes.data() + 4, &duration, sizeof duration);
    bytes[12] = 2; // is not true
    for (std::size_t flag = 13; flag < 18; ++flag) {
        std::string record = bytes;
        record[flag] = 1;
        FXPhaser loaded, fromPackage;
        EXPECT_TRUE(loaded.Load(fxOpenFile(folder.Write("phaser", record).c_str(), "rb").get()));
        FXPackageData d;
        d.InitData(record.data(), 18);
        fromPackage.LoadC(nullptr, &d);
        EXPECT_FALSE(loaded.Load(fxOpenFile(folder.Write("phaser", record.substr(1)).c_str(), "rb").get()));
        EXPECT_TRUE(loaded.phase == 0.25f && fromPackage.duration == 12.5 && loaded.smooth == (flag == 16));
        for (const FXPhaser* phaser : {&loaded, &fromPackage}) {
            EXPECT_TRUE(phaser->Save(fxOpenFile(folder.File("phaser").c_str(), "wb").get()));
            record[12] = 0;
            EXPECT_EQ(folder.Read("phaser"), record);
        }
    }
}

} // namespace
