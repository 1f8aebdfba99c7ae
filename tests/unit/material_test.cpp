// Materials and their libraries.
#include "image/codec.h"
#include "image/material.h"
#include "image/material_library.h"
#include "unit/recorded_device.h"
#include "unit/test_package.h"

#include <sstream>
#include <tuple>

namespace {

// Grey and alpha of each colour, and the shininess.
std::string Text(const FXMaterial& m) {
    std::ostringstream text;
    for (const float* c : {m.ambient, m.diffuse, m.specular, m.emission}) {
        EXPECT_TRUE(c[0] == c[1] && c[1] == c[2]);
        text << c[0] << "/" << c[3] << " ";
    }
    text << m.shininess;
    return text.str();
}

TEST(Material, IsTintedWithoutDrift) {
    FXMaterial m;
    m.PreserveCols();
    const float half[4] = {0.5f, 0.5f, 0.5f, 0.25f};
    for (int i = 0; i < 3; ++i) {
        m.MultiCols(half);
        EXPECT_EQ(Text(m), "0.1/0 0.5/0.25 0/0 0/0 0") << i;
    }
    m.ChangeDarkDiffuse(0.75f);
    EXPECT_EQ(Text(m), "0.1/0 0.75/0.25 0/0 0/0 0");
    EXPECT_FALSE(m.IsSolid());
    m.diffuse[3] = 1;
    EXPECT_TRUE(m.IsSolid());
    m.prepared = true; // with a picture that can be seen through
    EXPECT_FALSE(m.IsSolid());
    m.prepared = false;
}

// Entry 5 is a library, 7 a picture of 3 x 2 pixels, 8 none; the file's is 640 x 480 and can be seen through.
class WithPictures : public testing::Test {
protected:
    WithPictures() {
        fxLoadDevil();
        LoadTestPackage(package_, folder_,
                        {{5, kRaw, Header("5") + Ints({1}) + MaterialRecord("a", "7")},
                         {7, kTga, Tga(3, 2, std::vector(6, 0xFF112233u))},
                         {8, kTga, "no picture"}});
        file_ = folder_.Write("two words.tga", Tga(640, 480, std::vector(640 * 480, 0x80FFFFFFu)));
    }
    ~WithPictures() override { fxUnloadDevil(); }

    TempFolder folder_;
    RecordedDevice<> device_;
    FXPackage package_;
    std::string file_;
};
using MaterialPicture = WithPictures;
using Matlib = WithPictures;

TEST_F(MaterialPicture, IsUploadedAtOnceIntoOneTextureUntilOneFails) {
    FXMaterial m;
    ASSERT_TRUE(m.LoadTextureCN(&package_, 7));
    EXPECT_TRUE(m.prepared && m.texOpaque && m.extentU == 0.75f && m.extentV == 1.0f);
    EXPECT_TRUE(m.GetWidthF() == 3 && m.GetHeightF() == 2);
    EXPECT_EQ(m.canvas.pixels, nullptr) << "the texture has them";
    const unsigned name = m.texName;
    EXPECT_GT(name, 0u);
    ASSERT_TRUE(m.LoadTexture(file_.c_str()));
    EXPECT_EQ(m.texName, name) << "the same object again";
    EXPECT_TRUE(m.prepared && !m.texOpaque && m.extentU == 0.625f && m.extentV == 0.9375f);
    EXPECT_FALSE(m.LoadTextureCN(&package_, 8));
    EXPECT_TRUE(GLRecorder::LiveTextures() == 0 && m.texName == 0 && !m.prepared) << "no picture";
}

TEST_F(MaterialPicture, IsNamedByTheRecordAndWhatThatLacksIsThePresets) {
    const std::tuple<const char*, std::size_t, bool, const char*> kCases[] = {
        // the picture, how much of the record there is, does that load
        {"", 200, true, "1/1.5 2/2.5 3/3.5 4/4.5 42"},
        {"7", 200, true, "1/1.5 2/2.5 3/3.5 4/4.5 42"},
        {"8", 200, false, "1/1.5 2/2.5 3/3.5 4/4.5 42"},
        {"", 77, true, "1/1.5 2/2.5 3/3.5 4/4.5 0"},
        {"", 76, true, "1/1.5 2/2.5 3/3.5 0/0 0"},
        {"", 29, true, "1/1.5 0.2/1 1/1 0/0 0"},
        {"", 28, true, "0/0 0.2/1 1/1 0/0 0"}};
    for (const auto& [picture, length, loads, expected] : kCases) {
        const std::string record = MaterialRecord("Metal", picture).substr(0, length);
        FXPackageData data = CursorOf(record);
        FXMaterial m;
        EXPECT_EQ(m.LoadC(&package_, &data), loads) << picture;
        EXPECT_EQ(GLRecorder::LiveTextures(), *picture == '7');
        EXPECT_TRUE(m.name.Compare("Metal") && m.ownedByLibrary);
        if (length <= 77)
            m.shininess = 0; // may have been read from half a colour
        EXPECT_EQ(Text(m), expected) << length;
    }
}

TEST_F(Matlib, IsSearchedAfterItsParentByExactName) {
    FXMaterial shared, own, metal, nameless;
    shared.name.Set("Material001");
    own.name.Set("Material001");
    metal.name.Set("Metal");
    FXMatlib parent, library;
    library.parent = &parent;
    parent.AddMaterial(&shared);
    library.materials.Push(nullptr);
    for (FXMaterial* m : {&own, &metal, &nameless, &metal})
        library.AddMaterial(m);
    EXPECT_EQ(library.materials.count, 4) << "each once";
    const std::pair<const char*, FXMaterial*> cases[] = {
        {"Material001", &shared}, {"Metal", &metal}, {"metal", nullptr}, {"Meta", nullptr}, {"", &nameless}};
    for (const auto& [name, material] : cases)
        EXPECT_EQ(library.FindMaterial(name), material) << name;
}

TEST_F(Matlib, IsSharedByNameAndReleasedByTheLast) {
    FXMaterial first;
    first.name.Set("a");
    FXMatlib* library = device_.gl.LoadMatlibC(&package_, "5");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(device_.gl.LoadMatlibC(&package_, "5"), library);
    EXPECT_EQ(library->FindMaterial("a"), library->materials[0]);
    device_.gl.AddMaterial(&first);
    EXPECT_EQ(library->FindMaterial("a"), &first) << "the default library goes first";
    library->Release();
    EXPECT_TRUE(GLRecorder::LiveTextures() == 1 && device_.gl.matlibs.Findpos(library) == 0);
    library->Release();
    EXPECT_TRUE(GLRecorder::LiveTextures() == 0 && device_.gl.matlibs.IsEmpty());

    for (FXMatlib* missing : {device_.gl.LoadMatlibC(&package_, "99"), device_.gl.LoadMatlib("none.mtl")}) {
        ASSERT_NE(missing, nullptr) << "there all the same";
        EXPECT_TRUE(missing->materials.IsEmpty());
    }
    device_.gl.LoadMatlibC(&package_, "5");
    device_.gl.Destroy();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0) << "the end of the environment is the end of all of them";
}

TEST_F(Matlib, ReadsWavefrontFiles) {
    const std::string file = folder_.Write(
        "m.mtl", "Kd 9 9 9\nnewmtl  Polished Gold \r\nKd 0.4 0.5\nNs 1000\nd 0.25\nTr 1\nnewmtl b\nTr 0.25\n"
                 "map_Kd -s 2 2 -clamp on " +
                     file_ + "\n");
    FXMatlib* library = device_.gl.LoadMatlib(file.c_str());
    ASSERT_EQ(library->materials.count, 2);
    const FXMaterial &gold = *library->materials[0], &b = *library->materials[1];
    EXPECT_EQ(gold.diffuse[1], 1.0f) << "a colour of two numbers is none";
    EXPECT_TRUE(gold.name.Compare("Polished Gold") && gold.diffuse[3] == 0.25f && gold.shininess == 128.0f);
    EXPECT_TRUE(b.diffuse[3] == 0.75f && b.GetWidth() == 640);
}

} // namespace
