// Every loader on a machine without memory: what it could not load is missing, what it loaded is sound.
#include "anim/morph_animation.h"
#include "base/path_text.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "image/material.h"
#include "image/material_library.h"
#include "platform/paths.h"
#include "render/matrix.h"
#include "scene/burning_desk.h"
#include "scene/cube_gadget.h"
#include "scene/error_gadget.h"
#include "scene/logo_gadget.h"
#include "scene/phaser.h"
#include "scene/planet.h"
#include "unit/failing_heap.h"
#include "unit/scene_parts.h"

#include <optional>

namespace {

std::vector<int> Values(const FXArray<int>& a) {
    return {a.begin(), a.end()};
}

class FailingMachine : public testing::Test {
protected:
    TempFolder folder_;
    FXPackage package_;
};

TEST_F(FailingMachine, LoadsAPackageOrIsEmptyAndSaysWhy) {
    const std::string body =
        Table({3, 5, 4}) + Table({0, 2, 2}) + Table({2, 0, 3}) + Table({-1, 0, 7}) + "abcde";
    const std::string file = folder_.Write("p", Header("pck01") + body);
    bool loaded = false;
    FailEachAllocation(
        [&] { loaded = package_.Load(file.c_str()); },
        [&](bool whole) {
            EXPECT_TRUE(!whole || loaded);
            EXPECT_EQ(package_.problem.IsEmpty(), whole);
            EXPECT_EQ(package_.dataSize, loaded ? 5 : 0);
            EXPECT_EQ(Values(package_.ids), loaded ? (std::vector{3, 5, 4}) : std::vector<int>());
            for (const FXArray<int>* table : {&package_.offsets, &package_.sizes, &package_.types})
                EXPECT_EQ(table->count, package_.ids.count);
            EXPECT_LE(package_.cursors.count, package_.ids.count);
            for (const auto& [id, bytes] : {std::pair{3, "ab"}, {5, ""}, {4, "cde"}}) {
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
    const FXFile file = fxOpenFile(folder_.Write("list", bytes).c_str(), "rb");
    const FXFile stringFile = fxOpenFile(folder_.Write("strings", strings).c_str(), "rb");
    FXArray<int> ints, fromFile;
    FXFloatArray floats;
    FXStrArray texts, textsFromFile;
    FailEachAllocation(
        [&] {
            ints.DestroyBuf(), floats.DestroyBuf(), fromFile.DestroyBuf();
            texts.DestroyBuf(), textsFromFile.DestroyBuf();
            FXPackageData d;
            d.InitData(bytes.data(), static_cast<int>(bytes.size()));
            d.ReadArray(&ints);
            d.Reseek();
            d.ReadFloatArray(&floats);
            d.InitData(strings.data(), static_cast<int>(strings.size()));
            d.ReadStringArray(&texts);
            std::rewind(file.get());
            fromFile.Load(file.get());
            std::rewind(stringFile.get());
            textsFromFile.Load(stringFile.get());
        },
        [&](bool whole) {
            for (const FXArray<int>* list : {&ints, &fromFile})
                EXPECT_TRUE(Values(*list) == (std::vector{7, 8, 9}) || (!whole && list->IsEmpty()));
            EXPECT_TRUE(floats.count == 3 || (!whole && floats.IsEmpty()));
            for (const FXStrArray* list : {&texts, &textsFromFile}) {
                EXPECT_TRUE(list->count == 3 || !whole);
                const char* const expected[] = {"a", "", "bc"};
                for (int i = 0; i < list->count; ++i)
                    EXPECT_STREQ(list->Get(i), expected[i]);
            }
        });
}

TEST_F(FailingMachine, NeedsNoMemoryForAMatrixOrAPhaser) {
    const std::string bytes = Floats(std::vector<float>(16, 2));
    const FailingHeap heap(0, true);
    FXPackageData d;
    d.InitData(bytes.data(), 64);
    FXMatrix matrix;
    matrix.LoadC(nullptr, &d);
    d.Reseek();
    FXPhaser phaser;
    phaser.LoadC(nullptr, &d);
    EXPECT_FALSE(heap.HasFailed());
    EXPECT_TRUE(matrix.m[15] == 2 && phaser.phase == 2);
}

TEST_F(FailingMachine, MakesAPathOrNone) {
    const struct {
        const char* (*make)();
        const char *made, *none;
    } kPaths[] = {{[] { return fxCombinePaths("/a", "../b"); }, "/b", ""},
                  {[] { return fxBuildRelativePath("/a/b", false, "/a/c", true); }, "../c", "/a/c"},
                  {[] { return fxChangeExt("a.b", "c"); }, "a.c", ""},
                  {[] { return fxAppenfFname("a.b", "_1"); }, "a_1.b", ""}};
    for (const auto& path : kPaths) {
        const char* result = nullptr;
        FailEachAllocation([&] { result = path.make(); },
                           [&](bool whole) { EXPECT_STREQ(result, whole ? path.made : path.none); });
    }
}

TEST_F(FailingMachine, LoadsAPictureOrLeavesTheCanvas) {
    fxLoadDevil();
    LoadTestPackage(package_, folder_, {{7, kTga, Tga(3, 2, std::vector<std::uint32_t>(6, 0x40302010u))}});
    for (const bool mask : {false, true}) {
        FXCanvas canvas, copy;
        bool loaded = false, copied = false;
        FailEachAllocation(
            [&] {
                canvas.Destroy();
                copy.Destroy();
                loaded = canvas.CreateFromPictCN(&package_, 7);
                if (mask)
                    loaded = canvas.LoadMaskCN(&package_, 7);
                copied = copy.Copy(&canvas);
            },
            [&](bool whole) {
                EXPECT_TRUE(!whole || (loaded && copied));
                for (const FXCanvas* c : {&canvas, &copy}) {
                    EXPECT_LE(c->width * c->height, c->capacity);
                    EXPECT_EQ(c->pixels == nullptr, c->capacity == 0);
                    EXPECT_TRUE(c->usedWidth <= c->width && c->usedHeight <= c->height);
                }
                const std::uint32_t first = mask ? 0x10302010u : 0x40302010u;
                EXPECT_TRUE(!loaded || (canvas.usedWidth == 3 && canvas.pixels[0] == first));
                EXPECT_TRUE(!loaded || !copied || copy.pixels[0] == first);
            });
    }
    fxUnloadDevil();
}

TEST_F(FailingMachine, ChoosesAFolderOrStaysWhereItIs) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::create_directories(folder_.File("a/b"));
    const std::string folder = folder_.File("a");
    bool set = false;
    FailEachAllocation(
        [&] {
            set = false;
            fxSetActPath("/");
            fxSetTypePath(1, folder.c_str());
            set = fxSetSubPath(1, "x/../b");
        },
        [&](bool whole) {
            EXPECT_TRUE(set || !whole);
            EXPECT_EQ(std::filesystem::current_path().filename() == "b", set);
        });
    std::filesystem::current_path(before);
}

// The recorder's memory is not the product's.
struct PausingDevice : FXGL {
    bool PrepareTexture(FXMaterial* material) override {
        const FailingHeap::Pause pause;
        return FXGL::PrepareTexture(material);
    }
    void UnprepareTexture(FXMaterial* material) override {
        const FailingHeap::Pause pause;
        FXGL::UnprepareTexture(material);
    }
};

// With the codec, and the device on the recorder. Entry 5 is a library of two materials, 7 their picture.
class FailingMachineDrawing : public FailingMachine {
protected:
    FailingMachineDrawing() {
        fxLoadDevil();
        GLRecorder::SetNullMode(true); // its list of calls takes memory
    }
    ~FailingMachineDrawing() override {
        GLRecorder::SetNullMode(false);
        fxUnloadDevil();
    }

    void LoadPackage(const std::vector<TestEntry>& more = {}) {
        const std::string library =
            Header("5") + Ints({2}) + MaterialRecord("glass", "7") + MaterialRecord("wood", "7");
        std::vector<TestEntry> entries = {{5, kRaw, library}, {7, kTga, Tga(1, 1, {0xFFFFFFFFu})}};
        entries.insert(entries.end(), more.begin(), more.end());
        LoadTestPackage(package_, folder_, entries);
    }
    // Every index stands for a vertex, and what is there can be drawn.
    void Draw(FXModel* model) {
        const auto check = [](const auto& meshes) {
            for (const FXMesh* mesh : meshes) {
                ASSERT_NE(mesh, nullptr);
                EXPECT_LE(mesh->vertexCount, mesh->vertexCapacity);
                EXPECT_LE(mesh->indexCount, mesh->indexCapacity);
                for (int i = 0; i < mesh->indexCount; ++i)
                    ASSERT_TRUE(mesh->indices[i] >= 0 && mesh->indices[i] < mesh->vertexCount);
            }
        };
        check(model->loadedMeshes);
        check(model->meshes);
        model->OnRender(&device_.gl, 0);
    }
    void ExpectNothingLeft() {
        EXPECT_TRUE(device_.gl.matlibs.IsEmpty());
        EXPECT_EQ(GLRecorder::LiveTextures(), 0);
    }

    RecordedDevice<PausingDevice> device_;
};

TEST_F(FailingMachineDrawing, LoadsTheMaterialsThatThereIsMemoryFor) {
    LoadPackage();
    FXMatlib* library = nullptr;
    FailEachAllocation(
        [&] {
            library = nullptr;
            library = device_.gl.LoadMatlibC(&package_, "5");
        },
        [&](bool whole) {
            ASSERT_TRUE(library != nullptr || !whole);
            const int count = library != nullptr ? library->materials.count : 0;
            EXPECT_TRUE(count == 2 || (count < 2 && !whole));
            for (int i = 0; i < count; ++i) {
                const FXMaterial* material = library->materials[i];
                ASSERT_NE(material, nullptr);
                EXPECT_STREQ(material->name.text, i == 0 ? "glass" : "wood");
                EXPECT_TRUE(material->prepared || !whole);
            }
            if (library != nullptr)
                library->Release();
            ExpectNothingLeft();
        });
}

TEST_F(FailingMachineDrawing, LoadsTheMeshesThatThereIsMemoryFor) {
    for (const int version : {2, 3}) {
        SCOPED_TRACE(version);
        const std::unique_ptr<FXModel> written(
            NewModel({TriangleAt(0), TriangleAt(5), TriangleAt(9)}, "wood", "5"));
        const FXFile file = fxOpenFile(folder_.File("model").c_str(), "wb");
        ASSERT_TRUE(version == 2 ? written->Save_v02(file.get()) : written->Save_v03(file.get()));
        std::fflush(file.get());
        LoadPackage({{3, kRaw, folder_.Read("model")}});
        const std::string path = folder_.File("model");
        for (const bool fromPackage : {true, false}) {
            FXModel model;
            FailEachAllocation(
                [&] {
                    const bool loaded = fromPackage ? model.LoadCN(&package_, 3) : model.Load(path.c_str());
                    if (loaded)
                        model.UpdateMeshes();
                },
                [&](bool whole) {
                    Draw(&model);
                    EXPECT_LE(model.loadedMeshes.count, 3);
                    EXPECT_LE(model.meshes.count, model.loadedMeshes.count);
                    EXPECT_TRUE(!whole || (model.meshes.count == 3 && model.GetTotalVertices() == 9));
                    model.Destroy();
                    ExpectNothingLeft();
                });
        }
    }
}

TEST_F(FailingMachineDrawing, LoadsAMorphThatPlaysToItsEnd) {
    FXAnim written;
    const std::string model = TriangleModel(folder_, "wood", "5");
    for (int f = 0; f < 3; ++f) {
        written.models.Push(NewModel({TriangleAt(static_cast<float>(f)), TriangleAt(7)}, "wood", "5"));
        written.frameNames.Push("8");
        written.frameTimes.Push(500);
    }
    ASSERT_TRUE(written.Save(folder_.File("morph").c_str()));
    const std::string version3 = folder_.Read("morph");
    {
        const FXFile file = fxOpenFile(folder_.File("morph").c_str(), "wb");
        ASSERT_TRUE(written.Save_v02(file.get()));
    }
    for (const std::string& bytes : {version3, folder_.Read("morph")}) {
        SCOPED_TRACE(bytes == version3 ? 3 : 2);
        LoadPackage({{3, kRaw, bytes}, {8, kRaw, model}});
        FXAnim anim;
        bool loaded = false;
        FailEachAllocation(
            [&] {
                loaded = false;
                loaded = anim.LoadCN(&package_, 3);
                anim.UnitizeStretch1(anim.models.count - 1);
                anim.Normalize(-1, false);
                anim.ComputeFrontTexCoords(anim.models.count - 1, -1);
                anim.UpdateInterpolation(true, true);
            },
            [&](bool whole) {
                EXPECT_LE(anim.models.count, 3);
                int there = 0;
                for (FXModel* frame : anim.models) {
                    there += frame != nullptr && frame->GetTotalVertices() > 0;
                    if (frame != nullptr)
                        Draw(frame);
                }
                EXPECT_TRUE(!whole || (loaded && there == 3));
                anim.loop = anim.backwards = false;
                anim.StartAnim(0);
                for (int i = 0; i <= anim.frameTimes.count; ++i)
                    anim.OnRender(&device_.gl, anim.startTime + 1.5 * anim.frameDuration);
                EXPECT_FALSE(anim.playing && anim.frameTimes.count > 0);
                anim.Destroy();
                ExpectNothingLeft();
            });
    }
}

TEST_F(FailingMachineDrawing, BuildsEffectsThatCanBeDrawn) {
    struct Effects {
        FXFireDesk fire;
        FXPlanet sun;
        FXOrinGadget medallion;
        FXDemoGadget cube;
        FXErrGadget error;
    };
    LoadPackage({{3, kRaw, TriangleModel(folder_, "wood", "5")}});
    std::optional<Effects> effects(std::in_place);
    FailEachAllocation(
        [&] {
            effects->error.CreateCN(&package_, 7);
            effects->fire.Create(8);
            effects->sun.AddLayerCN(&package_, 3);
            effects->medallion.CreateCN(&package_, 7, 3);
            effects->cube.CreateCN(&package_, 7, 7);
        },
        [&](bool whole) {
            EXPECT_TRUE(!whole || (effects->sun.layerCount == 1 && effects->cube.skinMat.prepared));
            effects->error.visible = true;
            for (const double time : {1.0, 30.0, 60.0}) {
                effects->fire.OnRender(&device_.gl, time);
                for (PRender* effect : std::initializer_list<PRender*>{&effects->sun, &effects->medallion,
                                                                       &effects->cube, &effects->error})
                    effect->OnRender(&device_.gl, time);
            }
            effects->sun.Destroy();
            effects->medallion.Destroy();
            effects->cube.Destroy();
            effects->error.Destroy();
            effects.emplace();
            ExpectNothingLeft();
        });
}

} // namespace
