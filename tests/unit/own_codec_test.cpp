// Our codec modules beside the library whose place they take: the same calls, the same pictures.
#include "codec/devil.h"
#include "codec/picture.h"
#include "codec/scaling.h"
#include "codec/system_pictures.h"
#include "image/picture_header.h"
#include "package/package.h"
#include "unit/picture_files.h"
#include "unit/temp_folder.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <functional>
#include <optional>

// The system's part is another one on this system: it has one picture, of two rows, the lower one first.
bool fxReadSystemPicture(std::span<const unsigned char> file, int type, CodecPicture* picture) {
    if (type == kRaw || file.size() < 100 || !picture->Realloc(1, 2, IL_RGBA))
        return false;
    std::fill_n(picture->bytes.get(), 8, file[0]);
    return true;
}
FXBytes fxEncodeSystemPicture(const CodecPicture&, int, int quality, std::size_t* size) {
    FXBytes bytes = fxNewBytes(*size = 1);
    bytes.get()[0] = static_cast<unsigned char>(quality);
    return bytes;
}

namespace {

const FXCodec kOurs = {ilInit,      ilShutDown,     ilEnable,        ilDisable,         ilSetInteger,
                       ilGenImages, ilDeleteImages, ilBindImage,     ilGetInteger,      ilLoadImage,
                       ilLoadL,     ilSaveImage,    ilCloneCurImage, ilConvertImage,    ilCopyPixels,
                       ilSetPixels, ilGetData,      iluScale,        iluImageParameter, ilTexImage};

const FXCodec* const kBoth[] = {&fxCodec, &kOurs};

// The sizes and the bytes of the bound image; "none" where there is none.
std::string Shown(const FXCodec& codec) {
    const unsigned char* data = codec.ilGetData();
    if (data == nullptr)
        return "none";
    return std::to_string(codec.ilGetInteger(IL_IMAGE_WIDTH)) + " x " +
           std::to_string(codec.ilGetInteger(IL_IMAGE_HEIGHT)) + ": " +
           std::string(data, data + codec.ilGetInteger(IL_IMAGE_SIZE_OF_DATA));
}

class OwnCodec : public testing::Test {
protected:
    OwnCodec() { EXPECT_TRUE(fxLoadDevil()); }
    ~OwnCodec() override {
        fxUnloadDevil();
        ilShutDown();
    }

    // What becomes of a new image by these calls, on either side.
    static std::string By(const FXCodec& codec, const std::function<void(const FXCodec&)>& calls) {
        ILuint image = 0;
        codec.ilGenImages(1, &image);
        codec.ilBindImage(image);
        calls(codec);
        std::string shown = Shown(codec);
        codec.ilDeleteImages(1, &image);
        return shown;
    }
    static void ExpectAlike(const char* what, const std::function<void(const FXCodec&)>& calls,
                            int tolerance = 0) {
        const std::string theirs = By(fxCodec, calls), ours = By(kOurs, calls);
        EXPECT_NE(theirs, "none") << what;
        ASSERT_EQ(ours.size(), theirs.size()) << what;
        int most = 0;
        for (std::size_t i = 0; i < ours.size(); ++i)
            most = std::max(
                most, std::abs(static_cast<unsigned char>(ours[i]) - static_cast<unsigned char>(theirs[i])));
        EXPECT_LE(most, tolerance) << what;
    }
};

void LoadAsTheSaver(const FXCodec& codec, int type, const std::string& file) {
    if (codec.ilLoadL(static_cast<ILenum>(type), file.data(), static_cast<ILuint>(file.size())) != 0)
        codec.ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE);
}

TEST_F(OwnCodec, ReadsTargaFilesOfEveryForm) {
    for (const PictureFile& file : TargaFiles())
        ExpectAlike(file.name.c_str(),
                    [&](const FXCodec& codec) { LoadAsTheSaver(codec, kTga, file.bytes); });
}

// Well-formed files that the library misreads, or does not read at all.
TEST_F(OwnCodec, ReadsTargaFilesThatTheLibraryDoesNot) {
    const auto pixels = [](const std::string& file) {
        return By(kOurs, [&](const FXCodec& codec) { LoadAsTheSaver(codec, kTga, file); });
    };
    const TargaForm plain = {2, 24, 0, 0, 0, 3, 1};
    std::string file = Targa(plain), turned = file;
    const std::string shown = pixels(file);
    ASSERT_EQ(shown.size(), 7 + 12u);
    file.insert(18, "palette").replace(1, 1, "\1").replace(5, 1, "\7").replace(7, 1, "\x8");
    EXPECT_EQ(pixels(file), shown);
    turned[17] = 0x10; // the right pixel is the first
    EXPECT_EQ(pixels(turned),
              shown.substr(0, 7) + shown.substr(15, 4) + shown.substr(11, 4) + shown.substr(7, 4));
    std::string run = Targa({10, 24, 0, 0, 0, 2, 1}).substr(0, 18) + "\x84" + "abc"; // of 5 pixels
    EXPECT_EQ(pixels(run), "2 x 1: cba\xFF"
                           "cba\xFF");
    std::string palette = Targa({1, 8, 2, 16, 0, 2, 1});
    palette.replace(18, 6, std::string("\x1F\x7C\xE0\x03\0\1", 6));
    EXPECT_EQ(pixels(palette), "2 x 1: \xF8" + std::string("\0\xF8\xFF\0\xF8\0\xFF", 7));
}

TEST_F(OwnCodec, RefusesTargaFilesThatBreakOffOrClaimWhatTheyAreNot) {
    for (const PictureFile& file : TargaFiles()) {
        if (file.bytes.size() > 1000)
            continue;
        for (std::size_t size = 0; size < file.bytes.size(); ++size) {
            // A copy of its own, so that reading behind its end is found.
            const std::vector<char> part(file.bytes.begin(),
                                         file.bytes.begin() + static_cast<std::ptrdiff_t>(size));
            ilShutDown();
            ILuint image = 0;
            ilGenImages(1, &image);
            ilBindImage(image);
            ASSERT_EQ(ilLoadL(kTga, part.data(), static_cast<ILuint>(size)), 0) << file.name << ", " << size;
            ASSERT_EQ(ilGetData(), nullptr);
        }
    }
    const TargaForm kWrong[] = {{0, 24, 0, 0, 0},  {4, 24, 0, 0, 0},       {2, 12, 0, 0, 0},
                                {3, 16, 0, 0, 0},  {1, 8, 0, 0, 0},        {1, 16, 9, 24, 0},
                                {1, 8, 256, 7, 0}, {2, 24, 0, 0, 0, 0, 9}, {2, 24, 0, 0, 0, 13, 0}};
    for (const TargaForm& form : kWrong)
        EXPECT_EQ(By(kOurs, [&](const FXCodec& codec) { LoadAsTheSaver(codec, kTga, Targa(form)); }), "none")
            << form.kind << ", " << form.bits;
}

TEST_F(OwnCodec, KeepsPixelsAsTheLibraryDoes) {
    constexpr ILenum kFormats[] = {IL_RGB, IL_RGBA, IL_BGR, IL_BGRA, IL_LUMINANCE, IL_LUMINANCE_ALPHA};
    std::string pixels = Noise(2).Bytes(7 * 5 * 4), patch = Noise(3).Bytes(4 * 3 * 4);
    const auto swapped = [](ILenum from, ILenum to) { // where the library takes blue for red
        return (from == IL_BGR || from == IL_BGRA) && to == IL_LUMINANCE_ALPHA;
    };
    for (const ILenum from : kFormats) {
        const auto make = [&](const FXCodec& codec) {
            codec.ilTexImage(7, 5, 1, static_cast<unsigned char>(CodecPicture::ChannelsOf(from)), from,
                             IL_UNSIGNED_BYTE, pixels.data());
        };
        for (const ILenum to : kFormats) {
            if (swapped(from, to) || swapped(to, from))
                continue;
            SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to);
            ExpectAlike("converted", [&](const FXCodec& codec) {
                make(codec);
                codec.ilConvertImage(to, IL_UNSIGNED_BYTE);
            });
            std::string copies[2];
            for (const FXCodec* codec : kBoth)
                By(*codec, [&](const FXCodec& each) {
                    make(each);
                    std::string& copy = copies[codec == &kOurs];
                    copy.resize(static_cast<std::size_t>(3 * 2 * CodecPicture::ChannelsOf(to)));
                    const ILuint copied =
                        each.ilCopyPixels(2, 1, 0, 3, 2, 1, to, IL_UNSIGNED_BYTE, copy.data());
                    EXPECT_EQ(copied, copy.size());
                });
            EXPECT_EQ(copies[0], copies[1]) << "copied";
            for (const auto& [x, y] : {std::pair{2, 1}, {5, 3}})
                ExpectAlike("set", [&](const FXCodec& codec) {
                    make(codec);
                    codec.ilSetPixels(x, y, 0, 4, 3, 1, to, IL_UNSIGNED_BYTE, patch.data());
                });
        }
        for (const ILenum filter : {ILU_NEAREST, ILU_BILINEAR})
            for (const auto& [w, h] : {std::pair{14, 10}, {3, 2}, {7, 5}, {1, 1}, {20, 3}}) {
                SCOPED_TRACE(testing::Message()
                             << std::hex << from << " " << filter << " " << w << " x " << h);
                ExpectAlike(
                    "scaled",
                    [&](const FXCodec& codec) {
                        make(codec);
                        codec.iluImageParameter(ILU_FILTER, filter);
                        codec.iluScale(static_cast<ILuint>(w), static_cast<ILuint>(h), 1);
                    },
                    1);
            }
    }
}

TEST_F(OwnCodec, SavesTargaFilesThatTheLibraryReads) {
    const TempFolder folder;
    std::string pixels = Noise(4).Bytes(7 * 5 * 4);
    for (const ILenum format : {IL_RGB, IL_RGBA, IL_BGRA, IL_LUMINANCE}) {
        std::string read[2];
        for (const FXCodec* writer : kBoth) {
            const std::string name =
                folder.File(std::to_string(format) + (writer == &kOurs ? "o.tga" : "t.tga"));
            By(*writer, [&](const FXCodec& codec) {
                codec.ilTexImage(7, 5, 1, static_cast<unsigned char>(CodecPicture::ChannelsOf(format)),
                                 format, IL_UNSIGNED_BYTE, pixels.data());
                EXPECT_NE(codec.ilSaveImage(name.c_str()), 0);
                EXPECT_EQ(codec.ilSaveImage(name.c_str()), 0) << "it is there already";
                codec.ilEnable(IL_FILE_OVERWRITE);
                EXPECT_NE(codec.ilSaveImage(name.c_str()), 0);
                codec.ilDisable(IL_FILE_OVERWRITE);
            });
            read[writer == &kOurs] = By(fxCodec, [&](const FXCodec& codec) {
                codec.ilLoadImage(name.c_str());
                codec.ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE);
            });
        }
        EXPECT_TRUE(read[0] == read[1]) << std::hex << format;
        EXPECT_NE(read[0], "none");
    }
}

TEST_F(OwnCodec, TakesAFileByItsNameThenByItsBytes) {
    const TempFolder folder;
    const std::string targa = TargaFiles()[0].bytes;
    const auto sizeOf = [&](const std::string& name) {
        const std::string shown = By(kOurs, [&](const FXCodec& codec) { codec.ilLoadImage(name.c_str()); });
        return shown.substr(0, shown.find(':'));
    };
    EXPECT_EQ(sizeOf(folder.Write("a.tga", targa)), "13 x 9");
    EXPECT_EQ(sizeOf(folder.Write("b.TGA", targa)), "13 x 9");
    EXPECT_EQ(sizeOf(folder.Write("c", targa)), "none") << "a TGA begins with nothing of its own";
    const std::string jpeg("\xFF\xD8\xFF\xC0\0\x0B\x08\0\2\0\1\1\1\1\1\xFF\xD9", 17);
    EXPECT_EQ(sizeOf(folder.Write("d.tga", jpeg + std::string(100, '\0'))), "1 x 2");
    EXPECT_EQ(sizeOf(folder.Write("e.jpg", jpeg.substr(0, 15) + std::string(100, '\0'))), "none")
        << "the system is not handed what breaks off";
    EXPECT_EQ(sizeOf(folder.File("missing.tga")), "none");
}

TEST_F(OwnCodec, HandsOutImagesByName) {
    ILuint names[3] = {};
    ilGenImages(3, names);
    EXPECT_TRUE(names[0] > 0 && names[0] < names[1] && names[1] < names[2]);
    EXPECT_EQ(ilCloneCurImage(), 0u) << "none is bound";
    std::string pixel = "abcd";
    ilBindImage(names[1]);
    EXPECT_EQ(ilCloneCurImage(), 0u) << "it has no pixels";
    ASSERT_NE(ilTexImage(1, 1, 1, 4, IL_RGBA, IL_UNSIGNED_BYTE, pixel.data()), 0);
    const ILuint clone = ilCloneCurImage();
    ASSERT_GT(clone, names[2]);
    ilGetData()[0] = 'x';
    ilBindImage(clone);
    EXPECT_EQ(Shown(kOurs), "1 x 1: abcd");
    for (const ILuint name : {names[0], names[2], 0u, 999u, ~0u}) {
        ilBindImage(name);
        EXPECT_EQ(Shown(kOurs), "none") << name;
        EXPECT_EQ(
            ilGetInteger(IL_IMAGE_WIDTH) + ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE) + iluScale(2, 2, 1), 0);
    }
    ilBindImage(names[1]);
    ilDeleteImages(1, &names[1]);
    ilDeleteImages(1, &names[1]);
    EXPECT_EQ(Shown(kOurs), "none");
    EXPECT_EQ(ilTexImage(1, 1, 1, 4, IL_RGBA, IL_UNSIGNED_BYTE, pixel.data()), 0) << "it is gone";
    ILuint again = 0;
    ilGenImages(1, &again);
    EXPECT_EQ(again, names[1]);
    ilShutDown();
    ilBindImage(clone);
    EXPECT_EQ(Shown(kOurs), "none");
}

TEST_F(OwnCodec, RefusesWhatItCannotKeep) {
    ILuint image = 0;
    ilGenImages(1, &image);
    ilBindImage(image);
    std::string pixels(64, 'p');
    ASSERT_NE(ilTexImage(4, 4, 1, 4, IL_RGBA, IL_UNSIGNED_BYTE, pixels.data()), 0);
    const std::tuple<ILuint, ILuint, ILuint, int, ILenum, ILenum> kWrong[] = {
        {0, 1, 1, 4, IL_RGBA, IL_UNSIGNED_BYTE},     {1, ~0u, 1, 4, IL_RGBA, IL_UNSIGNED_BYTE},
        {32769, 1, 1, 4, IL_RGBA, IL_UNSIGNED_BYTE}, {32768, 32768, 1, 4, IL_RGBA, IL_UNSIGNED_BYTE},
        {1, 1, 2, 4, IL_RGBA, IL_UNSIGNED_BYTE},     {1, 1, 1, 3, IL_RGBA, IL_UNSIGNED_BYTE},
        {1, 1, 1, 4, IL_RGBA, IL_UNSIGNED_BYTE + 1}, {1, 1, 1, 1, 0x1900, IL_UNSIGNED_BYTE}};
    for (const auto& [w, h, d, channels, format, type] : kWrong)
        EXPECT_EQ(ilTexImage(w, h, d, static_cast<unsigned char>(channels), format, type, pixels.data()), 0)
            << w << " x " << h;
    EXPECT_EQ(ilConvertImage(0x1900, IL_UNSIGNED_BYTE) + ilConvertImage(IL_RGBA, 0x1403), 0);
    EXPECT_EQ(iluScale(0, 1, 1) + iluScale(~0u, 1, 1) + iluScale(1, 1, 2), 0);
    for (const auto& [x, w] : {std::pair{4u, 1u}, {0u, 5u}, {~0u, 2u}, {1u, ~0u}})
        EXPECT_EQ(ilCopyPixels(x, 0, 0, w, 1, 1, IL_RGBA, IL_UNSIGNED_BYTE, pixels.data()) +
                      ilCopyPixels(0, x, 0, 1, w, 1, IL_RGBA, IL_UNSIGNED_BYTE, pixels.data()),
                  0u);
    for (const int at : {4, -1, INT_MAX, INT_MIN})
        ilSetPixels(at, at, 0, 1, 1, 1, IL_LUMINANCE, IL_UNSIGNED_BYTE, pixels.data());
    EXPECT_EQ(ilLoadL(kTga, nullptr, 100) + ilLoadL(kTga, "", ~0u) + ilLoadL(0x7777, pixels.data(), 64) +
                  ilLoadImage(nullptr) + ilSaveImage(nullptr) + ilEnable(1) + ilDisable(1),
              0);
    EXPECT_EQ(Shown(kOurs), "4 x 4: " + pixels) << "as it was";
    ilSetPixels(-1, -2, 0, 2, 3, 1, IL_RGBA, IL_UNSIGNED_BYTE, (std::string(20, 'q') + "abcd").data());
    EXPECT_EQ(Shown(kOurs), "4 x 4: abcd" + pixels.substr(4)) << "what lies on it";
}

TEST_F(OwnCodec, StaysAsItIsWithoutMemory) {
    const std::string targa = Targa({10, 24, 0, 0, 0, 40, 40});
    ILuint image = 0;
    ilGenImages(1, &image);
    ilBindImage(image);
    std::string pixels(3 * 400, 'p');
    ASSERT_NE(ilTexImage(20, 20, 1, 3, IL_RGB, IL_UNSIGNED_BYTE, pixels.data()), 0);
    fxSetAllocLimit(1000);
    EXPECT_EQ(ilLoadL(kTga, targa.data(), static_cast<ILuint>(targa.size())) + iluScale(21, 21, 1) +
                  ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE),
              0);
    EXPECT_EQ(ilCloneCurImage(), 0u);
    fxSetAllocLimit(0);
    EXPECT_EQ(Shown(kOurs), "20 x 20: " + pixels);
}

} // namespace
