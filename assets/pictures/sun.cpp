// The sun's surface and the shells of plasma over it, wrapped round spheres.
#include "noise.h"
#include "pictures/colour.h"
#include "pictures/pictures.h"

#include <cmath>

namespace {

// What an equirectangular picture shows at a point of the unit sphere.
template <class Function> Raster Wrapped(int width, int height, Function colourAt) {
    Raster picture(width, height);
    const float meridian = 2 * kPi / static_cast<float>(width - 1);
    const float parallel = kPi / static_cast<float>(height - 1);
    for (int y = 0; y < height; ++y) {
        const float across = std::sin(parallel * static_cast<float>(y));
        const float up = std::cos(parallel * static_cast<float>(y));
        for (int x = 0; x < width; ++x) {
            const float turn =
                meridian * static_cast<float>(x % (width - 1)); // the last column is the first again
            picture.At(x, y) = colourAt(Vec3{across * std::cos(turn), up, across * std::sin(turn)});
        }
    }
    return picture;
}

constexpr Stop kIncandescent[] = {
    {0.00f, Hex(0x4A0A02)}, {0.18f, Hex(0x9A2204)}, {0.36f, Hex(0xDC4A08)}, {0.54f, Hex(0xFF7E16)},
    {0.70f, Hex(0xFFAE36)}, {0.84f, Hex(0xFFDA74)}, {1.00f, Hex(0xFFF8DC)},
};
constexpr Stop kGold[] = {
    {0.0f, Hex(0xB84A08)},
    {0.45f, Hex(0xFF9A20)},
    {0.75f, Hex(0xFFD060)},
    {1.0f, Hex(0xFFF6C8)},
};
constexpr Stop kFlame[] = {
    {0.0f, Hex(0x8A1004)},
    {0.45f, Hex(0xF0440C)},
    {0.75f, Hex(0xFF8A30)},
    {1.0f, Hex(0xFFE0A0)},
};
constexpr Stop kMagenta[] = {
    {0.0f, Hex(0x6A0A3A)},
    {0.45f, Hex(0xE03060)},
    {0.75f, Hex(0xFF7A90)},
    {1.0f, Hex(0xFFE0DC)},
};

// 0 in the middle of a dark spot, 1 away from all of them. Few cells have one.
float SpotsAt(Vec3 p) {
    const Cell cell = CellNoise(Warped(p, 6, 0.10f, 3, 901) * 2.2f, 905);
    if ((cell.id >> 7 & 7) > 2)
        return 1;
    const float radius = 0.10f + 0.10f * static_cast<float>(cell.id & 15) / 15;
    return Smooth(radius * 0.5f, radius * 1.5f, cell.nearest);
}

Rgba CoreAt(Vec3 p) {
    const Vec3 stirred = Warped(p, 5, 0.09f, 3, 601);
    const Cell granule = CellNoise(stirred * 17, 611);
    const Cell grain = CellNoise(stirred * 41, 613);
    const float granules = Smooth(0.02f, 0.42f, granule.border) * (1 - 0.35f * granule.nearest);
    const float grains = Smooth(0.0f, 0.45f, grain.border);
    const float regions = Fbm(Warped(p, 2, 0.35f, 3, 621) * 2.4f, 4, 631);
    const float filament = Ridged(Warped(p, 3, 0.25f, 3, 641) * 3.2f, 5, 651);

    float heat = 0.34f + 0.24f * granules + 0.10f * grains + 0.34f * regions;
    heat += 0.34f * Smooth(0.42f, 0.95f, filament);
    heat = Mix(0.02f + 0.22f * filament + 0.10f * granules, heat, SpotsAt(p));
    return {Ramp(kIncandescent, heat), 1};
}

Rgba Plasma(std::span<const Stop> palette, float density, float heat) {
    return {Ramp(palette, heat), Clamp01(density)};
}

// Long loops, as iron filings lie round a magnet.
Rgba PlasmaAAt(Vec3 p) {
    const Vec3 flow = Warped(p, 1.7f, 0.55f, 3, 701);
    const float threads = Ridged({flow.x * 2.6f, flow.y * 2.6f, flow.z * 2.6f}, 5, 711);
    const float cloud = Smooth(-0.25f, 0.30f, Fbm(flow * 1.8f, 4, 721));
    const float density = Smooth(0.38f, 0.85f, threads) * cloud;
    return Plasma(kGold, 0.85f * density, density);
}

// Torn flames, streaming from pole to pole.
Rgba PlasmaBAt(Vec3 p) {
    const Vec3 flow = Warped(p, 2.6f, 0.40f, 4, 731);
    const float tongues = Ridged({flow.x * 4.2f, flow.y * 1.7f, flow.z * 4.2f}, 5, 741);
    const float gaps = Smooth(-0.20f, 0.25f, Fbm(flow * 2.7f, 3, 751));
    const float density = Smooth(0.35f, 0.80f, tongues) * (0.2f + 0.8f * gaps);
    return Plasma(kFlame, 0.75f * density, density);
}

// A net of fine bright knots with veils between.
Rgba PlasmaCAt(Vec3 p) {
    const Vec3 flow = Warped(Warped(p, 1.3f, 0.45f, 3, 761), 4.0f, 0.12f, 3, 771);
    const Cell cell = CellNoise(flow * 4.5f, 781);
    const float net = Smooth(0.28f, 0.0f, cell.border);
    const float veil = Smooth(-0.1f, 0.5f, Fbm(flow * 2.2f, 5, 791));
    const float density = net * (0.25f + 0.75f * veil) + 0.35f * veil;
    return Plasma(kMagenta, 0.7f * density, density);
}

} // namespace

Raster DrawSunSurface(int width, int height) {
    return Wrapped(width, height, CoreAt);
}

// Twice as fine as the shells: it fills a quarter of the screen.
Raster DrawSunCore() {
    return DrawSunSurface(2048, 1024);
}

Raster DrawPlasmaA() {
    return Wrapped(1024, 512, PlasmaAAt);
}

Raster DrawPlasmaB() {
    return Wrapped(1024, 512, PlasmaBAt);
}

Raster DrawPlasmaC() {
    return Wrapped(1024, 512, PlasmaCAt);
}
