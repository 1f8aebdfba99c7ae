#include "pictures/colour.h"
#include "pictures/pictures.h"

#include <cmath>

namespace {

// Positions and sizes in heights of the screen, from its middle.
constexpr float kAspect = 16.0f / 9.0f;
constexpr float kSunX = -0.3f * kAspect;
constexpr float kSunY = 0.3f;

enum class Shape { Disc, Iris, Ring };

// The reflections in the lens, along the line from the sun through the middle: at -1 the sun, at 0 the
// middle.
struct Ghost {
    float at;
    float radius;
    float strength;
    Shape shape;
    Rgb colour;
};
constexpr Ghost kGhosts[] = {
    {-0.52f, 0.034f, 0.100f, Shape::Disc, Hex(0xFFB060)},
    {-0.34f, 0.075f, 0.055f, Shape::Iris, Hex(0xFF8A3C)},
    {-0.12f, 0.022f, 0.110f, Shape::Disc, Hex(0xFFE0A8)},
    {0.22f, 0.052f, 0.060f, Shape::Iris, Hex(0x7AD0A0)},
    {0.42f, 0.120f, 0.040f, Shape::Ring, Hex(0x6AA8FF)},
    {0.58f, 0.040f, 0.085f, Shape::Iris, Hex(0x5A8CFF)},
    {0.80f, 0.165f, 0.034f, Shape::Iris, Hex(0x8A6AFF)},
    {1.02f, 0.030f, 0.110f, Shape::Disc, Hex(0xC08AFF)},
    {1.22f, 0.240f, 0.026f, Shape::Ring, Hex(0xB070E0)},
};

// Distance from the middle of a six-bladed iris, 1 on the middle of each edge; its corners are a little
// round.
float localIrisDistance(float x, float y) {
    constexpr float kThird = kPi / 3;
    const float r = std::hypot(x, y);
    const float turn = std::atan2(y, x) + 0.3f;
    const float off = turn - kThird * std::floor(turn / kThird + 0.5f);
    return Mix(r, r * std::cos(off), 0.8f);
}

float localShaped(Shape shape, float d) {
    const float edge = Smooth(1.0f, 0.9f, d);
    switch (shape) {
    case Shape::Disc:
        return Smooth(1.0f, 0.2f, d);
    case Shape::Iris:
        return edge * (0.45f + 0.55f * d * d * d * d);
    case Shape::Ring:
        return Smooth(1.0f, 0.93f, d) * Smooth(0.6f, 0.97f, d);
    }
    return 0;
}

Rgb localGhostLight(const Ghost& ghost, float x, float y) {
    const float dx = (x + kSunX * ghost.at) / ghost.radius;
    const float dy = (y + kSunY * ghost.at) / ghost.radius;
    if (dx * dx + dy * dy > 1.6f)
        return {};
    const float d = ghost.shape == Shape::Iris ? localIrisDistance(dx, dy) : std::hypot(dx, dy);
    // Glass bends red a little less than blue: the edges are coloured.
    const Rgb split = {localShaped(ghost.shape, d * 1.02f), localShaped(ghost.shape, d),
                       localShaped(ghost.shape, d * 0.98f)};
    return ghost.colour * split * ghost.strength;
}

// A piece of a rainbow round the sun, strongest beyond the middle of the screen.
Rgb localArcLight(float x, float y) {
    constexpr float kRadius = 1.10f;
    constexpr float kWide = 0.040f;
    const float dx = x - kSunX;
    const float dy = y - kSunY;
    const float r = std::hypot(dx, dy);
    const float facing = (dx * -kSunX + dy * -kSunY) / (r * std::hypot(kSunX, kSunY) + 1e-6f);
    const auto band = [&](float radius) {
        const float off = (r - radius) / kWide;
        return std::exp(-off * off);
    };
    const Rgb bow = {band(kRadius + kWide), band(kRadius), band(kRadius - kWide)};
    return bow * (0.024f * Smooth(0.925f, 1.0f, facing));
}

Rgba localLensAt(float x, float y) {
    Rgb light = localArcLight(x, y);
    for (const Ghost& ghost : kGhosts)
        light += localGhostLight(ghost, x, y);
    return Glow(light);
}

} // namespace

Raster DrawLens(const Size& size) {
    Raster lens(size.width, size.height);
    const auto width = static_cast<float>(size.width);
    const auto height = static_cast<float>(size.height);
    lens.Fill([&](float x, float y) { return localLensAt((x / width - 0.5f) * kAspect, y / height - 0.5f); });
    return lens;
}
