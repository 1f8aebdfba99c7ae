#include "scene/burning_desk.h"

#include "image/material.h"
#include "platform/random.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kRings = FXFireDesk::kMovingRings + 1;
constexpr int kGlowRings[] = {3, 4};
constexpr double kSpeedsLast = 0.5; // seconds

constexpr float kBrown[3] = {128.0f / 255.0f, 99.0f / 255.0f, 68.0f / 255.0f};
constexpr float kPale[3] = {(kBrown[0] - 1) * 0.5f + 1, (kBrown[1] - 1) * 0.5f + 1,
                            (kBrown[2] - 1) * 0.5f + 1};

// From the hole outwards: nothing, char, glow, scorch, and the untouched picture.
constexpr float kRingColors[kRings][4] = {
    {0, 0, 0, 0},
    {0, 0, 0, 1},
    {0, 0, 0, 1},
    {1, 0, 0, 1},
    {1, 0, 0, 1},
    {kBrown[0], kBrown[1], kBrown[2], 1},
    {kBrown[0], kBrown[1], kBrown[2], 1},
    {kPale[0], kPale[1], kPale[2], 1},
    {1, 1, 1, 1},
    {1, 1, 1, 1},
};

// Least and greatest distance between ring r and r + 1, in gaps.
struct Band {
    float least, greatest;
};
constexpr Band kBands[kRings - 2] = {{1, 2},         {1, 2},         {0.01f, 0.01f}, {0.01f, 0.01f},
                                     {0.99f, 0.99f}, {0.01f, 0.01f}, {3, 6},         {3, 6}};

constexpr float kYellow[4] = {1, 1, 0, 1};
constexpr float kDarkRed[4] = {0.8f, 0, 0, 1};
constexpr float kBlack[4] = {0, 0, 0, 1};

// The colour of a glow, 0..1: black, dark red, yellow.
void localGlowColor(float glow, float* color) {
    const bool hot = glow > 0.5f;
    const float* from = hot ? kDarkRed : kBlack;
    const float* to = hot ? kYellow : kDarkRed;
    const float share = hot ? (glow - 0.5f) * 2 : 2 * glow;
    for (int i = 0; i < 4; ++i)
        color[i] = from[i] + (to[i] - from[i]) * share;
}

} // namespace

void FXFireDesk::Create(int directions) {
    Destroy();
    done = false;
    num = std::max(directions, 2);
    desk.Create(num, kRings - 1);
    if (desk.mesh.vertexCount == 0 || !dirs.Realloc(2 * num) || !speeds.Realloc(kMovingRings * num) ||
        !dists.Realloc(kMovingRings * num))
        return Destroy();
    for (int i = 0; i < num; ++i) {
        const float angle = static_cast<float>(i) * 6.283f / static_cast<float>(num - 1);
        dirs.Push(std::sin(angle));
        dirs.Push(std::cos(angle));
    }
    speeds.count = dists.count = kMovingRings * num;
    desk.mesh.colorMode = 1;
    PaintRings();
    CloseHole();
}

void FXFireDesk::ReCreate() {
    done = false;
    CloseHole();
}

void FXFireDesk::Destroy() {
    for (FXFloatArray* array : {&dirs, &speeds, &dists})
        array->DestroyBuf();
    desk.Destroy();
}

// The seam keeps the white that a desk has.
void FXFireDesk::PaintRings() {
    for (int r = 0; r < kRings; ++r)
        for (int i = 0; i < num; ++i)
            std::copy_n(kRingColors[r], 4, Ring(r)[i].color);
}

// Rings 0 and 1 lie across the centre, ring 2 on it.
void FXFireDesk::CloseHole() {
    firstFrame = firstSpeeds = true;
    float distance = -2 * gap;
    for (int r = 0; r < kMovingRings && dists.count > 0; ++r, distance += gap) {
        std::fill_n(Dists(r), num, distance);
        std::fill_n(Speeds(r), num, 1.0f);
    }
}

void FXFireDesk::OnRender(PEnv* env, double time) {
    UpdatePositions(time);
    desk.OnRender(env, time);
    if (firstSpeeds || time - lastSpeedTime > kSpeedsLast) {
        firstSpeeds = false;
        lastSpeedTime = time;
        UpdateSpeeds1();
        UpdateSpeeds2();
        UpdateSpeeds3();
    }
}

void FXFireDesk::UpdatePositions(double time) {
    if (dists.count == 0) {
        done = true;
        return;
    }
    const FXMaterial* m = desk.mesh.material;
    const bool textured = m != nullptr && m->prepared;
    const float su = textured ? 0.5f * m->extentU : 0.5f;
    const float sv = textured ? 0.5f * m->extentV : 0.5f;
    if (firstFrame) {
        lastTime = burnStart = time;
        firstFrame = false;
    } else {
        AdvanceRings(AdvanceFactor(time));
        KeepBands();
    }
    if (!PlaceRings(su, sv))
        done = true;
    UpdateGlow();
    for (int i = 0; i < num; ++i)
        PlaceVertex(kMovingRings, i, radius, su, sv);
    CloseSeam();
}

// How far a speed of 1 takes a ring in this frame. Every step is rounded to single precision.
float FXFireDesk::AdvanceFactor(double time) {
    float k = static_cast<float>((time - lastTime) / period);
    const float elapsed = static_cast<float>(time - burnStart);
    k = elapsed * elapsed * k;
    k = k * radius;
    k = k * 0.05f;
    lastTime = time;
    return k;
}

void FXFireDesk::AdvanceRings(float k) {
    for (int i = num; i < kMovingRings * num; ++i)
        dists.items[i] += speeds.items[i] * k;
    for (int i = 0; i < num; ++i)
        Dists(0)[i] = Dists(1)[i] - gap;
}

// From the inside outwards: a ring that lags is moved to its least distance, one that is ahead to its
// greatest.
void FXFireDesk::KeepBands() {
    for (int r = 0; r + 1 < kMovingRings; ++r) {
        const float least = gap * kBands[r].least;
        const float greatest = gap * kBands[r].greatest;
        const float* inner = Dists(r);
        float* outer = Dists(r + 1);
        for (int i = 0; i < num; ++i) {
            const float low = inner[i] + least;
            const float high = inner[i] + greatest;
            outer[i] = low > outer[i] ? low : outer[i] > high ? high : outer[i];
        }
    }
}

void FXFireDesk::PlaceVertex(int ring, int direction, float distance, float su, float sv) {
    tagFXVertex& vertex = Ring(ring)[direction];
    const float x = dirs.items[2 * direction] * distance;
    const float y = dirs.items[2 * direction + 1] * distance;
    vertex.pos[0] = x;
    vertex.pos[1] = y;
    vertex.pos[2] = 0;
    vertex.tex[0] = (x + 1) * su;
    vertex.tex[1] = (1 - y) * sv;
}

bool FXFireDesk::PlaceRings(float su, float sv) {
    bool seen = false;
    for (int r = 0; r < kMovingRings; ++r) {
        const tagFXVertex* ring = Ring(r);
        for (int i = 0; i < num; ++i) {
            PlaceVertex(r, i, Dists(r)[i], su, sv);
            const float x = ring[i].pos[0];
            const float y = ring[i].pos[1];
            seen |= -1 <= x && x <= 1 && -1 <= y && y <= 1;
        }
    }
    return seen;
}

// Faster parts of the front glow brighter, and all of it flickers; neighbours differ little.
void FXFireDesk::UpdateGlow() {
    constexpr float kStep = 0.1f;
    float previous = 0;
    for (int i = 0; i < num; ++i)
        for (const int r : kGlowRings) {
            float glow = (Speeds(r)[i] - speedBase) * 0.8f + fxGetRandom() * 0.2f;
            glow = std::clamp(glow, 0.0f, 1.0f);
            glow = std::clamp(glow, previous - kStep, previous + kStep);
            previous = glow;
            float target[4];
            localGlowColor(glow, target);
            float* color = Ring(r)[i].color;
            for (int c = 0; c < 4; ++c)
                color[c] = (color[c] * 97 + target[c] * 3) * 0.01f;
        }
}

void FXFireDesk::CloseSeam() {
    for (int r = 0; r < kRings; ++r) {
        const tagFXVertex& from = Ring(r)[0];
        tagFXVertex& to = Ring(r)[num];
        std::copy_n(from.pos, 3, to.pos);
        std::copy_n(from.tex, 2, to.tex);
    }
}

// How fast each part of the burning edge runs: random bumps of three sizes over a base speed.

// A triangle over a part of the circle: lengthShare to twice that, `height` about half of its peak.
void FXFireDesk::AddBump(int ring, float lengthShare, float height, bool over) {
    const float columns = static_cast<float>(num + 1);
    const int start = static_cast<int>(fxGetRandom() * columns);
    const int length = static_cast<int>((fxGetRandom() * lengthShare + lengthShare) * columns);
    const int half = length / 2;
    const int middle = start + half;
    const int end = start + length;
    const float slope = static_cast<float>(std::max(half, 1)); // a bump of one column has none
    float* speed = Speeds(ring);
    for (int k = start; k <= end; ++k) {
        const float weight = static_cast<float>(k < middle ? k - start : end - k) / slope;
        const float bump = (fxGetRandom() * 0.01f + 2.0f) * height * weight;
        float& at = speed[k % num];
        at = (over ? at : speedBase) + bump;
    }
}

void FXFireDesk::UpdateSpeeds1() {
    fxResetRandom();
    std::fill(speeds.begin(), speeds.end(), speedBase);
    for (int r = 0; r < kMovingRings && speeds.count > 0; ++r)
        AddBump(r, 0.25f, 0.75f, false);
}

void FXFireDesk::UpdateSpeeds2() {
    fxResetRandom();
    for (int pass = 0; pass < 3 && speeds.count > 0; ++pass)
        for (int r = 0; r < kMovingRings; ++r)
            AddBump(r, 0.125f, 0.5f, true);
}

void FXFireDesk::UpdateSpeeds3() {
    fxResetRandom();
    for (int pass = 0; pass < 10 && speeds.count > 0; ++pass)
        for (int r = 0; r < kMovingRings; ++r)
            AddBump(r, 0.05f, 0.25f, true);
}
