#include "pictures/colour.h"
#include "pictures/pictures.h"

#include <algorithm>
#include <cmath>

namespace {

// As bright as the light, and never darker than what is behind it: embers fly past the sun.
Rgba localGlowing(const Rgb& light) {
    const Rgb shown = {Clamp01(light.r), Clamp01(light.g), Clamp01(light.b)};
    const float alpha = std::max({shown.r, shown.g, shown.b});
    return alpha > 0 ? Rgba{shown * (1 / alpha), alpha} : Rgba{};
}

} // namespace

Raster DrawEmber() {
    constexpr int kSize = 64;
    Raster ember(kSize, kSize);
    ember.Fill([](float x, float y) {
        const float r = std::hypot(x * 2 / kSize - 1, y * 2 / kSize - 1);
        const float core = std::exp(-r * r / 0.030f);
        const float body = std::exp(-r * r / 0.12f);
        const float shine = std::exp(-r * r / 0.30f);
        const Rgb light =
            Hex(0xFFF6D0) * core + Hex(0xFF8A20) * (0.7f * body) + Hex(0xC82008) * (0.3f * shine);
        return localGlowing(light * Smooth(1.0f, 0.6f, r));
    });
    return ember;
}
