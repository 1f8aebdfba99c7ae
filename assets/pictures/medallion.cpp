// The medallion's metal and its face.
#include "medallion_shape.h"
#include "noise.h"
#include "pictures/pictures.h"
#include "pictures/relief.h"

#include <algorithm>
#include <cmath>

namespace {

// The face is shaped on a grid this fine and then averaged: engraved lines are thinner than a pixel.
constexpr int kFine = 2048;

float localDome(float distance, float radius) {
    const float t = std::fabs(distance) / radius;
    return t < 1 ? radius * std::sqrt(1 - t * t) : 0;
}

// Interlaced waves round the middle, as on a banknote: how deep a line is cut here, 0..1.
float localGuilloche(float r, float turn, float middle, float swing, float waves, int lines, float thin) {
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

float localBeads(float r, float turn) {
    constexpr float kCount = 72;
    constexpr float kAt = 0.885f;
    const float step = turn * kCount / (2 * kPi);
    const float along = (step - std::floor(step) - 0.5f) * 2 * kPi * kAt / kCount;
    return localDome(std::hypot(along, r - kAt), 0.031f);
}

// Height of the face at x, y in -1..1, y downwards.
float localFaceHeight(float x, float y) {
    const float r = std::hypot(x, y);
    const float turn = std::atan2(y, x);
    const float moonDistance = std::hypot(x - kMoonX, y + kMoonY);

    const float outer = localGuilloche(r, turn, 0.725f, 0.062f, 24, 5, 0.0085f);
    const float inner = localGuilloche(r, turn, 0.245f, 0.125f, 9, 6, 0.0085f);
    const float circles = std::max({Smooth(0.012f, 0.004f, std::fabs(r - 0.815f)),
                                    Smooth(0.012f, 0.004f, std::fabs(r - 0.635f)),
                                    Smooth(0.010f, 0.003f, std::fabs(r - 0.385f))});
    float height = -0.016f * std::max({outer, inner, circles});
    height += localBeads(r, turn);
    height += 0.06f * Smooth(0.93f, 0.96f, r);

    // The ring makes way for the sphere that circles on it.
    const float gap = Smooth(kMoonRadius + 0.01f, kMoonRadius + 0.04f, moonDistance);
    const float ring = localDome(r - kRingRadius, kRingWidth);
    height += 0.85f * gap * ring;
    return height + localDome(moonDistance, kMoonRadius);
}

// Metal turned on a lathe is brushed round its middle, and answers a lamp with two bright fans and their dark
// opposites: the light at this turn, about 0.
float localFans(float turn) {
    const float c = std::cos(turn - 2.2f);
    return 0.75f * std::pow(std::fabs(c), 5.0f) - 0.22f;
}

} // namespace

Raster DrawGold(const Size& size) {
    constexpr int kGoldSize = 512;
    Raster gold(kGoldSize, kGoldSize);
    gold.Fill([](float x, float y) {
        const float dx = x * 2 / kGoldSize - 1;
        const float dy = y * 2 / kGoldSize - 1;
        const float turn = std::atan2(dy, dx);
        const float wear = Fbm({x / 130, y / 130, 2.5f}, 4, 821);
        const float groove = Brushed(turn * 240, std::hypot(dx, dy) * 260, 831);
        return Rgba{Gold(0.66f + 0.05f * groove + 0.09f * wear + 0.36f * localFans(turn)), 1};
    });
    return gold.Shrunk(size.width, size.height);
}

Raster DrawEmblem(const Size& size) {
    Relief face(kFine, kFine);
    face.Fill([](float x, float y) {
        return kFine * 0.5f * localFaceHeight(x * 2 / kFine - 1, y * 2 / kFine - 1);
    });
    face.Soften(2);
    Raster fine(kFine, kFine);
    ForEachRow(kFine, [&](int y) {
        for (int x = 0; x < kFine; ++x) {
            const float fx = (static_cast<float>(x) + 0.5f) * 2 / kFine - 1;
            const float fy = (static_cast<float>(y) + 0.5f) * 2 / kFine - 1;
            const float r = std::hypot(fx, fy);
            const float turn = std::atan2(fy, fx);
            const float field = Smooth(0.03f, 0.12f, r) * (1 - face.Steepness(x, y));
            const float shine = 0.04f + 0.94f * Shine(face.Normal(x, y));
            const float groove = 0.045f * Brushed(turn * 260, r * 420, 841);
            fine.At(x, y) = {Gold(shine + groove + 0.30f * field * localFans(turn)), 1};
        }
    });
    return fine.Shrunk(size.width, size.height);
}
