#include "package/package_data.h"
#include "render/matrix.h"
#include "render/vectors.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <numeric>

namespace {

FXMatrix Numbered() {
    FXMatrix m;
    std::iota(std::begin(m.m), std::end(m.m), 0.1f);
    return m;
}

TEST(Matrix, MovesAPoint) {
    const float vector[3] = {5, 6, 7};
    FXMatrix moved, scaled;
    moved.SetMove(vector);
    scaled.SetScale(vector);
    const struct {
        const char* what;
        std::function<void(FXMatrix&)> set;
        float expected[3];
    } kCases[] = {{"identity", [](FXMatrix& m) { m.SetIdentity(); }, {2, 3, 4}},
                  {"flip z", [](FXMatrix& m) { m.SetFlipZ(); }, {2, 3, -4}},
                  // The second factor acts first.
                  {"scale * move", [&](FXMatrix& m) { m.Multiply(&scaled, &moved); }, {35, 54, 77}},
                  {"x 90", [](FXMatrix& m) { m.SetRotateX(90); }, {2, -4, 3}},
                  {"y 90", [](FXMatrix& m) { m.SetRotateY(90); }, {-4, 3, 2}},
                  {"z -30", [](FXMatrix& m) { m.SetRotateZ(-30); }, {0.232051f, 3.598076f, 4}}};
    for (const auto& c : kCases) {
        FXMatrix m = Numbered(); // nothing of what was there may remain
        c.set(m);
        for (int row = 0; row < 3; ++row) // (2, 3, 4) as OpenGL transforms it
            EXPECT_NEAR(*m.M(0, row) * 2 + *m.M(1, row) * 3 + *m.M(2, row) * 4 + *m.M(3, row),
                        c.expected[row], 5e-4f)
                << c.what << " " << row;
        for (int column = 0; column < 4; ++column)
            EXPECT_EQ(*m.M(column, 3), column == 3 ? 1.0f : 0.0f) << c.what;
    }
    FXMatrix m;
    m.SetRotateX(180);
    EXPECT_NEAR(*m.M(1, 2), 9.27e-5f, 1e-6f) << "degrees are a little short";
}

TEST(Matrix, RecordIsReadWholeOrNotAtAll) {
    const FXMatrix identity;
    FXMatrix written = Numbered(), read;
    FXPackageData data;
    data.InitData(reinterpret_cast<unsigned char*>(written.m), 64);
    read.LoadC(nullptr, &data);
    EXPECT_TRUE(read.Compare(&written) && data.left == 0);
    data.InitData(reinterpret_cast<unsigned char*>(written.m), 63);
    read.LoadC(nullptr, &data);
    EXPECT_TRUE(read.Compare(&identity) && data.left == 63) << "nothing consumed";
}

TEST(Vectors, AreInterpolated) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const std::array<float, 4> kCases[] = {{2, 4, 2, 6},
                                           {1e8f, 0.1f, 1, 0.1f},
                                           {0.1f, kInfinity, 0, 0.1f},
                                           {kInfinity, kInfinity, 0.5f, kInfinity}};
    for (const auto& [from, to, t, expected] : kCases) {
        const float a[4] = {from, from * 2, from * 3, from * 4}, b[4] = {to, to * 2, to * 3, to * 4};
        float between[4];
        fxVec4fCombineP(between, a, b, t);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(between[i], expected * static_cast<float>(i + 1)) << t;
    }
}

} // namespace
