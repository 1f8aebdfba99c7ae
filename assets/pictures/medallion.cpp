// The medallion's metal and its face.
#include "noise.h"
#include "pictures/pictures.h"
#include "pictures/relief.h"

#include <cmath>

namespace {

constexpr int kSize = 512;
// The face is shaped on a grid twice as fine and then averaged: engraved lines are thinner than a pixel.
constexpr int kFine = 2 * kSize;

// All lengths are shares of the face's radius.
constexpr float kRingRadius = 0.50f;
constexpr float kRingWidth = 0.085f;
constexpr float kMoonRadius = 0.135f;
constexpr float kMoonX = 0.3535f;
constexpr float kMoonY = -0.3535f; // upwards is negative

float Dome(float distance, float radius) {
    const float t = std::fabs(distance) / radius;
    return t < 1 ? radius * std::sqrt(1 - t * t) : 0;
}

// Interlaced waves round the middle, as on a banknote: how deep a line is cut here, 0..1.
float Guilloche(float r, float turn, float middle, float swing, float waves, int lines, float thin) {
    float cut = 0;
    for (int i = 0; i < lines; ++i) {
        const float phase = 2 * kPi * static_cast<float>(i) / static_cast<float>(lines);
        const float line = middle + swing * std::sin(waves * turn + phase);
        const float slope = swing * waves * std::cos(waves * turn + phase) / std::max(r, 0.05f);
        const float distance = std::fabs(r - line) / std::sqrt(1 + slope * slope);
        cut = std::max(cut, Smooth(thin, thin * 0.3f, distance));
    }
    return cut;
}

float Beads(float r, float turn) {
    constexpr float kCount = 72;
    constexpr float kAt = 0.885f;
    const float step = turn * kCount / (2 * kPi);
    const float along = (step - std::floor(step) - 0.5f) * 2 * kPi * kAt / kCount;
    return Dome(std::hypot(along, r - kAt), 0.031f);
}

// Height of the face at x, y in -1..1.
float FaceHeight(float x, float y) {
    const float r = std::hypot(x, y);
    const float turn = std::atan2(y, x);
    const float moonDistance = std::hypot(x - kMoonX, y - kMoonY);

    const float outer = Guilloche(r, turn, 0.725f, 0.062f, 24, 5, 0.0085f);
    const float inner = Guilloche(r, turn, 0.245f, 0.125f, 9, 6, 0.0085f);
    const float circles = std::max({Smooth(0.012f, 0.004f, std::fabs(r - 0.815f)),
                                    Smooth(0.012f, 0.004f, std::fabs(r - 0.635f)),
                                    Smooth(0.010f, 0.003f, std::fabs(r - 0.385f))});
    float height = -0.016f * std::max({outer, inner, circles});
    height += Beads(r, turn);
    height += 0.06f * Smooth(0.93f, 0.96f, r);

    // The ring makes way for the sphere that circles on it.
    const float gap = Smooth(kMoonRadius + 0.01f, kMoonRadius + 0.04f, moonDistance);
    const float ring = Dome(r - kRingRadius, kRingWidth);
    height += 0.85f * gap * ring;
    return height + Dome(moonDistance, kMoonRadius);
}

Raster Halved(const Raster& fine) {
    return fine.Shrunk(fine.Width() / 2, fine.Height() / 2);
}

} // namespace

Raster DrawGold() {
    Raster gold(kSize, kSize);
    gold.Fill([](float x, float y) {
        const float wear = Fbm({x / 130, y / 130, 2.5f}, 4, 821);
        const float scratches = Ridged({x / 260 + y / 700, y / 60 - x / 300, 1.5f}, 2, 823);
        const float light = 0.72f + 0.05f * Brushed(x, y * 2, 831) + 0.025f * Brushed(x * 3, y, 835) +
                            0.10f * wear + 0.08f * Smooth(0.975f, 1.0f, scratches);
        return Rgba{Gold(light), 1};
    });
    return gold;
}

Raster DrawEmblem() {
    Relief face(kFine, kFine);
    face.Fill(
        [](float x, float y) { return kFine * 0.5f * FaceHeight(x * 2 / kFine - 1, y * 2 / kFine - 1); });
    face.Soften(1);
    Raster fine(kFine, kFine);
    for (int y = 0; y < kFine; ++y)
        for (int x = 0; x < kFine; ++x) {
            const float fx = static_cast<float>(x);
            const float fy = static_cast<float>(y);
            const float grain = 0.035f * Brushed(fx * 0.5f, fy * 0.5f, 841);
            fine.At(x, y) = {Gold(0.10f + 0.92f * Shine(face.Normal(x, y)) + grain), 1};
        }
    return Halved(fine);
}
