#include "anim/spline_set.h"

#include "anim/bezier_spline.h"

#include <algorithm>
#include <climits>

bool FXSplineSet::Create(int splines, int points) {
    Destroy();
    if (splines <= 0 || points <= 0)
        return true;
    if (splines > INT_MAX / points || !points_.Realloc(splines * points) ||
        !segments_.Realloc(points > 2 ? splines : 0)) {
        Destroy();
        return false;
    }
    splines_ = splines;
    count_ = points;
    return true;
}

void FXSplineSet::Destroy() {
    points_.DestroyBuf();
    segments_.DestroyBuf();
    splines_ = count_ = lineFrom_ = lineTo_ = 0;
    kind_ = Kind::Line;
    closed = linear = false;
}

void FXSplineSet::SetPoint(int spline, int point, const float* xyz) {
    std::copy_n(xyz, 3, points_[point * splines_ + spline].v);
}

void FXSplineSet::SetActPoints(int a, int b) {
    if (count_ == 0)
        return;
    const auto inside = [this](int i) { return i == -1 ? count_ - 1 : std::clamp(i, 0, count_ - 1); };
    a = count_ == 2 ? 0 : inside(a); // two points are a line whichever way it is aimed
    b = count_ == 2 ? 1 : inside(b);
    if (count_ <= 2 || linear) {
        kind_ = Kind::Line;
        lineFrom_ = a;
        lineTo_ = b;
    } else if (!closed && a == 0) {
        AimQuadratic(0, 1);
    } else if (!closed && b == count_ - 1) {
        AimQuadratic(count_ - 2, count_ - 2);
    } else {
        AimCubic(a);
    }
}

// The first or the last segment of an open curve: its control point is the inner point's.
void FXSplineSet::AimQuadratic(int from, int control) {
    kind_ = Kind::Quadratic;
    const Vector* const previous = Points(control - 1);
    const Vector* const point = Points(control);
    const Vector* const next = Points((control + 1) % count_);
    const Vector* const first = Points(from);
    const Vector* const last = Points(from + 1);
    for (int i = 0; i < splines_; ++i) {
        float in[3];
        float out[3];
        fxSplineTangents(previous[i].v, point[i].v, next[i].v, tension, in, out);
        Segment& segment = segments_[i];
        segment = {};
        const bool standing = std::equal(first[i].v, first[i].v + 3, last[i].v);
        std::copy_n(first[i].v, 3, segment.c[0]);
        std::copy_n(standing ? first[i].v : control == from ? out : in, 3, segment.c[1]);
        std::copy_n(last[i].v, 3, segment.c[2]);
    }
}

void FXSplineSet::AimCubic(int from) {
    kind_ = Kind::Cubic;
    const int to = (from + 1) % count_;
    const Vector* const before = Points((from + count_ - 1) % count_);
    const Vector* const first = Points(from);
    const Vector* const last = Points(to);
    const Vector* const after = Points((to + 1) % count_);
    for (int i = 0; i < splines_; ++i) {
        Segment& segment = segments_[i];
        segment = {};
        std::copy_n(first[i].v, 3, segment.c[3]);
        if (std::equal(first[i].v, first[i].v + 3, last[i].v))
            continue;
        float unused[3];
        FXBezier4 bezier;
        std::copy_n(first[i].v, 3, bezier.p[0]);
        fxSplineTangents(before[i].v, first[i].v, last[i].v, tension, unused, bezier.p[1]);
        fxSplineTangents(first[i].v, last[i].v, after[i].v, tension, bezier.p[2], unused);
        std::copy_n(last[i].v, 3, bezier.p[3]);
        bezier.Precompute();
        for (int axis = 0; axis < 3; ++axis)
            for (int power = 0; power < 3; ++power)
                segment.c[power][axis] = bezier.k[axis][power];
    }
}

void FXSplineSet::GetH(int first, int count, float* out, int stride, const FXBezierPhaseH* h) const {
    if (kind_ == Kind::Line) {
        const Vector* from = Points(lineFrom_) + first;
        const Vector* to = Points(lineTo_) + first;
        for (int i = 0; i < count; ++i, out += stride)
            for (int axis = 0; axis < 3; ++axis)
                out[axis] = from[i].v[axis] + (to[i].v[axis] - from[i].v[axis]) * h->t;
        return;
    }
    const Segment* segment = segments_.items + first;
    const float weights[2][4] = {{h->u2, h->twoUt, h->t2, 0}, {h->t3, h->t2, h->t, 1}};
    const float* w = weights[kind_ == Kind::Cubic];
    for (int i = 0; i < count; ++i, ++segment, out += stride)
        for (int axis = 0; axis < 3; ++axis)
            out[axis] = segment->c[0][axis] * w[0] + segment->c[1][axis] * w[1] + segment->c[2][axis] * w[2] +
                        segment->c[3][axis] * w[3];
}
