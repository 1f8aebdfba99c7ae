// What surrounds the sun: the still halo and the turning rays.
#include "noise.h"
#include "pictures/colour.h"
#include "pictures/pictures.h"
#include "sun_shape.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

// A place as seen from the middle of the picture.
struct Polar {
    float x, y; // direction, of length 1
    float r;    // 1 at the inscribed circle
};

Polar localPolarAt(float x, float y) {
    const float r = std::hypot(x, y);
    return r > 0 ? Polar{x / r, y / r, r} : Polar{1, 0, 0};
}

// What is left of the light at this distance: nothing from the inscribed circle on.
float localFading(float r) {
    const float left = Clamp01((0.985f - r) / (0.985f - kSunShare));
    return left * left * (3 - 2 * left);
}

// Hugs the sun, which is taller than wide; the rays turn, and cannot.
Rgba localHaloAt(float x, float y) {
    const Polar at = localPolarAt(x, y / kSunTall);
    const float height = std::max(0.0f, at.r - kSunShare);
    // The corona is never quite even.
    const float breath = 1 + 0.35f * Fbm({at.x * 1.6f, at.y * 1.6f, at.r * 1.2f}, 3, 5);
    // At the sun's edge the light is of the sun's own colour, so that the edge is no line.
    const float rim = std::exp(-height / 0.014f);
    const float inner = std::exp(-height / (0.050f * breath));
    const float outer = std::exp(-height / (0.17f * breath));
    const Rgb light = Hex(0xFFB048) * (0.52f * rim) + Hex(0xFF8A2A) * (0.52f * inner) +
                      Hex(0xC8401A) * (0.36f * outer) + Hex(0x6A2A9A) * (0.10f * std::sqrt(outer));
    return Glow(light * localFading(at.r));
}

// One set of rays: `count` sets how many, `length` how far the longest reach, `sharp` how thin they are.
float localRays(const Polar& at, float count, float length, float sharp, std::uint32_t seed) {
    const float height = std::max(0.0f, at.r - kSunShare);
    const float bend = 0.25f * height;
    const Vec3 ring = {at.x * count, at.y * count, at.r * 0.7f};
    const float ray = Clamp01(0.5f + 0.75f * GradientNoise(ring + Vec3{0, 0, bend}, seed));
    const float reach = length * (0.35f + 0.65f * Clamp01(0.5f + GradientNoise(ring * 0.6f, seed + 1)));
    return std::pow(ray, sharp) * std::exp(-height / reach);
}

Rgba localRaysAt(float x, float y) {
    const Polar at = localPolarAt(x, y);
    const float broad = localRays(at, 2.6f, 0.34f, 2.2f, 301);
    const float middle = localRays(at, 7.0f, 0.30f, 2.6f, 401);
    const float fine = localRays(at, 19.0f, 0.22f, 2.6f, 501);
    const Rgb light =
        Hex(0xFF7A24) * (0.66f * broad) + Hex(0xFFB450) * (0.62f * middle) + Hex(0xFFE0A0) * (0.50f * fine);
    return Glow(light * localFading(at.r));
}

// colourAt(x, y) of a place, -1..1 across the picture and down it.
template <class Function> Raster localAround(const Size& size, Function colourAt) {
    Raster picture(size.width, size.height);
    const auto width = static_cast<float>(size.width);
    const auto height = static_cast<float>(size.height);
    picture.Fill([&](float x, float y) { return colourAt(x * 2 / width - 1, y * 2 / height - 1); });
    return picture;
}

} // namespace

Raster DrawHalo(const Size& size) {
    return localAround(size, localHaloAt);
}

Raster DrawRays(const Size& size) {
    return localAround(size, localRaysAt);
}
