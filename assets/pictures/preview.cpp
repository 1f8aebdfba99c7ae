#include "noise.h"
#include "pictures/colour.h"
#include "pictures/pictures.h"
#include "sun_shape.h"

#include <algorithm>
#include <cmath>

namespace {

// It is laid out on so many pixels, drawn on more, and then averaged.
constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr int kFineWidth = 1024;
constexpr int kFineHeight = 768;
// The sun, in pixels.
constexpr float kSunX = 150;
constexpr float kSunY = 365;
constexpr float kSunRadius = 150;

// The burning edge from the hole outwards: how far from it, in pixels, and the colour that the sheet takes
// there.
struct Burnt {
    float alpha;
    Rgb tint;
    Rgb glow;
};
Burnt localBurntAt(float distance) {
    constexpr Stop kTint[] = {
        {4, Hex(0x000000)}, {9, Hex(0x140A04)}, {13, Hex(0x806344)}, {30, Hex(0xC0B1A1)}, {52, Hex(0xFFFFFF)},
    };
    const float glow = std::exp(-(distance - 8) * (distance - 8) / 14);
    const float shine = std::exp(-std::fabs(distance - 8) / 16);
    return {Smooth(0, 3, distance), Ramp(kTint, distance),
            Hex(0xFFC860) * (1.1f * glow) + Hex(0xE03C08) * (0.45f * shine)};
}

// How far outside the hole in the sheet a pixel is.
float localBeyondHole(float x, float y) {
    const float dx = (x - 205) / 1.28f;
    const float dy = (y - 315) / 1.05f;
    const float ragged =
        56 * Fbm({x / 120, y / 120, 0.5f}, 5, 1001) + 10 * Fbm({x / 18, y / 18, 0.5f}, 3, 1011);
    return std::hypot(dx, dy) - 232 + ragged;
}

Rgb localSunAt(const Raster& surface, float x, float y) {
    const Vec3 p = {x, -y, std::sqrt(std::max(0.0f, 1 - x * x - y * y))};
    const float turn = std::atan2(p.z, p.x) / kPi; // the front is where z is above 0
    const float down = std::acos(std::clamp(p.y, -1.0f, 1.0f)) / kPi;
    const Rgb colour =
        surface
            .Sample(turn * static_cast<float>(surface.Width()), down * static_cast<float>(surface.Height()))
            .colour;
    return colour * (0.62f + 0.38f * p.z) + Hex(0xFF9A30) * (0.25f * std::pow(1 - p.z, 3.0f));
}

} // namespace

Raster DrawPreview(const Size& size) {
    const Raster space = DrawSpace({960, 512});
    const Raster desktop = DrawDesktop().Shrunk(kWidth * 4 / 3, kHeight);
    const Raster halo = DrawHalo({1024, 1024});
    const Raster rays = DrawRays({1024, 1024});
    const Raster surface = DrawWholeSun({256, 256});

    Raster still(kFineWidth, kFineHeight);
    still.Fill([&](float fineX, float fineY) {
        const float px = fineX * kWidth / kFineWidth;
        const float py = fineY * kHeight / kFineHeight;
        Rgb colour = space.Sample(px * 1.125f, py * 512 / kHeight).colour;
        const float x = (px - kSunX) / kSunRadius;
        const float y = (py - kSunY) / kSunRadius;
        const auto around = [&](const Raster& glow, float tall) {
            const float half = static_cast<float>(glow.Width()) / 2;
            return glow.Sample(half + x * half * kSunShare, half + y * half * kSunShare * tall);
        };
        colour = Over(around(halo, kSunTall), Over(around(rays, 1), colour)); // the sun is round here
        const float edge = Smooth(1.0f, 0.985f, std::hypot(x, y));
        if (edge > 0)
            colour = Mix(colour, localSunAt(surface, x, y), edge);

        const Burnt burnt = localBurntAt(localBeyondHole(px, py));
        const Rgb sheet = desktop.Sample(px + static_cast<float>(kWidth) / 6, py).colour * burnt.tint;
        return Rgba{Mix(colour, sheet, burnt.alpha) + burnt.glow, 1};
    });
    return still.Shrunk(size.width, size.height);
}
