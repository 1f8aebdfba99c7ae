#include "anim/bezier_spline.h"

#include <algorithm>
#include <cmath>

namespace {

float localDistance(const float* a, const float* b) {
    const float x = a[0] - b[0];
    const float y = a[1] - b[1];
    const float z = a[2] - b[2];
    return std::sqrt(x * x + y * y + z * z);
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
    beziers.clear();
    phases.DestroyBuf();
    actIndex = 0;
    actKind_ = Kind::Point;
    std::fill_n(actPoint_, 3, 0.0f);
}

void FXBezierSpline::Precompute() {
    actIndex = 0;
    PrecomputeCtrlPoints();
    PrecomputeBeziers();
    SetActPoints(0, 1);
}

void FXBezierSpline::PrecomputeCtrlPoints() {
    const int n = GetCnt();
    ctrlPoints.RemoveAll();
    if (n <= 2 || !ctrlPoints.Realloc(6 * n))
        return;
    ctrlPoints.count = 6 * n;
    for (int i = 0; i < n; ++i)
        fxSplineTangents(PointAt((i + n - 1) % n), PointAt(i), PointAt((i + 1) % n), tension,
                         &ctrlPoints[6 * i], &ctrlPoints[6 * i + 3]);
}

void FXBezierSpline::PrecomputeBeziers() {
    const int n = GetCnt();
    actKind_ = Kind::Point; // the active segment is gone
    beziers.clear();
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
    beziers.resize(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        const int next = (i + 1) % n;
        FXBezier4& bezier = beziers[static_cast<std::size_t>(i)];
        set(bezier, {PointAt(i), out(i), in(next), PointAt(next)});
        bezier.Precompute();
    }
}

void FXBezierSpline::UseLine(const float* a, const float* b) {
    actKind_ = std::equal(a, a + 3, b) ? Kind::Point : Kind::Line;
    for (int axis = 0; axis < 3; ++axis) {
        actPoint_[axis] = a[axis];
        actDelta_[axis] = b[axis] - a[axis];
    }
}

void FXBezierSpline::SetActPoints(int a, int b) {
    const int n = GetCnt();
    if (n == 2)
        return UseLine(PointAt(0), PointAt(1));
    if (n < 2) {
        actKind_ = Kind::Point;
        if (n == 1)
            std::copy_n(PointAt(0), 3, actPoint_);
        return;
    }
    a = a == -1 ? n - 1 : a;
    b = b == -1 ? n - 1 : b;
    if (a < 0 || a >= n || b < 0 || b >= n)
        return;
    actIndex = a;
    if (linear || beziers.empty())
        return UseLine(PointAt(a), PointAt(b));
    const float* first = nullptr;
    const float* last = nullptr;
    if (!closed && (a == 0 || b == n - 1)) {
        actQuadratic_ = a == 0 ? &startBezier : &endBezier;
        actKind_ = Kind::Quadratic;
        first = actQuadratic_->p[0];
        last = actQuadratic_->p[2];
    } else {
        actCubic_ = &beziers[static_cast<std::size_t>(a)];
        actKind_ = Kind::Cubic;
        first = actCubic_->p[0];
        last = actCubic_->p[3];
    }
    std::copy_n(first, 3, actPoint_);
    if (std::equal(first, first + 3, last))
        actKind_ = Kind::Point;
}

void FXBezierSpline::Get(float* out, float t) const {
    FXBezierPhaseH h;
    h.Prepare(t);
    GetH(out, &h);
}

void FXBezierSpline::GetH(float* out, const FXBezierPhaseH* h) const {
    switch (actKind_) {
    case Kind::Point:
        std::copy_n(actPoint_, 3, out);
        break;
    case Kind::Line:
        for (int axis = 0; axis < 3; ++axis)
            out[axis] = actPoint_[axis] + actDelta_[axis] * h->t;
        break;
    case Kind::Quadratic:
        actQuadratic_->GetH(out, h);
        break;
    case Kind::Cubic:
        actCubic_->GetH(out, h);
        break;
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

void FXBezierSpline::GetAll(float* out, float phase) {
    const int n = GetCnt();
    if (n < 2 || phases.count < n)
        return Get(out, 0);
    phase = phase >= 0 ? std::min(phase, 1.0f) : 0.0f; // not a number: 0
    int i = std::clamp(actIndex, 0, n - 1);
    while (i < n - 1 && TestPhase(i, i + 1, phase) > 0)
        ++i;
    while (i > 0 && TestPhase(i, i + 1, phase) < 0)
        --i;
    if (!closed)
        i = std::min(i, n - 2); // the end of the last segment
    const int next = i + 1 > n - 1 ? 0 : i + 1;
    if (i != actIndex)
        SetActPoints(i, next);
    const float end = next == 0 ? 1.0f : phases[next];
    const float span = end - phases[i];
    Get(out, span > 0 ? (phase - phases[i]) / span : 0.0f);
}
