#include "image/material.h"
#include "scene/desk_grid.h"
#include "unit/test_mesh.h"

#include <climits>

namespace {

using Values = std::vector<float>;

// The first two components of something of every vertex: all the first, then all the second ones.
template <class Member> Values Pairs(const FXDesk& desk, Member member) {
    Values values;
    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < desk.mesh.vertexCount; ++i)
            values.push_back((desk.mesh.vertices[i].*member)[c]);
    return values;
}
Values Places(const FXDesk& desk) {
    return Pairs(desk, &tagFXVertex::pos);
}
Values Reds(const FXDesk& desk) {
    Values values = Pairs(desk, &tagFXVertex::color);
    values.resize(values.size() / 2);
    return values;
}

const Values kAtRest = {-1, 1, -1, 1, 1, 1, -1, -1};

TEST(Desk, CoversTheScreenAtRest) {
    FXDesk desk;
    desk.Create(1, 1);
    EXPECT_EQ(Places(desk), kAtRest);
    EXPECT_EQ(VertexOf(desk.mesh, 3).normal, (std::array<float, 3>{0, 0, -1}));
    const float faint[4] = {0.5f, 1, 1, 1};
    desk.UpdateColCol(faint);
    desk.Create(1, 1);
    EXPECT_EQ(Reds(desk), Values(4, 0.5f)) << "nothing new";
    desk.Create(3, 2);
    EXPECT_TRUE(desk.mesh.vertexCount == 12 && desk.mesh.indexCount == 36);
    EXPECT_EQ(Reds(desk), Values(12, 1));
    EXPECT_NEAR(desk.mesh.vertices[6].pos[0], 1 / 3.0f, 1e-6) << "the third of the second row";
    EXPECT_EQ(std::vector<int>(desk.mesh.indices + 30, desk.mesh.indices + 36),
              (std::vector<int>{6, 10, 7, 10, 11, 7}));
}

TEST(Desk, WithoutCellsIsEmpty) {
    for (const auto& [cols, rows] : {std::pair{0, 1}, {1, 0}, {-5, 3}, {INT_MAX, INT_MAX}, {INT_MAX, 1}}) {
        FXDesk desk;
        desk.Create(2, 2);
        desk.Create(cols, rows);
        EXPECT_TRUE(desk.mesh.vertexCount == 0 && desk.cols == 0 && desk.rows == 0) << cols << " x " << rows;
        desk.UpdatePos(true, true);
        desk.SetMaterial(nullptr);
        desk.Create(1, 1);
        EXPECT_EQ(Places(desk), kAtRest) << "and again";
    }
}

TEST(Desk, IsLaidOutAsAsked) {
    FXDesk desk;
    desk.Create(1, 1);
    desk.mesh.vertices[3].normal[2] = 7;
    desk.UpdatePosSkew(true, false, 0.5f, 0.25f);
    EXPECT_EQ(Places(desk), (Values{-0.5f, 1.5f, -1, 1, 1.25f, 1, -0.75f, -1}));
    desk.UpdatePosSkew1(true, false, 0.5f, 0.25f);
    EXPECT_EQ(Places(desk), (Values{-1, 1, -0.5f, 1.5f, 1, 1.25f, -1, -0.75f}));
    desk.UpdatePosPerspective(0.5f);
    EXPECT_EQ(Places(desk), (Values{-1, 1, -1.5f, 1.5f, 1, 1, -1, -1}));
    desk.UpdatePos(true, false);
    EXPECT_EQ(desk.mesh.vertices[3].normal[2], 7.0f) << "positions alone";
    desk.UpdatePosSkew(false, true, 9, 9);
    EXPECT_EQ(Places(desk), kAtRest) << "normals alone";
    EXPECT_EQ(desk.mesh.vertices[3].normal[2], -1.0f);
}

TEST(Desk, LaysItsPictureOverTheTexturesUsedPart) {
    FXMaterial material;
    material.extentU = 0.75f;
    material.extentV = 0.5f;
    FXDesk desk;
    desk.Create(1, 1);
    const auto tex = [&] { return Pairs(desk, &tagFXVertex::tex); };
    EXPECT_EQ(tex(), Values(8, 0)) << "without a material";
    desk.SetMaterial(&material);
    EXPECT_EQ(tex(), (Values{0, 0.75f, 0, 0.75f, 0, 0, 0.5f, 0.5f}));
    desk.UpdateTex1();
    EXPECT_EQ(tex(), (Values{0, 1, 0, 1, 0, 0, 1, 1}));
    desk.SetMaterial1(&material);
    EXPECT_EQ(tex(), (Values{0, 0.75f, 0, 0.75f, 0, 0, 0.5f, 0.5f}));
    desk.mesh.flipV = true;
    desk.UpdateTexRc(0.5f, 0, 1, 0.25f);
    EXPECT_EQ(tex(), (Values{0.375f, 0.75f, 0.375f, 0.75f, 0.5f, 0.5f, 0.375f, 0.375f}));
}

TEST(Desk, ShadesTowardsTheBottomRight) {
    FXDesk desk;
    desk.Create(2, 2);
    const float lt[4] = {1, 0, 0, 0}, rb[4] = {0, 1, 1, 1};
    desk.UpdateCol_LT_RB(lt, rb);
    EXPECT_EQ(Reds(desk), (Values{1, 1, 1, 1, 0.75f, 0.5f, 1, 0.5f, 0}));
}

TEST(Desk, OfOneCellIsPulledByItsCorners) {
    FXDesk desk;
    for (const auto& [cols, rows] : {std::pair{2, 1}, {1, 2}, {1, 1}}) {
        desk.Create(cols, rows);
        const Values before = Places(desk);
        for (const int corner : {0, 5, -1, cols * rows == 1 ? INT_MAX : 1})
            desk.SetVertexPos(corner, 7, 8);
        desk.SetVertexPos1(1, 1, 1, 0, 1);
        desk.SetVertexPos1(1, 1, 1, 1, -1);
        EXPECT_EQ(Places(desk), before) << cols << " x " << rows;
    }
    for (int corner = 1; corner <= 4; ++corner) {
        const float x = static_cast<float>(corner);
        desk.SetVertexPos(corner, x, 10 * x);
        desk.SetTexelPos(corner, -x, -10 * x);
    }
    desk.SetVertexPos1(1, 25, 150, 100, 200); // pixel 25 to the right, 150 down, of 100 x 200
    desk.SetTexelPos1(1, 25, 150, 100, 200);
    desk.SetTexelPos1(2, 1, 1, 0, 1);
    EXPECT_EQ(Places(desk), (Values{-0.5f, 2, 4, 3, -0.5f, 20, 40, 30}));
    EXPECT_EQ(Pairs(desk, &tagFXVertex::tex), (Values{0.25f, -2, -4, -3, 0.75f, -20, -40, -30}));
}

} // namespace
