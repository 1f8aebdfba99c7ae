// A smooth curve through points in space: a Bezier segment per pair of neighbours.
#pragma once

#include "anim/bezier.h"
#include "base/arrays.h"

// The tangent at a point is parallel to the line between its neighbours; its control points lie half the
// adjacent chord times `tension` away. Callers fill `points` (x, y, z each), then Precompute.
class FXBezierSpline {
public:
    void Destroy();
    void Precompute();
    void PrecomputeCtrlPoints();
    void PrecomputeBeziers();
    int GetCnt() const { return points.count / 3; }

    // The segment that Get evaluates: the one that starts at point a; -1 stands for the last point, b tells
    // the last segment of an open curve apart. Beyond the points: nothing changes.
    void SetActPoints(int a, int b);
    // t in 0..1 along the segment. Where none is aimed at: the first point, or the origin without points.
    void Get(float* out, float t) const;
    void GetH(float* out, const FXBezierPhaseH* h) const;

    // The phase of each point on the whole curve: even steps, or by the length of the chords.
    void PrecomputePhasesLinear();
    void PrecomputePhasesLenght();
    // A point at a phase of the whole curve, which is brought into 0..1 first. Steady phases are found at
    // once.
    void GetAll(float* out, float phase);
    // The x there on the straight line between the two points around the phase. The active segment stays.
    float GetAllPos(float phase) const;
    // Does the phase lie before (-1), within (0) or behind (+1) the segment from point i to j?
    int TestPhase(int i, int j, float phase) const;

    bool closed = false; // the last point leads back to the first
    float tension = 1.0f;
    bool useGet1 = false; // Get follows x along the ends of an open curve (FXBezier3::Get1)
    bool linear = false;  // segments are straight lines
    FXFloatArray points;
    FXFloatArray ctrlPoints; // per point: towards the previous, towards the next
    FXBezier3 startBezier;   // the ends of an open curve
    FXBezier3 endBezier;
    FXArray<FXBezier4> beziers; // from point i to i + 1, the last one back to the first
    FXFloatArray phases;
    float length = 0; // of all chords
    float avgSegment = 0;

    // The active segment. SetActPoints chooses it; whatever makes the segments anew forgets it.
    bool constant = false;   // all of it is the point actPoint
    int actKind = 0;         // 0 none, 2 the line between two points, 3 quadratic, 4 cubic
    int actIndex = 0;        // the point where it starts
    float actPoint[3] = {};  // where it starts, as linear and constant need it
    float actDelta[3] = {};  // where it ends, seen from there, as linear needs it
    float lineDelta[3] = {}; // of a curve of two points: the second, seen from the first
    const FXBezier3* actQuadratic = nullptr;
    const FXBezier4* actCubic = nullptr;

private:
    // The segment around a phase of the whole curve of two points at least, and where on it.
    struct Place {
        int i, next;
        float t;
    };
    Place PlaceAt(float phase) const;
    bool HasPhases() const { return GetCnt() >= 2 && phases.count >= GetCnt(); }

    const float* PointAt(int i) const { return &points.items[3 * i]; }
    void ForgetSegment();
    void UseLine(const float* a, const float* b);
    template <class Bezier> void UseBezier(int kind, const Bezier* bezier, const Bezier** active);

    bool onLine_ = false; // actPoint and actDelta are those of a line
};

// The two control points of a point between its neighbours: in (towards the previous), out (towards the
// next).
void fxSplineTangents(const float* previous, const float* point, const float* next, float tension, float* in,
                      float* out);
