#include "noise.h"
#include "pictures/colour.h"
#include "pictures/desktop_windows.h"
#include "pictures/drawing.h"
#include "pictures/pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr double kPanelHeight = 34;

constexpr Stop kSky[] = {
    {0.00f, Hex(0x1F4E79)}, {0.30f, Hex(0x3F82A8)}, {0.52f, Hex(0x8FBFC8)},
    {0.64f, Hex(0xF3DDB8)}, {0.72f, Hex(0xF9C99A)}, {1.00f, Hex(0xF5B98A)},
};

// Hills one behind the other, from the horizon to the eye.
struct Hill {
    float top;   // of its mean line, 0 is the picture's top
    float rise;  // how far it swings round that
    float waves; // over the width of the picture
    Rgb crest, foot;
};
constexpr Hill kHills[] = {
    {0.660f, 0.085f, 3.4f, Hex(0xA9C3C4), Hex(0xDCD3BC)},
    {0.725f, 0.075f, 2.8f, Hex(0x7DA8AE), Hex(0xB9C9BC)},
    {0.800f, 0.080f, 2.3f, Hex(0x4F8A92), Hex(0x8DB5AC)},
    {0.885f, 0.085f, 1.8f, Hex(0x2B6672), Hex(0x5C948F)},
    {0.990f, 0.090f, 1.4f, Hex(0x123F4E), Hex(0x2C6468)},
};

Raster localWallpaper() {
    Raster picture(kWidth, kHeight);
    picture.Fill([](float px, float py) {
        const float x = px / kWidth;
        const float y = py / kHeight;
        const float haze = 0.03f * Fbm({x * 3.0f, y * 9.0f, 1.5f}, 4, 941);
        Rgb colour = Ramp(kSky, y + haze);
        const float sun = std::hypot((x - 0.795f) * kWidth / kHeight, y - 0.625f);
        colour = Mix(colour, Hex(0xFFD9A0), 0.75f * std::exp(-sun / 0.13f));
        colour = Mix(colour, Hex(0xFFF8E6), Smooth(0.0475f, 0.0450f, sun));
        return Rgba{colour, 1};
    });
    std::uint32_t seed = 951;
    for (const Hill& hill : kHills) {
        seed += 10;
        for (int px = 0; px < kWidth; ++px) {
            const float x = static_cast<float>(px) / kWidth;
            const float line = hill.top + hill.rise * Fbm({x * hill.waves, 0.5f, 0.5f}, 4, seed);
            for (int py = std::max(0, static_cast<int>(line * kHeight) - 1); py < kHeight; ++py) {
                const float below = static_cast<float>(py) / kHeight - line;
                const float cover = Clamp01(below * kHeight + 0.5f);
                const Rgb ground = Mix(hill.crest, hill.foot, Smooth(0, 0.20f, below));
                Rgba& pixel = picture.At(px, py);
                pixel.colour = Mix(pixel.colour, ground, cover);
            }
        }
    }
    return picture;
}

void localDrawPanel(const Drawing& desktop) {
    desktop.Fill({0, 0, kWidth, kPanelHeight}, 0, Hex(0x16202C), 0.86);
    const TextStyle word = {.size = 13.5, .colour = Hex(0xE6ECF2)};
    TextStyle strong = word;
    strong.font = "DejaVu Sans Bold";
    desktop.Text(22, 9, "Activities", strong);
    desktop.Text(128, 9, "Applications", word);
    desktop.Text(240, 9, "Places", word);
    strong.centred = true;
    strong.size = 15;
    desktop.Text(kWidth / 2.0, 8, "12:34", strong);
    desktop.Text(kWidth - 98, 9, "Tue 14 July", word);

    // How loud, how well connected, how charged.
    cairo_t* pen = desktop.Pen();
    desktop.Colour(Hex(0xE6ECF2));
    for (int i = 0; i < 4; ++i) {
        cairo_rectangle(pen, kWidth - 196 + i * 5, 21 - i * 3, 3, 4 + i * 3);
        cairo_fill(pen);
    }
    desktop.Outline({kWidth - 160.5, 11.5, 26, 12}, 3);
    cairo_set_line_width(pen, 1.2);
    cairo_stroke(pen);
    desktop.Fill({kWidth - 158, 14, 16, 7}, 1, Hex(0x8BE28B));
    desktop.Fill({kWidth - 133.5, 15, 2, 5}, 0, Hex(0xE6ECF2));
}

void localDrawFolder(const Drawing& desktop, double x, double y, Rgb colour) {
    desktop.Fill({x, y + 4, 26, 14}, 4, colour * 0.8f);
    desktop.Fill({x, y + 10, 60, 38}, 5, colour * 0.86f);
    desktop.Fill({x, y + 16, 60, 33}, 5, Mix(colour, Hex(0xFFFFFF), 0.28f), colour);
}

void localDrawSheet(const Drawing& desktop, double x, double y, Rgb accent) {
    desktop.Fill({x + 9, y, 42, 50}, 4, Hex(0xFFFFFF), Hex(0xE6EAEE));
    desktop.Fill({x + 16, y + 8, 28, 16}, 2, accent);
    for (int i = 0; i < 3; ++i)
        desktop.Fill({x + 16, y + 29.0 + 6 * i, i == 2 ? 18.0 : 28.0, 2}, 0, Hex(0x9AA7B4));
}

void localDrawBin(const Drawing& desktop, double x, double y) {
    desktop.Fill({x + 14, y + 12, 32, 38}, 5, Hex(0xC9D3DB), Hex(0x9DAAB6));
    desktop.Fill({x + 10, y + 6, 40, 5}, 2.5, Hex(0xDCE4EA));
    desktop.Fill({x + 24, y + 2, 12, 5}, 2, Hex(0xDCE4EA));
    for (int i = 0; i < 3; ++i)
        desktop.Fill({x + 21.0 + 8 * i, y + 18, 2, 26}, 1, Hex(0x7F8C98));
}

void localDrawIcons(const Drawing& desktop) {
    constexpr double kX = 60;
    constexpr const char* kNames[] = {"Home", "Pictures", "Letters", "Lighthouse", "Bin"};
    for (int i = 0; i < 5; ++i) {
        const double y = 76 + 124 * i;
        switch (i) {
        case 0:
            localDrawFolder(desktop, kX, y, Hex(0x4F9AD8));
            break;
        case 1:
            localDrawFolder(desktop, kX, y, Hex(0xE0A03C));
            break;
        case 2:
            localDrawFolder(desktop, kX, y, Hex(0x62B06A));
            break;
        case 3:
            localDrawSheet(desktop, kX, y, Hex(0xE07A5A));
            break;
        default:
            localDrawBin(desktop, kX, y);
            break;
        }
        const TextStyle shadow = {.size = 14, .colour = Hex(0x0C2233), .centred = true};
        TextStyle bright = shadow;
        bright.colour = Hex(0xFFFFFF);
        desktop.Text(kX + 31, y + 59, kNames[i], shadow);
        desktop.Text(kX + 30, y + 58, kNames[i], bright);
    }
}

} // namespace

Raster DrawCalm(const Size& size) {
    return localWallpaper().Shrunk(size.width, size.height);
}

Raster DrawDesktop() {
    const Drawing desktop(localWallpaper());
    localDrawIcons(desktop);
    DrawTerminalWindow(desktop, {1130, 130, 660, 420});
    DrawEditorWindow(desktop, {330, 250, 830, 570});
    localDrawPanel(desktop);
    return desktop.Result();
}
