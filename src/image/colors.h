// Colours: four floats, red, green, blue, alpha, nominally 0..1.
#pragma once

#include <cstdint>

void fxColSetBlackT(float* c); // transparent black
void fxColSetBlack(float* c);
void fxColSetWhite(float* c);
// A pixel of a canvas: alpha in the top byte, red in the lowest. Channels are cut to bytes (0.999 gives 254),
// not clamped: a colour that may leave 0..1 goes through fxColCutRange first.
std::uint32_t fxColToInt1(const float* c);
void fxColFromInt1(float* c, std::uint32_t v);
// The same with red above blue.
std::uint32_t fxColToInt(const float* c);
void fxColFromInt(float* c, std::uint32_t v);
void fxColCutRange(float* c);     // into 0..1; NaN is left
bool fxColIsZero(const float* c); // all four exactly 0
