// tamb-make-show: draws everything that the default show is made of into a folder.
#include "models/models.h"
#include "pictures/drawing.h"
#include "pictures/pictures.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace {

// Writes one file; empty when well, else what went wrong.
using Maker = std::string (*)(const std::string& file);

template <Raster (*Draw)()> std::string localPicture(const std::string& file) {
    return Draw().WritePng(file);
}

// As a photograph: what is all detail shows no trace of the packing at this quality.
template <Raster (*Draw)()> std::string localPhotograph(const std::string& file) {
    return Draw().WriteJpeg(file, 92);
}

struct Output {
    const char* name;
    Maker make;
};

constexpr Output kOutputs[] = {
    {"00-error.png", localPicture<DrawErrorNotice>},
    {"01-preview.png", localPicture<DrawPreview>},
    {"04-medallion.om", WriteMedallion},
    {"05-label.png", localPicture<DrawLabel>},
    {"11-sun-core.om", WriteSunCore},
    {"13-shell-1.om", WriteSunShell1},
    {"15-shell-2.om", WriteSunShell2},
    {"17-shell-3.om", WriteSunShell3},
    {"18-space.png", localPicture<DrawSpace>},
    {"19-halo.png", localPicture<DrawHalo>},
    {"20-rays.png", localPicture<DrawRays>},
    {"21-lens.png", localPicture<DrawLens>},
    {"30-sun-core.jpg", localPhotograph<DrawSunCore>},
    {"31-plasma-a.png", localPicture<DrawPlasmaA>},
    {"32-plasma-b.png", localPicture<DrawPlasmaB>},
    {"33-plasma-c.png", localPicture<DrawPlasmaC>},
    {"34-gold.jpg", localPhotograph<DrawGold>},
    {"35-emblem.jpg", localPhotograph<DrawEmblem>},
    {"36-ember.png", localPicture<DrawEmber>},
    {"40-sun.lib", WriteSunLibrary},
    {"41-medallion.lib", WriteMedallionLibrary},
    {"42-morph.lib", WriteMorphLibrary},
    {"72-morph.oa", WriteMorph},
    {"73-studio.jpg", localPhotograph<DrawStudio>},
    {"74-skin.png", localPicture<DrawSkin>},
    {"desktop.png", localPicture<DrawDesktop>},
    {"tamb.ico", WriteIcons},
};

int localUsage() {
    std::fputs("usage: tamb-make-show OUTFOLDER [--only NAME]\n"
               "Makes the show's pictures and models in OUTFOLDER, which is made when it is missing.\n"
               "--only NAME   makes that file alone, for instance 18-space.png\n",
               stderr);
    return 1;
}

int localMakeAll(const std::filesystem::path& folder, std::string_view only) {
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
        const std::string trouble = output.make((folder / output.name).string());
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
    const char* folder = nullptr;
    std::string_view only;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--only" && i + 1 < argc && only.empty())
            only = argv[++i];
        else if (!argument.empty() && argument.front() != '-' && folder == nullptr)
            folder = argv[i];
        else
            return localUsage();
    }
    if (folder == nullptr)
        return localUsage();
    const int result = localMakeAll(folder, only);
    ReleaseFonts();
    return result;
}
