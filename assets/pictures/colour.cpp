#include "pictures/colour.h"

#include <cmath>

Rgb Ramp(std::span<const Stop> stops, float t) {
    std::size_t i = 0;
    while (i < stops.size() && stops[i].at < t)
        ++i;
    if (i == 0)
        return stops.front().colour;
    if (i == stops.size())
        return stops.back().colour;
    const Stop& low = stops[i - 1];
    const Stop& high = stops[i];
    return Mix(low.colour, high.colour, (t - low.at) / (high.at - low.at));
}

Rgba Glow(Rgb light) {
    constexpr float kAlphaPower = 0.75f;
    constexpr float kLeast = 1e-6f;
    const float strength = std::max({light.r, light.g, light.b});
    if (strength < kLeast)
        return {};
    const float alpha = std::pow(std::min(strength, 1.0f), kAlphaPower);
    return {light * (1 / alpha), alpha};
}
