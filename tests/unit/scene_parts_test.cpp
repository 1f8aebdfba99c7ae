// What the scene is made of: phasers, desks, the burn, gadgets.
#include "image/codec.h"
#include "platform/clock.h"
#include "scene/burning_desk.h"
#include "scene/cube_gadget.h"
#include "scene/logo_gadget.h"
#include "scene/phaser.h"
#include "scene/screen_placement.h"
#include "unit/scene_parts.h"

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

TEST(Desk, OfTheSameSizeKeepsItsColours) {
    FXDesk desk;
    desk.Create(1, 1);
    const float grey[4] = {0.5f, 0.5f, 0.5f, 1};
    desk.UpdateColCol(grey);
    for (const auto& [columns, colour] : {std::pair{1, 0.5f}, {2, 1.0f}}) {
        desk.Create(columns, 1);
        EXPECT_EQ(desk.mesh.vertices[3].color[0], colour);
    }
}

// How a desk burns, of 64 directions, as far as the pictures of the show (tests/picture) leave it open.
class Burning : public testing::Test {
protected:
    Burning() {
        fxSetTickSource([] { return std::uint32_t{12345}; });
        GLRecorder::SetNullMode(true);
        fire_.Create(64);
    }
    ~Burning() override { fxSetTickSource(nullptr); }
    tagFXVertex& At(int ring, int direction) {
        return fire_.desk.mesh.vertices[ring * (fire_.num + 1) + direction];
    }
    float& Dist(int ring, int direction) { return fire_.dists[ring * fire_.num + direction]; }

    RecordedDevice<> device_;
    FXFireDesk fire_;
};

TEST_F(Burning, KeepsItsBands) {
    const float kLeast[] = {1, 1, 0.01f, 0.01f, 0.99f, 0.01f, 3, 3};
    const float kGreatest[] = {1, 2, 0.01f, 0.01f, 0.99f, 0.01f, 6, 6};
    for (const bool apart : {false, true}) { // rings that are pushed out, and such that are held back
        fire_.ReCreate();
        fire_.UpdatePositions(0);
        for (int r = 0; r < 9; ++r)
            for (int i = 0; i < 64; ++i)
                Dist(r, i) = apart ? 0.1f * static_cast<float>(r) : 0.1f;
        fire_.UpdatePositions(0);
        for (int r = 0; r < 8; ++r)
            EXPECT_NEAR((Dist(r + 1, 63) - Dist(r, 63)) / 0.01f, apart ? kGreatest[r] : kLeast[r], 1e-4) << r;
    }
}

TEST_F(Burning, GoesOutWhenNoMovingVertexIsOnTheScreen) {
    const std::pair<float, bool> kCases[] = {{1.0001f, true}, {1, false}, {-1, false}, {-1.0001f, true}};
    for (const auto& [distance, done] : kCases) { // of one vertex; all others are far away
        fire_.ReCreate();
        std::ranges::fill(fire_.dists, 3.0f);
        Dist(8, 0) = distance;
        fire_.UpdatePositions(0);
        EXPECT_EQ(fire_.done, done) << distance;
    }
}

TEST_F(Burning, GlowsByItsSpeed) {
    for (const float speed : {0.7f, 1.2f, 9.0f}) {
        std::ranges::fill(fire_.speeds, speed);
        const std::vector<tagFXVertex> before(&At(3, 0), &At(5, 0));
        fire_.UpdatePositions(0);
        float previous = 0, least = 1, greatest = 0;
        for (int at = 0; at < 128; ++at) { // both rings of a direction, then the next direction
            const int r = 3 + at % 2, i = at / 2;
            const float* was = before[static_cast<std::size_t>((r - 3) * 65 + i)].color;
            // What the colour has moved towards, by three percent.
            const auto target = [&](int c) { return (At(r, i).color[c] * 100 - was[c] * 97) / 3; };
            const float glow = target(1) > 0.001f ? target(1) / 2 + 0.5f : target(0) / 1.6f;
            EXPECT_NEAR(target(2), 0, 1e-4);
            EXPECT_NEAR(glow, previous, 0.1005f) << "a step at most";
            previous = glow;
            least = std::min(least, at < 16 ? 1 : glow); // the first ones rise from 0
            greatest = std::max(greatest, glow);
        }
        const float base = std::min((speed - 0.7f) * 0.8f, 1.0f);
        EXPECT_NEAR(least, base, 0.04f);
        EXPECT_NEAR(greatest, std::min(base + 0.2f, 1.0f), 0.04f) << "flickers";
    }
}

TEST(Placement, OfAPictureWithoutASizeIsTheWholeScreen) {
    const FXMatrix whole;
    for (float FXScrPos01::*size :
         {&FXScrPos01::screenW, &FXScrPos01::screenH, &FXScrPos01::picW, &FXScrPos01::picH}) {
        FXScrPos01 placement;
        placement.screenW = placement.screenH = 100;
        placement.picW = placement.picH = 50;
        placement.Update();
        EXPECT_FALSE(placement.placeMatrix.Compare(&whole));
        placement.*size = 0;
        placement.Update();
        EXPECT_TRUE(placement.placeMatrix.Compare(&whole));
    }
}

// How the gadgets look is for the pictures, too. Entry 4 is a model of one triangle, 5 a picture.
class Gadget : public testing::Test {
protected:
    Gadget() {
        fxLoadDevil();
        LoadTestPackage(package_, folder_,
                        {{4, kRaw, TriangleModel(folder_)}, {5, kTga, Tga(1, 1, {0xFFFFFFFFu})}});
    }
    ~Gadget() override { fxUnloadDevil(); }

    const std::vector<SceneDevice::Drawn>& Draw(PRender* gadget, double time) {
        device_.gl.drawn.clear();
        gadget->OnRender(&device_.gl, time);
        return device_.gl.drawn;
    }

    TempFolder folder_;
    RecordedDevice<SceneDevice> device_;
    FXPackage package_;
};

TEST_F(Gadget, MedallionIsRoundAndTurnsFromItsFirstFrameOn) {
    FXOrinGadget gadget;
    gadget.CreateCN(&package_, 5, 4);
    device_.gl.width = 768;
    device_.gl.height = 1024;
    for (const auto& [time, width] :
         {std::pair{7, 0.18f}, {9, 0.0f}}) { // it turns about y, by 45 degrees a second
        const FXMatrix& matrix = Draw(&gadget, time).at(0).matrix;
        EXPECT_NEAR(*matrix.M(0, 0), width, 1e-4f) << time;
        EXPECT_NEAR(*matrix.M(1, 1), 0.135f, 1e-6f);
    }
}

TEST_F(Gadget, CubeWaitsThenFadesIn) {
    FXDemoGadget gadget;
    gadget.CreateCN(&package_, 5, 5);
    const std::tuple<double, std::size_t, float> kFrames[] = {
        {100, 0, 1},    {114.9, 0, 1},    {115.5, 0, 1}, // late: the fade begins with this frame
        {115.5, 12, 0}, {116, 12, 0.25f}, {117, 12, 0.75f}, {400, 12, 1}};
    for (const auto& [time, drawn, alpha] : kFrames) {
        EXPECT_EQ(Draw(&gadget, time).size(), drawn) << time;
        EXPECT_TRUE(gadget.skinMat.diffuse[3] == alpha && gadget.envMat.diffuse[3] == alpha) << time;
    }
}

} // namespace
