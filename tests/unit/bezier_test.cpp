#include "anim/bezier_spline.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace {

using Point = std::array<float, 3>;

void ExpectNear(const Point& actual, const Point& expected) {
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(actual[axis], expected[axis], 1e-6f) << "axis " << axis;
}

struct Shape {
    bool closed = false;
    bool linear = false;
    float tension = 1;
};

void Fill(FXBezierSpline* spline, const std::vector<Point>& points, const Shape& shape = {}) {
    spline->closed = shape.closed;
    spline->linear = shape.linear;
    spline->tension = shape.tension;
    for (const Point& point : points)
        for (const float x : point)
            spline->points.Push(x);
    spline->Precompute();
    spline->PrecomputePhasesLenght();
}

Point At(const FXBezierSpline& spline, float t) {
    Point point;
    spline.Get(point.data(), t);
    return point;
}

TEST(Spline, SegmentsOfABentLine) {
    const float s = std::sqrt(0.125f); // half a chord along the diagonal
    const struct {
        const char* what;
        Shape shape;
        int a, b;
        Point begin, quarter, end;
    } cases[] = {
        {"the first", {}, 0, 1, {0, 0}, {(7 - 6 * s) / 16, -6 * s / 16}, {1, 0}},
        {"half its tension", {false, false, 0.5f}, 0, 1, {0, 0}, {(7 - 3 * s) / 16, -3 * s / 16}, {1, 0}},
        {"the last", {}, 1, 2, {1, 0}, {(16 + 6 * s) / 16, (1 + 6 * s) / 16}, {1, 1}},
        {"closed", {true}, 1, 2, {1, 0}, {(68.5f + 27 * s) / 64, (10 + 27 * s) / 64}, {1, 1}},
        {"no tension", {true, false, 0}, 0, 1, {0, 0}, {10 / 64.0f, 0}, {1, 0}},
        {"straight", {true, true}, -1, 0, {1, 1}, {0.75f, 0.75f}, {0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        FXBezierSpline spline;
        Fill(&spline, {{0, 0}, {1, 0}, {1, 1}}, c.shape);
        spline.SetActPoints(c.a, c.b);
        ExpectNear(At(spline, 0), c.begin);
        ExpectNear(At(spline, 0.25f), c.quarter);
        ExpectNear(At(spline, 1), c.end);
    }
}

TEST(Spline, PhasesFollowTheChords) {
    FXBezierSpline spline;
    Fill(&spline, {{0}, {1}, {3}}, {.closed = true});
    EXPECT_EQ(std::vector<float>(spline.phases.begin(), spline.phases.end()),
              (std::vector<float>{0, 1 / 6.0f, 0.5f}));
    EXPECT_TRUE(spline.length == 6 && spline.avgSegment == 2);
}

TEST(Spline, IsEvaluatedOverItsWholeLength) {
    FXBezierSpline spline;
    Fill(&spline, {{0}, {-1}, {1}}, {true, true}); // phases: 0, 0.25, 0.75
    const std::pair<float, float> kCases[] = {{0.75f, 1},     {0.5f, 0}, {1, 0}, {0.125f, -0.5f},
                                              {0.875f, 0.5f}, {-1, 0},   {2, 0}, {std::nanf(""), 0}};
    for (const auto& [phase, x] : kCases) { // in this order: the walk starts where the last one ended
        Point point;
        spline.GetAll(point.data(), phase);
        ExpectNear(point, {x});
    }
}

} // namespace
