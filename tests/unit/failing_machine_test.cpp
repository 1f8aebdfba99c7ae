// Every loader on a machine without memory: what it could not load is missing, what it loaded is sound.
#include "anim/morph_animation.h"
#include "base/path_text.h"
#include "image/codec.h"
#include "image/material.h"
#include "image/material_library.h"
#include "scene/planet.h"
#include "unit/failing_heap.h"
#include "unit/scene_parts.h"

#include <optional>

namespace {

// With the codec, and the device on the recorder.
class FailingMachine : public testing::Test {
protected:
    FailingMachine() {
        fxLoadDevil();
        GLRecorder::SetNullMode(true); // its list of calls takes memory, which is not the product's
    }
    ~FailingMachine() override { fxUnloadDevil(); }

    // Entry 5 is a library of two materials, 7 their picture, 8 a model of three meshes, 3 what is given.
    void LoadPackage(const std::string& bytes = "") {
        const std::string library =
            Header("5") + Ints({2}) + MaterialRecord("glass", "7") + MaterialRecord("wood", "7");
        const std::unique_ptr<FXModel> model(
            NewModel({TriangleAt(0), TriangleAt(5), TriangleAt(9)}, "wood", "5"));
        EXPECT_TRUE(model->Save_v03(fxOpenFile(folder_.File("model").c_str(), "wb").get()));
        LoadTestPackage(package_, folder_,
                        {{5, kRaw, library},
                         {7, kTga, Tga(1, 1, {~0u})},
                         {8, kRaw, folder_.Read("model")},
                         {3, kRaw, bytes}});
    }
    // Every index stands for a vertex, every material is there, and what is there can be drawn.
    void Draw(FXModel* model) {
        for (const FXOwnerArray<FXMesh>* meshes : {&model->loadedMeshes, &model->meshes})
            for (const FXMesh* mesh : *meshes) {
                ASSERT_NE(mesh, nullptr);
                EXPECT_LE(mesh->vertexCount, mesh->vertexCapacity);
                EXPECT_LE(mesh->indexCount, mesh->indexCapacity);
                for (int i = 0; i < mesh->indexCount; ++i)
                    ASSERT_TRUE(mesh->indices[i] >= 0 && mesh->indices[i] < mesh->vertexCount);
            }
        for (int i = 0; model->matlib != nullptr && i < model->matlib->materials.count; ++i) {
            ASSERT_NE(model->matlib->materials[i], nullptr);
            EXPECT_STREQ(model->matlib->materials[i]->name.text, i == 0 ? "glass" : "wood");
        }
        model->OnRender(&device_.gl, 0);
    }
    void ExpectNothingLeft() {
        EXPECT_TRUE(device_.gl.matlibs.IsEmpty());
        EXPECT_EQ(GLRecorder::LiveTextures(), 0);
    }

    TempFolder folder_;
    FXPackage package_;
    RecordedDevice<> device_;
};

TEST_F(FailingMachine, LoadsAPackageOrIsEmptyAndSaysWhy) {
    const std::string body = Table({3, 5}) + Table({0, 2}) + Table({2, 3}) + Table({-1, 7}) + "abcde";
    const std::string file = folder_.Write("p", Header("pck01") + body);
    bool loaded = false;
    FailEachAllocation([&] { loaded = package_.Load(file.c_str()); },
                       [&](bool whole) {
                           EXPECT_TRUE(!whole || loaded);
                           EXPECT_EQ(package_.problem.IsEmpty(), whole);
                           EXPECT_EQ(package_.dataSize, loaded ? 5 : 0);
                           for (const FXArray<int>* table :
                                {&package_.ids, &package_.offsets, &package_.sizes, &package_.types})
                               EXPECT_EQ(table->count, loaded ? 2 : 0);
                           for (const auto& [id, bytes] : {std::pair{3, "ab"}, {5, "cde"}}) {
                               const std::string entry = Entry(package_, id);
                               EXPECT_TRUE(entry == bytes || (!whole && entry == "none")) << id << entry;
                           }
                       });
}

TEST_F(FailingMachine, SavesAPackageWholeOrLeavesTheOldOne) {
    const std::string part = folder_.Write("part", "bytes"), file = folder_.File("p");
    const std::string whole =
        Header("pck01") + Table({1, 2}) + Table({0, 5}) + Table({5, 5}) + Table({-1, -1}) + "bytesbytes";
    int queued = 0;
    bool saved = false;
    FailEachAllocation(
        [&] {
            package_.Destroy();
            queued = 0;
            for (const int id : {1, 2})
                queued += package_.AddDataFile(id, part.c_str());
            saved = package_.Save(file.c_str(), 0);
        },
        [&](bool nothingFailed) {
            EXPECT_TRUE(!nothingFailed || (saved && queued == 2));
            EXPECT_TRUE(!saved || queued < 2 || folder_.Read("p") == whole);
            EXPECT_EQ(package_.ids.count, saved ? queued : 0);
            EXPECT_EQ(package_.pendingFiles.count, saved ? 0 : queued);
            EXPECT_EQ(package_.pendingIds.count, package_.pendingFiles.count);
            EXPECT_FALSE(std::filesystem::exists(folder_.File("p.new")));
            std::filesystem::remove(file);
        });
}

TEST_F(FailingMachine, ReadsListsAsFarAsTheyGo) {
    const std::string bytes = Ints({3, 7, 8, 9}),
                      strings = Ints({3}) + Header("a") + Header("") + Header("bc");
    FXArray<int> list;
    FXStrArray texts;
    const char* path = nullptr;
    FailEachAllocation(
        [&] {
            list.DestroyBuf();
            texts.DestroyBuf();
            CursorOf(bytes).ReadArray(&list);
            CursorOf(strings).ReadStringArray(&texts);
            path = fxCombinePaths("/a", "../b");
        },
        [&](bool whole) {
            EXPECT_TRUE((list.count == 3 && list.Last() == 9) || (!whole && list.IsEmpty()));
            EXPECT_TRUE(texts.count == 3 || !whole);
            const char* const expected[] = {"a", "", "bc"};
            for (int i = 0; i < texts.count; ++i)
                EXPECT_STREQ(texts.Get(i), expected[i]);
            EXPECT_TRUE(std::string(path) == "/b" || (!whole && *path == '\0')) << path;
        });
}

TEST_F(FailingMachine, LoadsAMorphThatPlaysToItsEnd) {
    FXAnim written;
    for (const float x : {0.0f, 1.0f, 2.0f}) {
        written.models.Push(NewModel({TriangleAt(x), TriangleAt(7)}, "wood", "5"));
        written.frameNames.Push("8");
        written.frameTimes.Push(500);
    }
    for (const bool isVersion3 : {false, true}) {
        SCOPED_TRACE(isVersion3);
        const FXFile file = fxOpenFile(folder_.File("morph").c_str(), "wb");
        ASSERT_TRUE(isVersion3 ? written.Save_v03(file.get()) : written.Save_v02(file.get()));
        std::fflush(file.get());
        LoadPackage(folder_.Read("morph"));
        FXAnim anim;
        bool loaded = false;
        FailEachAllocation(
            [&] {
                loaded = false;
                loaded = anim.LoadCN(&package_, 3);
                Prepare(&anim);
            },
            [&](bool whole) {
                EXPECT_LE(anim.models.count, 3);
                int there = 0;
                for (FXModel* frame : anim.models)
                    if (frame != nullptr) {
                        there += frame->GetTotalVertices() > 0;
                        Draw(frame);
                    }
                EXPECT_TRUE(!whole || (loaded && there == 3));
                EXPECT_TRUE(PlaysToItsEnd(&anim, &device_.gl));
                anim.Destroy();
                ExpectNothingLeft();
            });
    }
}

// All else of the show: failing_show_test.
TEST_F(FailingMachine, BuildsALayerOfThePlanetWhollyOrNotAtAll) {
    LoadPackage();
    std::optional<FXPlanet> planet(std::in_place);
    int lastMode = 0;
    FailEachAllocation(
        [&] {
            for (const int mode : {1, 3}) {
                const int before = planet->layerCount;
                planet->AddLayerCN(&package_, 8);
                planet->SetLayerRot(mode, 80, 90);
                lastMode = planet->layerCount > before ? mode : lastMode;
            }
        },
        [&](bool whole) {
            const int layers = planet->layerCount;
            EXPECT_TRUE(!whole || layers == 2);
            EXPECT_TRUE(planet->models.count == layers && planet->rotModes.count == layers &&
                        planet->pulseModes.count == layers && planet->fluid.count == layers);
            EXPECT_TRUE(layers == 0 || planet->rotModes.Last() == lastMode) << "a refused layer's";
            planet->OnRender(&device_.gl, 1);
            planet.emplace();
            ExpectNothingLeft();
        });
}

} // namespace
