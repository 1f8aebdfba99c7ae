#include "base/file_handle.h"
#include "base/memory.h"
#include "geometry/model.h"
#include "image/material.h"
#include "image/material_library.h"
#include "unit/recorded_device.h"
#include "unit/test_mesh.h"
#include "unit/test_package.h"

#include <climits>

namespace {

// Writes down what a model draws: meshes by the x of their first vertex, culling and depth writes.
struct DrawingDevice : FXGL {
    void RenderMesh(FXMesh* mesh) override {
        Note(std::to_string(static_cast<int>(mesh->vertices[0].pos[0])));
    }
    void EnableCullface(bool front, bool back) override { Note(front ? "front" : back ? "back" : "none"); }
    void EnableDepthWrite(bool on) override { Note(on ? "write" : "no-write"); }
    void Note(const std::string& what) {
        drawn += what;
        drawn += ' ';
    }
    std::string drawn;
};

// Entry 5 is a library named "5" with the materials glass and wood.
class Model : public testing::Test {
protected:
    static constexpr int kModel = 3;

    void LoadPackage(const std::string& model) {
        LoadTestPackage(
            package_, folder_,
            {{kModel, kRaw, model},
             {5, kRaw, Header("5") + Ints({2}) + MaterialRecord("glass", "") + MaterialRecord("wood", "")}});
    }

    // Two triangles and a line: glass, wood and a material that is nowhere. Its working meshes are what is
    // saved.
    void Make(FXModel* model) {
        LoadPackage("");
        model->Destroy();
        model->name.Set("a model");
        model->matlibName.Set("5");
        model->matlib = device_.gl.LoadMatlibC(&package_, "5");
        const char* const kNames[] = {"glass", "nowhere", "wood"};
        for (int i = 0; i < 3; ++i) {
            auto* mesh = new FXMesh;
            const auto f = static_cast<float>(i);
            MakeMesh(
                mesh,
                {{{f, 0, 0}, {0, 0, 1}, {0, f}}, {{f, 1, 0}, {0, f, 0}, {1, f}}, {{0, 0, f}}, {{8, 8, 8}}},
                {0, 1, 2, 2, 1, 0});
            mesh->materialName.Set(kNames[i]);
            mesh->material = model->matlib->FindMaterial(kNames[i]);
            mesh->transparent = i;
            mesh->colorMode = i & 1;
            model->meshes.Push(mesh);
        }
    }

    std::string Saved(FXModel* model, int version) {
        FXFile file = fxOpenFile(folder_.File("m").c_str(), "wb");
        EXPECT_TRUE(version == 2 ? model->Save_v02(file.get()) : model->Save_v03(file.get()));
        EXPECT_TRUE(fxCloseWritten(std::move(file)));
        return folder_.Read("m");
    }

    TempFolder folder_;
    RecordedDevice<DrawingDevice> device_;
    FXPackage package_;
};

void ExpectSameMesh(const FXMesh& actual, const FXMesh& expected) {
    EXPECT_EQ(CornersOf(actual), CornersOf(expected));
    EXPECT_STREQ(actual.materialName.text, expected.materialName.text);
    EXPECT_EQ(actual.material != nullptr, expected.material != nullptr);
    EXPECT_EQ(actual.transparent, expected.transparent);
    EXPECT_EQ(actual.colorMode, expected.colorMode);
}

TEST_F(Model, GoesThroughBothFormatsInPackageAndFile) {
    for (const int version : {2, 3}) {
        FXModel written;
        Make(&written);
        const std::string bytes = Saved(&written, version);
        EXPECT_EQ(bytes.substr(0, 8), Header(version == 2 ? "om02" : "om03"));
        LoadPackage(bytes);
        FXModel read, fromFile;
        ASSERT_TRUE(read.LoadCN(&package_, kModel));
        ASSERT_TRUE(fromFile.Load(folder_.Write("model", bytes).c_str()));
        EXPECT_EQ(read.matlib, written.matlib) << "shared";
        EXPECT_EQ(read.matlib->refCount, 3) << "the file's library has the same name";
        EXPECT_EQ(read.GetTotalVertices(), 0) << "no working copies yet";
        for (FXModel* model : {&read, &fromFile}) {
            EXPECT_STREQ(model->name.text, "a model");
            EXPECT_STREQ(model->matlibName.text, "5");
            ASSERT_EQ(model->loadedMeshes.count, 3);
            model->UpdateMeshes();
            ASSERT_EQ(model->meshes.count, 3);
            EXPECT_NE(model->meshes[0], model->loadedMeshes[0]);
            EXPECT_EQ(model->GetTotalVertices(), version == 2 ? 12 : 9)
                << "packed: what no index uses is gone";
        }
        for (int i = 0; i < 3; ++i)
            ExpectSameMesh(*read.meshes[i], *written.meshes[i]);
        EXPECT_EQ(read.FindMesh("glass"), read.meshes[0]);
        read.Destroy();
        EXPECT_EQ(written.matlib->refCount, 2);
        written.Destroy();
        fromFile.Destroy();
        EXPECT_TRUE(device_.gl.matlibs.IsEmpty());
    }
}

TEST_F(Model, Version3LeavesOutWhatIsDisabled) {
    FXModel model, read;
    Make(&model);
    model.meshes.Insert(0, nullptr);
    model.DisableMesh(2, true);
    for (const int version : {2, 3}) {
        LoadPackage(Saved(&model, version));
        ASSERT_TRUE(read.LoadCN(&package_, kModel));
        EXPECT_EQ(read.loadedMeshes.count, version == 2 ? 3 : 2);
        EXPECT_STREQ(read.loadedMeshes.Last()->materialName.text, "wood");
    }
    EXPECT_FALSE(model.Save(folder_.File("no/folder").c_str()));
    EXPECT_FALSE(model.Save("/dev/full")) << "not all of it got to the disk";
    EXPECT_TRUE(model.Save(folder_.File("saved").c_str()));
    EXPECT_EQ(folder_.Read("saved").substr(0, 8), Header("om03"));
}

TEST_F(Model, ThatLiesHoldsEmptyMeshes) {
    FXModel model;
    for (const int version : {2, 3}) {
        Make(&model);
        const std::string whole = Saved(&model, version);
        model.Destroy();
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const std::string cut = whole.substr(0, length); // in a block of its own, for the sanitizer
            package_.GetDataPtr(kModel)->InitData(cut.data(), static_cast<int>(length));
            ASSERT_TRUE(model.LoadCN(&package_, kModel));
            model.UpdateMeshes();
            EXPECT_LE(model.meshes.count, 3);
            for (const FXMesh* mesh : model.meshes)
                EXPECT_TRUE(mesh->indexCount == 6 || mesh->indexCount == 0) << length;
            EXPECT_FALSE(model.meshes.count == 3 && model.meshes.Last()->indexCount > 0) << length;
        }
        const std::string head = Header(version == 2 ? "om02" : "om03") + Header("m") + Header("");
        fxSetAllocLimit(4096);
        for (const int count : {INT_MAX, INT_MIN, -1, 100, 1000000}) {
            LoadPackage(head + Ints({count}) + std::string(100, '\0'));
            ASSERT_TRUE(model.LoadCN(&package_, kModel));
            EXPECT_LE(model.loadedMeshes.count, 3) << "a hundred bytes hold no more";
        }
        fxSetAllocLimit(0);
    }
    LoadPackage(Header("om04") + Header("m") + Header("") + Ints({1}));
    EXPECT_TRUE(model.LoadCN(&package_, kModel));
    EXPECT_TRUE(model.loadedMeshes.IsEmpty() && model.name.IsEmpty());
    EXPECT_FALSE(model.LoadCN(&package_, 99));
    EXPECT_FALSE(model.Load(folder_.File("none").c_str()));
}

TEST_F(Model, DrawsOpaqueMeshesThenThoseSeenThrough) {
    const struct {
        std::vector<int> transparent; // by mesh
        const char* drawn;
    } cases[] = {
        {{}, "front back none no-write write "},
        {{0, 0}, "0 1 front back none no-write write "},
        {{1}, "front 0 back 0 none no-write write "},
        {{1, 0, 1, 2, 2, 1, 7, -1}, "1 front 5 2 0 back 0 2 5 none no-write 3 4 write 3 4 "},
    };
    for (const auto& c : cases) {
        FXModel model;
        for (const int transparent : c.transparent) {
            auto* mesh = new FXMesh;
            MakeMesh(mesh, {{{static_cast<float>(model.meshes.count), 0, 0}}}, {0, 0, 0});
            mesh->transparent = transparent;
            model.meshes.Push(mesh);
        }
        model.meshes.Push(nullptr);
        device_.gl.drawn.clear();
        model.OnRender(&device_.gl, 1);
        EXPECT_EQ(device_.gl.drawn, c.drawn);
    }
}

TEST_F(Model, FindsMeshesByTheirMaterials) {
    FXModel model;
    Make(&model);
    EXPECT_STREQ(model.EnumMeshNames(0), "glass");
    for (const int i : {-1, 1, 3, INT_MAX})
        EXPECT_EQ(model.EnumMeshNames(i), nullptr) << i;
    EXPECT_EQ(model.EnumMeshes(1), model.meshes[1]);
    EXPECT_EQ(model.EnumMeshes(-1), nullptr);
    EXPECT_EQ(model.EnumMeshes(3), nullptr);
    EXPECT_EQ(model.FindMesh("glass"), model.meshes[0]);
    EXPECT_EQ(model.FindMesh("Glass"), nullptr);
    EXPECT_EQ(model.FindMesh("wood"), nullptr) << "behind one without a material";
    for (const int i : {-1, 3})
        model.DisableMesh(i, true);
    model.DisableMesh(1, true);
    EXPECT_TRUE(!model.meshes[0]->disabled && model.meshes[1]->disabled && !model.meshes[2]->disabled);

    FXMesh* nowhere = model.meshes[1];
    model.RemoveMesh(nowhere);
    delete nowhere;
    EXPECT_EQ(model.FindMesh("wood"), model.meshes[1]);
    FXMesh stranger;
    model.RemoveMesh(&stranger);
    EXPECT_EQ(model.meshes.count, 2);
}

TEST_F(Model, DoublesAMeshUnderAnotherMaterial) {
    FXModel model;
    Make(&model);
    EXPECT_EQ(model.DoubleMesh("wood", "nowhere"), nullptr);
    EXPECT_EQ(model.DoubleMesh("gold", "glass"), nullptr) << "no such material";
    FXMesh* twin = model.DoubleMesh("wood", "glass");
    ASSERT_NE(twin, nullptr);
    EXPECT_EQ(model.meshes.count, 4);
    EXPECT_EQ(model.meshes.Last(), twin);
    EXPECT_STREQ(twin->material->name.text, "wood");
    EXPECT_STREQ(twin->materialName.text, "wood");
    EXPECT_EQ(CornersOf(*twin), CornersOf(*model.meshes[0]));

    FXMesh* nowhere = model.meshes[1];
    model.RemoveMesh(nowhere);
    delete nowhere;
    EXPECT_EQ(model.DoubleMesh("wood", "glass"), model.meshes[2]) << "replaces the first that has it";
    EXPECT_EQ(model.meshes.count, 3);
    EXPECT_EQ(model.DoubleMesh("glass", "glass"), model.meshes[0]);
    EXPECT_EQ(model.meshes.count, 3);
}

TEST_F(Model, CopyHoldsAReferenceOfItsOwn) {
    FXModel model, copy;
    Make(&model);
    model.meshes.Push(nullptr);
    model.flipV = true;
    copy.name.Set("old");
    copy.Copy(&model);
    EXPECT_TRUE(copy.name.IsEmpty() && copy.flipV && copy.matlibName.Compare("5"));
    EXPECT_EQ(copy.matlib->refCount, 2);
    ASSERT_EQ(copy.meshes.count, 4);
    EXPECT_EQ(copy.meshes[3], nullptr);
    EXPECT_EQ(CornersOf(*copy.meshes[2]), CornersOf(*model.meshes[2]));
    copy.Destroy();
    EXPECT_EQ(model.matlib->refCount, 1);
    EXPECT_FALSE(copy.flipV);
}

TEST_F(Model, IsFittedAsAWhole) {
    const struct {
        void (FXModel::*fit)();
        std::array<float, 6> box;
    } kCases[] = {{&FXModel::Unitize, {-1, 1, -0.5f, 0.5f, -1, 1}},
                  {&FXModel::UnitizeStretch, {-1, 1, -1, 1, -1, 1}},
                  {&FXModel::UnitizeStretch1, {-1, 1, -1, 1, -4, 4}},
                  {&FXModel::FlipHoriz, {-6, 2, 0, 4, 0, 8}}};
    for (const auto& c : kCases) {
        FXModel model;
        for (const float x : {-2.0f, 6.0f}) {
            model.meshes.Push(new FXMesh);
            MakeMesh(model.meshes.Last(), {{{x, 0, 0}}, {{x, 4, 8}}}, {});
            model.meshes.Push(nullptr);
        }
        (model.*c.fit)();
        std::array<float, 6> box;
        model.FindMaxims(box.data());
        EXPECT_EQ(box, c.box);
    }
    std::array<float, 6> box = {3, 1, 4, 1, 5, 9};
    const std::array<float, 6> before = box;
    FXModel().FindMaxims(box.data());
    EXPECT_EQ(box, before) << "without vertices";
    FXModel empty;
    empty.Unitize();
    empty.UnitizeStretch();
}

TEST_F(Model, HandsOnTextureCoordinatesAndColours) {
    FXModel model, other;
    Make(&model);
    Make(&other);
    model.meshes.Push(nullptr);
    const auto tex = [&](int mesh, int vertex) { return VertexOf(*model.meshes[mesh], vertex).tex; };
    using Tex = std::array<float, 2>;
    other.ComputeFrontTexCoords(-1);
    model.CopyTexCoords(-1, &other);
    EXPECT_EQ(tex(1, 0), (Tex{0, 1})) << "not as many meshes";
    other.meshes.Push(nullptr);
    model.CopyTexCoords(1, &other);
    EXPECT_EQ(tex(1, 0), (Tex{1, 0.5f}));
    EXPECT_EQ(tex(2, 0), (Tex{0, 2}));
    model.CopyTexCoords(-1, &other);
    EXPECT_EQ(tex(2, 0), (Tex{1.5f, 0.5f}));
    for (const int i : {-2, 3, 4}) {
        model.CopyTexCoords(i, &other);
        model.ComputeFrontTexCoords(i);
    }
    model.Transform(1, 0, 2, false, false, false);
    model.ComputeFrontTexCoords(2);
    EXPECT_EQ(tex(2, 0), (Tex{0.5f, -0.5f}));
    EXPECT_EQ(tex(1, 0), (Tex{1, 0.5f}));

    FXMaterial* glass = model.meshes[0]->material;
    glass->extentU = glass->extentV = 0.5f;
    model.flipV = true;
    const Tex old = tex(0, 0);
    model.ResizeTextCoords1();
    EXPECT_EQ(tex(0, 0), (Tex{old[0] / 2, (1 - old[1]) / 2}));
    model.meshes[0]->loadedU = 0.25f;
    model.flipV = false;
    model.ResizeTextCoords();
    EXPECT_EQ(tex(0, 0), (Tex{old[0], (1 - old[1]) / 4}));

    const float half[4] = {0.5f, 0.5f, 0.5f, 1};
    model.PreserveColMat();
    model.UpdateColMat(half);
    model.UpdateColMat(half);
    EXPECT_EQ(glass->diffuse[0], 1.0f) << "half of 2";
    model.UpdateColCol(half);
    EXPECT_EQ(model.meshes[1]->vertices[2].color[0], 0.5f);
    EXPECT_EQ(model.meshes[0]->colorMode, 1);
    model.Normalize(false);
}

} // namespace
