// Many splines of as many points each, evaluated together: one per vertex of a morph.
#pragma once

#include "anim/bezier.h"
#include "base/arrays.h"

// Gives for each spline what FXBezierSpline gives (but for the last bits of a segment that is one point),
// from flat arrays: a morph of a million vertices moves as fast as the memory does. All splines are aimed at
// the same segment and evaluated at the same phase. Nothing is allocated after Create.
class FXSplineSet {
public:
    // Room for `splines` curves through `points` points each, all at the origin. False without memory.
    bool Create(int splines, int points);
    void Destroy();
    int GetCnt() const { return splines_; }

    void SetPoint(int spline, int point, const float* xyz);
    // The active segment, as FXBezierSpline::SetActPoints. Beyond the points: the last one. To be called once
    // the points stand, and when one of the settings below has changed.
    void SetActPoints(int a, int b);
    // Splines first .. first + count - 1; their values go to out, out + stride, ... (in floats).
    void GetH(int first, int count, float* out, int stride, const FXBezierPhaseH* h) const;

    bool closed = false;
    bool linear = false;
    float tension = 1.0f;

private:
    struct Vector {
        float v[3];
    };
    struct Segment {
        float c[4][3]; // quadratic: its three points; cubic: of t^3, t^2, t and 1
    };
    enum class Kind { Line, Quadratic, Cubic };

    const Vector* Points(int point) const {
        return points_.items + static_cast<std::ptrdiff_t>(point) * splines_;
    }
    void AimQuadratic(int from, int control);
    void AimCubic(int from);

    int splines_ = 0;
    int count_ = 0;          // points of each
    FXArray<Vector> points_; // by point, then by spline
    FXArray<Segment> segments_;
    Kind kind_ = Kind::Line;
    int lineFrom_ = 0;
    int lineTo_ = 0;
};
