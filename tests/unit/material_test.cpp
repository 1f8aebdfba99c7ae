// Lights and materials.
#include "base/file_handle.h"
#include "image/codec.h"
#include "image/light.h"
#include "image/material.h"
#include "unit/recorded_device.h"
#include "unit/test_package.h"

#include <functional>
#include <tuple>

namespace {

// Grey and alpha of each colour, and the shininess.
std::string Text(const FXMaterial& m) {
    std::string text;
    char part[40];
    for (const float* c : {m.ambient, m.diffuse, m.specular, m.emission}) {
        EXPECT_TRUE(c[0] == c[1] && c[1] == c[2]);
        std::snprintf(part, sizeof part, "%g/%g ", c[0], c[3]);
        text += part;
    }
    std::snprintf(part, sizeof part, "%g", m.shininess);
    return text + part;
}

TEST(Light, PresetsKeepItsPlace) {
    for (void (FXLight::*const set)(float) :
         {&FXLight::SetDefault, &FXLight::SetDefAmbient, &FXLight::SetDefSpecular}) {
        FXLight light;
        light.position[2] = light.spotDirection[2] = light.spotCutoff = 7;
        (light.*set)(0.5f);
        EXPECT_TRUE(light.position[2] == 7 && light.spotDirection[2] == 7 && light.spotCutoff == 180);
        light.MultiColorF(0.5f, 0.5f, 0.5f, 0.5f);
        EXPECT_EQ(light.ambient[3], 0.25f);
    }
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
}

TEST(Material, IsSolidInPictureAndColour) {
    const std::tuple<bool, bool, float, bool> kCases[] = {// prepared, opaque, alpha; solid
                                                          {false, false, 1, true},
                                                          {true, true, 1, true},
                                                          {true, true, 0.999f, false},
                                                          {true, false, 1, false}};
    for (const auto& [prepared, opaque, alpha, solid] : kCases) {
        FXMaterial material;
        material.prepared = prepared;
        material.texOpaque = opaque;
        material.diffuse[3] = alpha;
        EXPECT_EQ(material.IsSolid(), solid) << prepared << opaque << alpha;
    }
}

// Fails to make a texture when told so.
struct UnwillingDevice : FXGL {
    bool PrepareTexture(FXMaterial* m) override { return FXGL::PrepareTexture(m) && willing; }
    bool willing = true;
};

// Entry 7 is a picture of 3 x 2 pixels, 8 none; the file's is 640 x 480 and can be seen through.
class MaterialPicture : public testing::Test {
protected:
    MaterialPicture() {
        fxLoadDevil();
        LoadTestPackage(
            package_, folder_,
            {{7, kTga, Tga(3, 2, std::vector<std::uint32_t>(6, 0xFF112233u))}, {8, kTga, "no picture"}});
        file_ = folder_.Write("p.tga", Tga(640, 480, std::vector<std::uint32_t>(640 * 480, 0x80FFFFFFu)));
    }
    ~MaterialPicture() override { fxUnloadDevil(); }

    static void ExpectUntextured(const FXMaterial& m, const char* what) {
        EXPECT_TRUE(GLRecorder::LiveTextures() == 0 && m.texName == 0 && !m.prepared) << what;
    }

    TempFolder folder_;
    RecordedDevice<UnwillingDevice> device_;
    FXPackage package_;
    std::string file_;
};

TEST_F(MaterialPicture, IsUploadedAtOnceIntoOneTexture) {
    FXMaterial m;
    ASSERT_TRUE(m.LoadTextureCN(&package_, 7));
    EXPECT_TRUE(m.prepared && m.texOpaque && m.extentU == 0.75f && m.extentV == 1.0f);
    EXPECT_TRUE(m.GetWidthF() == 3 && m.GetHeightF() == 2);
    const unsigned name = m.texName;
    EXPECT_GT(name, 0u);
    ASSERT_TRUE(m.LoadTexture(file_.c_str()));
    EXPECT_EQ(m.texName, name) << "the same object again";
    EXPECT_TRUE(m.prepared && !m.texOpaque && m.extentU == 0.625f && m.extentV == 0.9375f);
    m.Destroy();
    ExpectUntextured(m, "destroyed");
}

TEST_F(MaterialPicture, OfTheCallerIsReadButNotOwned) {
    FXCanvas canvas, empty;
    ASSERT_TRUE(canvas.Realloc(640, 480));
    static_cast<FXPixmap&>(canvas).Clear(0);
    {
        FXMaterial m;
        ASSERT_TRUE(m.SetTexture(&canvas));
        EXPECT_TRUE(m.GetWidth() == 640 && m.extentU == 0.625f);
        EXPECT_FALSE(m.SetTexture(&empty));
        ExpectUntextured(m, "no pixels");
        ASSERT_TRUE(m.SetTexture(&canvas));
    }
    EXPECT_EQ(GLRecorder::LiveTextures(), 0) << "the destructor";
    EXPECT_EQ(canvas.GetWidth(), 640);
}

TEST_F(MaterialPicture, ThatFailsDeletesTheTextureOfTheOneBefore) {
    const std::pair<const char*, std::function<bool(FXMaterial&)>> kCases[] = {
        {"entry", [&](FXMaterial& m) { return m.LoadTextureCN(&package_, 8); }},
        {"text", [&](FXMaterial& m) { return m.LoadTextureC(&package_, "tex"); }},
        {"file", [&](FXMaterial& m) { return m.LoadTexture("no/such.png"); }},
        {"device",
         [&](FXMaterial& m) { return (device_.gl.willing = false) || m.LoadTextureCN(&package_, 7); }}};
    for (const auto& [what, reload] : kCases) {
        FXMaterial m;
        ASSERT_TRUE(m.LoadTextureCN(&package_, 7));
        EXPECT_FALSE(reload(m)) << what;
        ExpectUntextured(m, what);
        EXPECT_TRUE(m.GetWidth() == 0 || !device_.gl.willing) << what;
    }
}

TEST_F(MaterialPicture, IsNamedByTheRecord) {
    const std::tuple<const char*, bool, int> kCases[] = {// is it loaded, textures
                                                         {"", true, 0},
                                                         {"7", true, 1},
                                                         {"8", false, 0},
                                                         {"99", false, 0},
                                                         {"tex", false, 0}};
    for (const auto& [picture, loads, textures] : kCases) {
        const std::string record = MaterialRecord("Metal", picture) + "rest";
        FXPackageData data = CursorOf(record);
        FXMaterial m;
        EXPECT_EQ(m.LoadC(&package_, &data), loads) << picture;
        EXPECT_EQ(data.left, 4);
        EXPECT_EQ(GLRecorder::LiveTextures(), textures) << picture;
        EXPECT_TRUE(m.name.Compare("Metal") && m.ownedByLibrary);
        EXPECT_EQ(Text(m), "1/1.5 2/2.5 3/3.5 4/4.5 42");
    }
}

TEST_F(MaterialPicture, RecordThatEndsEarlyKeepsThePreset) {
    const std::pair<std::size_t, const char*> kCases[] = {{3, "0/0 0.2/1 1/1 0/0 0"},
                                                          {28, "0/0 0.2/1 1/1 0/0 0"},
                                                          {29, "1/1.5 0.2/1 1/1 0/0 0"},
                                                          {76, "1/1.5 2/2.5 3/3.5 0/0 0"},
                                                          {77, "1/1.5 2/2.5 3/3.5 4/4.5 0"}};
    for (const auto& [length, expected] : kCases) {
        const std::string record = MaterialRecord("Metal", "").substr(0, length);
        FXPackageData data = CursorOf(record);
        FXMaterial fromEntry, fromFile;
        EXPECT_TRUE(fromEntry.LoadC(&package_, &data));
        EXPECT_TRUE(fromFile.Load(fxOpenFile(folder_.Write("record", record).c_str(), "rb").get()));
        fromEntry.shininess = 0; // may have been read from half a colour
        EXPECT_EQ(Text(fromFile), expected) << length;
        EXPECT_EQ(Text(fromEntry), expected) << length;
    }
}

TEST_F(MaterialPicture, RecordInAFileNamesAFile) {
    FXMaterial written, read;
    written.SetDefSpecular(0.5f);
    written.name.Set("Glass");
    written.texRef.Set(file_.c_str());
    const FXFile file = fxOpenFile(folder_.File("m").c_str(), "w+b");
    EXPECT_TRUE(written.Save(file.get()));
    std::rewind(file.get());
    EXPECT_TRUE(read.Load(file.get()));
    EXPECT_STREQ(read.name.text, "Glass");
    EXPECT_EQ(Text(read), Text(written));
    EXPECT_EQ(read.GetWidth(), 640);
}

} // namespace
