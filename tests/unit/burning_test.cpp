#include "image/material.h"
#include "platform/clock.h"
#include "scene/burning_desk.h"
#include "unit/recorded_device.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace {

using Floats = std::vector<float>;

Floats ValuesOf(const FXFloatArray& array) {
    return {array.begin(), array.end()};
}

// 64 directions.
class Burning : public testing::Test {
protected:
    Burning() {
        fxSetTickSource([] { return std::uint32_t{12345}; });
        GLRecorder::SetNullMode(true);
        fire_.Create(64);
    }
    ~Burning() override {
        GLRecorder::SetNullMode(false);
        fxSetTickSource(nullptr);
    }
    void Render(double time) { fire_.OnRender(&device_.gl, time); }
    tagFXVertex& At(int ring, int direction) {
        return fire_.desk.mesh.vertices[ring * (fire_.num + 1) + direction];
    }
    float& Dist(int ring, int direction) { return fire_.dists[ring * fire_.num + direction]; }

    RecordedDevice<> device_;
    FXFireDesk fire_;
};

TEST_F(Burning, BeginsWithTheHoleClosed) {
    const std::array<float, 4> kBlack = {0, 0, 0, 1}, kRed = {1, 0, 0, 1}, kWhite = {1, 1, 1, 1},
                               kBrown = {0.50196f, 0.38824f, 0.26667f, 1},
                               kPale = {0.75098f, 0.69412f, 0.63333f, 1};
    const std::array<float, 4> kColors[] = {{},     kBlack, kBlack, kRed,   kRed,
                                            kBrown, kBrown, kPale,  kWhite, kWhite};
    EXPECT_EQ(fire_.desk.mesh.colorMode, 1);
    for (int r = 0; r < 10; ++r)
        for (const int i : {0, 63, 64}) // and the seam, which stays white
            for (std::size_t c = 0; c < 4; ++c)
                EXPECT_NEAR(At(r, i).color[c], i < 64 ? kColors[r][c] : 1.0f, 1e-5) << r << ", " << i;
    for (int burn = 0; burn < 2; ++burn, fire_.ReCreate()) {
        Render(1000 + 100 * burn);
        for (int r = 0; r < 9; ++r)
            EXPECT_NEAR(Dist(r, 5), static_cast<float>(r - 2) * 0.01f, 1e-7)
                << "nothing moves in the first frame";
        EXPECT_FALSE(fire_.done);
        Render(1050 + 100 * burn);
        EXPECT_TRUE(fire_.done);
    }
    EXPECT_FALSE(fire_.done);
}

TEST_F(Burning, MakesNewSpeedsAfterMoreThanHalfASecond) {
    for (const auto& [time, renewed] : {std::pair{1000.0, true}, {1000.5, false}, {1000.5078125, true}}) {
        const Floats before = ValuesOf(fire_.speeds);
        Render(time);
        EXPECT_EQ(ValuesOf(fire_.speeds) != before, renewed) << time;
    }
}

TEST_F(Burning, AdvancesWithTheSquareOfTheTime) {
    std::ranges::fill(fire_.speeds, 0.7f);
    fire_.UpdatePositions(1000);
    fire_.UpdatePositions(1009.98);
    const float before[] = {Dist(1, 5), Dist(8, 5)};
    fire_.UpdatePositions(1010);
    EXPECT_NEAR(Dist(1, 5) - before[0], 0.7f * 0.02f * 100 / 900, 2e-6);
    EXPECT_NEAR(Dist(8, 5) - before[1], 0.7f * 0.02f * 100 / 900, 2e-6);
    fire_.radius = 2 * fire_.radius;
    fire_.UpdatePositions(1010.02);
    EXPECT_NEAR(Dist(8, 5) - before[1], 3 * 0.7f * 0.02f * 100 / 900, 3e-5) << "a larger one runs faster";
}

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

TEST_F(Burning, PictureStaysWhileTheGridRuns) {
    FXMaterial material;
    material.extentU = 0.75f;
    material.extentV = 0.5f;
    const auto expect = [&](FXMaterial* m, float u, float v) { // at the lower right corner of the screen
        fire_.ReCreate();
        fire_.desk.SetMaterial(m);
        Render(0);
        Render(8);
        for (int r = 0; r < 10; ++r)
            for (int i = 0; i <= 64; ++i) { // the last one is the first again
                const tagFXVertex& vertex = At(r, i);
                const float d = r < 9 ? Dist(r, i % 64) : 2;
                const float angle = static_cast<float>(i % 64) * 6.283f / 63;
                EXPECT_NEAR(vertex.pos[0], d * std::sin(angle), 1e-6);
                EXPECT_NEAR(vertex.pos[1], d * std::cos(angle), 1e-6);
                EXPECT_NEAR(vertex.tex[0], (vertex.pos[0] + 1) / 2 * u, 1e-6);
                EXPECT_NEAR(vertex.tex[1], (1 - vertex.pos[1]) / 2 * v, 1e-6);
            }
    };
    expect(nullptr, 1, 1);
    expect(&material, 1, 1); // has no texture yet
    material.prepared = true;
    expect(&material, 0.75f, 0.5f);
    material.prepared = false;
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

TEST_F(Burning, SpeedsAreBumpsOfThreeSizesOverTheBase) {
    fire_.Create(1024);
    // The least peak, the most that bumps add up to, and the least average: share of directions times mean
    // height.
    const auto expect = [&](void (FXFireDesk::*update)(), bool afresh, float peak, float most,
                            float average) {
        const Floats before = afresh ? Floats(9 * 1024, 0.7f) : ValuesOf(fire_.speeds);
        (fire_.*update)();
        for (int r = 0; r < 9; ++r) {
            float sum = 0, highest = 0;
            for (int i = r * 1024; i < r * 1024 + 1024; ++i) {
                const float bump = fire_.speeds[i] - before[static_cast<std::size_t>(i)];
                ASSERT_TRUE(-1e-6f < bump && bump < most) << bump;
                sum += bump / 1024;
                highest = std::max(highest, bump);
            }
            EXPECT_TRUE(sum > average && highest > peak) << sum << ", " << highest;
        }
    };
    expect(&FXFireDesk::UpdateSpeeds1, true, 1.49f, 1.6f, 0.18f);
    expect(&FXFireDesk::UpdateSpeeds2, false, 0.99f, 3.2f, 0.18f);
    expect(&FXFireDesk::UpdateSpeeds3, false, 0.49f, 5.4f, 0.12f);
    expect(&FXFireDesk::UpdateSpeeds1, true, 1.49f, 1.6f, 0.18f);
}

} // namespace
