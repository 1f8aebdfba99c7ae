#include "anim/bezier.h"

#include <algorithm>
#include <cmath>

void FXBezierPhaseH::Prepare(float phase) {
    t = phase;
    t2 = t * t;
    t3 = t2 * t;
    u = 1 - t;
    twoUt = 2 * u * t;
    u2 = u * u;
}

void FXBezier3::Get(float* out, float t) const {
    FXBezierPhaseH h;
    h.Prepare(t);
    GetH(out, &h);
}

void FXBezier3::GetH(float* out, const FXBezierPhaseH* h) const {
    for (int axis = 0; axis < 3; ++axis)
        out[axis] = p[0][axis] * h->u2 + p[1][axis] * h->twoUt + p[2][axis] * h->t2;
}

// With x0 = 0, x2 = 1 and x1 = m: (1 - 2m) s^2 + 2m s = t, of which this is the root in 0..1. Between points
// of one x there is no such m.
void FXBezier3::Get1(float* out, float t) const {
    const float m = (p[1][0] - p[0][0]) / (p[2][0] - p[0][0]);
    if (m >= 0 && m <= 1 && t > 0)
        t = t / (m + std::sqrt(std::max(m * m + (1 - 2 * m) * t, 0.0f)));
    Get(out, t);
}

void FXBezier4::Precompute() {
    for (int axis = 0; axis < 3; ++axis) {
        const float k1 = 3 * (p[1][axis] - p[0][axis]);
        const float k2 = 3 * (p[2][axis] - p[1][axis]) - k1;
        k[axis][0] = p[3][axis] - p[0][axis] - k1 - k2;
        k[axis][1] = k2;
        k[axis][2] = k1;
    }
}

void FXBezier4::Get(float* out, float t) const {
    FXBezierPhaseH h;
    h.Prepare(t);
    GetH(out, &h);
}

void FXBezier4::GetH(float* out, const FXBezierPhaseH* h) const {
    for (int axis = 0; axis < 3; ++axis)
        out[axis] = k[axis][0] * h->t3 + k[axis][1] * h->t2 + k[axis][2] * h->t + p[0][axis];
}
