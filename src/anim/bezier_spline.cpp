#include "anim/bezier_spline.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iterator>

namespace {

float localDistance(const float* a, const float* b) {
    const float x = a[0] - b[0];
    const float y = a[1] - b[1];
    const float z = a[2] - b[2];
    return std::sqrt(x * x + y * y + z * z);
}

// From a to b.
void localDelta(float* delta, const float* a, const float* b) {
    for (int axis = 0; axis < 3; ++axis)
        delta[axis] = b[axis] - a[axis];
}

void localAlong(float* out, const float* from, const float* delta, float t) {
    for (int axis = 0; axis < 3; ++axis)
        out[axis] = from[axis] + delta[axis] * t;
}

// e scaled to a length; a direction that is none stays none.
void localScaleTo(float* e, float length) {
    const float now = std::sqrt(e[0] * e[0] + e[1] * e[1] + e[2] * e[2]);
    const float scale = now > 0 ? length / now : 0.0f;
    for (int axis = 0; axis < 3; ++axis)
        e[axis] *= scale;
}

} // namespace

void fxSplineTangents(const float* previous, const float* point, const float* next, float tension, float* in,
                      float* out) {
    float e0[3];
    float e2[3];
    for (int axis = 0; axis < 3; ++axis) {
        const float m0 = point[axis] + (previous[axis] - point[axis]) * 0.5f;
        const float m2 = point[axis] + (next[axis] - point[axis]) * 0.5f;
        const float m = m0 + (m2 - m0) * 0.5f;
        e0[axis] = m0 - m;
        e2[axis] = m2 - m;
    }
    localScaleTo(e0, localDistance(previous, point) * 0.5f * tension);
    localScaleTo(e2, localDistance(next, point) * 0.5f * tension);
    for (int axis = 0; axis < 3; ++axis) {
        in[axis] = point[axis] + e0[axis];
        out[axis] = point[axis] + e2[axis];
    }
}

void FXBezierSpline::Destroy() {
    points.DestroyBuf();
    ctrlPoints.DestroyBuf();
    beziers.DestroyBuf();
    phases.DestroyBuf();
    actIndex = 0;
    ForgetSegment();
}

void FXBezierSpline::ForgetSegment() {
    constant = onLine_ = false;
    actKind = 0;
    actQuadratic = nullptr;
    actCubic = nullptr;
    for (float* place : {actPoint, actDelta})
        std::fill_n(place, 3, 0.0f);
}

void FXBezierSpline::Precompute() {
    actIndex = 0;
    PrecomputeCtrlPoints();
    PrecomputeBeziers();
    SetActPoints(0, 1);
}

void FXBezierSpline::PrecomputeCtrlPoints() {
    const int n = GetCnt();
    ForgetSegment();
    ctrlPoints.RemoveAll();
    if (n == 2)
        localDelta(lineDelta, PointAt(0), PointAt(1));
    if (n <= 2 || !ctrlPoints.Realloc(6 * n))
        return;
    ctrlPoints.count = 6 * n;
    for (int i = 0; i < n; ++i)
        fxSplineTangents(PointAt((i + n - 1) % n), PointAt(i), PointAt((i + 1) % n), tension,
                         &ctrlPoints[6 * i], &ctrlPoints[6 * i + 3]);
}

void FXBezierSpline::PrecomputeBeziers() {
    const int n = GetCnt();
    ForgetSegment();
    beziers.RemoveAll();
    if (n <= 2 || ctrlPoints.count < 6 * n)
        return;
    const auto in = [&](int i) { return &ctrlPoints[6 * i]; };
    const auto out = [&](int i) { return &ctrlPoints[6 * i + 3]; };
    const auto set = [](auto& bezier, std::initializer_list<const float*> through) {
        float(*to)[3] = bezier.p;
        for (const float* point : through)
            std::copy_n(point, 3, *to++);
    };
    set(startBezier, {PointAt(0), in(1), PointAt(1)});
    set(endBezier, {PointAt(n - 2), out(n - 2), PointAt(n - 1)});
    if (!beziers.Realloc(n))
        return;
    beziers.count = n;
    for (int i = 0; i < n; ++i) {
        const int next = (i + 1) % n;
        FXBezier4& bezier = beziers[i];
        set(bezier, {PointAt(i), out(i), in(next), PointAt(next)});
        bezier.Precompute();
    }
}

void FXBezierSpline::UseLine(const float* a, const float* b) {
    std::copy_n(a, 3, actPoint);
    localDelta(actDelta, a, b);
    onLine_ = true;
    constant = std::equal(a, a + 3, b);
}

template <class Bezier>
void FXBezierSpline::UseBezier(int kind, const Bezier* bezier, const Bezier** active) {
    const float* first = std::begin(bezier->p)[0];
    *active = bezier;
    actKind = kind;
    onLine_ = false;
    std::copy_n(first, 3, actPoint);
    constant = std::equal(first, first + 3, *std::rbegin(bezier->p));
}

void FXBezierSpline::SetActPoints(int a, int b) {
    const int n = GetCnt();
    if (n < 2)
        return ForgetSegment();
    if (n == 2) {
        UseLine(PointAt(0), PointAt(1));
        actKind = 2;
        return;
    }
    a = a == -1 ? n - 1 : a;
    b = b == -1 ? n - 1 : b;
    if (a < 0 || a >= n || b < 0 || b >= n)
        return;
    actIndex = a;
    if (linear)
        UseLine(PointAt(a), PointAt(b));
    else if (beziers.IsEmpty()) // there was no memory for them
        ForgetSegment();
    else if (closed || (a != 0 && b != n - 1))
        UseBezier(4, &beziers[a], &actCubic);
    else
        UseBezier(3, a == 0 ? &startBezier : &endBezier, &actQuadratic);
}

void FXBezierSpline::Get(float* out, float t) const {
    if (useGet1 && actKind == 3 && !constant && !linear) // of cubic segments both forms are one
        return actQuadratic->Get1(out, t);
    FXBezierPhaseH h;
    h.Prepare(t);
    GetH(out, &h);
}

void FXBezierSpline::GetH(float* out, const FXBezierPhaseH* h) const {
    if (constant) {
        std::copy_n(actPoint, 3, out);
    } else if (linear && onLine_) {
        localAlong(out, actPoint, actDelta, h->t);
    } else if (actKind == 4) {
        actCubic->GetH(out, h);
    } else if (actKind == 3) {
        actQuadratic->GetH(out, h);
    } else if (points.count >= 3) {
        localAlong(out, PointAt(0), lineDelta, actKind == 2 ? h->t : 0.0f);
    } else {
        std::fill_n(out, 3, 0.0f);
    }
}

void FXBezierSpline::PrecomputePhasesLinear() {
    const int n = GetCnt();
    phases.RemoveAll();
    if (!phases.Realloc(n))
        return;
    for (int i = 0; i < n; ++i)
        phases.Push(n > 1 ? static_cast<float>(i) / static_cast<float>(n - 1) : 0.0f);
}

void FXBezierSpline::PrecomputePhasesLenght() {
    const int n = GetCnt();
    phases.RemoveAll();
    length = avgSegment = 0;
    if (n == 0 || !phases.Realloc(n))
        return;
    for (int i = 0; i < n; ++i) {
        if (i > 0)
            length += localDistance(PointAt(i), PointAt(i - 1));
        phases.Push(length);
    }
    if (closed)
        length += localDistance(PointAt(0), PointAt(n - 1));
    if (length > 0) // else all points are one
        for (float& phase : phases)
            phase /= length;
    const int segments = closed ? n : std::max(n - 1, 1);
    avgSegment = length / static_cast<float>(segments);
}

int FXBezierSpline::TestPhase(int i, int j, float phase) const {
    const int n = GetCnt();
    i = i > n - 1 ? 0 : i;
    j = j > n - 1 ? 0 : j;
    if (phases[i] > phase)
        return -1;
    return j != 0 && phase > phases[j] ? 1 : 0;
}

FXBezierSpline::Place FXBezierSpline::PlaceAt(float phase) const {
    const int n = GetCnt();
    phase = phase >= 0 ? std::min(phase, 1.0f) : 0.0f; // not a number: 0
    int i = std::clamp(actIndex, 0, n - 1);
    while (i < n - 1 && TestPhase(i, i + 1, phase) > 0)
        ++i;
    while (i > 0 && TestPhase(i, i + 1, phase) < 0)
        --i;
    if (!closed)
        i = std::min(i, n - 2); // the end of the last segment
    const int next = i + 1 > n - 1 ? 0 : i + 1;
    const float end = next == 0 ? 1.0f : phases[next];
    const float span = end - phases[i];
    return {i, next, span > 0 ? (phase - phases[i]) / span : 0.0f};
}

void FXBezierSpline::GetAll(float* out, float phase) {
    if (!HasPhases())
        return Get(out, 0);
    const Place at = PlaceAt(phase);
    if (at.i != actIndex)
        SetActPoints(at.i, at.next);
    Get(out, at.t);
}

float FXBezierSpline::GetAllPos(float phase) const {
    if (!HasPhases())
        return points.First();
    const Place at = PlaceAt(phase);
    const float x = *PointAt(at.i);
    return x + (*PointAt(at.next) - x) * at.t;
}
