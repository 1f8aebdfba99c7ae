// Our codec modules beside the library whose place they take: the same calls, the same pictures.
#include "codec/devil.h"
#include "codec/picture.h"
#include "codec/scaling.h"
#include "codec/system_pictures.h"
#include "package/package.h"
#include "unit/picture_files.h"
#include "unit/temp_folder.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <functional>

// The system's part is another one on this system: it has one picture, of two rows, the lower one first.
bool fxReadSystemPicture(std::span<const unsigned char> file, int type, CodecPicture* picture) {
    if (type == kRaw || file.size() < 100 || !picture->Realloc(1, 2, IL_RGBA))
        return false;
    std::fill_n(picture->bytes.get(), 8, file[0]);
    return true;
}
FXBytes fxEncodeSystemPicture(const CodecPicture&, int, int, std::size_t*) {
    return nullptr;
}

namespace {

const FXCodec kOurs = {ilInit,      ilShutDown,     ilEnable,        ilDisable,         ilSetInteger,
                       ilGenImages, ilDeleteImages, ilBindImage,     ilGetInteger,      ilLoadImage,
                       ilLoadL,     ilSaveImage,    ilCloneCurImage, ilConvertImage,    ilCopyPixels,
                       ilSetPixels, ilGetData,      iluScale,        iluImageParameter, ilTexImage};

// The sizes and the bytes of the bound image; "none" where there is none.
std::string Shown(const FXCodec& codec) {
    const unsigned char* data = codec.ilGetData();
    if (data == nullptr)
        return "none";
    return std::to_string(codec.ilGetInteger(IL_IMAGE_WIDTH)) + " x " +
           std::to_string(codec.ilGetInteger(IL_IMAGE_HEIGHT)) + ": " +
           std::string(data, data + codec.ilGetInteger(IL_IMAGE_SIZE_OF_DATA));
}

void LoadAsTheSaver(const FXCodec& codec, const std::string& targa) {
    if (codec.ilLoadL(kTga, targa.data(), static_cast<ILuint>(targa.size())) != 0)
        codec.ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE);
}

ILboolean Make(const FXCodec& codec, ILuint w, ILuint h, ILenum format, std::string pixels) {
    const auto channels = static_cast<unsigned char>(CodecPicture::ChannelsOf(format));
    return codec.ilTexImage(w, h, 1, channels, format, IL_UNSIGNED_BYTE, pixels.data());
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
    static std::string Ours(const std::string& targa) {
        return By(kOurs, [&](const FXCodec& codec) { LoadAsTheSaver(codec, targa); });
    }
    static void ExpectAlike(const std::function<void(const FXCodec&)>& calls, int tolerance = 0) {
        const std::string theirs = By(fxCodec, calls), ours = By(kOurs, calls);
        EXPECT_NE(theirs, "none");
        ASSERT_EQ(ours.size(), theirs.size());
        int most = 0;
        for (std::size_t i = 0; i < ours.size(); ++i)
            most = std::max(
                most, std::abs(static_cast<unsigned char>(ours[i]) - static_cast<unsigned char>(theirs[i])));
        EXPECT_LE(most, tolerance);
    }
};

TEST_F(OwnCodec, ReadsTargaFilesOfEveryForm) {
    for (const PictureFile& file : TargaFiles()) {
        SCOPED_TRACE(file.name);
        ExpectAlike([&](const FXCodec& codec) { LoadAsTheSaver(codec, file.bytes); });
    }
}

// Well-formed files that the library misreads, or does not read at all.
TEST_F(OwnCodec, ReadsTargaFilesThatTheLibraryDoesNot) {
    const TargaForm plain = {2, 24, 0, 0, 0, 3, 1};
    std::string file = Targa(plain), turned = file;
    const std::string shown = Ours(file);
    ASSERT_EQ(shown.size(), 7 + 12u);
    file.insert(18, "palette").replace(1, 1, "\1").replace(5, 1, "\7").replace(7, 1, "\x8");
    EXPECT_EQ(Ours(file), shown);
    turned[17] = 0x10; // the right pixel is the first
    EXPECT_EQ(Ours(turned),
              shown.substr(0, 7) + shown.substr(15, 4) + shown.substr(11, 4) + shown.substr(7, 4));
    std::string run = Targa({10, 24, 0, 0, 0, 2, 1}).substr(0, 18) + "\x84" + "abc"; // of 5 pixels
    EXPECT_EQ(Ours(run), "2 x 1: cba\xFF"
                         "cba\xFF");
    std::string palette = Targa({1, 8, 2, 16, 0, 2, 1});
    palette.replace(18, 6, std::string("\x1F\x7C\xE0\x03\0\1", 6));
    EXPECT_EQ(Ours(palette), "2 x 1: \xF8" + std::string("\0\xF8\xFF\0\xF8\0\xFF", 7));
}

TEST_F(OwnCodec, RefusesTargaFilesThatBreakOffOrClaimWhatTheyAreNot) {
    for (const PictureFile& file : TargaFiles())
        for (std::size_t size = 0; file.bytes.size() < 1000 && size < file.bytes.size(); ++size)
            ASSERT_EQ(Ours(file.bytes.substr(0, size)), "none") << file.name << ", " << size;
    const TargaForm kWrong[] = {{0, 24, 0, 0, 0},  {4, 24, 0, 0, 0},       {2, 12, 0, 0, 0},
                                {3, 16, 0, 0, 0},  {1, 8, 0, 0, 0},        {1, 16, 9, 24, 0},
                                {1, 8, 256, 7, 0}, {2, 24, 0, 0, 0, 0, 9}, {2, 24, 0, 0, 0, 13, 0}};
    for (const TargaForm& form : kWrong)
        EXPECT_EQ(Ours(Targa(form)), "none") << form.kind << ", " << form.bits;
}

TEST_F(OwnCodec, ConvertsAndScalesAsTheLibraryDoes) {
    constexpr ILenum kFormats[] = {IL_RGB, IL_RGBA, IL_BGR, IL_BGRA, IL_LUMINANCE, IL_LUMINANCE_ALPHA};
    const std::string pixels = Noise(2).Bytes(7 * 5 * 4);
    const auto swapped = [](ILenum from, ILenum to) { // where the library takes blue for red
        return (from == IL_BGR || from == IL_BGRA) && to == IL_LUMINANCE_ALPHA;
    };
    for (const ILenum from : kFormats) {
        for (const ILenum to : kFormats) {
            SCOPED_TRACE(testing::Message() << std::hex << from << " to " << to);
            if (swapped(from, to) || swapped(to, from))
                continue;
            ExpectAlike([&](const FXCodec& codec) {
                Make(codec, 7, 5, from, pixels);
                codec.ilConvertImage(to, IL_UNSIGNED_BYTE);
            });
        }
        for (const ILenum filter : {ILU_NEAREST, ILU_BILINEAR})
            for (const auto& [w, h] : {std::pair{14u, 10u}, {3u, 2u}, {7u, 5u}, {1u, 1u}, {20u, 3u}}) {
                SCOPED_TRACE(testing::Message() << std::hex << from << " by " << filter << " to " << w);
                const auto scale = [&, w = w, h = h](const FXCodec& codec) {
                    Make(codec, 7, 5, from, pixels);
                    codec.iluImageParameter(ILU_FILTER, filter);
                    codec.iluScale(w, h, 1);
                };
                ExpectAlike(scale, 1);
            }
    }
}

// And writes over no file unasked.
TEST_F(OwnCodec, SavesTargaFilesThatTheLibraryReads) {
    const TempFolder folder;
    const std::string pixels = Noise(4).Bytes(7 * 5 * 4), name = folder.File("saved.tga");
    for (const ILenum format : {IL_RGB, IL_RGBA, IL_BGRA, IL_LUMINANCE}) {
        const auto convert = [&](const FXCodec& codec) {
            Make(codec, 7, 5, format, pixels);
            codec.ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE);
        };
        By(kOurs, [&](const FXCodec& codec) {
            Make(codec, 7, 5, format, pixels);
            EXPECT_EQ(codec.ilSaveImage(name.c_str()) != 0, format == IL_RGB) << "the first";
            ilEnable(IL_FILE_OVERWRITE);
            EXPECT_NE(codec.ilSaveImage(name.c_str()), 0);
            ilDisable(IL_FILE_OVERWRITE);
        });
        const auto load = [&](const FXCodec& codec) {
            codec.ilLoadImage(name.c_str());
            codec.ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE);
        };
        EXPECT_EQ(By(fxCodec, load), By(fxCodec, convert)) << std::hex << format;
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
    ilBindImage(names[1]);
    EXPECT_EQ(ilCloneCurImage(), 0u) << "it has no pixels";
    ASSERT_NE(Make(kOurs, 1, 1, IL_RGBA, "abcd"), 0);
    const ILuint clone = ilCloneCurImage();
    ASSERT_GT(clone, names[2]);
    ilGetData()[0] = 'x';
    ilBindImage(clone);
    EXPECT_EQ(Shown(kOurs), "1 x 1: abcd");
    for (const ILuint name : {names[2], 0u, 999u}) {
        ilBindImage(name);
        EXPECT_EQ(Shown(kOurs), "none") << name;
        EXPECT_EQ(ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE) + iluScale(2, 2, 1), 0);
    }
    ilBindImage(names[1]);
    for (int i = 0; i < 2; ++i)
        ilDeleteImages(1, &names[1]);
    EXPECT_EQ(Make(kOurs, 1, 1, IL_RGBA, "abcd"), 0) << "it is gone";
    ILuint again = 0;
    ilGenImages(1, &again);
    EXPECT_EQ(again, names[1]) << "its name is free";
}

TEST_F(OwnCodec, RefusesWhatItCannotKeep) {
    ILuint image = 0;
    ilGenImages(1, &image);
    ilBindImage(image);
    std::string pixels(64, 'p');
    ASSERT_NE(Make(kOurs, 4, 4, IL_RGBA, pixels), 0);
    for (const auto& [w, h] : {std::pair{0u, 1u}, {1u, ~0u}, {32769u, 1u}, {32768u, 32768u}})
        EXPECT_EQ(Make(kOurs, w, h, IL_RGBA, pixels) + iluScale(w, h, 1), 0) << w << " x " << h;
    for (const auto& [x, w] : {std::pair{4u, 1u}, {0u, 5u}, {~0u, 2u}, {1u, ~0u}})
        EXPECT_EQ(ilCopyPixels(x, 0, 0, w, 1, 1, IL_RGBA, IL_UNSIGNED_BYTE, pixels.data()) +
                      ilCopyPixels(0, x, 0, 1, w, 1, IL_RGBA, IL_UNSIGNED_BYTE, pixels.data()),
                  0u);
    for (const int at : {4, -1, INT_MAX, INT_MIN})
        ilSetPixels(at, at, 0, 1, 1, 1, IL_LUMINANCE, IL_UNSIGNED_BYTE, pixels.data());
    const std::string targa = Targa({10, 24, 0, 0, 0, 40, 40});
    fxSetAllocLimit(1000);
    EXPECT_EQ(ilLoadL(kTga, targa.data(), static_cast<ILuint>(targa.size())) + iluScale(21, 21, 1), 0);
    fxSetAllocLimit(0);
    EXPECT_EQ(Shown(kOurs), "4 x 4: " + pixels) << "as it was";
    ilSetPixels(-1, -2, 0, 2, 3, 1, IL_RGBA, IL_UNSIGNED_BYTE, (std::string(20, 'q') + "abcd").data());
    ilSetPixels(3, 2, 0, 2, 1, 1, IL_RGBA, IL_UNSIGNED_BYTE, std::string("wxyzqqqq").data());
    EXPECT_EQ(Shown(kOurs), "4 x 4: abcd" + pixels.replace(44, 4, "wxyz").substr(4)) << "what lies on it";
}

} // namespace
