#include "image/codec.h"
#include "image/material.h"
#include "image/material_library.h"
#include "unit/recorded_device.h"
#include "unit/test_package.h"

#include <climits>
#include <tuple>

namespace {

std::string Names(const FXMatlib& library) {
    std::string names;
    for (const FXMaterial* m : library.materials)
        names.append(names.empty() ? "" : " ").append(m->name.text);
    return names;
}

class Matlib : public testing::Test {
protected:
    Matlib() { fxLoadDevil(); }
    ~Matlib() override { fxUnloadDevil(); }

    // Entry 5 is the library, 7 a picture.
    void Load(const std::string& library) {
        LoadTestPackage(package_, folder_, {{5, kRaw, library}, {7, kTga, Tga(1, 1, {0xFFFFFFFFu})}});
    }

    TempFolder folder_;
    RecordedDevice<> device_;
    FXPackage package_;
};

TEST_F(Matlib, IsSearchedAfterItsParentByExactName) {
    FXMaterial shared, own, metal, nameless, other;
    for (FXMaterial* m : {&shared, &own})
        m->name.Set("Material001");
    for (FXMaterial* m : {&metal, &other})
        m->name.Set("Metal");
    FXMatlib parent, library;
    library.parent = &parent;
    parent.AddMaterial(&shared);
    library.materials.Push(nullptr);
    for (FXMaterial* m : {&own, &metal, &nameless, &metal, &other})
        library.AddMaterial(m);
    EXPECT_EQ(library.materials.count, 5) << "each once";
    const std::pair<const char*, FXMaterial*> cases[] = {{"Material001", &shared}, {"Metal", &metal},
                                                         {"metal", nullptr},       {"Meta", nullptr},
                                                         {"", &nameless},          {nullptr, &nameless}};
    for (const auto& [name, material] : cases)
        EXPECT_EQ(library.FindMaterial(name), material) << (name ? name : "null");
}

TEST_F(Matlib, DestroysWhatItLoadedAndNothingElse) {
    Load(Header("lib") + Ints({2}) + MaterialRecord("a", "7") + MaterialRecord("b", "7"));
    FXMaterial added;
    ASSERT_TRUE(added.LoadTextureCN(&package_, 7));
    {
        FXMatlib library;
        library.AddMaterial(&added);
        for (int again = 0; again < 2; ++again) {
            ASSERT_TRUE(library.LoadC(&package_, "5") && library.name.Compare("lib"));
            EXPECT_EQ(GLRecorder::LiveTextures(), 3);
            if (again == 0)
                library.Destroy();
        }
    }
    EXPECT_EQ(GLRecorder::LiveTextures(), 1) << "the destructor";
    EXPECT_TRUE(added.prepared);
}

TEST_F(Matlib, LoadsWhatTheBytesHold) {
    const std::string a = MaterialRecord("a", ""), b = MaterialRecord("b", "");
    const std::pair<std::string, std::string> kCases[] = {
        {Header("lib") + Ints({INT_MIN}) + a, ""},
        {Header("lib") + Ints({1}) + a + b, "a"},
        {Header("lib") + Ints({4}) + a + b, "a b  "},
        {Header("lib") + Ints({2}) + a + Header("cut"), "a cut"}, // its colours are the preset's
        {Header("lib") + Ints({INT_MAX}) + a, "a" + std::string(FXPackageData::kSureCount - 1, ' ')},
        {Header("lib").substr(0, 6), ""},
        {Header("lib") + Ints({2}) + MaterialRecord("bad", "99") + b, "bad b"}, // untextured
        {Header("lib") + Ints({2}) + MaterialRecord("own", "5") + b, "own b"}}; // itself as a picture
    for (const auto& [record, names] : kCases) {
        Load(record);
        FXMatlib library;
        EXPECT_TRUE(library.LoadC(&package_, "5"));
        EXPECT_TRUE(Names(library) == names) << testing::PrintToString(record.substr(0, 40));
        EXPECT_EQ(GLRecorder::LiveTextures(), 0);
    }
    FXMatlib library;
    for (const char* text : {"", "lib", "6", "-"})
        EXPECT_FALSE(library.LoadC(&package_, text)) << text;
}

TEST_F(Matlib, IsSharedByNameAndReleasedByTheLast) {
    Load(Header("5") + Ints({1}) + MaterialRecord("a", "7"));
    FXMaterial first;
    first.name.Set("a");
    FXMatlib* library = device_.gl.LoadMatlibCN(&package_, 5);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(device_.gl.LoadMatlibC(&package_, "5"), library);
    EXPECT_EQ(library->FindMaterial("a"), library->materials[0]);
    device_.gl.AddMaterial(&first);
    EXPECT_EQ(library->FindMaterial("a"), &first) << "the default library goes first";
    device_.gl.GetDefaultMatlib()->RemoveMaterial(&first);
    library->Release();
    EXPECT_TRUE(GLRecorder::LiveTextures() == 1 && device_.gl.matlibs.Findpos(library) == 0);
    library->Release();
    EXPECT_TRUE(GLRecorder::LiveTextures() == 0 && device_.gl.matlibs.IsEmpty());

    for (FXMatlib* missing : {device_.gl.LoadMatlibC(&package_, "99"), device_.gl.LoadMatlib("none.mtl")}) {
        ASSERT_NE(missing, nullptr) << "there all the same";
        EXPECT_EQ(missing->FindMaterial("a"), nullptr);
    }
    device_.gl.LoadMatlibCN(&package_, 5);
    device_.gl.Destroy();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0) << "the end of the environment is the end of all of them";
    EXPECT_TRUE(device_.gl.matlibs.IsEmpty());

    FXMatlib kept;
    kept.autoDelete = false;
    kept.Release();
    EXPECT_EQ(kept.refCount, 0) << "and alive";
}

TEST_F(Matlib, GoesThroughAFile) {
    Load(Header("lib") + Ints({2}) + MaterialRecord("a", "") + MaterialRecord("b", ""));
    FXMatlib written;
    ASSERT_TRUE(written.LoadC(&package_, "5"));
    EXPECT_FALSE(written.Save(folder_.File("no/folder").c_str()));
    ASSERT_TRUE(written.Save(folder_.File("lib").c_str()));
    const std::string bytes = folder_.Read("lib");
    const std::tuple<std::string, bool, const char*> kCases[] = {
        {bytes, true, "a b"},
        {Header("lib") + Ints({INT_MAX}) + bytes.substr(11), false, "a b"},
        {bytes.substr(0, 11), false, ""},
        {bytes.substr(0, 9), false, ""}};
    for (const auto& [file, loads, names] : kCases) {
        FXMatlib read;
        EXPECT_EQ(read.Load(folder_.Write("lib", file).c_str()), loads) << file.size();
        EXPECT_EQ(Names(read), names) << file.size();
    }
}

TEST_F(Matlib, ReadsWavefrontFiles) {
    const std::string picture = folder_.Write("two words.tga", Tga(2, 2, {1, 2, 3, 4}));
    const std::string file = folder_.Write(
        "m.mtl", "# a comment\nKd 9 9 9\n\nnewmtl  Polished Gold \r\nKa 0.1 0.2 0.3\nKd 0.4 0.5\n"
                 "Ks 0.7 0.8 0.9\r\nKe 0 0 1\nNs 1000\nd 0.25\nTr 1\nillum 2\nnewmtl b\nTr 0.25\n"
                 "map_Kd -s 2 2 -clamp on " +
                     picture + "\n");
    FXMatlib* library = device_.gl.LoadMatlib(file.c_str());
    EXPECT_EQ(device_.gl.LoadMatlib(file.c_str()), library);
    ASSERT_EQ(Names(*library), "Polished Gold b");
    const FXMaterial &gold = *library->materials[0], &b = *library->materials[1];
    EXPECT_TRUE(gold.ambient[1] == 0.2f && gold.specular[2] == 0.9f && gold.emission[2] == 1.0f);
    EXPECT_EQ(gold.diffuse[1], 1.0f) << "a colour of two numbers is none";
    EXPECT_TRUE(gold.diffuse[3] == 0.25f && gold.shininess == 128.0f);
    EXPECT_TRUE(b.diffuse[3] == 0.75f && b.GetWidth() == 2);
}

} // namespace
