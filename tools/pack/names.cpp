// tamb-pack names: the numbers of named entries, for programs in C.
#include "pack/command.h"
#include "pack/names_header.h"
#include "pack/plan.h"
#include "pack/text.h"

#include <cstdio>
#include <string>

namespace {

constexpr OptionRule kOptions[] = {{"--files", "a folder"}};

constexpr const char* kHelp =
    R"(usage: tamb-pack names MANIFEST [HEADER] [options]

  --files FOLDER   what the manifest's files are relative to (default: the manifest's own folder)

Writes a C header with the number of every entry that has a name instead of an id, and of every
MTL file and picture that was packed because a model needs it:

  #define FXNAME_SHIP  100
  #define FXNAME_SHIP_MTL  101

The name is the last part of a path, in capitals, with . \ / blank + - ( ) [ ] as _.
Without HEADER it goes to the standard output.
)";

int localRun(const Arguments& arguments) {
    Manifest manifest;
    Plan plan;
    std::string error, text;
    if (!ReadManifest(arguments.words[0], arguments.Value("--files"), &manifest, &error) ||
        !MakePlan(manifest, &plan, &error) || !NamesHeader(plan.names, &text, &error))
        return Fail(error);
    if (arguments.words.size() == 1)
        return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0
                   ? kExitGood
                   : Fail("the standard output cannot be written");
    return WriteWhole(arguments.words[1], text, &error) ? kExitGood : Fail(error);
}

} // namespace

const Command kNamesCommand = {
    "names", "writes a C header with the numbers of named entries", kHelp, kOptions, 1, 2, localRun};
