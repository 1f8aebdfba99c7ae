// tamb-make-show: draws everything that the default show is made of into a folder.
#include "drawn_sizes.h"
#include "models/models.h"
#include "pictures/drawing.h"
#include "pictures/pictures.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace {

// Writes one file for that screen; empty when well, else what went wrong.
using Maker = std::string (*)(const std::string& file, const Screen& screen);

template <Raster (*Draw)()> std::string localPicture(const std::string& file, const Screen&) {
    return Draw().WritePng(file);
}

template <Raster (*Draw)(const Size&), const Drawn& drawn>
std::string localPicture(const std::string& file, const Screen& screen) {
    return Draw(TexelsFor(drawn, screen)).WritePng(file);
}

// What is opaque, as a photograph. At the first quality nothing shows of the packing. Dark pictures need the
// highest, or whoever brightens them sees blocks.
constexpr int kQuality = 96;
constexpr int kQualityOfDark = 100;

template <Raster (*Draw)(const Size&), const Drawn& drawn>
std::string localPhotograph(const std::string& file, const Screen& screen) {
    return Draw(TexelsFor(drawn, screen)).WriteJpeg(file, kQuality);
}

// As wide as the screens that are the most common of those: there a pixel is a texel, and the device need not
// mix two sizes of the picture for every pixel. What the storage has beyond it darkens the last column of
// pixels on other screens, by two levels of 255.
std::string localSpace(const std::string& file, const Screen& screen) {
    const Size size = {screen.width > 2560 ? 3840 : 1920, TexelsFor(kDrawnSpace, screen).height};
    return DrawSpace(size).WriteJpeg(file, kQualityOfDark);
}

// A pane for a preview has nothing to do with the screen. It is of 4:3.
std::string localPreview(const std::string& file, const Screen&) {
    return DrawPreview({512, 256}).WriteJpeg(file, kQuality);
}

// Soft everywhere, so it is small whatever the screen.
std::string localCalm(const std::string& file, const Screen&) {
    return DrawCalm({1024, 512}).WriteJpeg(file, kQuality);
}

// For the icon theme that all desktops of Linux share.
template <int size> std::string localIcon(const std::string& file, const Screen&) {
    return DrawIcon(size).WritePng(file);
}

struct Output {
    const char* name;
    Maker make;
};

constexpr Output kOutputs[] = {
    {"00-error.png", localPicture<DrawErrorNotice>},
    {"01-preview.jpg", localPreview},
    {"04-medallion.om", WriteMedallion},
    {"05-label.png", localPicture<DrawLabel, kDrawnLabel>},
    {"11-sun-core.om", WriteSunCore},
    {"13-shell-1.om", WriteSunShell1},
    {"15-shell-2.om", WriteSunShell2},
    {"17-shell-3.om", WriteSunShell3},
    {"18-space.jpg", localSpace},
    {"19-halo.png", localPicture<DrawHalo, kDrawnHalo>},
    {"20-rays.png", localPicture<DrawRays, kDrawnRays>},
    {"21-lens.png", localPicture<DrawLens, kDrawnLens>},
    {"30-sun-core.jpg", localPhotograph<DrawSunCore, kDrawnSunCore>},
    {"31-plasma-a.png", localPicture<DrawPlasmaA, kDrawnPlasma>},
    {"32-plasma-b.png", localPicture<DrawPlasmaB, kDrawnPlasma>},
    {"33-plasma-c.png", localPicture<DrawPlasmaC, kDrawnPlasma>},
    {"34-gold.jpg", localPhotograph<DrawGold, kDrawnGold>},
    {"35-emblem.jpg", localPhotograph<DrawEmblem, kDrawnEmblem>},
    {"36-ember.png", localPicture<DrawEmber>},
    {"40-sun.lib", WriteSunLibrary},
    {"41-medallion.lib", WriteMedallionLibrary},
    {"42-morph.lib", WriteMorphLibrary},
    {"72-morph.oa", WriteMorph},
    {"73-studio.jpg", localPhotograph<DrawStudio, kDrawnStudio>},
    {"74-skin.png", localPicture<DrawSkin, kDrawnSkin>},
    {"90-calm.jpg", localCalm},
    {"desktop.png", localPicture<DrawDesktop>},
    {"icon-16.png", localIcon<16>},
    {"icon-22.png", localIcon<22>},
    {"icon-24.png", localIcon<24>},
    {"icon-32.png", localIcon<32>},
    {"icon-48.png", localIcon<48>},
    {"icon-64.png", localIcon<64>},
    {"icon-128.png", localIcon<128>},
    {"icon-256.png", localIcon<256>},
    {"setup.bmp", WriteSetupPicture},
    {"tamb.ico", WriteIcons},
};

int localUsage() {
    std::fputs("usage: tamb-make-show OUTFOLDER [--screen WIDTH] [--only NAME]\n"
               "Makes the show's pictures and models in OUTFOLDER, which is made when it is missing.\n"
               "--screen WIDTH  for screens up to so many pixels wide: 2560 (if nothing is said) or 3840\n"
               "--only NAME     makes that file alone, for instance 18-space.jpg\n",
               stderr);
    return 1;
}

int localMakeAll(const std::filesystem::path& folder, const Screen& screen, std::string_view only) {
    std::error_code problem;
    std::filesystem::create_directories(folder, problem);
    if (problem) {
        std::fprintf(stderr, "tamb-make-show: %s: cannot be made: %s\n", folder.c_str(),
                     problem.message().c_str());
        return 1;
    }
    bool found = false;
    for (const Output& output : kOutputs) {
        if (!only.empty() && only != output.name)
            continue;
        found = true;
        const std::string trouble = output.make((folder / output.name).string(), screen);
        if (!trouble.empty()) {
            std::fprintf(stderr, "tamb-make-show: %s\n", trouble.c_str());
            return 1;
        }
    }
    if (!found) {
        std::fprintf(stderr, "tamb-make-show: nothing is called %s; these can be made:\n",
                     std::string(only).c_str());
        for (const Output& output : kOutputs)
            std::fprintf(stderr, "  %s\n", output.name);
    }
    return found ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    constexpr Screen kScreens[] = {{2560, 1440}, {3840, 2160}};
    const char* folder = nullptr;
    Screen screen = kScreens[0];
    std::string_view only;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--only" && i + 1 < argc && only.empty())
            only = argv[++i];
        else if (argument == "--screen" && i + 1 < argc && std::string_view(argv[i + 1]) == "2560")
            screen = kScreens[0], ++i;
        else if (argument == "--screen" && i + 1 < argc && std::string_view(argv[i + 1]) == "3840")
            screen = kScreens[1], ++i;
        else if (!argument.empty() && argument.front() != '-' && folder == nullptr)
            folder = argv[i];
        else
            return localUsage();
    }
    if (folder == nullptr)
        return localUsage();
    const int result = localMakeAll(folder, screen, only);
    ReleaseFonts();
    return result;
}
