// Small arithmetic of light and colour that all pictures share.
#pragma once

#include "raster.h"

#include <algorithm>
#include <numbers>
#include <span>

constexpr float kPi = std::numbers::pi_v<float>;

constexpr float Clamp01(float v) {
    return std::clamp(v, 0.0f, 1.0f);
}
constexpr float Mix(float a, float b, float t) {
    return a + (b - a) * t;
}
constexpr Rgb Mix(Rgb a, Rgb b, float t) {
    return a * (1 - t) + b * t;
}
// 0 at `from` and 1 at `to`, level at both ends; `from` may be the larger.
constexpr float Smooth(float from, float to, float v) {
    const float t = Clamp01((v - from) / (to - from));
    return t * t * (3 - 2 * t);
}

// 0xRRGGBB
constexpr Rgb Hex(unsigned code) {
    return {static_cast<float>(code >> 16 & 255) / 255, static_cast<float>(code >> 8 & 255) / 255,
            static_cast<float>(code & 255) / 255};
}

struct Stop {
    float at;
    Rgb colour;
};
// The colour at t on a scale of at least one stop, ordered by `at`; beyond the ends the end's colour.
Rgb Ramp(std::span<const Stop> stops, float t);

// Light as a pixel to be blended over what is behind it. Alpha falls more slowly than the light does, so that
// the pixel is already dark where its alpha becomes too small to be drawn, and no edge shows there.
Rgba Glow(Rgb light);

// `over` blended on opaque `under`.
constexpr Rgb Over(const Rgba& over, Rgb under) {
    return Mix(under, over.colour, over.alpha);
}
