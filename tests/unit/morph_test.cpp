// The curves, and the morph as it plays.
#include "anim/bezier_spline.h"
#include "anim/morph_animation.h"
#include "unit/scene_parts.h"

#include <climits>
#include <cmath>
#include <tuple>
#include <utility>

namespace {

using Point = std::array<float, 3>;

void ExpectNear(const Point& actual, const Point& expected) {
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(actual[axis], expected[axis], 1e-6f) << "axis " << axis;
}

void Fill(FXBezierSpline* spline, const std::vector<Point>& points, bool closed, bool linear, float tension) {
    spline->closed = closed;
    spline->linear = linear;
    spline->tension = tension;
    for (const Point& point : points)
        for (const float x : point)
            spline->points.Push(x);
    spline->Precompute();
    spline->PrecomputePhasesLenght();
}

TEST(Spline, SegmentsOfABentLine) {
    const float s = std::sqrt(0.125f); // half a chord along the diagonal
    const struct {
        const char* what;
        bool closed, linear;
        float tension;
        int a, b;
        Point begin, quarter, end;
    } cases[] = {
        {"the first", false, false, 1, 0, 1, {0, 0}, {(7 - 6 * s) / 16, -6 * s / 16}, {1, 0}},
        {"half its tension", false, false, 0.5f, 0, 1, {0, 0}, {(7 - 3 * s) / 16, -3 * s / 16}, {1, 0}},
        {"the last", false, false, 1, 1, 2, {1, 0}, {(16 + 6 * s) / 16, (1 + 6 * s) / 16}, {1, 1}},
        {"closed", true, false, 1, 1, 2, {1, 0}, {(68.5f + 27 * s) / 64, (10 + 27 * s) / 64}, {1, 1}},
        {"no tension", true, false, 0, 0, 1, {0, 0}, {10 / 64.0f, 0}, {1, 0}},
        {"straight", true, true, 1, -1, 0, {1, 1}, {0.75f, 0.75f}, {0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        FXBezierSpline spline;
        Fill(&spline, {{0, 0}, {1, 0}, {1, 1}}, c.closed, c.linear, c.tension);
        spline.SetActPoints(c.a, c.b);
        for (const auto& [t, expected] : {std::pair{0.0f, c.begin}, {0.25f, c.quarter}, {1.0f, c.end}}) {
            Point point;
            spline.Get(point.data(), t);
            ExpectNear(point, expected);
        }
    }
}

TEST(Spline, IsEvaluatedOverItsWholeLength) {
    FXBezierSpline spline;
    Fill(&spline, {{0}, {-1}, {1}}, true, true, 1); // phases: 0, 0.25, 0.75
    EXPECT_TRUE(spline.length == 4 && std::abs(spline.avgSegment - 4 / 3.0f) < 1e-6f);
    const std::pair<float, float> kCases[] = {{0.75f, 1},     {0.5f, 0}, {1, 0}, {0.125f, -0.5f},
                                              {0.875f, 0.5f}, {-1, 0},   {2, 0}, {std::nanf(""), 0}};
    for (const auto& [phase, x] : kCases) { // in this order: the walk starts where the last one ended
        Point point;
        spline.GetAll(point.data(), phase);
        ExpectNear(point, {x});
    }
}

void AddKeyFrame(FXAnim* anim, int milliseconds, FXModel* model) {
    anim->models.Push(model);
    anim->frameTimes.Push(milliseconds);
    anim->frameNames.Push(std::to_string(milliseconds).c_str());
}

// Key frames with a triangle each, at x = 0, 4, 8 ...
void Make(FXAnim* anim, const std::vector<int>& milliseconds) {
    anim->Destroy();
    for (const int time : milliseconds)
        AddKeyFrame(anim, time, NewModel({TriangleAt(4 * static_cast<float>(anim->models.count))}));
}

class Morph : public testing::Test {
protected:
    // What a frame at that time shows: where the first vertex is.
    float Draw(double time) {
        device_.gl.drawn.clear();
        anim_.OnRender(&device_.gl, time);
        return device_.gl.drawn.empty() ? -99 : device_.gl.drawn[0].mesh->vertices[0].pos[0];
    }
    tagFXVertex& First(int frame) { return anim_.models[frame]->meshes[0]->vertices[0]; }

    RecordedDevice<SceneDevice> device_;
    FXAnim anim_;
};

TEST_F(Morph, KeyFramesLastTheirTimes) {
    Make(&anim_, {1000, 0, 250, -7});
    for (const auto& [frame, seconds] :
         {std::pair{0, 1.0}, {1, 0.5}, {2, 0.25}, {3, 0.5}, {-1, 1.0}, {INT_MAX, 0.5}}) {
        anim_.frame = frame;
        anim_.ComputeFrameDuration();
        EXPECT_EQ(anim_.frameDuration, seconds) << frame;
    }
}

TEST_F(Morph, PlaysAsItsFlagsSay) {
    struct Step {
        double time;
        int frame;
        float x; // of the vertex
        bool playing = true;
    };
    const std::pair<std::string, std::vector<Step>> cases[] = {
        // interpolated, loop, there and back, backwards
        // At the last key frame there is nowhere to go.
        {"i", {{0, 0, 0}, {0.25, 0, 1}, {1, 1, 4}, {1.5, 1, 6}, {2, 2, 6, false}, {9, 2, 6, false}}},
        // Key frame by key frame, the last one is shown for its time.
        {"", {{0, 0, 0}, {0.9, 0, 0}, {1, 1, 4}, {2, 2, 8}, {2.9, 2, 8}, {3, 2, 8, false}}},
        {"il", {{0.25, 0, 1}, {1.25, 1, 5}, {2, 2, 8}, {2.25, 2, 6}, {3, 0, 0}, {3.5, 0, 2}}},
        {"ilt", {{0.25, 0, 1}, {1.25, 1, 5}, {2.25, 2, 7}, {3.25, 1, 3}, {4.25, 0, 1}, {5.25, 1, 5}}},
        {"ilb", {{0.25, 0, 2}, {1.25, 2, 7}, {2.25, 1, 3}, {3.25, 0, 2}}},
        {"b", {{0, 0, 0}, {1, 0, 0, false}}},
        {"lt", {{0, 0, 0}, {1, 1, 4}, {2, 2, 8}, {3, 1, 4}, {4, 0, 0}, {5, 1, 4}}}};
    for (const auto& [flags, steps] : cases) {
        const auto has = [&, &flags = flags](char flag) { return flags.find(flag) != std::string::npos; };
        Make(&anim_, {1000, 1000, 1000});
        anim_.loop = has('l');
        anim_.pingPong = has('t');
        anim_.linear = true;
        anim_.UpdateInterpolation(has('i'), true);
        anim_.backwards = has('b');
        anim_.StartAnim(0);
        for (const auto& [time, frame, x, playing] : steps) {
            EXPECT_NEAR(Draw(time), x, 1e-5) << flags << " at " << time;
            EXPECT_TRUE(anim_.frame == frame && anim_.playing == playing) << flags << " at " << time;
        }
    }
}

TEST_F(Morph, OvershootCountsForTheNextKeyFrameUnlessItIsLong) {
    for (const auto& [time, start] :
         {std::pair{1.25, 1.125}, {1.0, 1.0}, {2.0, 1.5}, {2.0625, 2.0625}, {3.5, 3.5}}) {
        Make(&anim_, {1000, 500, 500});
        anim_.StartAnim(0);
        Draw(time);
        EXPECT_EQ(anim_.frame, 1) << "one at a time";
        EXPECT_EQ(anim_.startTime, start) << time;
    }
}

TEST_F(Morph, MovesPositionsAndNormalsAlongTheSplines) {
    for (const bool closed : {true, false})
        for (const bool ofNormals : {true, false}) {
            const auto moved = [=](const tagFXVertex& v) { return ofNormals ? v.normal : v.pos; };
            Make(&anim_, {1000, 1000, 1000, 1000});
            First(1).pos[1] = First(2).normal[1] = 6; // no straight line
            FXBezierSpline spline;
            for (int i = 0; i < 12; ++i)
                spline.points.Push(moved(First(i / 3))[i % 3]);
            spline.closed = closed;
            spline.tension = anim_.tension = 0.5f;
            spline.Precompute();
            anim_.pingPong = !closed;
            anim_.UpdateInterpolation(true, true);
            anim_.StartAnim(0);
            for (int quarter = 0; quarter < (closed ? 16 : 12); ++quarter) {
                Draw(quarter * 0.25);
                float expected[3];
                spline.SetActPoints(quarter / 4, (quarter / 4 + 1) % 4);
                spline.Get(expected, static_cast<float>(quarter % 4) * 0.25f);
                for (int axis = 0; axis < 3; ++axis)
                    EXPECT_NEAR(moved(anim_.imodel.meshes[0]->vertices[0])[axis], expected[axis], 1e-5)
                        << closed << ofNormals << quarter;
            }
        }
}

TEST_F(Morph, OfManyVerticesMovesThemAll) {
    for (const float x : {0.0f, 8.0f}) {
        std::vector<TestVertex> many(1500);
        for (std::size_t i = 0; i < many.size(); ++i)
            many[i].pos[1] = static_cast<float>(i) + x;
        AddKeyFrame(&anim_, 1000, NewModel({TriangleAt(x), many}));
    }
    anim_.UpdateInterpolation(true, true);
    anim_.SetActPhase(0.25f);
    EXPECT_EQ(anim_.imodel.meshes[0]->vertices[0].pos[0], 2.0f);
    for (int i = 0; i < 1500; ++i)
        ASSERT_EQ(anim_.imodel.meshes[1]->vertices[i].pos[1], static_cast<float>(i + 2));
    EXPECT_FALSE(FXSplineSet().Create(INT_MAX / 2, 3)) << "more than can be";
}

TEST_F(Morph, WhoseKeyFramesDoNotAgreeEndsAllTheSame) {
    const std::tuple<const char*, bool, void (*)(FXAnim&)> kCases[] = {
        // is it drawn when interpolated
        {"no key frames", false, [](FXAnim& a) { a.Destroy(); }},
        {"no times", false, [](FXAnim& a) { a.frameTimes.RemoveAll(); }},
        {"one key frame", true, [](FXAnim& a) { Make(&a, {700}); }},
        {"times without models", false, [](FXAnim& a) { a.Destroy(), a.frameTimes.Push(300); }},
        {"more times than models", true, [](FXAnim& a) { a.frameTimes.Push(300), a.frameTimes.Push(300); }},
        {"more models than times", true, [](FXAnim& a) { a.frameTimes.count = 2; }},
        {"a mesh too many", true, [](FXAnim& a) { a.models[1]->meshes.Push(new FXMesh); }},
        {"a mesh that is none", true, [](FXAnim& a) { a.models[2]->meshes.Push(nullptr); }},
        {"a vertex too few", true, [](FXAnim& a) { a.models[1]->meshes[0]->vertexCount = 2; }},
        {"no first model", false, [](FXAnim& a) { delete std::exchange(a.models[0], nullptr); }},
        {"no last model", true, [](FXAnim& a) { delete std::exchange(a.models[2], nullptr); }}};
    for (const auto& [what, drawn, spoil] : kCases)
        for (const bool interpolate : {true, false}) {
            Make(&anim_, {700, 700, 700});
            spoil(anim_);
            anim_.loop = false;
            anim_.UpdateInterpolation(interpolate, true);
            anim_.StartAnim(0);
            for (int i = 0; i < 20; ++i)
                EXPECT_TRUE((Draw(i * 0.4) > -99) == drawn || !interpolate) << what;
            EXPECT_FALSE(anim_.playing) << what;
        }
    for (const int more : {3, 7}) { // as many vertices, but in other meshes; more of them
        anim_.Destroy();
        AddKeyFrame(&anim_, 500, NewModel({TriangleAt(0), std::vector<TestVertex>(5)}));
        AddKeyFrame(&anim_, 500, NewModel({std::vector<TestVertex>(5), std::vector<TestVertex>(more)}));
        anim_.UpdateInterpolation(true, true);
        EXPECT_EQ(anim_.posSplines.GetCnt(), 0);
    }
}

TEST_F(Morph, IsFittedByOneKeyFrame) {
    Make(&anim_, {1, 1, 1});
    anim_.models.Push(nullptr);
    for (const int frame : {2, 3})
        anim_.ComputeFrontTexCoords(frame, -1);
    EXPECT_EQ(VertexOf(*anim_.models[0]->meshes[0], 0).tex, (std::array{4.5f, 0.5f})) << "as in the last one";
    // Its box is 5..9, flat in y, and 0..4.
    MakeMesh(anim_.models[2]->meshes[0], {{{8, 5, 4}}, {{9, 5, 0}}}, {});
    AddMesh(anim_.models[2], {{{5, 5, 0}}, {{7, 5, 0}}});
    for (const int frame : {-1, 3, 4, 2})
        anim_.UnitizeStretch1(frame);
    EXPECT_EQ(VertexOf(*anim_.models[2]->meshes[0], 0).pos, (Point{0.5f, 0, 2}));
    EXPECT_EQ(VertexOf(*anim_.models[0]->meshes[0], 0).pos, (Point{-3.5f, -5, -2}));
    First(2).normalSum[1] = 3;
    anim_.Normalize(-1, false);
    EXPECT_EQ(First(2).normal[1], 1.0f);
}

} // namespace
