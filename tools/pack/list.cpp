// tamb-pack list: what is in a package.
#include "pack/command.h"
#include "pack/description.h"
#include "pack/kinds.h"
#include "pack/package_check.h"
#include "pack/picture_codec.h"
#include "pack/text.h"
#include "progress.h"

#include <cstdio>
#include <vector>

namespace {

constexpr OptionRule kOptions[] = {{"--quiet", nullptr}};

constexpr const char* kHelp =
    R"(usage: tamb-pack list PACKAGE [options]

  --quiet   no progress

One line for each entry, in the order of the package: its number, what it is, its size in bytes,
and what is in it:

  png, jpg, tga, bmp, gif   width x height, RGB or RGBA (some of it is not opaque)
  model                     version, name, library, meshes, vertices, triangles
  animation                 version, key frames, seconds, meshes, corners
  library                   the names of its materials, with the entry of their picture
  matrix, phaser, raw

The first line names the columns; the first three have no blanks in them. What an entry does not
keep to itself is marked as damaged; tamb-pack verify says more.
)";

int localRun(const Arguments& arguments) {
    FXPackage package;
    std::string error;
    if (!LoadPackage(arguments.words[0], &package, &error))
        return Fail(error);
    if (OverlapsTooMuch(package))
        return Fail(arguments.words[0] + ": its entries overlap (tamb-pack verify says where)");
    std::vector<Description> rows(static_cast<std::size_t>(package.ids.count));
    Progress progress("entry", rows.size(), !arguments.Has("--quiet"));
    std::size_t done = 0;
    const std::vector<EntryKind> kinds = KindsOf(package);
    const auto describe = [&](bool pictures) {
        for (int i = 0; i < package.ids.count; ++i)
            if ((FindPictureType(package.types[i]) != nullptr) == pictures) {
                rows[static_cast<std::size_t>(i)] = Describe(&package, i, kinds[static_cast<std::size_t>(i)]);
                progress.Done(++done);
            }
    };
    // Materials would decode their pictures too, so the codec comes after them.
    describe(false);
    const PictureCodec codec;
    describe(true);
    progress.Clear();
    std::printf("%8s  %-9s  %10s  %s\n", "id", "kind", "bytes", "contents");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto at = static_cast<int>(i);
        std::printf("%8d  %-9s  %10d  %s\n", package.ids[at], rows[i].kind.c_str(), package.sizes[at],
                    Printable(rows[i].contents).c_str());
    }
    if (!PictureCodec::Loaded())
        std::fprintf(stderr, "tamb-pack: no picture was looked into: %s\n", kNoCodec);
    return kExitGood;
}

} // namespace

const Command kListCommand = {"list", "shows what is in a package", kHelp, kOptions, 1, 1, localRun};
