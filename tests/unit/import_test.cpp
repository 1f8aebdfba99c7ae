// Models from Wavefront files, and what goes into a package with models and animations.
#include "anim/morph_animation.h"
#include "image/codec.h"
#include "image/material.h"
#include "image/material_library.h"
#include "unit/scene_parts.h"

namespace {

// A square of three materials: one with a picture of 3 x 2 pixels, one with d, one that no MTL file has. An
// animation of version 2: its models and their library become entries, named by their numbers there.
TEST(Import, CompilesIntoAPackage) {
    fxLoadDevil();
    const TempFolder folder;
    const RecordedDevice<> device;
    const std::string picture = folder.Write("dot.tga", Tga(3, 2, std::vector<std::uint32_t>(6, ~0u)));
    folder.Write("square.mtl", "newmtl Clear\nmap_Kd " + picture + "\nnewmtl Glass\nd 0.5\n");
    const std::string obj =
        "mtllib square.mtl\no square\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 1 0\n"
        "usemtl Clear\nf 1/1 2/1 3/1 4/1\nusemtl Glass\nf 1 2 3\nusemtl Desktop\nf 1 2 3\n";
    FXPackage made, package;
    made.firstId = 100;
    {
        FXModel model;
        FXAnim anim;
        EXPECT_FALSE(model.ImportObj(folder.Write("bad.obj", "v 0 0 0\nf 1 1\n").c_str()));
        ASSERT_TRUE(model.ImportObj(folder.Write("square.obj", obj).c_str()));
        EXPECT_STREQ(model.name.text, "square");
        EXPECT_EQ(model.matlibName.text, folder.File("square.mtl"));
        model.UpdateMeshes();
        ASSERT_TRUE(model.Save(folder.File("frame").c_str()));
        for (int f = 0; f < 2; ++f)
            anim.frameNames.Push(folder.File("frame").c_str());
        ASSERT_TRUE(anim.Save_v02(fxOpenFile(folder.File("list").c_str(), "wb").get()));
        ASSERT_TRUE(anim.Load(folder.File("list").c_str()));
        EXPECT_TRUE(anim.Compile(&made));
        ASSERT_TRUE(anim.Save_v02(fxOpenFile(folder.File("stored").c_str(), "wb").get()));
    }
    made.AddDataFile(9, folder.File("stored").c_str());
    EXPECT_EQ(made.names.count, 3) << "the library, its picture, the model: each once";
    ASSERT_TRUE(made.Save(folder.File("p").c_str(), 0));
    made.DeleteTmpFiles();
    EXPECT_FALSE(std::filesystem::exists(folder.File("square.mtl.tmp")));
    ASSERT_TRUE(package.Load(folder.File("p").c_str()));
    {
        FXAnim stored;
        ASSERT_TRUE(stored.LoadCN(&package, 9) && stored.models.count == 2);
        const FXModel& model = *stored.models[1];
        ASSERT_TRUE(model.matlib != nullptr && model.matlib->materials.count == 2);
        EXPECT_STREQ(model.matlib->name.text, "100") << "models share it";
        EXPECT_EQ(model.matlib->materials[0]->GetWidth(), 3) << "its picture is there";
        EXPECT_EQ(model.meshes[1]->material, model.matlib->materials[1]);
        EXPECT_EQ(model.meshes[1]->transparent, 1);
        EXPECT_EQ(VertexOf(*model.meshes[0], 0).tex, (std::array<float, 2>{0.75f, 1}))
            << "the picture fills 3 of 4 columns; v runs downwards";
    }
    fxUnloadDevil();
}

} // namespace
