// Canvases, the codec bridge with the real library, and pictures decoded ahead.
#include "image/canvas.h"
#include "image/codec.h"
#include "image/picture_decoder.h"
#include "image/picture_header.h"
#include "unit/test_package.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <tuple>
#include <utility>

namespace {

using Pixels = std::vector<std::uint32_t>;

// 2 x 1 pixels, (200,100,50) both.
const std::string kGifFile = {"GIF89a\2\0\1\0\x80\0\0\xc8\x64\x32\0\0\0,\0\0\0\0\2\0\1\0\0\2\2\4\n\0;", 35};

// A storage for w x h pixels, all of it one value.
void Fill(FXCanvas* canvas, int w, int h, std::uint32_t value) {
    ASSERT_TRUE(canvas->Realloc(w, h));
    static_cast<FXPixmap*>(canvas)->Clear(value);
}

Pixels Picture(const FXCanvas& canvas) {
    Pixels pixels;
    for (int i = 0; i < canvas.GetWidth() * canvas.GetHeight(); ++i)
        pixels.push_back(canvas.pixels[i / canvas.GetWidth() * canvas.width + i % canvas.GetWidth()]);
    return pixels;
}

// The file that the library itself writes: 2 x 1 pixels of one colour.
std::string Saved(const TempFolder& folder, const char* name, std::uint32_t pixel) {
    FXCanvas canvas;
    Fill(&canvas, 2, 1, pixel);
    EXPECT_TRUE(canvas.SaveToPict(folder.File(name).c_str()));
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

TEST(Pixmap, RoundsItsStorageUpAndUsesABlockAgain) {
    const std::tuple<int, int, bool, int, int, bool> kSteps[] = {
        // used, a power of two; stored, in the same block
        {300, 200, false, 300, 200, false}, {1024, 768, true, 1024, 1024, false},
        {800, 600, true, 1024, 1024, true}, {0, 0, true, 1, 1, true},
        {1025, 1, true, 2048, 1, true},     {1025, 1025, true, 2048, 2048, false}};
    FXPixmap pixmap;
    for (const auto& [w, h, powerOfTwo, width, height, sameBlock] : kSteps) {
        const std::uint32_t* before = pixmap.pixels;
        pixmap.powerOfTwo = powerOfTwo;
        ASSERT_TRUE(pixmap.Realloc(w, h)) << w;
        EXPECT_TRUE(pixmap.width == width && pixmap.height == height) << w;
        EXPECT_TRUE(pixmap.usedWidth == w && pixmap.usedHeight == h) << w;
        EXPECT_TRUE(pixmap.pixels == before || !sameBlock) << w;
        pixmap.Clear(7); // all of the block is there
        EXPECT_EQ(pixmap.pixels[width * height - 1], 7u);
    }
    for (const auto& [w, h] : {std::pair{-1, 5}, {5, -1}, {32769, 1}, {1, 32769}, {32768, 32768}}) {
        EXPECT_FALSE(pixmap.Realloc(w, h)) << w << " x " << h;
        EXPECT_EQ(pixmap.width + pixmap.height + pixmap.usedWidth + pixmap.usedHeight + pixmap.capacity, 0);
        EXPECT_TRUE(pixmap.Realloc(32, 32)) << "usable again";
    }
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
    constexpr std::uint32_t kHalf = 0x803264C8,
                            kWhole = 0xFF3264C8; // (200, 100, 50), half transparent or not
    const std::tuple<int, std::string, std::uint32_t, std::uint32_t> cases[] = {
        {kPng, Saved(folder_, "a.png", kHalf), kHalf, 0},
        {kTga, Saved(folder_, "a.tga", kHalf), kHalf, 0},
        {kBmp, Saved(folder_, "a.bmp", kHalf), kWhole, 0},
        {kJpeg, Saved(folder_, "a.jpg", kHalf), kWhole, 4},
        {kGif, kGifFile, kWhole, 0}};
    for (const auto& [type, file, pixel, tolerance] : cases) {
        SCOPED_TRACE(type);
        Load({{1, type, file}});
        FXCanvas canvas;
        canvas.opaque = pixel == kHalf; // as of another picture
        ASSERT_TRUE(canvas.CreateFromPictCN(&package_, 1));
        EXPECT_EQ(canvas.opaque, pixel == kWhole);
        for (const int shift : {0, 8, 16, 24})
            EXPECT_NEAR(canvas.pixels[1] >> shift & 255, pixel >> shift & 255, tolerance) << shift;
    }
}

// Without the look at the header, each of these costs the codec a gigabyte.
TEST_F(Codec, RefusesPicturesThatClaimMoreThanTheirBytesHold) {
    const auto forged = [](std::string file, std::size_t at, const std::string& number) {
        return file.replace(at, number.size(), number);
    };
    const std::string bmp = Saved(folder_, "a.bmp", 0xFF112233), png = Saved(folder_, "a.png", 0xFF112233),
                      jpg = Saved(folder_, "a.jpg", 0xFF112233);
    const std::size_t frame = jpg.find("\xFF\xC0") + 5;
    const std::pair<int, std::string> cases[] = {
        {kTga, forged(Tga(2, 1, {1, 2}), 12, "\xff\x7f\xff\x1f")},
        {kBmp, forged(bmp, 18, std::string("\xff\x3f\0\0\xff\x3f\0\0", 8))},
        {kBmp, forged(bmp, 22, std::string("\0\0\0\x80", 4))},
        {kPng, forged(png, 16, std::string("\0\0\x3f\xff\0\0\x3f\xff", 8))},
        {kJpeg, forged(jpg, frame, "\x3f\xff\x3f\xff")},
        {kJpeg, jpg.substr(0, jpg.size() - 2)}, // it would wait for the rest
        {kPng, png.substr(0, png.size() - 12)},
        {kTga, Tga16(2, 100, false).substr(0, 18 + 399)}, // it would read on behind its memory
        {kTga, Tga16(10, 40, true).substr(0, 18 + 11)},
        {kTga, forged(Tga(2, 1, {1, 2}), 1, std::string("\1\1\0\0\0\x80", 6))}, // so many colours
        {kGif, forged(kGifFile, 20, "\1")},                                     // beside the screen
        {kGif, forged(kGifFile, 19, "\x11")},                                   // a block of no kind
        {kGif, forged(kGifFile, 24, "\xff\x3f\xff\x3f")},
        {kGif, forged(kGifFile, 6, "\xff\x3f\xff\x1f")}}; // a screen around its frame
    FXCanvas canvas;
    Fill(&canvas, 4, 4, 7);
    for (const auto& [type, file] : cases) {
        SCOPED_TRACE(&file - &cases[0].second);
        Load({{1, type, file}});
        EXPECT_FALSE(canvas.CreateFromPictCN(&package_, 1));
        EXPECT_FALSE(fxPictureIsPlausible(Bytes(file), type));
        const char* name = type == kTga ? "x.tga" : "x"; // a TGA begins with nothing of its own
        EXPECT_FALSE(canvas.CreateFromPict(folder_.Write(name, file).c_str()));
    }
    Load({{0, kGif, kGifFile},
          {1, kPng, std::string(100, '\xAB')},
          {2, kGif, ""},
          {3, kRaw, kGifFile},
          {4, kTga, Tga(0, 5, {})}});
    for (const char* text : {"1", "2", "3", "4", "", "tex", "99", "-"})
        EXPECT_FALSE(canvas.CreateFromPictC(&package_, text)) << text;
    EXPECT_FALSE(canvas.CreateFromPict("") || canvas.CreateFromPict(folder_.File("none").c_str()));
    EXPECT_EQ(Picture(canvas), Pixels(16, 7)) << "as it was";
}

TEST_F(Codec, IsHandedTheTgaOf15And16BitsThatIsAllThere) {
    for (const auto& [runs, bits] : {std::pair{false, '\x0f'}, {true, '\x10'}}) {
        std::string file = Tga16(10, 40, runs);
        file[16] = bits;
        file.insert(18, "words");
        file[0] = '\5';
        Load({{1, kTga, file}});
        FXCanvas canvas;
        ASSERT_TRUE(canvas.CreateFromPictCN(&package_, 1)) << runs;
        EXPECT_EQ(Picture(canvas).back() & 0xFFFFFF, 0xF800F8u);
        EXPECT_FALSE(fxPictureIsPlausible(Bytes(file.substr(0, file.size() - 1)), kTga));
    }
}

FXCodec real;
std::vector<ILuint> deletedImages;

TEST_F(Codec, IsGivenBackWhatItMadeAlsoWhenItFails) {
    Load({{1, kTga, Tga(4, 2, Pixels(8, 0xFF112233u))}});
    real = fxCodec;
    const std::tuple<std::string, void (*)(), std::size_t> kCases[] = {
        // images deleted
        {"good", [] {}, 2},
        {"no clone", [] { fxCodec.ilCloneCurImage = []() -> ILuint { return 0; }; }, 1},
        {"no conversion", [] { fxCodec.ilConvertImage = [](ILenum, ILenum) -> ILboolean { return 0; }; }, 2},
        {"no data", [] { fxCodec.ilGetData = []() -> unsigned char* { return nullptr; }; }, 2}};
    for (const auto& [what, fail, images] : kCases) {
        SCOPED_TRACE(what);
        fail();
        fxCodec.ilDeleteImages = [](std::size_t n, const ILuint* names) {
            deletedImages.push_back(*names);
            real.ilDeleteImages(n, names);
        };
        FXCanvas canvas;
        Fill(&canvas, 4, 2, 9);
        deletedImages.clear();
        EXPECT_EQ(canvas.CreateFromPictCN(&package_, 1), what == "good");
        EXPECT_EQ(Picture(canvas), Pixels(8, what == "good" ? 0xFF112233u : 0u))
            << "nothing of what was there";
        EXPECT_EQ(deletedImages.size(), images);
        EXPECT_TRUE(what != "good" || deletedImages[0] < deletedImages[1]) << "in the order of making";
        fxCodec = real;
    }
}

TEST_F(Codec, FillsTheUpperLeftOfTheStorageAndClearsTheRest) {
    Pixels pixels(300 * 200);
    for (std::uint32_t i = 0; i < pixels.size(); ++i)
        pixels[i] = 0xFE000000u | i * 7;
    Load({{12, kTga, Tga(300, 200, pixels)}});
    FXCanvas canvas;
    std::fill_n(canvas.backColor, 4, 1.0f);
    Fill(&canvas, 512, 256, 5);
    ASSERT_TRUE(canvas.CreateFromPictC(&package_, "12"));
    ASSERT_TRUE(canvas.width == 512 && canvas.height == 256 && canvas.GetWidth() == 300);
    EXPECT_FALSE(canvas.opaque);
    EXPECT_TRUE(Picture(canvas) == pixels);
    for (const int i : {300, 511, 199 * 512 + 300, 200 * 512, 512 * 256 - 1})
        EXPECT_EQ(canvas.pixels[i], ~0u) << i;
}

TEST_F(Codec, TakesAlphaFromRedWhenTheFileNameSaysSo) {
    for (const auto& [name, white] : {std::pair{"plain.tga", false}, {"aTRANSp.tga", true}}) {
        FXCanvas canvas;
        canvas.alphaFromRed = !white; // as of another picture
        ASSERT_TRUE(canvas.CreateFromPict(folder_.Write(name, Tga(1, 1, {0xFF112233u})).c_str())) << name;
        EXPECT_EQ(canvas.pixels[0], white ? 0x33FFFFFFu : 0xFF112233u) << name;
        EXPECT_NE(canvas.opaque, white) << name;
    }
}

std::atomic<int> decoded = 0;     // pictures begun
std::atomic<bool> byMain = false; // one of them on the thread of the test
std::thread::id mainThread;

ILboolean CountedLoad(ILenum type, const void* bytes, ILuint size) {
    ++decoded;
    byMain = byMain || std::this_thread::get_id() == mainThread;
    return real.ilLoadL(type, bytes, size);
}

// What canvases get of pictures decoded ahead is what they get without.
class Decoder : public Codec {
protected:
    Decoder() {
        real = fxCodec;
        fxCodec.ilLoadL = CountedLoad;
        mainThread = std::this_thread::get_id();
        decoded = 0;
        byMain = false;
    }
    ~Decoder() override { decoder_.Stop(); }

    void Start(std::initializer_list<int> entries) {
        FXArray<int> wanted;
        for (const int entry : entries)
            wanted.Push(entry);
        decoder_.Start(&package_, wanted);
    }
    void Settles(int count) {
        for (int i = 0; i < 1000 && decoded < count; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_EQ(decoded, count);
    }

    FXPictureDecoder decoder_;
};

// In the order or out of it, once or again, not announced, malformed, missing; into canvases of all kinds.
TEST_F(Decoder, GivesWhatDecodingAtOnceGives) {
    std::string cut = Tga(3, 2, Pixels(6, 0x80112233u));
    Load({{1, kTga, cut},
          {2, kTga, Tga(1, 1, {~0u})},
          {3, kTga, "no picture"},
          {4, kRaw, "raw"},
          {5, kTga, Tga(5, 1, Pixels(5, ~0u))},
          {6, kPng, cut}});
    const auto load = [&] { // the sizes and the first pixel
        std::string seen;
        FXCanvas used, white;
        white.alphaFromRed = true;
        for (const int entry : {2, 1, 9, 4, 3, 6, 5, 1}) {
            FXCanvas fresh;
            for (FXCanvas* canvas : {&white, &used, &fresh}) { // the last one takes what was decoded ahead
                seen += canvas->CreateFromPictCN(&package_, entry) ? "\n" : "\nfailed, ";
                if (canvas->pixels != nullptr)
                    seen += std::to_string(canvas->usedWidth) + "/" + std::to_string(canvas->width) + " " +
                            std::to_string(canvas->pixels[0]) + (canvas->opaque ? "" : " clear");
            }
        }
        return seen;
    };
    const std::string expected = load();
    EXPECT_TRUE(byMain);
    byMain = false;
    Start({1, 9, 4, 3, 6, 5, 2});
    ASSERT_EQ(FXPictureDecoder::Active(), &decoder_);
    EXPECT_EQ(load(), expected);
    EXPECT_FALSE(byMain) << "one thread calls the codec";
    decoder_.Stop();
    EXPECT_EQ(FXPictureDecoder::Active(), nullptr);
    EXPECT_EQ(load(), expected);
    fxUnloadDevil();
    Start({1});
    EXPECT_EQ(FXPictureDecoder::Active(), nullptr) << "without a codec";
}

// It pauses while much waits to be taken, and still serves who asks for what comes later.
TEST_F(Decoder, KeepsFewPicturesWaiting) {
    const std::string large = Tga(1024, 1024, Pixels(1 << 20, ~0u));
    std::vector<TestEntry> entries;
    for (int id = 1; id <= 7; ++id)
        entries.push_back({id, kTga, large});
    Load(entries);
    Start({1, 2, 3, 4, 5, 6, 7});
    Settles(4); // as many as kMostWaiting holds
    FXCanvas last, first;
    EXPECT_TRUE(last.CreateFromPictCN(&package_, 7));
    Settles(5);
    EXPECT_TRUE(first.CreateFromPictCN(&package_, 1));
    Settles(6); // there is room for one more
}

} // namespace
