// Bezier segments in space (the Bernstein form; see Farin, Curves and Surfaces for CAGD, chapter 4).
#pragma once

// The powers of a phase t, computed once for all the segments that are evaluated at it.
struct FXBezierPhaseH {
    void Prepare(float phase);

    float t = 0;
    float t2 = 0;
    float t3 = 0;
    float u = 1;     // 1 - t
    float twoUt = 0; // 2 (1 - t) t
    float u2 = 1;    // (1 - t)^2
};

// Quadratic: three points.
struct FXBezier3 {
    void Get(float* out, float t) const;
    void GetH(float* out, const FXBezierPhaseH* h) const;
    // The point whose x lies t of the way from the first point's to the last one's; where x turns back or
    // stands still, the point at t. t in 0..1.
    void Get1(float* out, float t) const;
    void Get1H(float* out, const FXBezierPhaseH* h) const { GetH(out, h); }

    float p[3][3] = {};
};

// Cubic: four points, and the coefficients of its polynomial once Precompute has made them.
struct FXBezier4 {
    void Precompute();
    void Get(float* out, float t) const;
    void GetH(float* out, const FXBezierPhaseH* h) const;
    void Get1(float* out, float t) const { Get(out, t); }
    void Get1H(float* out, const FXBezierPhaseH* h) const { GetH(out, h); }

    float p[4][3] = {};
    float k[3][3] = {}; // per axis: of t^3, t^2 and t
};
