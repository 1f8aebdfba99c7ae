#include "noise.h"
#include "pictures/colour.h"
#include "pictures/pictures.h"
#include "pictures/stars.h"

#include <algorithm>
#include <cmath>

namespace {

// Drawn on so many pixels, and then averaged: stars are smaller than a pixel.
constexpr int kWidth = 3840;
constexpr int kHeight = 2048;
// The nebula has no detail finer than this many of them, and is computed on a grid that coarse.
constexpr int kCoarse = 3;

// Lengths are in heights of the picture from here on, positions from its top left corner. It is for screens
// of 16:9, whatever the shape of its pixels.
constexpr float kAspect = 16.0f / 9.0f;
constexpr float kSunX = 0.2f * kAspect;
constexpr float kSunY = 0.8f;

// Where in the endless cloud the picture is taken: here its brightest wave stands clear of the sun.
constexpr Vec3 kVantage = {-0.36f, 0.10f, 0.37f};

constexpr Stop kViolet[] = {
    {0.00f, Hex(0x020308)}, {0.22f, Hex(0x080A1E)}, {0.42f, Hex(0x191748)}, {0.62f, Hex(0x41307E)},
    {0.80f, Hex(0x8458AE)}, {0.93f, Hex(0xCE9AD2)}, {1.10f, Hex(0xFFE4EC)},
};
constexpr Stop kBlue[] = {
    {0.00f, Hex(0x020308)}, {0.22f, Hex(0x05101F)}, {0.42f, Hex(0x0C2B4C)}, {0.62f, Hex(0x1B5A82)},
    {0.80f, Hex(0x4E9CB8)}, {0.93f, Hex(0xA8DCE2)}, {1.10f, Hex(0xEFFFFF)},
};
constexpr Stop kRust[] = {
    {0.00f, Hex(0x000000)}, {0.25f, Hex(0x1A0705)}, {0.55f, Hex(0x5E2010)},
    {0.80f, Hex(0xB85A28)}, {1.00f, Hex(0xFFB878)},
};

// The nebula at a point, packed as a pixel: red is the gas, green the threads in it, blue the dust, all 0..1;
// alpha is how much of the blue kind of gas there is.
Rgba localNebulaAt(Vec3 p) {
    const Vec3 flow = Warped(p, 1.3f, 0.50f, 4, 11);
    const Vec3 curl = Warped(flow, 3.1f, 0.16f, 4, 23);
    const float body = Fbm(curl * 1.9f, 7, 31) + 0.35f * Fbm(flow * 0.9f, 2, 37);
    const float threads = Ridged(curl * 2.6f + Vec3{3.1f, 1.7f, 0}, 6, 47);
    const float lanes = Ridged(flow * 1.35f + Vec3{7.7f, 2.2f, 0.4f}, 6, 59);
    const float kind = Fbm(p * 1.1f + Vec3{0, 0, 4.2f}, 3, 67);
    return {{Smooth(-0.34f, 0.56f, body), threads, Smooth(0.46f, 0.80f, lanes)}, Smooth(-0.22f, 0.22f, kind)};
}

// How much nebula there is at all, 0..1: a band from the left edge over the sun to the lower right, widest in
// the middle, with nothing at the top right.
float localPresence(float x, float y) {
    const float off = (y - 0.52f) - 0.10f * std::sin(x * 2.3f + 0.4f);
    const float band =
        std::exp(-off * off / 0.20f) * (0.45f + 0.65f * std::exp(-(x - 1.02f) * (x - 1.02f) / 0.55f));
    const float quiet = Smooth(0.85f, 0.25f, std::hypot(x - 1.74f, (y - 0.06f) * 1.1f));
    return Clamp01(0.25f + band) * (1 - 0.9f * quiet);
}

class Sky {
public:
    Sky() : nebula_((kWidth + kCoarse - 1) / kCoarse, (kHeight + kCoarse - 1) / kCoarse) {
        nebula_.Fill([](float x, float y) {
            return localNebulaAt(Vec3{x * kCoarse * kPixelWidth, y * kCoarse * kPixelHeight, 0} + kVantage);
        });
    }

    // The colour of the sky; alpha is how clear it is there for the stars behind.
    Rgba At(float px, float py) const {
        const float x = px * kPixelWidth;
        const float y = py * kPixelHeight;
        const Rgba nebula = Nebula(x, y);
        const float gas = nebula.colour.r;
        const float threads = nebula.colour.g;
        const float presence = localPresence(x, y);
        const float dust = nebula.colour.b * Smooth(0.15f, 0.7f, presence);

        const float density =
            presence * (0.10f + gas * (0.62f + 0.72f * threads)) + 0.9f * presence * Lit(x, y);
        const float seen = density * (1 - 0.72f * dust);
        Rgb colour =
            Mix(Ramp(kViolet, seen), Ramp(kBlue, seen), nebula.alpha * Smooth(0.2f, 0.9f, x - kSunX));

        const float toward = std::hypot(x - kSunX, y - kSunY);
        const float warmth = Smooth(1.35f, 0.30f, toward) * (0.25f + 0.75f * gas);
        const float ember = warmth * (0.25f + 0.70f * threads * threads + 1.5f * std::max(Lit(x, y), 0.0f));
        colour += Ramp(kRust, ember * (1 - 0.6f * dust));
        return {colour, 1 - 0.92f * dust};
    }

private:
    Rgba Nebula(float x, float y) const {
        return nebula_.Sample(x / (kCoarse * kPixelWidth), y / (kCoarse * kPixelHeight));
    }

    // Gas that faces the sun is brighter, gas behind other gas is darker: that gives the cloud its depth.
    float Lit(float x, float y) const {
        constexpr float kNear = 0.014f;
        constexpr float kFar = 0.050f;
        const Vec3 sun = Unit({kSunX - x, kSunY - y, 0});
        const float here = Nebula(x, y).colour.r;
        return 0.8f * (here - Nebula(x + sun.x * kNear, y + sun.y * kNear).colour.r) +
               0.5f * (here - Nebula(x + sun.x * kFar, y + sun.y * kFar).colour.r);
    }

    static constexpr float kPixelWidth = kAspect / kWidth; // in heights of the picture
    static constexpr float kPixelHeight = 1.0f / kHeight;

    Raster nebula_;
};

} // namespace

Raster DrawSpace(const Size& size) {
    const Sky sky;
    Raster space(kWidth, kHeight);
    space.Fill([&](float x, float y) { return sky.At(x, y); });
    AddStars(&space, kAspect);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            space.At(x, y).alpha = 1;
    return space.Shrunk(size.width, size.height);
}
