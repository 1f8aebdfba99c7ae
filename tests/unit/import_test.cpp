// Models from Wavefront files, and what goes into a package with models and animations.
#include "anim/morph_animation.h"
#include "geometry/model_import.h"
#include "image/codec.h"
#include "image/material.h"
#include "image/material_library.h"
#include "unit/scene_parts.h"
#include "unit/trace_lines.h"

namespace {

// A square of three materials: one with a picture of 3 x 2 pixels, some clear; one with d; one that no MTL
// file has.
class Import : public testing::Test {
protected:
    Import() {
        fxLoadDevil();
        const std::string picture =
            folder_.Write("dot.tga", Tga(3, 2, {0x40FFFFFFu, ~0u, ~0u, ~0u, ~0u, ~0u}));
        folder_.Write("square.mtl", "newmtl Clear\nmap_Kd " + picture +
                                        "\nnewmtl Glass\nd 0.5\nnewmtl Stone\nKd 1 0.5 0\n");
        folder_.Write("square.obj",
                      "mtllib square.mtl\no square\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 1 0\n"
                      "usemtl Clear\nf 1/1 2/1 3/1 4/1\nusemtl Glass\nf 1 2 3\nusemtl Stone\n"
                      "f 1 2 3\nusemtl Desktop\nf 1 2 3\n");
    }
    ~Import() override { fxUnloadDevil(); }

    std::string Obj() const { return folder_.File("square.obj"); }

    TempFolder folder_;
    RecordedDevice<SceneDevice> device_;
};

TEST_F(Import, MakesTheLoadedGroupOfAnObjFile) {
    FXModel model;
    ASSERT_TRUE(model.ImportObj(Obj().c_str()));
    EXPECT_STREQ(model.name.text, "square");
    EXPECT_EQ(model.matlibName.text, folder_.File("square.mtl"));
    EXPECT_TRUE(model.meshes.IsEmpty());
    const struct {
        const char* material;
        int transparent;
        bool found;
    } kMeshes[] = {{"Clear", 1, true}, {"Glass", 1, true}, {"Stone", 0, true}, {"Desktop", 0, false}};
    ASSERT_EQ(model.loadedMeshes.count, 4);
    for (int m = 0; m < 4; ++m) {
        const FXMesh& mesh = *model.loadedMeshes[m];
        EXPECT_STREQ(mesh.materialName.text, kMeshes[m].material);
        EXPECT_EQ(mesh.transparent, kMeshes[m].transparent) << kMeshes[m].material;
        EXPECT_EQ(mesh.material != nullptr, kMeshes[m].found);
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

// Whatever takes its library along finds it again in the package: named by its number, with its picture.
TEST_F(Import, CompilesIntoAPackage) {
    struct Stored {
        FXModel model;
        FXAnim anim;
    };
    using Compile = void (*)(FXPackage & package, const TempFolder& folder, const std::string& obj);
    using Models = void (*)(FXPackage & package, Stored * to); // loads entry 9
    const auto loadAnim = [](FXPackage& package, Stored* to) {
        ASSERT_TRUE(to->anim.LoadCN(&package, 9));
        ASSERT_EQ(to->anim.models.count, 2);
    };
    const struct {
        const char* what;
        Compile compile;
        Models load;
        int texts; // names of files in the package: a library, its picture, what else is stored
    } kCases[] = {
        {"a model",
         [](FXPackage& package, const TempFolder& folder, const std::string& obj) {
             FXModel model, again;
             ASSERT_TRUE(model.ImportObj(obj.c_str()) && again.ImportObj(obj.c_str()));
             model.UpdateMeshes();
             EXPECT_TRUE(model.Compile(&package) && again.Compile(&package)) << "one library for both";
             EXPECT_STREQ(again.matlibName.text, model.matlibName.text);
             ASSERT_TRUE(model.Save(folder.File("stored").c_str()));
         },
         [](FXPackage& package, Stored* to) { ASSERT_TRUE(to->model.LoadCN(&package, 9)); }, 2},
        {"an animation of version 3",
         [](FXPackage& package, const TempFolder& folder, const std::string& obj) {
             FXAnim anim;
             for (const char* name : {"a", "b"}) {
                 anim.models.Push(new FXModel);
                 ASSERT_TRUE(anim.models.Last()->ImportObj(obj.c_str()));
                 anim.models.Last()->UpdateMeshes();
                 anim.frameNames.Push(name);
                 anim.frameTimes.Push(10);
             }
             EXPECT_TRUE(anim.Compile(&package));
             EXPECT_STREQ(anim.frameNames.Get(1), "b") << "no file's name";
             ASSERT_TRUE(anim.Save(folder.File("stored").c_str()));
         },
         loadAnim, 2},
        {"an animation of version 2",
         [](FXPackage& package, const TempFolder& folder, const std::string& obj) {
             FXModel model;
             ASSERT_TRUE(model.ImportObj(obj.c_str()));
             model.UpdateMeshes();
             ASSERT_TRUE(model.Save(folder.File("frame").c_str()));
             FXAnim anim;
             anim.frameNames.Push(folder.File("frame").c_str());
             anim.frameNames.Push(folder.File("frame").c_str());
             ASSERT_TRUE(anim.Save_v02(fxOpenFile(folder.File("list").c_str(), "wb").get()));
             ASSERT_TRUE(anim.Load(folder.File("list").c_str()));
             EXPECT_TRUE(anim.Compile(&package));
             ASSERT_TRUE(anim.Save_v02(fxOpenFile(folder.File("stored").c_str(), "wb").get()));
         },
         loadAnim, 3},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        FXPackage made, package;
        made.firstId = 100;
        c.compile(made, folder_, Obj());
        made.AddDataFile(9, folder_.File("stored").c_str());
        EXPECT_EQ(made.names.count, c.texts);
        ASSERT_TRUE(made.Save(folder_.File("p").c_str(), 0));
        made.DeleteTmpFiles();
        EXPECT_FALSE(std::filesystem::exists(folder_.File("square.mtl.tmp")));
        ASSERT_TRUE(device_.gl.matlibs.IsEmpty()) << "what is loaded comes from the package";
        ASSERT_TRUE(package.Load(folder_.File("p").c_str()));
        Stored stored;
        c.load(package, &stored);
        const FXModel& model = stored.anim.models.count > 1 ? *stored.anim.models[1] : stored.model;
        ASSERT_NE(model.matlib, nullptr);
        EXPECT_STREQ(model.matlib->name.text, "100") << "by its number: models share it";
        ASSERT_EQ(model.matlib->materials.count, 3);
        EXPECT_EQ(model.matlib->materials[0]->GetWidth(), 3) << "its picture is there";
        EXPECT_EQ(model.matlib->materials[1]->diffuse[3], 0.5f);
        EXPECT_EQ(model.loadedMeshes[2]->material, model.matlib->materials[2]);
    }
    FXModel model;
    FXPackage package;
    EXPECT_TRUE(model.Compile(&package)) << "without a library there is nothing to add";
    EXPECT_TRUE(package.pendingFiles.count == 0);
}

} // namespace
