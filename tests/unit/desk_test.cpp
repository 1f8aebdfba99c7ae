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
    EXPECT_EQ(std::vector<int>(desk.mesh.indices, desk.mesh.indices + 6),
              (std::vector<int>{0, 2, 1, 2, 3, 1}));
    EXPECT_EQ(desk.mesh.colorMode, 0);
    const float faint[4] = {0.5f, 1, 1, 1};
    desk.UpdateColCol(faint);
    desk.Create(1, 1);
    EXPECT_EQ(Reds(desk), Values(4, 0.5f)) << "nothing new";
    desk.Create(3, 2);
    EXPECT_TRUE(desk.mesh.vertexCount == 12 && desk.mesh.indexCount == 36);
    EXPECT_EQ(Reds(desk), Values(12, 1));
    EXPECT_NEAR(desk.mesh.vertices[6].pos[0], 1 / 3.0f, 1e-6) << "the third of the second row";
    const int* last = desk.mesh.indices + 30;
    EXPECT_EQ(std::vector<int>(last, last + 6), (std::vector<int>{6, 10, 7, 10, 11, 7}));
}

TEST(Desk, WithoutCellsIsEmpty) {
    for (const auto& [cols, rows] :
         {std::pair{0, 0}, {0, 1}, {1, 0}, {-5, 3}, {INT_MAX, INT_MAX}, {INT_MAX, 1}}) {
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

TEST(Desk, Layouts) {
    using Lay = void (*)(FXDesk & d);
    const struct {
        Lay lay;
        Values places;
    } kCases[] = {
        {[](FXDesk& d) { d.UpdatePosSkew(true, false, 0.5f, 0.25f); },
         {-0.5f, 1.5f, -1, 1, 1.25f, 1, -0.75f, -1}},
        {[](FXDesk& d) { d.UpdatePosSkew1(true, false, 0.5f, 0.25f); },
         {-1, 1, -0.5f, 1.5f, 1, 1.25f, -1, -0.75f}},
        {[](FXDesk& d) { d.UpdatePosPerspective(0.5f); }, {-1, 1, -1.5f, 1.5f, 1, 1, -1, -1}},
        {[](FXDesk& d) { d.UpdatePos(true, false); }, kAtRest},
        {[](FXDesk& d) { d.UpdatePosSkew(false, true, 9, 9); }, kAtRest}, // the normals alone
    };
    FXDesk desk;
    desk.Create(1, 1);
    for (const auto& c : kCases) {
        desk.mesh.vertices[3].normal[2] = 7;
        c.lay(desk);
        EXPECT_EQ(Places(desk), c.places) << &c - kCases;
        EXPECT_EQ(desk.mesh.vertices[3].normal[2], &c - kCases == 4 ? -1.0f : 7.0f);
    }
}

TEST(Desk, LaysItsPictureOverTheTexturesUsedPart) {
    using Lay = void (*)(FXDesk & d);
    const struct {
        bool flipV, hasMaterial;
        Values tex;
        Lay lay;
    } kCases[] = {
        {false, true, {0, 0.75f, 0, 0.75f, 0, 0, 0.5f, 0.5f}, [](FXDesk&) {}},
        {true, true, {0, 0.75f, 0, 0.75f, 0.5f, 0.5f, 0, 0}, [](FXDesk&) {}},
        {false, false, Values(8, 0), [](FXDesk&) {}},
        {false, true, {0, 1, 0, 1, 0, 0, 1, 1}, [](FXDesk& d) { d.UpdateTex1(); }},
        {false,
         true,
         {0, 0.75f, 0, 0.75f, 0, 0, 0.5f, 0.5f},
         [](FXDesk& d) { d.UpdateTex1(), d.SetMaterial1(d.mesh.material); }},
        {true,
         true,
         {0.375f, 0.75f, 0.375f, 0.75f, 0.5f, 0.5f, 0.375f, 0.375f},
         [](FXDesk& d) { d.UpdateTexRc(0.5f, 0, 1, 0.25f); }},
    };
    FXMaterial material;
    material.extentU = 0.75f;
    material.extentV = 0.5f;
    FXDesk desk;
    desk.Create(1, 1);
    for (const auto& c : kCases) {
        desk.mesh.flipV = c.flipV;
        desk.SetMaterial(c.hasMaterial ? &material : nullptr);
        c.lay(desk);
        EXPECT_EQ(Pairs(desk, &tagFXVertex::tex), c.tex) << &c - kCases;
    }
}

TEST(Desk, ShadesTowardsTheBottomRight) {
    FXDesk desk;
    desk.Create(2, 2);
    const float lt[4] = {1, 0, 0, 0};
    const float rb[4] = {0, 1, 1, 1};
    desk.UpdateCol_LT_RB(lt, rb);
    EXPECT_EQ(Reds(desk), (Values{1, 1, 1, 1, 0.75f, 0.5f, 1, 0.5f, 0}));
}

TEST(Desk, OfOneCellIsPulledByItsCorners) {
    using Set = void (FXDesk::*)(int, float, float);
    using Set1 = void (FXDesk::*)(int, int, int, int, int);
    const struct {
        float (tagFXVertex::*pair)[2]; // null: the position
        Set set;
        Set1 set1;
        float x, y; // of pixel 25 to the right, 150 down, of 100 x 200
    } kCases[] = {{nullptr, &FXDesk::SetVertexPos, &FXDesk::SetVertexPos1, -0.5f, -0.5f},
                  {&tagFXVertex::tex, &FXDesk::SetTexelPos, &FXDesk::SetTexelPos1, 0.25f, 0.75f}};
    for (const auto& c : kCases) {
        const auto values = [&](const FXDesk& desk) {
            return c.pair != nullptr ? Pairs(desk, c.pair) : Places(desk);
        };
        FXDesk desk;
        desk.Create(1, 1);
        const Values before = values(desk);
        desk.mesh.vertices[1].pos[2] = 5;
        for (const int corner : {0, 5, -1, INT_MAX}) {
            (desk.*c.set)(corner, 7, 8);
            (desk.*c.set1)(1, corner, 1, corner > 0 ? 0 : 1, corner > 0 ? 1 : -1); // no such size
        }
        EXPECT_EQ(values(desk), before);
        for (int corner = 1; corner <= 4; ++corner)
            (desk.*c.set)(corner, static_cast<float>(corner), static_cast<float>(10 * corner));
        EXPECT_EQ(values(desk), (Values{1, 2, 4, 3, 10, 20, 40, 30}));
        EXPECT_EQ(desk.mesh.vertices[1].pos[2], 5.0f);
        (desk.*c.set1)(3, 25, 150, 100, 200);
        EXPECT_EQ(values(desk), (Values{1, 2, 4, c.x, 10, 20, 40, c.y}));
        for (const auto& [cols, rows] : {std::pair{2, 1}, {1, 2}, {0, 0}}) {
            desk.Create(cols, rows);
            const Values larger = values(desk);
            (desk.*c.set)(1, 7, 8);
            EXPECT_EQ(values(desk), larger) << cols << " x " << rows;
        }
    }
}

} // namespace
