// What a package is to be made of, as its manifest says: a TOML file with an [[entry]] for each entry.
#pragma once

#include "pack/entry_kind.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

// Another entry of the manifest, by its number or its name.
struct EntryReference {
    int id = -1;
    std::string name;

    bool Given() const { return id >= 0 || !name.empty(); }
};

struct AnimationSettings {
    std::vector<std::string> frameFiles;      // of version 3: a Wavefront OBJ per key frame
    std::vector<EntryReference> frameEntries; // of version 2: a model's entry per key frame
    std::vector<std::string> frameNames;      // of version 3; empty: the files' names
    std::vector<int> times;                   // milliseconds, one for each key frame
    bool playing = true, backwards = false, loop = true, pingPong = false;
    float parameter = 0;
    int graphResolution = 0, graphScale = 1000, graphSamples = 16;
    std::vector<int> graphPositions, graphValues;
    std::array<bool, 2> graphFlags = {};
    float graphTension = 0.3f;
};

struct PhaserSettings {
    float phase = 0;
    double duration = 1;
    bool running = true, reverse = false, loop = true, pingPong = false, smooth = false, smoothHalf = false;
};

struct ManifestEntry {
    int line = 0;
    int id = -1;      // -1: the next free number, which stands for the name
    std::string name; // of an entry without a number
    EntryKind kind = EntryKind::Raw;
    std::string file;        // picture, model (OBJ), library (MTL) or raw bytes
    std::optional<int> type; // as stored; without it, what the file's ending says
    // Models and animations: the library; without one, the MTL file that the OBJ file names.
    EntryReference library;
    int version = 3;                 // of a model's format
    std::map<std::string, int> draw; // how meshes are drawn, by their material; "": all others
    AnimationSettings animation;
    std::array<float, 16> matrix = {};
    PhaserSettings phaser;
};

struct Manifest {
    std::string file;
    std::string folder; // that the entries' files are relative to
    bool scramble = false;
    std::vector<ManifestEntry> entries;

    // "FILE:LINE: "
    std::string Where(int line) const { return file + ":" + std::to_string(line) + ": "; }
};

// Files are relative to `folder`, or when that is empty to the manifest's own. False with a line in `error`
// that begins with FILE:LINE.
bool ReadManifest(const std::string& file, const std::string& folder, Manifest* manifest, std::string* error);
