// The cube: what it reflects, and the skin of its faces.
#include "noise.h"
#include "pictures/drawing.h"
#include "pictures/pictures.h"
#include "pictures/relief.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

// Both pictures are drawn on a square of 512 units, twice as fine, and then averaged.
constexpr int kScale = 2;
constexpr int kSize = 512 * kScale;
constexpr float kMiddle = 256;

// A lamp with a square diffuser: the direction it hangs in, half its width and height as seen from the cube.
struct Softbox {
    Vec3 toward;
    float width, height;
    Rgb light;
};
constexpr Softbox kBoxes[] = {
    {{-0.62f, 0.55f, 0.56f}, 0.34f, 0.24f, Hex(0xFFF4E0)},
    {{0.80f, 0.35f, 0.48f}, 0.13f, 0.42f, Hex(0xBFD8FF)},
    {{0.05f, 0.95f, -0.30f}, 0.55f, 0.16f, Hex(0xFFFFFF)},
    {{-0.90f, 0.05f, -0.42f}, 0.10f, 0.50f, Hex(0xFF9A4A)},
    {{0.70f, 0.12f, -0.70f}, 0.30f, 0.10f, Hex(0x7FA8FF)},
};

constexpr Stop kWalls[] = {
    {-1.00f, Hex(0x07060A)}, {-0.30f, Hex(0x1C1210)}, {-0.03f, Hex(0x3A2416)}, {0.0f, Hex(0xD88A4A)},
    {0.05f, Hex(0x6A5A78)},  {0.35f, Hex(0x28304C)},  {1.00f, Hex(0x0A0E1C)},
};

Rgb localLampLight(Vec3 d) {
    Rgb light;
    for (const Softbox& box : kBoxes) {
        const Vec3 forward = Unit(box.toward);
        const float facing = Dot(d, forward);
        if (facing <= 0.1f)
            continue;
        const Vec3 right = Unit({forward.z, 0, -forward.x});
        const Vec3 up = {forward.y * right.z - forward.z * right.y, forward.z * right.x - forward.x * right.z,
                         forward.x * right.y - forward.y * right.x};
        const float x = std::fabs(Dot(d, right) / facing) - box.width;
        const float y = std::fabs(Dot(d, up) / facing) - box.height;
        const float out = std::max(x, y);
        light += box.light * (Smooth(0.03f, -0.03f, out) + 0.22f * std::exp(-std::max(out, 0.0f) * 5));
    }
    return light;
}

// Walls and lamps, and a polished dark floor that mirrors the lamps faintly.
Rgb localStudioLight(Vec3 d) {
    const Rgb walls = Ramp(kWalls, d.y + 0.02f * std::sin(d.x * 5));
    if (d.y > 0)
        return walls + localLampLight(d);
    const float ripple = 0.05f * std::sin(d.x * 23 + d.z * 9);
    return walls + localLampLight(Unit({d.x * (1 + ripple), -d.y * 1.15f, d.z})) *
                       (0.30f * Smooth(-1.1f, -0.05f, d.y));
}

Rgba localStudioAt(float px, float py) {
    // The device's sphere map: the picture's circle holds every direction, the middle the one to the eye.
    float x = px * 2 / kSize - 1;
    float y = 1 - py * 2 / kSize;
    const float square = std::min(x * x + y * y, 0.9999f);
    const float r = std::hypot(x, y);
    if (r * r > square) {
        x *= std::sqrt(square) / r;
        y *= std::sqrt(square) / r;
    }
    const float z = std::sqrt(1 - square);
    return {localStudioLight({2 * x * z, 2 * y * z, 2 * z * z - 1}), 1};
}

// A box with round corners: how far outside it a point is, negative inside; from the picture's middle.
float localBoxDistance(float x, float y, float half, float corner) {
    const float dx = std::fabs(x) - half + corner;
    const float dy = std::fabs(y) - half + corner;
    return std::hypot(std::max(dx, 0.0f), std::max(dy, 0.0f)) + std::min(std::max(dx, dy), 0.0f) - corner;
}

constexpr float kFrameOut = 254;
constexpr float kFrameIn = 196;
constexpr float kScrewAt = 224;
constexpr float kScrewRadius = 12;

struct Screw {
    float x, y; // from its middle
    float slot; // which way its slot lies
};

Screw localScrewNear(float x, float y) {
    const float sx = x < 0 ? -kScrewAt : kScrewAt;
    const float sy = y < 0 ? -kScrewAt : kScrewAt;
    return {x - sx, y - sy, 0.6f + (x < 0 ? 1.1f : 0.0f) + (y < 0 ? 0.7f : 0.0f)};
}

float localFrameHeight(float x, float y) {
    const float outside = localBoxDistance(x, y, kFrameOut, 26);
    const float inside = localBoxDistance(x, y, kFrameIn, 34);
    float height = 7 * Smooth(0, -7, outside) * Smooth(-1, 7, inside);
    // Two engraved lines run round the window.
    for (const float line : {20.0f, 26.0f})
        height -= 1.4f * Smooth(1.8f, 0.4f, std::fabs(inside - line));
    const Screw screw = localScrewNear(x, y);
    const float d = std::hypot(screw.x, screw.y);
    height -= 3 * Smooth(kScrewRadius + 5, kScrewRadius + 2, d);
    height += 6 * std::sqrt(std::max(0.0f, 1 - d * d / (kScrewRadius * kScrewRadius)));
    const float across = screw.x * std::sin(screw.slot) - screw.y * std::cos(screw.slot);
    if (d < kScrewRadius)
        height -= 4 * Smooth(2.4f, 1.2f, std::fabs(across));
    return height;
}

// The path of a flame with a leaning tip, its foot on the origin, `size` high.
void localFlamePath(cairo_t* pen, double size) {
    cairo_save(pen);
    cairo_scale(pen, size, size);
    cairo_move_to(pen, 0, 0);
    cairo_curve_to(pen, -0.30, 0, -0.40, -0.22, -0.30, -0.42);
    cairo_curve_to(pen, -0.27, -0.48, -0.22, -0.53, -0.20, -0.60);
    cairo_curve_to(pen, -0.15, -0.53, -0.13, -0.50, -0.13, -0.45);
    cairo_curve_to(pen, -0.02, -0.58, 0.02, -0.80, -0.06, -1.00);
    cairo_curve_to(pen, 0.16, -0.88, 0.22, -0.66, 0.23, -0.52);
    cairo_curve_to(pen, 0.26, -0.56, 0.27, -0.60, 0.26, -0.66);
    cairo_curve_to(pen, 0.42, -0.42, 0.40, 0, 0, 0);
    cairo_close_path(pen);
    cairo_restore(pen);
}

Drawing localCanvas() {
    Drawing canvas(kSize, kSize);
    cairo_scale(canvas.Pen(), kScale, kScale);
    return canvas;
}

// The outer flame and the smaller one in it, each drawn by what paint(pen, isInner) does with its path.
template <class Paint> void localDrawFlames(cairo_t* pen, Paint paint) {
    cairo_save(pen);
    cairo_translate(pen, kMiddle, kMiddle + 88);
    localFlamePath(pen, 188);
    paint(pen, false);
    cairo_translate(pen, 4, -14);
    localFlamePath(pen, 96);
    paint(pen, true);
    cairo_restore(pen);
}

// What is etched into the glass: a flame in a ring, with strokes as on a dial. Only its alpha counts.
Raster localEtching() {
    const Drawing etching = localCanvas();
    cairo_t* pen = etching.Pen();
    etching.Colour({});
    for (const auto& [radius, width] : {std::pair{138.0, 5.0}, {127.0, 1.8}, {168.0, 1.2}}) {
        cairo_arc(pen, kMiddle, kMiddle, radius, 0, 2 * std::numbers::pi);
        cairo_set_line_width(pen, width);
        cairo_stroke(pen);
    }
    constexpr int kStrokes = 72;
    for (int i = 0; i < kStrokes; ++i) {
        const double turn = 2 * std::numbers::pi * i / kStrokes;
        const double end = i % 6 == 0 ? 162 : 152;
        cairo_set_line_width(pen, i % 6 == 0 ? 3 : 1.6);
        cairo_move_to(pen, kMiddle + 144 * std::cos(turn), kMiddle + 144 * std::sin(turn));
        cairo_line_to(pen, kMiddle + end * std::cos(turn), kMiddle + end * std::sin(turn));
        cairo_stroke(pen);
    }
    etching.Outline({kMiddle - 184, kMiddle - 184, 368, 368}, 26);
    cairo_set_line_width(pen, 2);
    cairo_stroke(pen);
    localDrawFlames(pen, [](cairo_t* p, bool isInner) {
        cairo_set_line_width(p, isInner ? 2.5 : 4);
        cairo_stroke(p);
    });
    return etching.Result();
}

// How hot the glass glows: the flame, hottest in its heart. Only its alpha counts.
Raster localFire() {
    const Drawing fire = localCanvas();
    localDrawFlames(fire.Pen(), [&](cairo_t* p, bool isInner) {
        fire.Colour({}, isInner ? 0.95 : 0.60);
        cairo_fill(p);
    });
    return fire.Result();
}

// Smoked glass, lit from within by the flame; x and y from its middle.
Rgba localGlassAt(float x, float y, float etch, float fire) {
    const float sheen = Smooth(60, -160, x + y) * 0.5f + 0.25f * Smooth(14, 0, std::fabs(x + y + 96) - 22);
    const float edge = Smooth(-34, -2, localBoxDistance(x, y, kFrameIn, 34));
    const Rgb tint = Mix(Hex(0x6FA4D8), Hex(0xE8F4FF), Clamp01(sheen));
    const Rgb dark = Mix(tint, Hex(0x0A1420), 0.7f * edge);
    const float alpha = 0.15f + 0.10f * sheen + 0.35f * edge;
    const float away = (x * x + (y - 20) * (y - 20)) / (105 * 105);
    const float warm = std::max(0.40f * std::exp(-away), fire);
    const Rgb ember = Mix(Hex(0xF03C00), Hex(0xFFB428), Smooth(0.35f, 0.85f, fire));
    return {Mix(Mix(dark, ember, Clamp01(1.8f * warm)), Hex(0xFFF0D0), etch),
            Mix(Mix(alpha, 0.92f, warm), 0.88f, etch)};
}

} // namespace

Raster DrawStudio(const Size& size) {
    Raster studio(kSize, kSize);
    studio.Fill(localStudioAt);
    return studio.Shrunk(size.width, size.height);
}

Raster DrawSkin(const Size& size) {
    Relief frame(kSize, kSize);
    frame.Fill([](float x, float y) {
        return kScale * localFrameHeight(x / kScale - kMiddle, y / kScale - kMiddle);
    });
    frame.Soften(kScale);
    const Raster etching = localEtching();
    const Raster fire = localFire();
    Raster skin(kSize, kSize);
    ForEachRow(kSize, [&](int y) {
        for (int x = 0; x < kSize; ++x) {
            const float fx = (static_cast<float>(x) + 0.5f) / kScale - kMiddle;
            const float fy = (static_cast<float>(y) + 0.5f) / kScale - kMiddle;
            const float inside = localBoxDistance(fx, fy, kFrameIn, 34);
            // Brushed along each bar of the frame, mitred at the corners.
            const bool upright = std::fabs(fx) > std::fabs(fy);
            const float grain = upright ? Brushed(fy, fx, 861) : Brushed(fx, fy, 867);
            const float along = upright ? fy : fx;
            const float sheen = 0.10f * std::cos(along / 62 + (upright ? 0.9f : -0.7f));
            const Rgb bare = Steel(0.02f + 0.95f * Shine(frame.Normal(x, y)) + sheen + 0.15f * grain);
            const float gilded = Smooth(1.9f, 0.6f, std::fabs(inside - 20));
            const Rgb metal = Mix(bare, Gold(0.35f + 0.6f * Shine(frame.Normal(x, y))), gilded);
            const Rgba glass = localGlassAt(fx, fy, etching.At(x, y).alpha, fire.At(x, y).alpha);
            const float cover = Smooth(-0.8f, 0.8f, inside);
            skin.At(x, y) = {Mix(glass.colour, metal, cover), Mix(glass.alpha, 1, cover)};
        }
    });
    return skin.Shrunk(size.width, size.height);
}
