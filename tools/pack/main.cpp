// tamb-pack: packages from files, and what is in them.
#include "base/file_handle.h"
#include "pack/pack_options.h"
#include "package/package.h"

#include <algorithm>
#include <cstdio>

namespace {

int Fail(const std::string& message) {
    std::fprintf(stderr, "tamb-pack: %s\n", message.c_str());
    return 1;
}

const char* TypeName(int type) {
    switch (type) {
    case kBmp:
        return "bmp";
    case kJpeg:
        return "jpg";
    case kPng:
        return "png";
    case kTga:
        return "tga";
    case kGif:
        return "gif";
    default:
        return "raw";
    }
}

// Entries with a number first, so that those without get numbers behind them.
bool Queue(const PackOptions& options, FXPackage* package, std::string* error) {
    for (const PackEntry& entry : options.entries) {
        int size = 0;
        int type = kRaw;
        if (!FXPackage::CheckFile(entry.file.c_str(), &size, &type)) {
            *error = entry.file + ": cannot be read, or is beyond 2 GiB";
            return false;
        }
        if (entry.id < 0)
            continue;
        package->AddDataFile(entry.id, entry.file.c_str());
        package->firstId = std::max(package->firstId, entry.id + 1);
    }
    for (const PackEntry& entry : options.entries) {
        FXStr name(entry.file.c_str());
        if (entry.id < 0)
            package->AddDataFile1(&name);
    }
    return true;
}

int Build(const PackOptions& options) {
    FXPackage package;
    std::string error;
    if (!Queue(options, &package, &error))
        return Fail(error);
    if (!package.Save(options.package.c_str(), options.scramble ? FXPackage::kScrambled : 0))
        return Fail(options.package + ": cannot be written (or the package would be beyond 2 GiB)");
    if (!options.nameHeader.empty() && !package.SaveNamesCpp(options.nameHeader.c_str()))
        return Fail(options.nameHeader + ": cannot be written");
    return 0;
}

int List(FXPackage& package) {
    std::printf("%8s  %-4s %12s\n", "id", "type", "bytes");
    for (int i = 0; i < package.ids.count; ++i)
        std::printf("%8d  %-4s %12d\n", package.ids[i], TypeName(package.types[i]), package.cursors[i]->size);
    return 0;
}

int Extract(FXPackage& package, const PackEntry& entry) {
    const FXPackageData* data = package.GetDataPtr(entry.id);
    if (data == nullptr)
        return Fail("there is no entry " + std::to_string(entry.id));
    FXFile file = fxOpenFile(entry.file.c_str(), "wb");
    const auto size = static_cast<std::size_t>(data->size);
    const bool written = file && std::fwrite(data->start, 1, size, file.get()) == size;
    if (!written || !fxCloseWritten(std::move(file)))
        return Fail(entry.file + ": cannot be written");
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    PackOptions options;
    std::string error;
    if (!ParsePackOptions({argv + 1, argv + argc}, &options, &error)) {
        std::fprintf(stderr, "tamb-pack: %s\n", error.c_str());
        return 2;
    }
    if (options.command == PackOptions::Command::Help) {
        std::fputs(kPackHelp, stdout);
        return 0;
    }
    if (options.command == PackOptions::Command::Build)
        return Build(options);
    FXPackage package;
    if (!package.Load(options.package.c_str()))
        return Fail(options.package + ": is not a package, or cannot be read");
    return options.command == PackOptions::Command::List ? List(package)
                                                         : Extract(package, options.entries[0]);
}
