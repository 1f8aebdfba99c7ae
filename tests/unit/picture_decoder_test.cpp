// Pictures decoded ahead, with the real library: what canvases get is what they get without.
#include "image/codec.h"
#include "image/picture_decoder.h"
#include "unit/test_package.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

std::atomic<int> decoded = 0;     // pictures begun
std::atomic<bool> byMain = false; // one of them on the thread of the test
std::thread::id mainThread;
FXCodec real;

ILboolean CountedLoad(ILenum type, const void* bytes, ILuint size) {
    ++decoded;
    byMain = byMain || std::this_thread::get_id() == mainThread;
    return real.ilLoadL(type, bytes, size);
}

class Decoder : public testing::Test {
protected:
    Decoder() {
        EXPECT_TRUE(fxLoadDevil());
        real = fxCodec;
        fxCodec.ilLoadL = CountedLoad;
        mainThread = std::this_thread::get_id();
        decoded = 0;
        byMain = false;
    }
    ~Decoder() override {
        decoder_.Stop();
        fxUnloadDevil();
    }

    void Start(std::initializer_list<int> entries) {
        FXArray<int> wanted;
        for (const int entry : entries)
            wanted.Push(entry);
        decoder_.Start(&package_, wanted);
    }
    // The sizes and the first pixel, "none" for a canvas without.
    std::string Loaded(int entry, FXCanvas* canvas) {
        const bool loaded = canvas->CreateFromPictCN(&package_, entry);
        std::string text = loaded ? "" : "failed, ";
        if (canvas->pixels == nullptr)
            return text + "none";
        return text + std::to_string(canvas->usedWidth) + "/" + std::to_string(canvas->width) + " " +
               std::to_string(canvas->pixels[0]) + (canvas->opaque ? "" : " clear");
    }
    void Settles(int count) {
        for (int i = 0; i < 1000 && decoded < count; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        EXPECT_EQ(decoded, count);
    }

    TempFolder folder_;
    FXPackage package_;
    FXPictureDecoder decoder_;
};

// In the order or out of it, once or again, not announced, malformed, missing, no picture; into canvases with
// settings or a picture of their own.
TEST_F(Decoder, GivesWhatDecodingAtOnceGives) {
    std::string cut = Tga(3, 2, std::vector<std::uint32_t>(6, 0x80112233u));
    LoadTestPackage(package_, folder_,
                    {{1, kTga, cut},
                     {2, kTga, Tga(1, 1, {~0u})},
                     {3, kTga, "no picture"},
                     {4, kRaw, "raw"},
                     {5, kTga, Tga(5, 1, std::vector<std::uint32_t>(5, ~0u))},
                     {6, kPng, cut}});
    const auto load = [&] {
        std::string seen;
        FXCanvas used, white;
        white.alphaFromRed = true;
        for (const int entry : {2, 1, 9, 4, 3, 6, 5, 1}) {
            FXCanvas fresh;
            for (FXCanvas* canvas : {&white, &used, &fresh}) // the last one takes what was decoded ahead
                seen += Loaded(entry, canvas) + "\n";
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
    const std::string large = Tga(1024, 1024, std::vector<std::uint32_t>(1 << 20, ~0u));
    std::vector<TestEntry> entries;
    for (int id = 1; id <= 7; ++id)
        entries.push_back({id, kTga, large});
    LoadTestPackage(package_, folder_, entries);
    Start({1, 2, 3, 4, 5, 6, 7});
    Settles(4); // as many as kMostWaiting holds
    FXCanvas last, first;
    EXPECT_EQ(Loaded(7, &last), "1024/1024 4294967295");
    Settles(5);
    EXPECT_EQ(Loaded(1, &first), "1024/1024 4294967295");
    Settles(6); // there is room for one more
}

} // namespace
