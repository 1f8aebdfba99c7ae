// How large the scene draws what is made here, and so how many texels and corners it needs.
#pragma once

struct Size {
    int width, height;
};

// The largest screen that a show is made for, in pixels; it is of 16:9.
using Screen = Size;

// The scene is -1..1 across the screen and down it, and the constants named here (src/scene) scale that.
// Shares of the screen's width and height, and how many texels make up for a pixel: fewer where everything is
// soft, a few more for letters and engraving.
struct Drawn {
    float across, down, texels;
};
// At a screen of                                                           2560 x 1440   3840 x 2160
constexpr Drawn kDrawnSpace = {1, 1, 1};       // 2048 x 1024   4096 x 2048   desk0
constexpr Drawn kDrawnHalo = {1.5f, 2, 0.17f}; //  512 x  512   1024 x 1024   kGlowScale
constexpr Drawn kDrawnRays = kDrawnHalo;       //  the same; they turn
constexpr Drawn kDrawnLens = {1, 1, 0.36f};    // 1024 x  512   1024 x 1024   desk_lens
// Half round the equator, and down the meridian as far as it is seen (sun_shape.h).
constexpr Drawn kDrawnSunCore = {0.942f, 1.037f, 0.9f}; // 2048 x 1024   4096 x 2048   kSunScale
// Round the equator, and from pole to pole.
constexpr Drawn kDrawnPlasma = {1.98f, 1.6f, 0.18f};   // 1024 x  512   1024 x  512   kSunScale
constexpr Drawn kDrawnGold = {0.1013f, 0.18f, 1};      //  256 x  256    512 x  512   kSize
constexpr Drawn kDrawnEmblem = {0.085f, 0.151f, 1.2f}; //  256 x  256    512 x  512   the face of it
constexpr Drawn kDrawnLabel = {0.135f, 0.06f, 1.2f};   //  512 x  128    512 x  128   kLabelScale
// A face of the cube, either side of which may lie across the screen; and as much of the studio as it
// mirrors.
constexpr Drawn kDrawnSkin = {0.3f, 0.533f, 1};      // 1024 x 1024   1024 x 1024   kCubeScale
constexpr Drawn kDrawnStudio = {0.3f, 0.533f, 0.7f}; //  512 x  512   1024 x 1024   kCubeScale

// The powers of two that come nearest: the device stores no others.
Size TexelsFor(const Drawn& drawn, const Screen& screen);

// How many straight pieces a circle of that radius in pixels needs to look round: none is a third of a pixel
// off. They are a multiple of four, so that all of them together are as wide and as high as the circle.
int PiecesOfCircle(float radius);
