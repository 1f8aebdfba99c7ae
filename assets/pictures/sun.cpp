// The sun's surface and the shells of plasma over it, wrapped round spheres.
#include "noise.h"
#include "pictures/colour.h"
#include "pictures/pictures.h"
#include "sun_shape.h"

#include <cmath>
#include <span>

namespace {

// A circle round the axis: its radius, and its height.
struct Circle {
    float across, up;
};

// The picture of a surface of revolution, wrapped round it from the pole down to `reach`, an angle: each row
// is the circle at an angle from the pole.
template <class CircleAt, class Function>
Raster localWrapped(const Size& size, float reach, CircleAt circleAt, Function colourAt) {
    Raster picture(size.width, size.height);
    const float meridian = 2 * kPi / static_cast<float>(size.width - 1);
    const float parallel = reach / static_cast<float>(size.height - 1);
    ForEachRow(size.height, [&](int y) {
        const Circle circle = circleAt(parallel * static_cast<float>(y));
        for (int x = 0; x < size.width; ++x) {
            const float turn =
                meridian * static_cast<float>(x % (size.width - 1)); // the last column is the first again
            picture.At(x, y) =
                colourAt(Vec3{circle.across * std::cos(turn), circle.up, circle.across * std::sin(turn)});
        }
    });
    return picture;
}

Circle localSphereAt(float down) {
    return {std::sin(down), std::cos(down)};
}

constexpr Stop kIncandescent[] = {
    {0.00f, Hex(0x3A0702)}, {0.16f, Hex(0x861B03)}, {0.34f, Hex(0xD24406)}, {0.50f, Hex(0xF77412)},
    {0.66f, Hex(0xFF9F2C)}, {0.80f, Hex(0xFFCB62)}, {0.92f, Hex(0xFFEBAE)}, {1.05f, Hex(0xFFFDF0)},
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
constexpr Stop kRose[] = {
    {0.0f, Hex(0x7A0A1E)},
    {0.45f, Hex(0xF04034)},
    {0.75f, Hex(0xFF8A5C)},
    {1.0f, Hex(0xFFE6C8)},
};

// Where in the endless gas the sun is taken: here it has some spots, and not too many.
constexpr Vec3 kSunVantage = {1.7f, 1.2f, 2.3f};

// An active region: how near its middle is, from 1 there down to 0, and the dark spot in it, 0 where it is
// darkest. Few cells have one.
struct Activity {
    float near;
    float spot;
};
Activity localActivityAt(Vec3 p) {
    const Cell cell = CellNoise(Warped(p, 6, 0.10f, 3, 901) * 2.2f, 905);
    if ((cell.id >> 7 & 7) > 2)
        return {0, 1};
    const float radius = 0.09f + 0.09f * static_cast<float>(cell.id & 15) / 15;
    return {Smooth(radius * 4.2f, radius * 0.8f, cell.nearest),
            Smooth(radius * 0.35f, radius * 1.25f, cell.nearest)};
}

// Granules large and small, the brighter net that they drift in, slow bright and dark regions, and threads of
// hotter gas that the field pulls along.
Rgba localCoreAt(Vec3 p) {
    const Vec3 stirred = Warped(p, 5, 0.09f, 3, 601);
    const Cell granule = CellNoise(stirred * 23, 611);
    const Cell grain = CellNoise(Warped(p, 17, 0.02f, 2, 607) * 61, 613);
    const Cell mesh = CellNoise(Warped(p, 4, 0.16f, 4, 661) * 6.5f, 663);
    const float granules = Smooth(0.0f, 0.5f, granule.border) * (1.15f - 0.5f * granule.nearest);
    const float grains = Smooth(0.0f, 0.5f, grain.border);
    const float net = Smooth(0.30f, 0.0f, mesh.border);
    const float regions = Fbm(Warped(p, 2, 0.35f, 3, 621) * 2.2f, 5, 631);
    const float threads = Ridged(Warped(Warped(p, 3, 0.25f, 3, 641), 9, 0.05f, 3, 645) * 3.4f, 6, 651);
    const float fine = Ridged(Warped(p, 8, 0.06f, 3, 671) * 12, 4, 673);
    const Activity active = localActivityAt(p);

    float heat = 0.30f + 0.17f * granules + 0.08f * grains + 0.42f * regions;
    heat += 0.30f * Smooth(0.45f, 0.95f, threads) + 0.10f * net + 0.10f * (fine - 0.5f);
    heat += active.near * (0.20f * threads + 0.16f * fine + 0.08f);
    const float umbra = 0.04f + 0.16f * fine + 0.08f * granules;
    return {Ramp(kIncandescent, Mix(umbra, heat, active.spot)), 1};
}

// How far the point at `down` from the pole lies above the equator, on the surface below.
float localSpindleHeight(float down) {
    constexpr int kSteps = 256;
    const float step = (kPi / 2 - down) / kSteps;
    float height = 0;
    for (int i = 0; i < kSteps; ++i) {
        const float c = std::cos(down + (static_cast<float>(i) + 0.5f) * step);
        height += step * std::sqrt(1 - c * c / 4);
    }
    return height;
}

// Half of the unit sphere, from the pole down to `reach`, rolled up until its two edges meet: a spindle, on
// which all lengths are what they were on the sphere. What is drawn there goes on from one edge at the other.
Circle localSpindleAt(float down) {
    return {std::sin(down) / 2, localSpindleHeight(down)};
}

Rgba localSurfaceAt(Vec3 p) {
    return localCoreAt(p + kSunVantage);
}

Rgba localPlasma(std::span<const Stop> palette, float density, float heat) {
    return {Ramp(palette, heat), Clamp01(density)};
}

// Long loops, as iron filings lie round a magnet.
Rgba localPlasmaAAt(Vec3 p) {
    const Vec3 flow = Warped(p, 1.7f, 0.55f, 3, 701);
    const float threads = Ridged({flow.x * 2.6f, flow.y * 2.6f, flow.z * 2.6f}, 5, 711);
    const float cloud = Smooth(-0.25f, 0.30f, Fbm(flow * 1.8f, 4, 721));
    const float density = Smooth(0.38f, 0.85f, threads) * cloud;
    return localPlasma(kGold, density, 1.08f * density);
}

// Torn flames, streaming from pole to pole.
Rgba localPlasmaBAt(Vec3 p) {
    const Vec3 flow = Warped(p, 2.6f, 0.40f, 4, 731);
    const float tongues = Ridged({flow.x * 4.2f, flow.y * 1.7f, flow.z * 4.2f}, 5, 741);
    const float gaps = Smooth(-0.20f, 0.25f, Fbm(flow * 2.7f, 3, 751));
    const float density = Smooth(0.35f, 0.80f, tongues) * (0.2f + 0.8f * gaps);
    return localPlasma(kFlame, 0.95f * density, density);
}

// A net of fine bright knots with veils between.
Rgba localPlasmaCAt(Vec3 p) {
    const Vec3 flow = Warped(Warped(p, 1.3f, 0.45f, 3, 761), 4.0f, 0.12f, 3, 771);
    const Cell cell = CellNoise(flow * 4.5f, 781);
    const float net = Smooth(0.28f, 0.0f, cell.border);
    const float veil = Smooth(0.0f, 0.5f, Fbm(flow * 2.2f, 5, 791));
    const float density = net * (0.15f + 0.85f * veil) + 0.18f * veil * veil;
    return localPlasma(kRose, 0.95f * density, density);
}

} // namespace

Raster DrawSunCore(const Size& size) {
    return localWrapped(size, std::acos(kSunLowest), localSpindleAt, localSurfaceAt);
}

Raster DrawWholeSun(const Size& size) {
    return localWrapped(size, kPi, localSpindleAt, localSurfaceAt);
}

Raster DrawPlasmaA(const Size& size) {
    return localWrapped(size, kPi, localSphereAt, localPlasmaAAt);
}

Raster DrawPlasmaB(const Size& size) {
    return localWrapped(size, kPi, localSphereAt, localPlasmaBAt);
}

Raster DrawPlasmaC(const Size& size) {
    return localWrapped(size, kPi, localSphereAt, localPlasmaCAt);
}
