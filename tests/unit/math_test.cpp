#include "math/matrix.h"
#include "math/vectors.h"
#include "package/package_data.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

namespace {

using Point = std::array<float, 3>;

// The point as OpenGL transforms it.
Point Transformed(const FXMatrix& m, const Point& p) {
    Point out;
    for (int row = 0; row < 3; ++row)
        out[row] = *m.M(0, row) * p[0] + *m.M(1, row) * p[1] + *m.M(2, row) * p[2] + *m.M(3, row);
    return out;
}

FXMatrix Numbered() {
    FXMatrix m;
    std::iota(std::begin(m.m), std::end(m.m), 0.1f);
    return m;
}

void ExpectNear(const Point& actual, const Point& expected, const char* what) {
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(actual[i], expected[i], 2e-4f) << what << " " << i;
}

TEST(Matrix, SettersMoveAPoint) {
    static const float kVector[3] = {5, 6, 7};
    const struct {
        const char* what;
        void (*set)(FXMatrix& m);
        Point expected; // of (2, 3, 4)
    } kCases[] = {
        {"fresh", [](FXMatrix& m) { m = FXMatrix(); }, {2, 3, 4}},
        {"identity", [](FXMatrix& m) { m.SetIdentity(); }, {2, 3, 4}},
        {"flip x", [](FXMatrix& m) { m.SetFlipX(); }, {-2, 3, 4}},
        {"flip y", [](FXMatrix& m) { m.SetFlipY(); }, {2, -3, 4}},
        {"flip z", [](FXMatrix& m) { m.SetFlipZ(); }, {2, 3, -4}},
        {"move", [](FXMatrix& m) { m.SetMove(kVector); }, {7, 9, 11}},
        {"scale", [](FXMatrix& m) { m.SetScale(kVector); }, {10, 18, 28}},
        {"x 90", [](FXMatrix& m) { m.SetRotateX(90); }, {2, -4, 3}},
        {"y 90", [](FXMatrix& m) { m.SetRotateY(90); }, {-4, 3, 2}},
        {"z 90", [](FXMatrix& m) { m.SetRotateZ(90); }, {3, -2, 4}},
        {"z -30", [](FXMatrix& m) { m.SetRotateZ(-30); }, {0.232051f, 3.598076f, 4}},
    };
    for (const auto& c : kCases) {
        FXMatrix m = Numbered(); // nothing of what was there may shine through
        c.set(m);
        ExpectNear(Transformed(m, {2, 3, 4}), c.expected, c.what);
        for (int column = 0; column < 4; ++column)
            EXPECT_EQ(*m.M(column, 3), column == 3 ? 1.0f : 0.0f) << c.what;
    }
}

TEST(Matrix, DegreesAreALittleShort) {
    FXMatrix m;
    m.SetRotateX(180);
    EXPECT_NEAR(*m.M(1, 2), 9.27e-5f, 1e-6f);
    EXPECT_EQ(*m.M(2, 1), -*m.M(1, 2));
}

TEST(Matrix, TheSecondFactorActsFirst) {
    FXMatrix scale, move, product;
    scale.SetScaleF(10, 10, 10);
    move.SetMoveF(1, 2, 3);
    product.Multiply(&scale, &move);
    ExpectNear(Transformed(product, {0, 0, 0}), {10, 20, 30}, "scale * move");
    product.Multiply(&move, &scale);
    ExpectNear(Transformed(product, {1, 1, 1}), {11, 12, 13}, "move * scale");

    const FXMatrix identity, any = Numbered();
    product.Multiply(&any, &identity);
    EXPECT_TRUE(product.Compare(&any));
    product.Multiply(&identity, &any);
    EXPECT_TRUE(product.Compare(&any));
}

TEST(Matrix, ComparesExactly) {
    const FXMatrix a = Numbered();
    for (int i = 0; i < 16; ++i)
        for (const float other : {std::nextafter(a.m[i], 100.0f), std::nanf("")}) {
            FXMatrix b;
            b.Copy(&a);
            EXPECT_TRUE(a.Compare(&b));
            b.m[i] = other;
            EXPECT_FALSE(a.Compare(&b)) << i;
        }
    FXMatrix nan;
    nan.Clear(std::nanf(""));
    EXPECT_FALSE(nan.Compare(&nan));
}

TEST(Matrix, RecordIsReadWholeOrNotAtAll) {
    const FXMatrix written = Numbered();
    FXMatrix read;
    std::FILE* file = std::tmpfile();
    ASSERT_TRUE(written.Save(file));
    EXPECT_EQ(std::ftell(file), 64);
    std::rewind(file);
    EXPECT_TRUE(read.Load(file));
    EXPECT_TRUE(read.Compare(&written));
    std::fseek(file, 1, SEEK_SET);
    EXPECT_FALSE(read.Load(file));
    EXPECT_TRUE(read.Compare(&written)) << "63 bytes change nothing";
    std::fclose(file);

    unsigned char bytes[65];
    std::memcpy(bytes + 1, written.m, 64);
    FXPackageData data;
    data.InitData(bytes, 65);
    data.ReadBlc(1);
    read.Clear(9);
    read.LoadC(nullptr, &data);
    EXPECT_TRUE(read.Compare(&written));
    EXPECT_EQ(data.left, 0);
    data.Reseek();
    data.ReadBlc(2);
    read.LoadC(nullptr, &data);
    const FXMatrix identity;
    EXPECT_TRUE(read.Compare(&identity));
    EXPECT_EQ(data.left, 63) << "nothing consumed";
}

TEST(Vectors, Interpolate) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const struct {
        float a, b, t, expected;
    } kCases[] = {
        {2, 4, 0.25f, 2.5f}, {2, 4, -1, 0}, {2, 4, 2, 6}, {1e8f, 0.1f, 1, 0.1f}, {0.1f, kInfinity, 0, 0.1f},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(fxVec1fCombineP(c.a, c.b, c.t), c.expected) << c.t;
        const float a[4] = {c.a, c.a, c.a, c.a}, b[4] = {c.b, c.b, c.b, c.b};
        void (*const kCombine[])(float*, const float*, const float*,
                                 float) = {fxVec2fCombineP, fxVec3fCombineP, fxVec4fCombineP};
        for (int n = 2; n <= 4; ++n) {
            float out[5] = {-7, -7, -7, -7, -7};
            kCombine[n - 2](out, a, b, c.t);
            for (int i = 0; i < 5; ++i)
                EXPECT_EQ(out[i], i < n ? c.expected : -7.0f) << n << " components, " << i;
        }
    }
    const float equal[4] = {0.1f, kInfinity, -kInfinity, 1e-40f};
    float out[4];
    fxVec4fCombineP(out, equal, equal, 0.5f);
    EXPECT_TRUE(std::equal(out, out + 4, equal)) << "equal components stay bit for bit";
}

TEST(Vectors, MultiplyComponentByComponentAlsoInPlace) {
    const float b[4] = {2, 3, 0.5f, -1};
    void (*const kCombine[])(float*, const float*, const float*) = {fxVec2fCombine, fxVec3fCombine,
                                                                    fxVec4fCombine};
    for (int n = 2; n <= 4; ++n) {
        float a[4] = {5, 5, 5, 5};
        kCombine[n - 2](a, a, b);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(a[i], i < n ? 5 * b[i] : 5.0f) << n << " components, " << i;
    }
}

} // namespace
