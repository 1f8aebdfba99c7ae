// Models from Wavefront files, and what goes into a package with models and animations.
#include "anim/morph_animation.h"
#include "geometry/model_import.h"
#include "image/codec.h"
#include "image/material.h"
#include "image/material_library.h"
#include "unit/scene_parts.h"
#include "unit/trace_lines.h"

#include <tuple>

namespace {

// A square of four materials: one with a picture of 3 x 2 pixels, some clear; one with d; a solid one; one
// that no MTL file has.
class Import : public testing::Test {
protected:
    Import() {
        fxLoadDevil();
        const std::string picture =
            folder_.Write("dot.tga", Tga(3, 2, {0x40FFFFFFu, ~0u, ~0u, ~0u, ~0u, ~0u}));
        folder_.Write("square.mtl", "newmtl Clear\nmap_Kd " + picture +
                                        "\nnewmtl Glass\nd 0.5\nnewmtl Stone\nKd 1 0.5 0\n");
        obj_ = folder_.Write("square.obj",
                             "mtllib square.mtl\no square\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 1 0\n"
                             "usemtl Clear\nf 1/1 2/1 3/1 4/1\nusemtl Glass\nf 1 2 3\nusemtl Stone\n"
                             "f 1 2 3\nusemtl Desktop\nf 1 2 3\n");
    }
    ~Import() override { fxUnloadDevil(); }

    TempFolder folder_;
    RecordedDevice<SceneDevice> device_;
    std::string obj_;
};

TEST_F(Import, MakesTheLoadedGroupOfAnObjFile) {
    FXModel model;
    ASSERT_TRUE(model.ImportObj(obj_.c_str()));
    EXPECT_STREQ(model.name.text, "square");
    EXPECT_EQ(model.matlibName.text, folder_.File("square.mtl"));
    ASSERT_TRUE(model.loadedMeshes.count == 4 && model.meshes.IsEmpty());
    const std::tuple<const char*, int, bool> kMeshes[] = {// way to draw; is the material found
                                                          {"Clear", 1, true},
                                                          {"Glass", 1, true},
                                                          {"Stone", 0, true},
                                                          {"Desktop", 0, false}};
    for (int m = 0; m < 4; ++m) {
        const FXMesh& mesh = *model.loadedMeshes[m];
        EXPECT_EQ(std::tuple(std::string(mesh.materialName.text), mesh.transparent, mesh.material != nullptr),
                  kMeshes[m]);
        EXPECT_EQ(mesh.indexCount, m == 0 ? 6 : 3);
    }
    EXPECT_EQ(model.loadedMeshes[0]->vertexCount, 4) << "corners that are alike are one vertex";
    EXPECT_EQ(VertexOf(*model.loadedMeshes[0], 0).tex, (std::array<float, 2>{0.75f, 1}))
        << "the picture fills 3 of 4 columns; v runs downwards";
    const TraceLines trace(folder_);
    EXPECT_FALSE(model.ImportObj(folder_.Write("bad.obj", "v 0 0 0\nf 1 1\n").c_str()));
    EXPECT_TRUE(model.loadedMeshes.IsEmpty() && model.matlib == nullptr);
    EXPECT_NE(trace.Lines().back().find("bad.obj:2: a face needs 3 corners"), std::string::npos);
}

// An animation of version 2: its models and their library become entries, named by their numbers there.
TEST_F(Import, CompilesIntoAPackage) {
    FXPackage made, package;
    made.firstId = 100;
    {
        FXModel model;
        FXAnim anim;
        ASSERT_TRUE(model.ImportObj(obj_.c_str()));
        model.UpdateMeshes();
        ASSERT_TRUE(model.Save(folder_.File("frame").c_str()));
        for (int f = 0; f < 2; ++f)
            anim.frameNames.Push(folder_.File("frame").c_str());
        ASSERT_TRUE(anim.Save_v02(fxOpenFile(folder_.File("list").c_str(), "wb").get()));
        ASSERT_TRUE(anim.Load(folder_.File("list").c_str()));
        EXPECT_TRUE(anim.Compile(&made));
        ASSERT_TRUE(anim.Save_v02(fxOpenFile(folder_.File("stored").c_str(), "wb").get()));
    }
    made.AddDataFile(9, folder_.File("stored").c_str());
    EXPECT_EQ(made.names.count, 3) << "the library, its picture, the model: each once";
    ASSERT_TRUE(made.Save(folder_.File("p").c_str(), 0));
    made.DeleteTmpFiles();
    EXPECT_FALSE(std::filesystem::exists(folder_.File("square.mtl.tmp")));
    ASSERT_TRUE(package.Load(folder_.File("p").c_str()));
    FXAnim stored;
    ASSERT_TRUE(stored.LoadCN(&package, 9) && stored.models.count == 2 &&
                stored.models[1]->matlib != nullptr);
    const FXMatlib& library = *stored.models[1]->matlib;
    EXPECT_STREQ(library.name.text, "100") << "models share it";
    ASSERT_EQ(library.materials.count, 3);
    EXPECT_EQ(library.materials[0]->GetWidth(), 3) << "its picture is there";
    EXPECT_EQ(library.materials[1]->diffuse[3], 0.5f);
    EXPECT_EQ(stored.models[1]->meshes[2]->material, library.materials[2]);
}

} // namespace
