#include "anim/bezier_spline.h"
#include "anim/spline_set.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cmath>
#include <random>
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

TEST(SplineSet, GivesWhatTheSplinesGive) {
    constexpr int kSplines = 7;
    std::mt19937 random(1);
    std::uniform_real_distribution<float> place(-1, 1);
    for (const int points : {1, 2, 3, 6})
        for (int variant = 0; variant < 8; ++variant) {
            const Shape shape = {(variant & 1) != 0, (variant & 2) != 0, (variant & 4) != 0 ? 0.4f : 1.0f};
            FXBezierSpline splines[kSplines];
            FXSplineSet set;
            ASSERT_TRUE(set.Create(kSplines, points));
            set.closed = shape.closed;
            set.linear = shape.linear;
            set.tension = shape.tension;
            for (int s = 0; s < kSplines; ++s) {
                std::vector<Point> through(static_cast<std::size_t>(points));
                for (Point& point : through)
                    point = {place(random), place(random), place(random)};
                if (s == 3 && points > 1)
                    through[1] = through[0]; // stands still for a segment
                Fill(&splines[s], through, shape);
                for (int p = 0; p < points; ++p)
                    set.SetPoint(s, p, through[static_cast<std::size_t>(p)].data());
            }
            for (int from = 0; from < points; ++from) {
                SCOPED_TRACE(testing::Message() << points << " points, variant " << variant << ", " << from);
                const int to = (from + 1) % points;
                FXBezierPhaseH h;
                h.Prepare(0.3f);
                float out[kSplines][4] = {}; // the last float of each is not the set's
                set.SetActPoints(from, to);
                set.GetH(2, kSplines - 2, out[2], 4, &h);
                set.GetH(0, 2, out[0], 4, &h);
                for (int s = 0; s < kSplines; ++s) {
                    splines[s].SetActPoints(from, to);
                    ExpectNear({out[s][0], out[s][1], out[s][2]}, At(splines[s], 0.3f));
                    EXPECT_EQ(out[s][3], 0.0f);
                }
            }
        }
    FXSplineSet set;
    EXPECT_TRUE(set.Create(3, 3));
    EXPECT_FALSE(set.Create(INT_MAX / 2, 3)) << "more than can be";
    EXPECT_EQ(set.GetCnt(), 0);
}

} // namespace
