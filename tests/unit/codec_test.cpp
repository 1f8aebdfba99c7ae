// The codec bridge with the real library.
#include "image/canvas.h"
#include "image/codec.h"
#include "image/colors.h"
#include "image/picture_header.h"
#include "unit/test_package.h"
#include "unit/trace_lines.h"

#include <tuple>

namespace {

// 2 x 1 pixels, (200,100,50) both.
const std::string kGifFile = {"GIF89a\2\0\1\0\x80\0\0\xc8\x64\x32\0\0\0,\0\0\0\0\2\0\1\0\0\2\2\4\n\0;", 35};

// The file that the library itself writes: 2 x 1 pixels of one colour.
std::string SavedByTheLibrary(const TempFolder& folder, const std::string& name, std::uint32_t pixel) {
    std::uint32_t pixels[] = {pixel, pixel};
    ILuint image = 0;
    fxCodec.ilGenImages(1, &image);
    fxCodec.ilBindImage(image);
    fxCodec.ilTexImage(2, 1, 1, 4, IL_RGBA, IL_UNSIGNED_BYTE, pixels);
    EXPECT_TRUE(fxCodec.ilSaveImage(folder.File(name).c_str()));
    fxCodec.ilDeleteImages(1, &image);
    return folder.Read(name);
}

// A TGA of 16 bits per pixel, magenta, plain or in runs of 128.
std::string Tga16(int w, int h, bool runs) {
    std::string file = Tga(w, h, {});
    file[2] = runs ? 10 : 2;
    file[16] = 16;
    for (int left = w * h; left > 0; left -= runs ? 128 : 1)
        file += (runs ? "\xff" : "") + std::string("\x1f\x7c");
    return file;
}

std::span<const unsigned char> Bytes(const std::string& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

class Codec : public testing::Test {
protected:
    Codec() { EXPECT_TRUE(fxLoadDevil()); }
    ~Codec() override { fxUnloadDevil(); }

    void Load(const std::vector<TestEntry>& entries) { LoadTestPackage(package_, folder_, entries); }

    TempFolder folder_;
    FXPackage package_;
};

TEST_F(Codec, DecodesEveryFormatOfThePackage) {
    constexpr std::uint32_t kHalf = 0x803264C8; // (200, 100, 50) half transparent
    const struct {
        int type;
        std::string file;
        bool alpha;
        int tolerance; // of a channel
    } cases[] = {{kPng, SavedByTheLibrary(folder_, "a.png", kHalf), true, 0},
                 {kTga, SavedByTheLibrary(folder_, "a.tga", kHalf), true, 0},
                 {kBmp, SavedByTheLibrary(folder_, "a.bmp", kHalf), false, 0},
                 {kJpeg, SavedByTheLibrary(folder_, "a.jpg", kHalf), false, 4},
                 {kGif, kGifFile, false, 0}};
    for (const auto& c : cases) {
        Load({{1, c.type, c.file}});
        FXCanvas canvas;
        canvas.opaque = c.alpha; // as of another picture
        ASSERT_TRUE(canvas.CreateFromPictCN(&package_, 1)) << std::hex << c.type;
        EXPECT_TRUE(canvas.GetWidth() == 2 && canvas.GetHeight() == 1) << std::hex << c.type;
        const auto claim = fxPictureSize(Bytes(c.file), c.type);
        EXPECT_TRUE(claim && claim->width == 2 && claim->height == 1) << std::hex << c.type;
        EXPECT_EQ(canvas.opaque, !c.alpha) << std::hex << c.type;
        for (int i = 0; i < 8; ++i) {
            const int channel = static_cast<int>(canvas.pixels[i / 4] >> 8 * (i % 4) & 255);
            const int expected = i % 4 == 3 && !c.alpha ? 255 : static_cast<int>(kHalf >> 8 * (i % 4) & 255);
            EXPECT_NEAR(channel, expected, c.tolerance) << std::hex << c.type << " " << i;
        }
    }
}

// Without the look at the header, each of these costs the codec a gigabyte.
TEST_F(Codec, RefusesPicturesThatClaimMoreThanTheirBytesHold) {
    const auto forged = [](std::string file, std::size_t at, const std::string& number) {
        return file.replace(at, number.size(), number);
    };
    const std::string bmp = SavedByTheLibrary(folder_, "a.bmp", 0xFF112233);
    const std::string png = SavedByTheLibrary(folder_, "a.png", 0xFF112233);
    const std::string jpg = SavedByTheLibrary(folder_, "a.jpg", 0xFF112233);
    const std::size_t frame = jpg.find("\xFF\xC0") + 5;
    const struct {
        int type;
        std::string file;
    } cases[] = {{kTga, forged(Tga(2, 1, {1, 2}), 12, "\xff\x7f\xff\x1f")},
                 {kBmp, forged(bmp, 18, std::string("\xff\x3f\0\0\xff\x3f\0\0", 8))},
                 {kBmp, forged(bmp, 22, std::string("\0\0\0\x80", 4))},
                 {kPng, forged(png, 16, std::string("\0\0\x3f\xff\0\0\x3f\xff", 8))},
                 {kJpeg, forged(jpg, frame, "\x3f\xff\x3f\xff")},
                 {kJpeg, jpg.substr(0, jpg.size() - 2)}, // it would wait for the rest
                 {kPng, png.substr(0, png.size() - 12)},
                 {kTga, Tga16(2, 100, false).substr(0, 18 + 399)}, // it would read on behind its memory
                 {kTga, Tga16(10, 40, true).substr(0, 18 + 11)},
                 {kGif, forged(kGifFile, 20, "\1")},   // beside the screen
                 {kGif, forged(kGifFile, 19, "\x11")}, // a block of no kind
                 {kGif, forged(kGifFile, 24, "\xff\x3f\xff\x3f")}};
    for (const auto& c : cases) {
        Load({{1, c.type, c.file}});
        FXCanvas canvas;
        EXPECT_FALSE(canvas.CreateFromPictCN(&package_, 1)) << std::hex << c.type;
        EXPECT_FALSE(fxPictureIsPlausible(Bytes(c.file), c.type)) << std::hex << c.type;
        const char* ending = c.type == kTga ? "x.tga" : "x"; // a TGA begins with nothing of its own
        EXPECT_FALSE(canvas.CreateFromPict(folder_.Write(ending, c.file).c_str())) << std::hex << c.type;
    }
    for (const auto& [type, file] : {std::pair{kJpeg, jpg}, {kGif, kGifFile}, {kPng, png}, {kBmp, bmp}})
        for (std::size_t size = 0; size < 12; ++size)
            EXPECT_FALSE(fxPictureSize(Bytes(file.substr(0, size)), type)) << type << " " << size;
}

TEST_F(Codec, IsHandedTheTgaOf15And16BitsThatIsAllThere) {
    for (const bool runs : {false, true})
        for (const char bits : {'\x0f', '\x10'}) {
            std::string file = Tga16(10, 40, runs);
            file[16] = bits;
            file.insert(18, "words");
            file[0] = '\5';
            Load({{1, kTga, file}});
            FXCanvas canvas;
            ASSERT_TRUE(canvas.CreateFromPictCN(&package_, 1)) << runs << " " << static_cast<int>(bits);
            EXPECT_EQ(canvas.pixels[0] & 0xFFFFFF, 0xF800F8u);
            EXPECT_EQ(canvas.pixels[39 * 16 + 9] & 0xFFFFFF, 0xF800F8u);
            EXPECT_FALSE(fxPictureIsPlausible(Bytes(file.substr(0, file.size() - 1)), kTga));
        }
}

std::string codecCalls;

TEST_F(Codec, IsGivenBackWhatItMadeAlsoWhenItFails) {
    Load({{1, kTga, Tga(4, 2, std::vector<std::uint32_t>(8, 0xFF112233u))}});
    const FXCodec real = fxCodec;
    static const FXCodec& behind = real;
    const std::tuple<const char*, void (*)(), bool> kCases[] = {
        {"good", [] {}, true},
        {"no clone", [] { fxCodec.ilCloneCurImage = []() -> ILuint { return 0; }; }, false},
        {"no conversion", [] { fxCodec.ilConvertImage = [](ILenum, ILenum) -> ILboolean { return 0; }; },
         true},
        {"no data", [] { fxCodec.ilGetData = []() -> unsigned char* { return nullptr; }; }, true}};
    for (const auto& [what, fail, cloned] : kCases) {
        const bool good = what == std::string("good");
        fail();
        fxCodec.ilDeleteImages = [](std::size_t n, const ILuint* names) {
            codecCalls += std::to_string(*names) + " ";
            behind.ilDeleteImages(n, names);
        };
        FXCanvas canvas;
        ASSERT_TRUE(canvas.Realloc(4, 2));
        static_cast<FXPixmap&>(canvas).Clear(9);
        codecCalls.clear();
        EXPECT_EQ(canvas.CreateFromPictCN(&package_, 1), good) << what;
        EXPECT_EQ(canvas.pixels[7], good ? 0xFF112233u : 0u)
            << what << ": cleared, though it would have been covered";
        int image = 0, clone = 0, none = 0;
        EXPECT_EQ(std::sscanf(codecCalls.c_str(), "%d %d %d", &image, &clone, &none), cloned ? 2 : 1)
            << codecCalls;
        EXPECT_TRUE(!good || image < clone) << "in the order in which they came";
        fxCodec = real;
    }
}

TEST_F(Codec, FillsTheUpperLeftOfTheStorageAndClearsTheRest) {
    std::vector<std::uint32_t> pixels(300 * 200);
    for (std::uint32_t i = 0; i < pixels.size(); ++i)
        pixels[i] = 0xFE000000u | i * 7;
    Load({{12, kTga, Tga(300, 200, pixels)}});
    const std::uint32_t kMargin = 0xFF00FF00u, kOld = 5;
    for (const bool clear : {true, false}) {
        FXCanvas canvas;
        fxColFromInt1(canvas.backColor, kMargin);
        canvas.clearOnLoad = clear;
        ASSERT_TRUE(canvas.Realloc(512, 256));
        static_cast<FXPixmap&>(canvas).Clear(kOld);
        ASSERT_TRUE(canvas.CreateFromPictC(&package_, "12"));
        ASSERT_TRUE(canvas.width == 512 && canvas.height == 256 && canvas.GetWidth() == 300 &&
                    canvas.GetHeight() == 200);
        EXPECT_FALSE(canvas.opaque);
        for (int i = 0; i < 512 * 256; ++i) {
            const int x = i % 512, y = i / 512;
            const std::uint32_t expected = x < 300 && y < 200 ? pixels[y * 300 + x] : clear ? kMargin : kOld;
            ASSERT_EQ(canvas.pixels[i], expected) << x << "," << y;
        }
    }
}

TEST_F(Codec, TakesAlphaFromRedWhenTheFileNameSaysSo) {
    const struct {
        const char* name;
        bool detect, flag, white;
    } kCases[] = {{"plain.tga", true, true, false},
                  {"aTRANSp.tga", true, false, true},
                  {"tran.tga", false, true, false}};
    for (const auto& c : kCases) {
        FXCanvas canvas;
        canvas.detectTrans = c.detect;
        canvas.alphaFromRed = c.flag;
        ASSERT_TRUE(canvas.CreateFromPict(folder_.Write(c.name, Tga(1, 1, {0xFF112233u})).c_str())) << c.name;
        EXPECT_EQ(canvas.pixels[0], c.white ? 0x33FFFFFFu : 0xFF112233u) << c.name;
        EXPECT_NE(canvas.opaque, c.white) << c.name;
    }
    Load({{1, kTga, Tga(1, 1, {0xFF112233u})}});
    FXCanvas canvas;
    canvas.alphaFromRed = true;
    ASSERT_TRUE(canvas.CreateFromPictCN(&package_, 1)) << "an entry: only when its owner says so";
    EXPECT_EQ(canvas.pixels[0], 0x33FFFFFFu);
}

TEST_F(Codec, LeavesTheCanvasAsItWasWithoutAPicture) {
    const std::string garbage = "no picture, whatever its name may promise; " + std::string(100, '\xAB');
    Load({{1, kPng, garbage},
          {2, kJpeg, garbage},
          {3, kTga, "TGA"},
          {4, kBmp, garbage},
          {5, kGif, garbage},
          {6, kRaw, kGifFile},
          {7, kGif, ""},
          {8, 0x7777, kGifFile},
          {9, kTga, Tga(0, 5, {})}});
    FXCanvas canvas;
    ASSERT_TRUE(canvas.Realloc(4, 4));
    static_cast<FXPixmap&>(canvas).Clear(0x12345678u);
    for (int entry = 0; entry <= 9; ++entry)
        EXPECT_FALSE(canvas.CreateFromPictCN(&package_, entry)) << entry;
    for (const char* text : {"", "tex", "99", "-"})
        EXPECT_FALSE(canvas.CreateFromPictC(&package_, text)) << text;
    for (const std::string& file :
         {std::string(), folder_.File("none.png"), folder_.Write("bad.png", garbage)})
        EXPECT_FALSE(canvas.CreateFromPict(file.c_str())) << file;
    EXPECT_TRUE(canvas.usedWidth == 4 && canvas.pixels[15] == 0x12345678u);
}

TEST_F(Codec, SavesThePictureAndItsMaskAsTheyLoadAgain) {
    const struct {
        const char* name;
        bool alpha;
        int tolerance;
    } cases[] = {{"a.png", true, 0}, {"a.TGA", true, 0}, {"a.bmp", false, 0}, {"a.Jpg", false, 90}};
    FXCanvas canvas;
    ASSERT_TRUE(canvas.Realloc(5, 3)); // rows of the storage are longer
    static_cast<FXPixmap&>(canvas).Clear(0);
    for (std::uint32_t i = 0; i < 15; ++i)
        canvas.pixels[i / 5 * 8 + i % 5] = (i * 17) << 24 | (i < 10 ? 0x00102030u + i : 0x00F0E0D0u + i);
    for (const auto& c : cases) {
        const std::string name = folder_.File(c.name), mask = folder_.File(std::string("mask-") + c.name);
        for (const std::string& file : {name, mask})
            folder_.Write(std::filesystem::path(file).filename(), "an old file");
        ASSERT_TRUE(canvas.SaveToPict(name.c_str()) && canvas.SaveToMask(mask.c_str())) << c.name;
        FXCanvas picture, grey;
        ASSERT_TRUE(picture.CreateFromPict(name.c_str()) && grey.CreateFromPict(mask.c_str())) << c.name;
        ASSERT_TRUE(picture.GetWidth() == 5 && picture.GetHeight() == 3 && grey.GetHeight() == 3) << c.name;
        for (int i = 0; i < 15; ++i)
            for (int channel = 0; channel < 4; ++channel) {
                const auto at = [&](const FXCanvas& of, int byte) {
                    return static_cast<int>(of.pixels[i / 5 * 8 + i % 5] >> 8 * byte & 255);
                };
                const bool absent = channel == 3 && !c.alpha;
                EXPECT_NEAR(at(picture, channel), absent ? 255 : at(canvas, channel), c.tolerance) << c.name;
                EXPECT_NEAR(at(grey, channel), channel == 3 ? 255 : at(canvas, 3), c.tolerance) << c.name;
            }
    }
    std::size_t sizes[2];
    for (const int quality : {-5, 500}) {
        FXCanvas::SetJpegQuality(quality);
        ASSERT_TRUE(canvas.SaveToPict(folder_.File("q.jpg").c_str()));
        sizes[quality > 0] = folder_.Read("q.jpg").size();
    }
    EXPECT_LT(sizes[0], sizes[1]);
    for (const std::string& file : {folder_.File("no/folder.png"), folder_.File("a.none"), std::string()})
        EXPECT_FALSE(canvas.SaveToPict(file.c_str()) || canvas.SaveToMask(file.c_str())) << file;
    fxUnloadDevil();
    EXPECT_FALSE(canvas.SaveToPict(folder_.File("b.png").c_str()));
}

TEST_F(Codec, TakesTheAlphaOfAMask) {
    const std::string mask = Tga(2, 1, {0x00AABB80u, 0x123456FFu});
    Load({{1, kTga, mask},
          {2, kTga, Tga(3, 2, std::vector(6, ~0u))},
          {3, kTga, Tga(4, 1, {1, 2, 3, 4})},
          {4, kTga, Tga(1, 3, {1, 2, 3})},
          {5, kTga, Tga(3, 1, std::vector(3, ~0u))}});
    const std::string file = folder_.Write("TRANS.tga", mask);
    const std::vector<std::uint32_t> kPart = {0x80, 255, 0, 0, 0, 0}, kOld(6, 9u);
    const struct {
        const char* from; // an entry's number, or a file
        std::vector<std::uint32_t> alphas;
        bool opaque;
    } cases[] = {{"1", kPart, false},
                 {file.c_str(), kPart, false},
                 {"2", std::vector(6, 255u), true},
                 {"5", {255, 255, 255, 0, 0, 0}, false},
                 {"3", kOld, true}, // too wide
                 {"4", kOld, true}, // too high
                 {"mask", kOld, true}};
    for (const auto& c : cases) {
        FXCanvas canvas;
        ASSERT_TRUE(canvas.Realloc(3, 2));
        static_cast<FXPixmap&>(canvas).Clear(0x09ABCDEFu);
        const bool loaded = c.from == file ? canvas.LoadMask(c.from) : canvas.LoadMaskC(&package_, c.from);
        EXPECT_EQ(loaded, c.alphas != kOld) << c.from;
        for (std::size_t i = 0; i < 6; ++i)
            EXPECT_EQ(canvas.pixels[i / 3 * 4 + i % 3], c.alphas[i] << 24 | 0x00ABCDEFu) << c.from;
        EXPECT_EQ(canvas.pixels[3] >> 24, loaded ? 0u : 9u) << "beside the picture";
        EXPECT_EQ(canvas.opaque, c.opaque) << c.from;
    }
}

TEST(CodecModules, ThatAreMissingAreTracedAndLeaveNothingLoaded) {
    const TempFolder folder;
    FXPackage package;
    LoadTestPackage(package, folder, {{1, kGif, kGifFile}});
    const std::string no = "#ERROR: failed to load ", libraries = no + "devil libraries";
    const struct {
        const char *il, *ilu;
        std::vector<std::string> lines;
    } cases[] = {{"no-such", nullptr, {"loading devil", no + "devil.dll", libraries, "unload devil"}},
                 {nullptr, "no-such", {"loading devil", no + "ilu.dll", libraries, "unload devil"}},
                 {nullptr, nullptr, {"loading devil", "loading ok"}}};
    for (const auto& c : cases) {
        const TraceLines trace(folder);
        const bool loads = c.lines.size() == 2;
        fxSetDevilNames(c.il, c.ilu);
        EXPECT_EQ(fxLoadDevil(), loads);
        EXPECT_EQ(trace.Lines(), c.lines);
        FXCanvas canvas;
        EXPECT_EQ(canvas.CreateFromPictCN(&package, 1), loads);
        EXPECT_EQ(canvas.CreateFromPict(folder.Write("a.gif", kGifFile).c_str()), loads);
        fxUnloadDevil();
        EXPECT_TRUE(fxCodec.ilInit == nullptr && fxCodec.ilGetData == nullptr && fxCodec.iluScale == nullptr);
    }
}

} // namespace
