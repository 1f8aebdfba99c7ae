#include "render/vectors.h"

namespace {

template <int N> void localCombine(float* out, const float* a, const float* b) {
    for (int i = 0; i < N; ++i)
        out[i] = a[i] * b[i];
}

// Equal components stay what they are, whatever t is, infinite ones too.
template <int N> void localCombineP(float* out, const float* a, const float* b, float t) {
    for (int i = 0; i < N; ++i)
        out[i] = a[i] == b[i] && t != 1.0f ? a[i] : fxVec1fCombineP(a[i], b[i], t);
}

} // namespace

void fxVec2fCombine(float* out, const float* a, const float* b) {
    localCombine<2>(out, a, b);
}
void fxVec3fCombine(float* out, const float* a, const float* b) {
    localCombine<3>(out, a, b);
}
void fxVec4fCombine(float* out, const float* a, const float* b) {
    localCombine<4>(out, a, b);
}

float fxVec1fCombineP(float a, float b, float t) {
    if (t == 0.0f)
        return a;
    if (t == 1.0f)
        return b;
    return (b - a) * t + a;
}

void fxVec2fCombineP(float* out, const float* a, const float* b, float t) {
    localCombineP<2>(out, a, b, t);
}
void fxVec3fCombineP(float* out, const float* a, const float* b, float t) {
    localCombineP<3>(out, a, b, t);
}
void fxVec4fCombineP(float* out, const float* a, const float* b, float t) {
    localCombineP<4>(out, a, b, t);
}
