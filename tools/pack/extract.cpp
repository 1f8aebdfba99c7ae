// tamb-pack extract: entries as files.
#include "pack/command.h"
#include "pack/extraction.h"
#include "pack/package_check.h"
#include "pack/text.h"
#include "progress.h"

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

constexpr const char* kManifestName = "manifest.toml";

constexpr OptionRule kOptions[] = {{"--obj", nullptr}, {"--force", nullptr}, {"--quiet", nullptr}};

constexpr const char* kHelp =
    R"(usage: tamb-pack extract PACKAGE FOLDER [options]
       tamb-pack extract PACKAGE ID FILE [options]

With a FOLDER, which is made when it is missing: every entry into a file of its own, named by its
number, and a manifest.toml that builds the package again, to the same bytes.
With an ID: that entry alone into FILE.

  --obj     models as Wavefront OBJ files, animations as one for each key frame, libraries as MTL
            files. What these formats have no place for is lost: the colours of vertices, and every
            alpha of a material but its diffuse colour's. Meshes of one material become one
  --force   write over a manifest.toml that is there
  --quiet   no progress

examples:
  tamb-pack extract tamb.dat parts && tamb-pack build parts/manifest.toml again.dat
  tamb-pack extract tamb.dat 18 space.png
)";

int localOne(FXPackage* package, const Arguments& arguments) {
    const std::string& number = arguments.words[1];
    int id = -1;
    const auto end = number.data() + number.size();
    const auto [stop, failed] = std::from_chars(number.data(), end, id);
    if (failed != std::errc() || stop != end)
        return FailUsage("'" + number + "' is no entry's number", "extract");
    std::string bytes, error;
    if (!ExtractOne(package, id, arguments.Has("--obj"), &bytes, &error) ||
        !WriteWhole(arguments.words[2], bytes, &error))
        return Fail(error);
    return kExitGood;
}

int localAll(FXPackage* package, bool isScrambled, const Arguments& arguments) {
    const fs::path folder = arguments.words[1];
    std::error_code failed;
    fs::create_directories(folder, failed);
    if (failed)
        return Fail(folder.string() + ": cannot be made: " + failed.message());
    const fs::path manifest = folder / kManifestName;
    if (fs::exists(manifest, failed) && !arguments.Has("--force"))
        return Fail(manifest.string() + " is there already; --force writes over it");
    const Extraction all = ExtractAll(package, isScrambled, arguments.Has("--obj"));
    for (const std::string& warning : all.warnings)
        std::fprintf(stderr, "tamb-pack: %s\n", warning.c_str());
    Progress progress("file", all.files.size(), !arguments.Has("--quiet"));
    std::string error;
    for (std::size_t i = 0; i < all.files.size(); ++i) {
        if (!WriteWhole((folder / all.files[i].name).string(), all.files[i].bytes, &error)) {
            progress.Clear();
            return Fail(error);
        }
        progress.Done(i + 1);
    }
    // The manifest last: where it stands, everything does.
    if (!WriteWhole(manifest.string(), all.manifest, &error))
        return Fail(error);
    return all.warnings.empty() ? kExitGood : kExitFault;
}

int localRun(const Arguments& arguments) {
    const std::string& file = arguments.words[0];
    FXPackage package;
    if (!package.Load(file.c_str()))
        return Fail(file + ": is not a package, or cannot be read (tamb-pack verify says why)");
    if (arguments.words.size() == 3)
        return localOne(&package, arguments);
    if (OverlapsTooMuch(package))
        return Fail(file + ": its entries lie over each other (tamb-pack verify says where)");
    return localAll(&package, IsScrambled(file), arguments);
}

} // namespace

const Command kExtractCommand = {
    "extract", "takes entries out, and writes the manifest that puts them back", kHelp, kOptions, 2, 3,
    localRun};
