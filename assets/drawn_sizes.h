// How large the scene draws what is made here, and so how many texels and corners it needs.
#pragma once

struct Size {
    int width, height;
};

// The largest screen that a show is made for, in pixels; it is of 16:9.
using Screen = Size;

// Shares of the screen's width and height, and how many texels make up for a pixel: fewer where everything is
// soft, a few more for letters and engraving. The scene is -1..1 across the screen and down it; what is named
// in the table scales that (src/scene).
struct Drawn {
    float across, down, texels;
};

//          drawn by       to 2560 wide   to 3840
// Space    desk0          1920 x 1024    3840 x 2048   as wide as the most common of these screens
// Halo     kGlowScale      512 x  512    1024 x 1024
// Rays     kGlowScale      512 x  512    1024 x 1024
// Lens     desk_lens      1024 x  512    1024 x 1024
// SunCore  kSunScale      2048 x 1024    4096 x 2048   half the equator, the meridian as far as it is seen
// Plasma   kSunScale      1024 x  512    1024 x  512   the equator, from pole to pole
// Gold     kSize           256 x  256     512 x  512   the medallion
// Emblem   kSize           256 x  256     512 x  512   its face
// Label    kLabelScale     512 x  128     512 x  128
// Skin     kCubeScale      512 x  512    1024 x 1024   a face, either side of which may lie across the screen
// Studio   kCubeScale      512 x  512    1024 x 1024   as much of it as a face mirrors
constexpr Drawn kDrawnSpace = {1, 1, 1};
constexpr Drawn kDrawnHalo = {1.5f, 2, 0.17f};
constexpr Drawn kDrawnRays = kDrawnHalo;
constexpr Drawn kDrawnLens = {1, 1, 0.36f};
constexpr Drawn kDrawnSunCore = {0.942f, 1.037f, 0.9f};
constexpr Drawn kDrawnPlasma = {1.98f, 1.6f, 0.18f};
constexpr Drawn kDrawnGold = {0.1013f, 0.18f, 1};
constexpr Drawn kDrawnEmblem = {0.085f, 0.151f, 1.2f};
constexpr Drawn kDrawnLabel = {0.135f, 0.06f, 1.2f};
constexpr Drawn kDrawnSkin = {0.3f, 0.533f, 0.9f};
constexpr Drawn kDrawnStudio = {0.3f, 0.533f, 0.7f};

// The powers of two that come nearest: the device stores no others.
Size TexelsFor(const Drawn& drawn, const Screen& screen);

// How many straight pieces a circle of that radius in pixels needs to look round: none is a third of a pixel
// off. They are a multiple of four, so that all of them together are as wide and as high as the circle.
int PiecesOfCircle(float radius);
