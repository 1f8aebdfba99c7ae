#include "base/file_handle.h"
#include "image/codec.h"
#include "image/material.h"
#include "unit/recorded_device.h"
#include "unit/test_package.h"

#include <array>
#include <cstring>

namespace {

using Color = std::array<float, 4>;

std::array<Color, 4> ColorsOf(const FXMaterial& m) {
    std::array<Color, 4> colors;
    const float* const from[4] = {m.ambient, m.diffuse, m.specular, m.emission};
    for (int i = 0; i < 4; ++i)
        std::copy_n(from[i], 4, colors[i].begin());
    return colors;
}

std::array<Color, 4> Greys(float a, float aa, float d, float da, float s, float sa, float e, float ea) {
    return {Color{a, a, a, aa}, Color{d, d, d, da}, Color{s, s, s, sa}, Color{e, e, e, ea}};
}

TEST(Material, PresetsSetTheColours) {
    const struct {
        const char* what;
        void (*set)(FXMaterial& m);
        std::array<Color, 4> colors;
        float shininess;
    } cases[] = {
        {"diffuse", [](FXMaterial& m) { m.SetDefDiffuse(0.5f); }, Greys(0.2f, 0, 1, 0.5f, 0, 0, 0, 0), 7},
        {"default", [](FXMaterial& m) { m.SetDefault(0.5f); }, Greys(0.2f, 0, 1, 0.5f, 0, 0, 0, 0), 7},
        {"specular", [](FXMaterial& m) { m.SetDefSpecular(0.5f); }, Greys(0, 0, 0.2f, 0.5f, 1, 0.5f, 0, 0),
         128},
        {"specular 1", [](FXMaterial& m) { m.SetDefSpecular1(0.5f); },
         Greys(0.2f, 0.5f, 1, 0.5f, 1, 0.5f, 0, 0), 7},
        {"emission", [](FXMaterial& m) { m.SetDefEmission(0.5f); }, Greys(0, 0, 0, 0.5f, 0, 0, 1, 0.5f), 7},
        {"black", [](FXMaterial& m) { m.SetBlack(0.5f); }, Greys(0, 0, 0, 0.5f, 0, 0, 0, 0), 7},
        {"dark", [](FXMaterial& m) { m.PrepareDarkDiffuse(0.5f); }, Greys(0, 0.5f, 1, 0.5f, 0, 0, 0, 0), 7},
    };
    for (const auto& c : cases) {
        FXMaterial material;
        EXPECT_EQ(ColorsOf(material), Greys(0.2f, 0, 1, 1, 0, 0, 0, 0)) << "fresh";
        EXPECT_EQ(material.shininess, 0.0f);
        for (float* color : {material.ambient, material.diffuse, material.specular, material.emission})
            std::fill_n(color, 4, 9.0f);
        material.shininess = 7;
        c.set(material);
        EXPECT_EQ(ColorsOf(material), c.colors) << c.what;
        EXPECT_EQ(material.shininess, c.shininess) << c.what;
        material.ChangeDarkDiffuse(0.25f);
        EXPECT_EQ(ColorsOf(material)[1], (Color{0.25f, 0.25f, 0.25f, 0.5f})) << c.what;
    }
}

TEST(Material, IsTintedWithoutDrift) {
    FXMaterial material;
    material.SetDefSpecular1(0.5f);
    material.SetDefEmission(0.75f);
    material.PreserveCols();
    const float half[4] = {0.5f, 0.25f, 1, 0.5f};
    for (int i = 0; i < 3; ++i) {
        material.MultiCols(half);
        EXPECT_EQ(ColorsOf(material)[3], (Color{0.5f, 0.25f, 1, 0.375f})) << i;
        EXPECT_EQ(ColorsOf(material)[1], (Color{0, 0, 0, 0.375f})) << i;
    }
}

TEST(Material, IsSolidInPictureAndColour) {
    const struct {
        bool prepared, opaque;
        float alpha;
        bool solid;
    } kCases[] = {{false, false, 1, true},     {false, true, 0.999f, false}, {true, true, 1, true},
                  {true, true, 0.999f, false}, {true, false, 1, false},      {true, false, 0.5f, false}};
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
        EXPECT_EQ(GLRecorder::LiveTextures(), 0) << what;
        EXPECT_EQ(m.texName, 0u) << what;
        EXPECT_FALSE(m.prepared) << what;
    }

    TempFolder folder_;
    RecordedDevice<UnwillingDevice> device_;
    FXPackage package_;
    std::string file_;
};

TEST_F(MaterialPicture, IsUploadedAtOnceIntoOneTexture) {
    FXMaterial material;
    ASSERT_TRUE(material.LoadTextureCN(&package_, 7));
    EXPECT_TRUE(material.prepared && material.texOpaque);
    EXPECT_EQ(material.extentU, 0.75f);
    EXPECT_EQ(material.extentV, 1.0f);
    EXPECT_EQ(material.GetWidthF(), 3.0f);
    EXPECT_EQ(material.GetHeightF(), 2.0f);
    const unsigned name = material.texName;
    EXPECT_GT(name, 0u);
    ASSERT_TRUE(material.LoadTexture(file_.c_str()));
    EXPECT_EQ(material.texName, name) << "the same object again";
    EXPECT_FALSE(material.texOpaque);
    EXPECT_EQ(material.extentU, 0.625f);
    EXPECT_EQ(material.extentV, 0.9375f);
    EXPECT_EQ(GLRecorder::LiveTextures(), 1);
    material.Destroy();
    ExpectUntextured(material, "destroyed");
    EXPECT_EQ(material.GetWidth(), 0);
    ASSERT_TRUE(material.LoadTextureC(&package_, "7")) << "usable again";
}

TEST_F(MaterialPicture, OfTheCallerIsReadButNotOwned) {
    FXCanvas canvas;
    ASSERT_TRUE(canvas.Realloc(640, 480));
    static_cast<FXPixmap&>(canvas).Clear(0);
    {
        FXMaterial material;
        ASSERT_TRUE(material.SetTexture(&canvas));
        EXPECT_EQ(material.GetWidth(), 640);
        EXPECT_EQ(material.GetHeight(), 480);
        EXPECT_EQ(material.extentU, 0.625f);
        EXPECT_EQ(material.extentV, 0.9375f);
        FXCanvas empty;
        EXPECT_FALSE(material.SetTexture(&empty));
        EXPECT_EQ(material.GetWidth(), 0);
        ExpectUntextured(material, "no pixels");
        ASSERT_TRUE(material.SetTexture(&canvas));
        material.Destroy();
        EXPECT_EQ(material.GetWidth(), 0);
        ASSERT_TRUE(material.SetTexture(&canvas));
    }
    EXPECT_EQ(GLRecorder::LiveTextures(), 0) << "the destructor";
    EXPECT_EQ(canvas.GetWidth(), 640);
}

TEST_F(MaterialPicture, ThatFailsDeletesTheTextureOfTheOneBefore) {
    const struct {
        const char* what;
        bool (*reload)(FXMaterial& m, FXPackage* package, UnwillingDevice& device);
        bool hasPicture = false;
    } kCases[] = {
        {"entry", [](FXMaterial& m, FXPackage* p, UnwillingDevice&) { return m.LoadTextureCN(p, 8); }},
        {"no entry", [](FXMaterial& m, FXPackage* p, UnwillingDevice&) { return m.LoadTextureCN(p, 9); }},
        {"text", [](FXMaterial& m, FXPackage* p, UnwillingDevice&) { return m.LoadTextureC(p, "tex"); }},
        {"file", [](FXMaterial& m, FXPackage*, UnwillingDevice&) { return m.LoadTexture("no/such.png"); }},
        {"device",
         [](FXMaterial& m, FXPackage* p, UnwillingDevice& device) {
             device.willing = false;
             return m.LoadTextureCN(p, 7);
         },
         true},
        {"no environment",
         [](FXMaterial& m, FXPackage* p, UnwillingDevice& device) {
             m.Destroy();
             fxSetEnv(nullptr);
             const bool loaded = m.LoadTextureCN(p, 7);
             fxSetEnv(&device);
             return loaded;
         }},
    };
    for (const auto& c : kCases) {
        FXMaterial material;
        device_.gl.willing = true;
        ASSERT_TRUE(material.LoadTextureCN(&package_, 7));
        EXPECT_FALSE(c.reload(material, &package_, device_.gl)) << c.what;
        ExpectUntextured(material, c.what);
        EXPECT_EQ(material.GetWidth() > 0, c.hasPicture) << c.what;
        EXPECT_TRUE(material.IsSolid()) << "by its colour alone: " << c.what;
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
        FXMaterial material;
        EXPECT_EQ(material.LoadC(&package_, &data), c.loads) << c.picture;
        EXPECT_EQ(data.left, 4);
        EXPECT_EQ(GLRecorder::LiveTextures(), c.textures) << c.picture;
        EXPECT_STREQ(material.name.text, "Metal");
        EXPECT_TRUE(material.ownedByLibrary);
        EXPECT_EQ(0, std::memcmp(ColorsOf(material).data(), kRecordColors.data(), 64));
        EXPECT_EQ(material.shininess, 42.0f);
    }
}

TEST_F(MaterialPicture, RecordThatEndsEarlyKeepsThePreset) {
    const std::string whole = MaterialRecord("Metal", "");
    FXMaterial preset;
    preset.SetDefSpecular(1);
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const std::string record = whole.substr(0, length);
        FXPackageData data;
        data.InitData(record.data(), static_cast<int>(length));
        FXMaterial fromEntry, fromFile;
        EXPECT_TRUE(fromEntry.LoadC(&package_, &data));
        const FXFile file = fxOpenFile(folder_.Write("record", record).c_str(), "rb");
        EXPECT_TRUE(fromFile.Load(file.get()));
        for (const FXMaterial* m : {&fromEntry, &fromFile}) {
            for (std::size_t i = 0; i < 4; ++i) {
                const bool complete = length >= 8 + 5 + 16 * (i + 1);
                Color expected = ColorsOf(preset)[i];
                if (complete)
                    std::copy_n(kRecordColors.begin() + static_cast<int>(4 * i), 4, expected.begin());
                EXPECT_EQ(ColorsOf(*m)[i], expected) << length << " bytes, colour " << i;
            }
            const bool betweenColors = (length + 3) % 16 == 0;
            EXPECT_TRUE(m->shininess == 0.0f || !betweenColors) << length;
        }
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
    EXPECT_EQ(ColorsOf(read), ColorsOf(written));
    EXPECT_EQ(read.shininess, 128.0f);
    EXPECT_EQ(read.GetWidth(), 640);
}

} // namespace
