#include "anim/morph_animation.h"
#include "geometry/mesh.h"
#include "image/material_library.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>
#include <span>
#include <string>
#include <tuple>

namespace {

constexpr const char* kDesktop = "Material001"; // the scene's, so in no library

std::string Asset(const char* name) {
    return std::string(SHOW_ASSETS "/") + name;
}

std::span<const tagFXVertex> Vertices(const FXMesh& mesh) {
    return {mesh.vertices, static_cast<std::size_t>(mesh.vertexCount)};
}

void ExpectMaterials(const FXModel& model, const char* libraryFile) {
    FXMatlib library;
    library.Load(Asset(libraryFile).c_str());
    EXPECT_STREQ(library.name.text, model.matlibName.text);
    for (const FXMesh* mesh : model.meshes)
        EXPECT_TRUE(mesh->materialName.Compare(kDesktop) ||
                    library.FindMaterial(mesh->materialName.text) != nullptr)
            << mesh->materialName.text;
}

// A sheet that shows the desktop picture, and embers.
TEST(Morph, HasOneTopologyInTheVisibleDepthAndEndsAsTheDesktopPicture) {
    FXAnim anim;
    ASSERT_TRUE(anim.Load(Asset("72-morph.oa").c_str()) && anim.models.count >= 8);
    const int last = anim.models.count - 1;
    ASSERT_EQ(anim.frameTimes.count, anim.models.count);
    ExpectMaterials(*anim.models[0], "42-morph.lib");
    EXPECT_TRUE(anim.models[0]->meshes[0]->materialName.Compare(kDesktop));
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
        EXPECT_EQ(places.size(), 65u * 37u) << "shards that touch share their corners exactly";
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

TEST(SunAndMedallion, NameMaterialsOfTheirLibraries) {
    const std::tuple<const char*, const char*, float> rows[] = {// the farthest to the side
                                                                {"04-medallion.om", "41-medallion.lib", 1.0f},
                                                                {"11-sun-core.om", "40-sun.lib", 1.0f},
                                                                {"13-shell-1.om", "40-sun.lib", 1.01f},
                                                                {"15-shell-2.om", "40-sun.lib", 1.03f},
                                                                {"17-shell-3.om", "40-sun.lib", 1.06f}};
    for (const auto& [file, library, half] : rows) {
        FXModel model;
        ASSERT_TRUE(model.Load(Asset(file).c_str())) << file;
        model.UpdateMeshes();
        ExpectMaterials(model, library);
        float box[6] = {};
        model.FindMaxims(box);
        EXPECT_TRUE(std::fabs(box[0] + half) < 1e-6f && std::fabs(box[1] - half) < 1e-6f) << file << box[1];
    }
}

} // namespace
