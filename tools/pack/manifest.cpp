#include "pack/manifest.h"

#include "base/whole_file.h"
#include "pack/toml_table.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr std::pair<const char*, EntryKind> kKindKeys[] = {
    {"picture", EntryKind::Picture}, {"model", EntryKind::Model},
    {"library", EntryKind::Library}, {"animation", EntryKind::Animation},
    {"matrix", EntryKind::Matrix},   {"phaser", EntryKind::Phaser},
    {"raw", EntryKind::Raw}};

// The entry that holds something may name another one.
bool localTakeReference(const toml::node& node, EntryReference* reference) {
    if (const auto id = node.value_exact<std::int64_t>(); id && *id >= 0 && *id <= INT32_MAX)
        reference->id = static_cast<int>(*id);
    else if (const auto name = node.value_exact<std::string>())
        reference->name = *name;
    return reference->Given();
}

void localReadReference(TomlTable* table, const char* key, EntryReference* reference) {
    const toml::node* node = table->Take(key);
    if (node != nullptr && !localTakeReference(*node, reference))
        table->Fail(*node, std::string(key) + " must be another entry's number or name");
}

bool localReadDrawClass(const toml::node& node, int* value) {
    const auto number = node.value_exact<std::int64_t>();
    if (!number || *number < 0 || *number > 2)
        return false;
    *value = static_cast<int>(*number);
    return true;
}

// A number for all meshes, or a table by material.
void localReadDraw(TomlTable* table, std::map<std::string, int>* draw) {
    constexpr const char* kWanted =
        "draw must be 0 (opaque), 1 (in two passes) or 2 (without depth first), or a "
        "table of these by material";
    const toml::node* node = table->Take("draw");
    if (node == nullptr)
        return;
    const toml::table* byMaterial = node->as_table();
    if (byMaterial == nullptr && !localReadDrawClass(*node, &(*draw)[""]))
        return table->Fail(*node, kWanted);
    if (byMaterial != nullptr)
        for (const auto& [material, value] : *byMaterial)
            if (!localReadDrawClass(value, &(*draw)[std::string(material.str())]))
                return table->Fail(value, kWanted);
}

void localReadFrames(TomlTable* table, const toml::node& node, AnimationSettings* animation) {
    const toml::array* frames = node.as_array();
    if (frames == nullptr || frames->empty())
        return table->Fail(
            node, "animation must be a list of OBJ files, or of models' numbers, one for each key frame");
    if (frames->front().is_string())
        return table->Read("animation", &animation->frameFiles);
    for (const toml::node& frame : *frames) {
        EntryReference reference;
        if (!frame.is_integer() || !localTakeReference(frame, &reference))
            return table->Fail(frame, "animation must be OBJ files alone, or models' numbers alone");
        animation->frameEntries.push_back(reference);
    }
}

// One time serves for all key frames.
void localReadTimes(TomlTable* table, std::size_t frames, std::vector<int>* times) {
    const toml::node* node = table->Take("times");
    if (node != nullptr && node->is_array()) {
        table->Read("times", times);
        if (times->size() != frames)
            table->Fail(*node, Text("times has %zu numbers for %zu key frames", times->size(), frames));
        return;
    }
    int all = 500;
    table->Read("times", &all);
    times->assign(frames, all);
}

void localReadGraph(TomlTable* table, const std::string& file, std::string* problem,
                    AnimationSettings* animation) {
    const toml::node* node = table->Take("graph");
    if (node == nullptr)
        return;
    if (!node->is_table())
        return table->Fail(*node, "graph must be a table, in { }");
    TomlTable graph(*node->as_table(), file, problem);
    graph.Read("resolution", &animation->graphResolution);
    graph.Read("scale", &animation->graphScale);
    graph.Read("positions", &animation->graphPositions);
    graph.Read("values", &animation->graphValues);
    graph.Read("flag_a", &animation->graphFlags[0]);
    graph.Read("flag_b", &animation->graphFlags[1]);
    graph.Read("tension", &animation->graphTension);
    graph.Read("samples", &animation->graphSamples);
    graph.Finish();
    if (animation->graphPositions.size() != animation->graphValues.size())
        graph.Fail(*node, "graph must have as many values as positions");
}

class EntryReader {
public:
    EntryReader(const toml::table& table, const Manifest& manifest, std::string* problem)
        : table_(table, manifest.file, problem), manifest_(manifest), problem_(problem) {}

    ManifestEntry Read() {
        entry_.line = table_.Line();
        ReadNumber();
        ReadKind();
        if (table_.Good())
            ReadSettings();
        table_.Finish();
        return entry_;
    }

private:
    void ReadNumber() {
        table_.Read("id", &entry_.id);
        table_.Read("name", &entry_.name);
        if (table_.Has("id") && entry_.id < 0)
            table_.Fail(entry_.line, "id must be 0 or more");
        if (table_.Has("id") == table_.Has("name") || (table_.Has("name") && entry_.name.empty()))
            table_.Fail(entry_.line, "an entry has either an id, or a name and with it the next free number");
    }

    void ReadKind() {
        // Models and animations name their library by the key that makes other entries one.
        const bool hasLibrary = table_.Has("model") || table_.Has("animation");
        int kinds = 0;
        for (const auto& [key, kind] : kKindKeys) {
            if (!table_.Has(key) || (kind == EntryKind::Library && hasLibrary))
                continue;
            entry_.kind = kind;
            ++kinds;
        }
        if (kinds != 1)
            table_.Fail(entry_.line,
                        "an entry is one of: picture, model, library, animation, matrix, phaser, raw");
    }

    std::string Path(const std::string& file) const {
        return (fs::path(manifest_.folder) / file).lexically_normal().string();
    }

    void ReadFile(const char* key) {
        table_.Read(key, &entry_.file);
        if (table_.Good() && entry_.file.empty())
            table_.Fail(entry_.line, std::string(key) + " must name a file");
        entry_.file = Path(entry_.file);
    }

    void ReadSettings() {
        switch (entry_.kind) {
        case EntryKind::Picture:
            return ReadPicture();
        case EntryKind::Raw:
            ReadFile("raw");
            entry_.type = kRaw;
            return ReadType();
        case EntryKind::Library:
            return ReadFile("library");
        case EntryKind::Model:
            ReadFile("model");
            table_.Read("version", &entry_.version);
            if (entry_.version != 2 && entry_.version != 3)
                table_.Fail(entry_.line, "version must be 2 or 3");
            return ReadLooks();
        case EntryKind::Animation:
            return ReadAnimation();
        case EntryKind::Matrix:
            return ReadMatrix();
        case EntryKind::Phaser:
            return ReadPhaser();
        }
    }

    void ReadLooks() {
        localReadReference(&table_, "library", &entry_.library);
        localReadDraw(&table_, &entry_.draw);
    }

    void ReadType() {
        if (!table_.Has("type"))
            return;
        int type = kRaw;
        table_.Read("type", &type);
        entry_.type = type;
    }

    void ReadPicture() {
        ReadFile("picture");
        const FXPictureEnding* type = FindPictureEnding(entry_.file);
        if (type != nullptr)
            entry_.type = type->type;
        ReadType();
        if (!entry_.type)
            table_.Fail(entry_.line, entry_.file + kNoPictureEnding);
    }

    void ReadAnimation() {
        AnimationSettings& a = entry_.animation;
        localReadFrames(&table_, *table_.Take("animation"), &a);
        for (std::string& file : a.frameFiles)
            file = Path(file);
        const std::size_t frames = a.frameFiles.size() + a.frameEntries.size();
        localReadTimes(&table_, frames, &a.times);
        for (const auto& [key, flag] : {std::pair{"playing", &a.playing},
                                        {"backwards", &a.backwards},
                                        {"loop", &a.loop},
                                        {"ping_pong", &a.pingPong}})
            table_.Read(key, flag);
        table_.Read("parameter", &a.parameter);
        localReadGraph(&table_, manifest_.file, problem_, &a);
        if (!a.frameEntries.empty())
            return;
        table_.Read("frame_names", &a.frameNames);
        if (!a.frameNames.empty() && a.frameNames.size() != frames)
            table_.Fail(entry_.line,
                        Text("frame_names has %zu texts for %zu key frames", a.frameNames.size(), frames));
        ReadLooks();
    }

    void ReadMatrix() {
        std::vector<float> numbers;
        table_.Read("matrix", &numbers);
        if (numbers.size() == entry_.matrix.size())
            std::ranges::copy(numbers, entry_.matrix.begin());
        else
            table_.Fail(entry_.line, "matrix must be a list of 16 numbers, column after column");
    }

    void ReadPhaser() {
        const toml::node* node = table_.Take("phaser");
        if (!node->is_table())
            return table_.Fail(*node, "phaser must be a table, in { }");
        TomlTable phaser(*node->as_table(), manifest_.file, problem_);
        PhaserSettings& p = entry_.phaser;
        phaser.Read("phase", &p.phase);
        phaser.Read("duration", &p.duration);
        for (const auto& [key, flag] : {std::pair{"running", &p.running},
                                        {"reverse", &p.reverse},
                                        {"loop", &p.loop},
                                        {"ping_pong", &p.pingPong},
                                        {"smooth", &p.smooth},
                                        {"smooth_half", &p.smoothHalf}})
            phaser.Read(key, flag);
        phaser.Finish();
    }

    TomlTable table_;
    const Manifest& manifest_;
    std::string* problem_;
    ManifestEntry entry_;
};

void localCheckNumbers(const Manifest& manifest, std::string* error) {
    std::map<std::string, int> seen; // number or name: line
    for (const ManifestEntry& entry : manifest.entries) {
        const std::string key =
            entry.id >= 0 ? "the id " + std::to_string(entry.id) : "the name " + entry.name;
        const auto [first, isNew] = seen.emplace(key, entry.line);
        if (!isNew && error->empty())
            *error = manifest.Where(entry.line) + "the entry of line " + std::to_string(first->second) +
                     " has " + key + " already";
    }
}

} // namespace

bool ReadManifest(const std::string& file, const std::string& folder, Manifest* manifest,
                  std::string* error) {
    manifest->file = file;
    manifest->folder = folder.empty() ? fs::path(file).parent_path().string() : folder;
    std::string text;
    if (!fxReadWhole(file, &text, error))
        return false;
    const toml::parse_result parsed = toml::parse(text, file);
    if (!parsed) {
        *error = manifest->Where(static_cast<int>(parsed.error().source().begin.line)) +
                 std::string(parsed.error().description());
        return false;
    }
    error->clear();
    TomlTable top(parsed.table(), manifest->file, error);
    top.Read("scramble", &manifest->scramble);
    if (const toml::node* entries = top.Take("entry"); entries != nullptr) {
        if (!entries->is_array_of_tables())
            top.Fail(*entries, "entries begin with [[entry]]");
        else
            for (const toml::node& entry : *entries->as_array())
                manifest->entries.push_back(EntryReader(*entry.as_table(), *manifest, error).Read());
    }
    top.Finish();
    localCheckNumbers(*manifest, error);
    return error->empty();
}
