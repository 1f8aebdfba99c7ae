// The morph in its files: all key frames in one layout (version 3), or a list of models (version 2).
#include "anim/morph_animation.h"
#include "image/codec.h"
#include "image/material.h"
#include "image/material_library.h"
#include "platform/trace.h"
#include "unit/scene_parts.h"

#include <climits>
#include <tuple>
#include <utility>

namespace {

constexpr int kMorph = 3;

std::string Settings(const std::vector<std::string>& names) {
    std::string head = Ints({static_cast<std::int32_t>(names.size())});
    for (const std::string& name : names)
        head += Header(name);
    return head + Ints({3, 900, 0, -3, 7, 8, 2, 1, -1, 1, 5}) + std::string("\0\1", 2) + Floats({0.5f}) +
           Ints({3}) + Floats({1.5f}) + std::string("\0\1\0\1", 4);
}

// Entry 5 is a library named "5" with the material wood, whose picture fills 3 of 4 columns.
class MorphFile : public testing::Test {
protected:
    MorphFile() { fxLoadDevil(); }
    ~MorphFile() override { fxUnloadDevil(); }

    void LoadPackage(const std::string& morph, const std::vector<TestEntry>& more = {}) {
        std::vector<TestEntry> entries = {{kMorph, kRaw, morph},
                                          {5, kRaw, Header("5") + Ints({1}) + MaterialRecord("wood", "4")},
                                          {4, kTga, Tga(3, 1, {1, 2, 3})}};
        entries.insert(entries.end(), more.begin(), more.end());
        LoadTestPackage(package_, folder_, entries);
    }
    // Three key frames of two triangles that begin alike, but part later; no setting has its default.
    void Make(FXAnim* anim) {
        LoadPackage(Settings({"none", "", "none"}));
        EXPECT_TRUE(anim->LoadCN(&package_, kMorph));
        for (int f = 0; f < 3; ++f) {
            const auto x = static_cast<float>(f);
            std::vector<TestVertex> other = TriangleAt(x);
            other[1].pos[0] += x;
            other[2].tex = {0.25f, x};
            other[0].normal = {0, 2 * x, 1};
            anim->models[f] = NewModel({TriangleAt(x), other}, "wood", "5");
            anim->models[f]->meshes[1]->transparent = 2;
            anim->models[f]->meshes[1]->loadedU = 1.5f;
        }
    }
    std::string Saved(FXAnim* anim) {
        EXPECT_TRUE(anim->Save(folder_.File("morph").c_str()));
        return folder_.Read("morph");
    }
    std::string SavedHead(const FXAnim& anim) {
        EXPECT_TRUE(anim.Save_v02(fxOpenFile(folder_.File("head").c_str(), "wb").get()));
        return folder_.Read("head");
    }

    TempFolder folder_;
    RecordedDevice<SceneDevice> device_;
    FXPackage package_;
};

TEST_F(MorphFile, Version3KeepsEverything) {
    FXAnim written, read, fromFile;
    Make(&written);
    const std::string bytes = Saved(&written);
    for (const FXModel* model : written.models)
        model->meshes[1]->vertices[2].tex[0] = 0.125f; // as the picture fills half of what it did when stored
    const std::string settings = Settings({"none", "", "none"});
    EXPECT_EQ(bytes.substr(0, 8 + settings.size()), Header("oa03") + settings);
    LoadPackage(bytes);
    ASSERT_TRUE(read.LoadCN(&package_, kMorph) && read.LoadCN(&package_, kMorph));
    ASSERT_TRUE(fromFile.Load(folder_.File("morph").c_str()));
    for (FXAnim* anim : {&read, &fromFile}) {
        EXPECT_EQ(SavedHead(*anim), settings);
        for (int f = 0; f < 3; ++f) {
            EXPECT_STREQ(anim->models[f]->name.text, anim->frameNames.Get(f));
            ASSERT_EQ(anim->models[f]->meshes.count, 2);
            for (int m = 0; m < 2; ++m) {
                const FXMesh& mesh = *anim->models[f]->meshes[m];
                EXPECT_EQ(CornersOf(mesh), CornersOf(*written.models[f]->meshes[m])) << f << ", " << m;
                EXPECT_STREQ(mesh.materialName.text, "wood");
                EXPECT_EQ(mesh.transparent, 2 * m);
            }
        }
        anim->UpdateInterpolation(true, true);
        EXPECT_EQ(anim->posSplines.GetCnt(), 6) << "key frames agree";
    }
    FXMatlib* library = read.models[0]->matlib;
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->refCount, 8) << "each key frame's and imodel's, in the package's and in the file's";
    EXPECT_EQ(read.models[2]->meshes[1]->material, library->FindMaterial("wood"));
    LoadPackage(bytes.substr(0, bytes.size() - 1));
    ASSERT_TRUE(read.LoadCN(&package_, kMorph));
    EXPECT_EQ(read.models[1]->GetTotalVertices(), 6);
    EXPECT_EQ(read.models[2]->GetTotalVertices(), 0) << "its last vectors are not there";
    read.Destroy();
    fromFile.Destroy();
    EXPECT_TRUE(device_.gl.matlibs.IsEmpty());
}

TEST_F(MorphFile, Version2NamesItsModels) {
    const std::string model = TriangleModel(folder_);
    const std::string settings = Settings({"8", "no number", folder_.File("model"), "9 and more", "77", "8"});
    LoadPackage(settings, {{8, kRaw, model}, {9, kRaw, model}});
    FXAnim read;
    for (const auto& [fromPackage, there] : {std::pair{true, "x  x x"}, {false, "  x   "}}) {
        EXPECT_TRUE(fromPackage ? read.LoadCN(&package_, kMorph)
                                : read.Load(folder_.Write("list", settings).c_str()));
        EXPECT_EQ(SavedHead(read), settings);
        ASSERT_EQ(read.models.count, 6);
        for (int f = 0; f < 6; ++f) {
            ASSERT_EQ(read.models[f] != nullptr, there[f] == 'x') << f;
            EXPECT_TRUE(read.models[f] == nullptr || read.models[f]->GetTotalVertices() == 3);
        }
    }
}

TEST_F(MorphFile, ThatClaimsTooMuchTakesNoMoreMemoryThanThereIs) {
    const std::string rest = Settings({}).substr(20);              // behind names and times
    const std::string many(2000, '\0'), version3 = Header("oa03"); // 500 numbers
    const std::string large = Header("om03") + Header("") + Header("") + Ints({1, 0, 0, 0}) +
                              MeshRecordHead(300000, 300000) + Ints({0}) + std::string(300000, '\0');
    const std::tuple<std::string, int, std::string> cases[] = {
        // key frames there are; what is said
        {version3 + Ints({INT_MAX}) + many, 65536, ""}, // names without end
        {version3 + Ints({90000}) + std::string(360000, '\0'), 0,
         "90000 key frames is left with 0: it takes 198 MiB"},
        {version3 + Ints({500}) + many + Ints({0}) + rest + Ints({1}) + Header("") +
             MeshRecordHead(2100, 2100) + many + many,
         500, "500 key frames is left with 0: it takes 163 MiB"},
        {Settings(std::vector<std::string>(20, "8")), 3, "20 key frames is left with 3: it takes 185 MiB"}};
    for (const auto& [body, frames, says] : cases) {
        SCOPED_TRACE(says);
        LoadPackage(body, {{8, kRaw, large}});
        FXAnim anim;
        fxOpenTraces(folder_.File("trace").c_str());
        ASSERT_TRUE(anim.LoadCN(&package_, kMorph));
        fxCloseTraces();
        EXPECT_EQ(std::ranges::count_if(anim.models, [](const FXModel* m) { return m != nullptr; }), frames);
        EXPECT_EQ(folder_.Read("trace").find("animation of " + says) != std::string::npos, !says.empty());
    }
}

TEST_F(MorphFile, IsNotSavedWhenItsKeyFramesDisagree) {
    const std::pair<const char*, void (*)(FXAnim&)> kCases[] = {
        {"saved", [](FXAnim&) {}},
        {"no second key frame", [](FXAnim& a) { delete std::exchange(a.models[1], nullptr); }},
        {"a mesh too many", [](FXAnim& a) { a.models[2]->meshes.Push(new FXMesh); }},
        {"a vertex not used in one", [](FXAnim& a) { a.models[1]->meshes[0]->indices[2] = 0; }}};
    for (const auto& c : kCases) {
        FXAnim anim;
        Make(&anim);
        c.second(anim);
        EXPECT_EQ(anim.Save(folder_.File("morph").c_str()), &c == kCases) << c.first;
    }
}

} // namespace
