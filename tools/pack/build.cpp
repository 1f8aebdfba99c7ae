// tamb-pack build: a package from a manifest; tamb-pack names: the numbers of its named entries, for programs
// in C.
#include "pack/command.h"
#include "pack/contents.h"
#include "pack/plan.h"
#include "pack/text.h"

#include <cstdio>
#include <string>

namespace {

constexpr OptionRule kBuildOptions[] = {
    {"--files", "a folder"}, {"--names", "a file"}, {"--scramble", nullptr}, {"--quiet", nullptr}};

constexpr const char* kBuildHelp =
    R"(usage: tamb-pack build MANIFEST PACKAGE [options]

  --files FOLDER   what the manifest's files are relative to (default: the manifest's own folder)
  --names HEADER   also write the C header that tamb-pack names writes
  --scramble       scramble the package, as 'scramble = true' in the manifest does
  --quiet          no progress

The package replaces PACKAGE only when it is complete. The same files give the same bytes.

A manifest is a TOML file, an [[entry]] for each entry, in the order of the package:

  [[entry]]
  id = 18                      # the number that the show asks for, or a name:
  picture = "space.png"        # jpg, png, tga, bmp or gif; packed as it is

  [[entry]]
  name = "ship"                # takes the next number from 100 on, behind all ids
  model = "ship.obj"           # a Wavefront OBJ file; the MTL file it names and the pictures
                               # that one names (map_Kd) become entries by themselves

what an entry is, one of:
  picture = FILE               type = NUMBER gives another type than the file's ending
  model = FILE.obj             version = 2 or 3 (default 3: packed), library, draw
  library = FILE.mtl           a material library
  animation = [FILE.obj, ...]  key frames of one topology; library, draw, and as below
  animation = [ID, ...]        key frames that are models of their own, by number
  matrix = [16 numbers]        column after column
  phaser = { duration = 2.0, ... }
                               phase, duration, running, reverse, loop, ping_pong, smooth, smooth_half
  raw = FILE                   any bytes; type = NUMBER

of models and animations:
  library = ID or NAME         the library, when it is not the MTL file that the OBJ file names
  draw = 0, 1 or 2             opaque, in two passes, twice and without depth first; or by material:
  draw = { Glass = 1 }         (default: 1 where the material's d is below 1, else 0)

of animations:
  times = [1500, 900, ...]     milliseconds to show each key frame, or one number for all (default 500)
  loop, ping_pong, playing, backwards = true or false (default: it plays and loops)
  frame_names = ["...", ...]   (default: the files' names)
  parameter = NUMBER           kept with the animation, as is its timing graph:
  graph = { resolution = 0, scale = 1000, positions = [], values = [], flag_a = false, flag_b = false,
            tension = 0.3, samples = 16 }

at the top:
  scramble = true

examples:
  tamb-pack build show.toml tamb.dat
  tamb-pack build show.toml tamb.dat --files art --names show_entries.h
)";

int localRunBuild(const Arguments& arguments) {
    Manifest manifest;
    Plan plan;
    MemoryPackage package;
    std::string error, header;
    if (!ReadManifest(arguments.words[0], arguments.Value("--files"), &manifest, &error) ||
        !MakePlan(manifest, &plan, &error) ||
        (arguments.Has("--names") && !NamesHeader(plan.names, &header, &error)) ||
        !MakeContents(manifest, plan, !arguments.Has("--quiet"), &package, &error) ||
        !package.Save(arguments.words[1], manifest.scramble || arguments.Has("--scramble"), &error) ||
        (arguments.Has("--names") && !WriteWhole(arguments.Value("--names"), header, &error)))
        return Fail(error);
    return kExitGood;
}

constexpr OptionRule kNamesOptions[] = {{"--files", "a folder"}};

constexpr const char* kNamesHelp =
    R"(usage: tamb-pack names MANIFEST [HEADER] [options]

  --files FOLDER   what the manifest's files are relative to (default: the manifest's own folder)

Writes a C header with the number of every entry that has a name instead of an id, and of every
MTL file and picture that was packed because a model needs it:

  #define FXNAME_SHIP  100
  #define FXNAME_SHIP_MTL  101

The name is the last part of a path, in capitals, with . \ / blank + - ( ) [ ] as _.
Without HEADER it goes to the standard output.
)";

int localRunNames(const Arguments& arguments) {
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

const Command kBuildCommand = {
    "build", "makes a package from a manifest and its files", kBuildHelp, kBuildOptions, 2, 2, localRunBuild};
const Command kNamesCommand = {
    "names",      "writes a C header with the numbers of named entries", kNamesHelp, kNamesOptions, 1, 2,
    localRunNames};
