#include "image/material.h"
#include "scene/desk_grid.h"
#include "unit/test_mesh.h"

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

TEST(Desk, CoversTheScreen) {
    FXDesk desk;
    desk.Create(1, 1);
    EXPECT_EQ(Pairs(desk, &tagFXVertex::pos), (Values{-1, 1, -1, 1, 1, 1, -1, -1}));
    EXPECT_EQ(VertexOf(desk.mesh, 3).normal, (std::array<float, 3>{0, 0, -1}));
    const float grey[4] = {0.5f, 0.5f, 0.5f, 1};
    desk.UpdateColCol(grey);
    desk.Create(1, 1);
    EXPECT_EQ(Pairs(desk, &tagFXVertex::color), Values(8, 0.5f)) << "nothing new";
    desk.Create(3, 2);
    EXPECT_TRUE(desk.mesh.vertexCount == 12 && desk.mesh.indexCount == 36);
    EXPECT_EQ(Pairs(desk, &tagFXVertex::color), Values(24, 1));
    EXPECT_NEAR(desk.mesh.vertices[6].pos[0], 1 / 3.0f, 1e-6) << "the third of the second row";
    EXPECT_EQ(std::vector<int>(desk.mesh.indices + 30, desk.mesh.indices + 36),
              (std::vector<int>{6, 10, 7, 10, 11, 7}));
}

TEST(Desk, LaysItsPictureOverTheTexturesUsedPart) {
    FXMaterial material;
    material.extentU = 0.75f;
    material.extentV = 0.5f;
    FXDesk desk;
    desk.Create(1, 1);
    EXPECT_EQ(Pairs(desk, &tagFXVertex::tex), Values(8, 0)) << "without a material";
    desk.SetMaterial(&material);
    EXPECT_EQ(Pairs(desk, &tagFXVertex::tex), (Values{0, 0.75f, 0, 0.75f, 0, 0, 0.5f, 0.5f}));
}

} // namespace
