#include "anim/morph_animation.h"
#include "geometry/mesh.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>
#include <span>

namespace {

std::span<const tagFXVertex> Vertices(const FXMesh& mesh) {
    return {mesh.vertices, static_cast<std::size_t>(mesh.vertexCount)};
}

// A sheet that shows the desktop picture, and embers.
TEST(Morph, HasOneTopologyInTheVisibleDepthAndEndsAsTheDesktopPicture) {
    FXAnim anim;
    ASSERT_TRUE(anim.Load(SHOW_ASSETS "/72-morph.oa") && anim.models.count >= 8);
    const int last = anim.models.count - 1;
    ASSERT_EQ(anim.frameTimes.count, anim.models.count);
    EXPECT_TRUE(anim.models[0]->meshes[0]->materialName.Compare("Material001"));
    const auto mesh = [&](int frame, int m) -> const FXMesh& { return *anim.models[frame]->meshes[m]; };
    for (int f = 0; f <= last; ++f) {
        ASSERT_EQ(anim.models[f]->meshes.count, 2);
        EXPECT_GT(anim.frameTimes[f], 0);
        for (const int m : {0, 1}) {
            EXPECT_EQ(mesh(f, m).vertexCount, mesh(0, m).vertexCount);
            const bool isMadeForTexture = m == 1 && f == last;
            for (const tagFXVertex& v : Vertices(mesh(f, m))) {
                ASSERT_NEAR(std::hypot(v.normal[0], v.normal[1], v.normal[2]), 1, 1e-3) << "key frame " << f;
                ASSERT_TRUE(isMadeForTexture || std::fabs(v.pos[2]) <= 1.9f) << "key frame " << f;
            }
        }
    }
    // The desktop picture takes over from the sheet: nothing may move or change its light then.
    for (const int f : {last - 1, last}) {
        double area = 0;
        const FXMesh& sheet = mesh(f, 0);
        for (const tagFXVertex& v : Vertices(sheet))
            ASSERT_TRUE(v.pos[2] == 0 && v.normal[0] == 0 && v.normal[1] == 0 && v.normal[2] == 1);
        std::set<std::array<float, 2>> places;
        for (int i = 0; i < sheet.indexCount; i += 3) {
            const float* p[3];
            for (int corner = 0; corner < 3; ++corner) {
                p[corner] = sheet.vertices[sheet.indices[i + corner]].pos;
                places.insert({p[corner][0], p[corner][1]});
            }
            const double twice =
                (p[1][0] - p[0][0]) * (p[2][1] - p[0][1]) - (p[2][0] - p[0][0]) * (p[1][1] - p[0][1]);
            ASSERT_GT(twice, 0) << "it faces the viewer";
            area += twice / 2;
        }
        EXPECT_NEAR(area, 4, 1e-4);
        EXPECT_EQ(places.size(), 1245u) << "shards that touch share their corners exactly";
    }
    // The scene fits all key frames by the last one and takes every texture coordinate from it. There the
    // embers are large; in the one before they are a point behind the sheet.
    const float before = mesh(1, 0).vertices[100].pos[0];
    anim.UnitizeStretch1(last);
    anim.ComputeFrontTexCoords(last, -1);
    EXPECT_EQ(mesh(1, 0).vertices[100].pos[0], before);
    int textured = 0;
    for (const tagFXVertex& v : Vertices(mesh(1, 1)))
        textured += (v.tex[0] == 0 || v.tex[0] == 1) && (v.tex[1] == 0 || v.tex[1] == 1);
    EXPECT_GE(textured, mesh(1, 1).vertexCount - 4);
    for (const tagFXVertex& v : Vertices(mesh(last - 1, 1)))
        EXPECT_TRUE(v.pos[0] == 0 && v.pos[1] == 0 && v.pos[2] < 0);
}

} // namespace
