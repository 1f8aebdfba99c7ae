#include "image/colors.h"

#include <algorithm>
#include <utility>

namespace {

void localSet(float* c, float rgb, float a) {
    c[0] = c[1] = c[2] = rgb;
    c[3] = a;
}

// What no integer holds gives 0.
std::uint32_t localByte(float x) {
    const float v = x * 255.0f;
    return v > -2147483648.0f && v < 2147483648.0f ? static_cast<std::uint32_t>(static_cast<std::int32_t>(v))
                                                   : 0;
}

float localChannel(std::uint32_t v, int shift) {
    return static_cast<float>(v >> shift & 255u) / 255.0f;
}

} // namespace

void fxColSetBlackT(float* c) {
    localSet(c, 0, 0);
}
void fxColSetBlack(float* c) {
    localSet(c, 0, 1);
}
void fxColSetWhite(float* c) {
    localSet(c, 1, 1);
}

std::uint32_t fxColToInt1(const float* c) {
    return localByte(c[3]) << 24 | localByte(c[2]) << 16 | localByte(c[1]) << 8 | localByte(c[0]);
}

void fxColFromInt1(float* c, std::uint32_t v) {
    for (int i = 0; i < 4; ++i)
        c[i] = localChannel(v, 8 * i);
}

std::uint32_t fxColToInt(const float* c) {
    return localByte(c[3]) << 24 | localByte(c[0]) << 16 | localByte(c[1]) << 8 | localByte(c[2]);
}

void fxColFromInt(float* c, std::uint32_t v) {
    fxColFromInt1(c, v);
    std::swap(c[0], c[2]);
}

void fxColCutRange(float* c) {
    for (int i = 0; i < 4; ++i)
        c[i] = std::clamp(c[i], 0.0f, 1.0f);
}

bool fxColIsZero(const float* c) {
    return std::all_of(c, c + 4, [](float x) { return x == 0; });
}
