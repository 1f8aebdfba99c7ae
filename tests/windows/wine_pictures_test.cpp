// The codec's modules on Windows beside the Linux library: what the saver gets from each, picture by picture.
#include "image/codec.h"
#include "integration/program.h"
#include "package/package.h"
#include "unit/picture_files.h"
#include "windows/decoded.h"
#include "windows/under_wine.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <tuple>

namespace {

// Two decoders of JPEG round in their own ways, and spread colours that pixels share over them in others.
constexpr int kRounding = 3;
constexpr int kSpread = 24;

// Files, and what ImageMagick makes them of: "noise" or "soft" colours.
constexpr std::pair<const char*, const char*> kForms[] = {
    {"grey-1.png", "noise -monochrome -define png:color-type=0 -define png:bit-depth=1"},
    {"grey-2.png", "noise -colorspace Gray -depth 2 -define png:color-type=0 -define png:bit-depth=2"},
    {"grey-4.png", "noise -colorspace Gray -depth 4 -define png:color-type=0 -define png:bit-depth=4"},
    {"grey-8.png", "noise -define png:color-type=0 -define png:bit-depth=8"},
    {"grey-16.png", "noise -define png:color-type=0 -define png:bit-depth=16"},
    {"grey-alpha-8.png", "noise -define png:color-type=4 -define png:bit-depth=8"},
    {"grey-alpha-16.png", "noise -define png:color-type=4 -define png:bit-depth=16"},
    {"rgb-8.png", "noise -alpha off -define png:color-type=2 -define png:bit-depth=8"},
    {"rgb-16.png", "noise -alpha off -define png:color-type=2 -define png:bit-depth=16"},
    {"rgb-interlaced.png", "noise -alpha off -interlace PNG -define png:color-type=2"},
    {"rgb-gamma.png", "noise -alpha off -gamma 2 -define png:include-chunk=gama -define png:color-type=2"},
    {"rgba-8.png", "noise -define png:color-type=6 -define png:bit-depth=8"},
    {"rgba-16.png", "noise -define png:color-type=6 -define png:bit-depth=16"},
    {"rgba-interlaced.png", "noise -interlace PNG -define png:color-type=6"},
    {"palette-1.png", "noise -alpha off -colors 2 -define png:color-type=3 -define png:bit-depth=1"},
    {"palette-2.png", "noise -alpha off -colors 4 -define png:color-type=3 -define png:bit-depth=2"},
    {"palette-4.png", "noise -alpha off -colors 16 -define png:color-type=3 -define png:bit-depth=4"},
    {"palette-8.png", "noise -alpha off -colors 256 -define png:color-type=3"},
    {"palette-transparent.png", "noise -channel A -threshold 50% +channel -colors 100 PNG8:"},
    {"grey.jpg", "soft -colorspace Gray"},
    {"whole.jpg", "soft -sampling-factor 1x1"},
    {"shared-across.jpg", "soft -sampling-factor 2x1"},
    {"shared.jpg", "soft -sampling-factor 2x2"},
    {"progressive.jpg", "soft -interlace JPEG"},
    {"poor.jpg", "soft -quality 20"},
    {"1.bmp", "noise -alpha off -monochrome BMP3:"},
    {"4.bmp", "noise -alpha off -colors 16 BMP3:"},
    {"8.bmp", "noise -alpha off -colors 256 BMP3:"},
    {"8-runs.bmp", "soft -alpha off -colors 20 -compress RLE BMP3:"},
    {"24.bmp", "noise -alpha off BMP3:"},
    {"24-old.bmp", "noise -alpha off BMP2:"},
    {"32.bmp", "noise BMP3:"},
    {"2-colours.gif", "noise -alpha off -monochrome"},
    {"16-colours.gif", "noise -alpha off -colors 16"},
    {"256-colours.gif", "noise -alpha off -colors 256"},
    {"transparent.gif", "noise -channel A -threshold 50% +channel"},
    {"interlaced.gif", "noise -alpha off -interlace GIF"},
    {"frames.gif", "noise -alpha off -colors 16 ( +clone -negate )"},
    {"border.gif", "noise -alpha off -colors 16 -repage 49x33+6+6"},
    {"border-transparent.gif", "noise -channel A -threshold 50% +channel -colors 16 -repage 49x33+6+5"},
};

// A BMP of 16 bits a pixel, which ImageMagick makes of a kind that the library does not read.
std::string Bmp16(bool moreGreen) {
    constexpr int kSide = 20, kBytes = kSide * kSide * 2, kStart = 14 + 40 + 12;
    return "BM" + Long(kStart + kBytes) + Long(0) + Long(kStart) + Long(40) + Long(kSide) + Long(kSide) +
           Word(1) + Word(16) + Long(3) + Long(kBytes) + Long(0) + Long(0) + Long(0) + Long(0) +
           Long(moreGreen ? 0xF800 : 0x7C00) + Long(moreGreen ? 0x7E0 : 0x3E0) + Long(0x1F) +
           Noise(5).Bytes(kBytes);
}

class Pictures : public testing::Test {
protected:
    Pictures() {
        EXPECT_TRUE(fxLoadDevil());
        for (const char* file : {"tests/pictures.exe", "bin/DevIL.dll", "bin/ILU.dll"})
            std::filesystem::copy(WindowsBuild(file), folder_.Path());
    }
    ~Pictures() override { fxUnloadDevil(); }

    std::string Made(const std::string& name, const std::string& form) const {
        const bool noise = form.starts_with("noise");
        std::istringstream command(
            "/usr/bin/convert -seed 7 -size 37x21 " +
            std::string(noise ? "xc:gray50 -alpha on +noise Random -channel A +noise Random +channel"
                              : "plasma:red-blue -blur 0x2") +
            form.substr(form.find(' ')));
        std::vector<std::string> words;
        for (std::string word; command >> word;)
            words.push_back(word);
        if (words.back().back() == ':')
            words.back() += name;
        else
            words.push_back(name);
        EXPECT_EQ(RunProgram(words, {{"PATH", "/usr/bin:/bin"}}, folder_.Path().string()), 0) << name;
        return folder_.Read(name);
    }
    void DecodeOnWindows(const std::string& what, const std::vector<PictureFile>& files) const {
        std::vector<std::string> words = {folder_.File("pictures.exe"), what};
        for (const PictureFile& file : files) {
            folder_.Write(file.name, file.bytes);
            words.push_back(file.name);
        }
        EXPECT_EQ(WineProgram("", folder_.Path().string(), words).WaitForExit(), 0);
    }
    // How far the two are apart; 256 when there is one only, or they are not of one size.
    static int Distance(const std::string& one, const std::string& other) {
        if (one.size() != other.size() || one.compare(0, 8, other, 0, 8) != 0)
            return 256;
        int most = 0;
        for (std::size_t i = 8; i < one.size(); ++i)
            most = std::max(
                most, std::abs(static_cast<unsigned char>(one[i]) - static_cast<unsigned char>(other[i])));
        return most;
    }
    // A file's name ends with its kind.
    static int Tolerance(const std::string& name) {
        const bool shares = name.starts_with("shared") || name.starts_with("poor");
        return !name.ends_with(".jpg") ? 0 : shares ? kSpread : kRounding;
    }
    void ExpectAsOnLinux(const std::vector<PictureFile>& files) const {
        for (const PictureFile& file : files) {
            const std::string there = folder_.Read(file.name + ".decoded"),
                              here = Decoded(folder_.File(file.name));
            EXPECT_LE(Distance(there, here), Tolerance(file.name)) << file.name;
            EXPECT_NE(here, "") << file.name;
        }
    }

    TempFolder folder_;
};

TEST_F(Pictures, OfEveryFormLookAsOnLinuxAndAreSavedSoAndDamagedOnesDoNoHarm) {
    std::vector<PictureFile> files = TargaFiles();
    for (const auto& [name, form] : kForms)
        files.push_back({name, Made(name, form)});
    for (const bool more_green : {false, true})
        files.push_back({more_green ? "16-565.bmp" : "16-555.bmp", Bmp16(more_green)});
    std::string top_first = folder_.Read("24.bmp");
    top_first.replace(22, 4, Long(-21)); // its height
    files.push_back({"24-top-first.bmp", top_first});
    DecodeOnWindows("all", files);
    ExpectAsOnLinux(files);
    for (const PictureFile& file : files) {
        const std::string decoded = folder_.Read(file.name + ".decoded");
        std::string opaque = decoded, mask = decoded;
        for (std::size_t at = 8; at < decoded.size(); at += 4) {
            opaque[at + 3] = '\xFF';
            mask.replace(at, 4, std::string(3, decoded[at + 3]) + '\xFF');
        }
        const std::tuple<const char*, std::string, int> kSaved[] = {
            {".saved.png", decoded, 0},
            {".saved.tga", decoded, 0},
            {".saved.bmp", opaque, 0},
            {".mask.png", mask, 0},
            {".saved.jpg", opaque, Tolerance(file.name) > 0 ? kSpread : 255}}; // noise does not survive that
        if (decoded.empty())
            continue; // which has been found already
        for (const auto& [ending, picture, tolerance] : kSaved)
            EXPECT_LE(Distance(Decoded(folder_.File(file.name + ending)), picture), tolerance)
                << file.name << ending;
    }
}

TEST_F(Pictures, OfTheShowLookAsOnLinux) {
    FXPackage package;
    ASSERT_TRUE(package.Load(TAMBLOR_DATA_DIR "/tamb.dat"));
    std::vector<PictureFile> files;
    for (int i = 0; i < package.ids.count; ++i)
        for (const FXPictureEnding& known : kPictureEndings)
            if (package.types[i] == known.type) {
                const FXPackageData* data = package.GetDataPtr(package.ids[i]);
                files.push_back({std::to_string(package.ids[i]) + "." + known.ending,
                                 std::string(data->start, data->start + data->size)});
            }
    ASSERT_GT(files.size(), 10u);
    DecodeOnWindows("decode", files);
    ExpectAsOnLinux(files);
}

} // namespace
