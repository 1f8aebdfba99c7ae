// Lights and materials.
#include "base/file_handle.h"
#include "image/codec.h"
#include "image/light.h"
#include "image/material.h"
#include "unit/recorded_device.h"
#include "unit/test_package.h"

#include <cstring>

namespace {

// Grey and alpha of each colour, and the other numbers.
std::string Text(const std::vector<const float*>& colors, const std::vector<float>& numbers) {
    std::string text;
    char part[40];
    for (const float* c : colors) {
        EXPECT_TRUE(c[0] == c[1] && c[1] == c[2]);
        std::snprintf(part, sizeof part, "%g/%g ", c[0], c[3]);
        text += part;
    }
    for (const float number : numbers) {
        std::snprintf(part, sizeof part, "%g ", number);
        text += part;
    }
    return text;
}

TEST(Light, PresetsSetAllButPlaceAndDirection) {
    const std::pair<void (*)(FXLight&), const char*> kCases[] = {
        {[](FXLight& l) { l = FXLight(); }, "0.2/1 1/1 0/0 -1 0 1 0 180 0 0 0 "},
        {[](FXLight& l) { l.SetDefault(0.5f); }, "0.2/0.5 1/0.5 0/0 7 0 8 0 180 0 0 0 "},
        {[](FXLight& l) { l.SetDefAmbient(0.5f); }, "1/0.5 0/0 0/0 7 0 8 0 180 0 0 0 "},
        {[](FXLight& l) { l.SetDefSpecular(0.5f); }, "0/0.5 1/0.5 1/0.5 7 1 8 12 180 0.4 0.4 0 "},
        {[](FXLight& l) { l.SetDiffuseDark(0.3f, 0.5f); }, "0/0.5 0.3/0.5 0/0 7 0 8 0 180 0 0 0 "}};
    for (const auto& [set, expected] : kCases) {
        FXLight l;
        l.position[2] = l.position[3] = 7;
        l.spotDirection[2] = 8;
        l.spotExponent = l.spotCutoff = 9;
        l.constantAttenuation = l.linearAttenuation = l.quadraticAttenuation = 9;
        set(l);
        EXPECT_EQ(Text({l.ambient, l.diffuse, l.specular},
                       {l.position[2], l.position[3], l.spotDirection[2], l.spotExponent, l.spotCutoff,
                        l.constantAttenuation, l.linearAttenuation, l.quadraticAttenuation}),
                  expected);
        l.MultiColorF(0.5f, 0.5f, 0.5f, 0);
        EXPECT_EQ(l.diffuse[3], 0.0f);
    }
}

std::string Text(const FXMaterial& m) {
    return Text({m.ambient, m.diffuse, m.specular, m.emission}, {m.shininess});
}

TEST(Material, PresetsSetTheColours) {
    EXPECT_EQ(Text(FXMaterial()), "0.2/0 1/1 0/0 0/0 0 ");
    const std::pair<void (*)(FXMaterial&), const char*> kCases[] = {
        {[](FXMaterial& m) { m.SetDefault(0.5f); }, "0.2/0 1/0.5 0/0 0/0 7 "},
        {[](FXMaterial& m) { m.SetDefSpecular(0.5f); }, "0/0 0.2/0.5 1/0.5 0/0 128 "},
        {[](FXMaterial& m) { m.SetDefSpecular1(0.5f); }, "0.2/0.5 1/0.5 1/0.5 0/0 7 "},
        {[](FXMaterial& m) { m.SetDefEmission(0.5f); }, "0/0 0/0.5 0/0 1/0.5 7 "},
        {[](FXMaterial& m) { m.SetBlack(0.5f); }, "0/0 0/0.5 0/0 0/0 7 "},
        {[](FXMaterial& m) { m.PrepareDarkDiffuse(0.5f); }, "0/0.5 1/0.5 0/0 0/0 7 "}};
    for (const auto& [set, expected] : kCases) {
        FXMaterial m;
        for (float* color : {m.ambient, m.diffuse, m.specular, m.emission})
            std::fill_n(color, 4, 9.0f);
        m.shininess = 7;
        set(m);
        EXPECT_EQ(Text(m), expected);
    }
}

TEST(Material, IsTintedWithoutDrift) {
    FXMaterial m;
    m.PreserveCols();
    const float half[4] = {0.5f, 0.5f, 0.5f, 0.25f};
    for (int i = 0; i < 3; ++i) {
        m.MultiCols(half);
        EXPECT_EQ(Text(m), "0.1/0 0.5/0.25 0/0 0/0 0 ") << i;
    }
    m.ChangeDarkDiffuse(0.75f);
    EXPECT_EQ(Text(m), "0.1/0 0.75/0.25 0/0 0/0 0 ");
}

TEST(Material, IsSolidInPictureAndColour) {
    const struct {
        bool prepared, opaque;
        float alpha;
        bool solid;
    } kCases[] = {{false, false, 1, true},
                  {false, true, 0.999f, false},
                  {true, true, 1, true},
                  {true, true, 0.999f, false},
                  {true, false, 1, false}};
    for (const auto& c : kCases) {
        FXMaterial material;
        material.prepared = c.prepared;
        material.texOpaque = c.opaque;
        material.diffuse[3] = c.alpha;
        EXPECT_EQ(material.IsSolid(), c.solid) << c.prepared << c.opaque << c.alpha;
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
    ASSERT_TRUE(m.LoadTextureC(&package_, "7")) << "usable again";
}

TEST_F(MaterialPicture, OfTheCallerIsReadButNotOwned) {
    FXCanvas canvas, empty;
    ASSERT_TRUE(canvas.Realloc(640, 480));
    static_cast<FXPixmap&>(canvas).Clear(0);
    {
        FXMaterial m;
        ASSERT_TRUE(m.SetTexture(&canvas));
        EXPECT_TRUE(m.GetWidth() == 640 && m.GetHeight() == 480 && m.extentU == 0.625f &&
                    m.extentV == 0.9375f);
        EXPECT_FALSE(m.SetTexture(&empty));
        ExpectUntextured(m, "no pixels");
        EXPECT_EQ(m.GetWidth(), 0);
        ASSERT_TRUE(m.SetTexture(&canvas));
        m.Destroy();
        EXPECT_EQ(m.GetWidth(), 0);
        ASSERT_TRUE(m.SetTexture(&canvas));
    }
    EXPECT_EQ(GLRecorder::LiveTextures(), 0) << "the destructor";
    EXPECT_EQ(canvas.GetWidth(), 640);
}

TEST_F(MaterialPicture, ThatFailsDeletesTheTextureOfTheOneBefore) {
    using Reload = bool (*)(FXMaterial & m, FXPackage * package, UnwillingDevice & device);
    const std::pair<const char*, Reload> kCases[] = {
        {"entry", [](FXMaterial& m, FXPackage* p, UnwillingDevice&) { return m.LoadTextureCN(p, 8); }},
        {"text", [](FXMaterial& m, FXPackage* p, UnwillingDevice&) { return m.LoadTextureC(p, "tex"); }},
        {"file", [](FXMaterial& m, FXPackage*, UnwillingDevice&) { return m.LoadTexture("no/such.png"); }},
        {"device",
         [](FXMaterial& m, FXPackage* p, UnwillingDevice& device) {
             device.willing = false;
             return m.LoadTextureCN(p, 7);
         }},
        {"no environment",
         [](FXMaterial& m, FXPackage* p, UnwillingDevice& device) {
             m.Destroy();
             fxSetEnv(nullptr);
             const bool loaded = m.LoadTextureCN(p, 7);
             fxSetEnv(&device);
             return loaded;
         }},
    };
    for (const auto& [what, reload] : kCases) {
        FXMaterial m;
        device_.gl.willing = true;
        ASSERT_TRUE(m.LoadTextureCN(&package_, 7));
        EXPECT_FALSE(reload(m, &package_, device_.gl)) << what;
        ExpectUntextured(m, what);
        EXPECT_TRUE(m.GetWidth() == 0 || !device_.gl.willing) << what;
    }
}

TEST_F(MaterialPicture, IsNamedByTheRecord) {
    const struct {
        const char* picture;
        bool loads;
        int textures;
    } kCases[] = {{"", true, 0}, {"7", true, 1}, {"8", false, 0}, {"99", false, 0}, {"tex", false, 0}};
    for (const auto& c : kCases) {
        const std::string record = MaterialRecord("Metal", c.picture) + "rest";
        FXPackageData data;
        data.InitData(record.data(), static_cast<int>(record.size()));
        FXMaterial m;
        EXPECT_EQ(m.LoadC(&package_, &data), c.loads) << c.picture;
        EXPECT_EQ(data.left, 4);
        EXPECT_EQ(GLRecorder::LiveTextures(), c.textures) << c.picture;
        EXPECT_STREQ(m.name.text, "Metal");
        EXPECT_TRUE(m.ownedByLibrary);
        EXPECT_EQ(Text(m), "1/1.5 2/2.5 3/3.5 4/4.5 42 ");
    }
}

TEST_F(MaterialPicture, RecordThatEndsEarlyKeepsThePreset) {
    const char* const kExpected[] = {"0/0 0.2/1 1/1 0/0 0 ", "1/1.5 0.2/1 1/1 0/0 0 ",
                                     "1/1.5 2/2.5 1/1 0/0 0 ", "1/1.5 2/2.5 3/3.5 0/0 0 ",
                                     "1/1.5 2/2.5 3/3.5 4/4.5 0 "};
    const std::string whole = MaterialRecord("Metal", "");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::string record = whole.substr(0, length);
        FXPackageData data;
        data.InitData(record.data(), static_cast<int>(length));
        FXMaterial fromEntry, fromFile;
        EXPECT_TRUE(fromEntry.LoadC(&package_, &data));
        const FXFile file = fxOpenFile(folder_.Write("record", record).c_str(), "rb");
        EXPECT_TRUE(fromFile.Load(file.get()));
        const char* expected = kExpected[length < 13 ? 0 : (length - 13) / 16];
        EXPECT_EQ(Text(fromFile), expected) << length;
        fromEntry.shininess = 0; // may have been read from half a colour
        EXPECT_EQ(Text(fromEntry), expected) << length;
    }
}

TEST_F(MaterialPicture, RecordInAFileNamesAFile) {
    FXMaterial written, read;
    written.SetDefSpecular(0.5f);
    written.name.Set("Glass");
    written.texRef.Set(file_.c_str());
    FXFile file = fxOpenFile(folder_.File("m").c_str(), "w+b");
    EXPECT_TRUE(written.Save(file.get()));
    std::rewind(file.get());
    EXPECT_TRUE(read.Load(file.get()));
    EXPECT_STREQ(read.name.text, "Glass");
    EXPECT_EQ(Text(read), Text(written));
    EXPECT_EQ(read.GetWidth(), 640);
}

} // namespace
