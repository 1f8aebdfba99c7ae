#include "pack/entry_check.h"

#include "pack/text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

bool localStartsWith(const FXPackageData& data, const char* magic) {
    return data.size >= 8 && data.start[0] == 4 && std::memcmp(data.start + 1, "\0\0\0", 3) == 0 &&
           std::memcmp(data.start + 4, magic, 4) == 0;
}

std::string localMesh(int i) {
    return "mesh " + std::to_string(i);
}

// A mesh takes this many bytes at least.
constexpr int kMeshBytes = 28;

bool localReadModelMeshes(RecordReader* reader, int count, EntryFacts* facts) {
    MapCounts counts = {};
    if (facts->version == 3 && !ReadVectorMap(reader, "the vector map", &counts))
        return false;
    for (int i = 0; i < count; ++i) {
        MeshFacts mesh;
        PoolNumbers numbers;
        const bool read = facts->version == 2
                              ? ReadFullMesh(reader, localMesh(i), &mesh)
                              : ReadPackedMesh(reader, localMesh(i), &mesh) &&
                                    ReadPool(reader, localMesh(i), mesh, &numbers) &&
                                    CheckNumbers(reader, localMesh(i), numbers, "the vector map", counts);
        facts->meshes.push_back(mesh);
        if (!read)
            return false;
    }
    return true;
}

bool localReadGraph(RecordReader* reader) {
    int number = 0;
    float tension = 0;
    std::vector<int> positions, values;
    if (!reader->Int("the graph's resolution", &number) || !reader->Int("the graph's scale", &number) ||
        !reader->Ints("position", "the graph", &positions))
        return false;
    const int at = reader->Offset();
    if (!reader->Ints("value", "the graph", &values) || !reader->Flag("the graph's first flag") ||
        !reader->Flag("the graph's second flag") || !reader->Float("the graph's tension", &tension) ||
        !reader->Int("the graph's samples", &number))
        return false;
    if (positions.size() != values.size())
        reader->Warn(at, Text("the graph has %zu positions, but %zu values: the show uses neither",
                              positions.size(), values.size()));
    return true;
}

bool localReadAnimationHead(RecordReader* reader, EntryFacts* facts) {
    int frames = 0;
    if (!reader->Count("key frames", 4, &frames))
        return false;
    for (int i = 0; i < frames; ++i) {
        std::string name;
        if (!reader->String(Text("the name of key frame %d", i), &name))
            return false;
        facts->frames.push_back(name);
    }
    const int at = reader->Offset();
    std::vector<int> times;
    float parameter = 0;
    if (!reader->Ints("time", "the animation", &times) || !localReadGraph(reader) ||
        !reader->Float("the parameter", &parameter))
        return false;
    for (const char* flag : {"playing", "backwards", "loop", "ping-pong"})
        if (!reader->Flag(std::string("the flag ") + flag))
            return false;
    return static_cast<int>(times.size()) == frames ||
           reader->Fail(at, Text("there are %zu times for %d key frames: the show plays by the times",
                                 times.size(), frames));
}

bool localReadAnimationMeshes(RecordReader* reader, EntryFacts* facts) {
    int meshes = 0;
    const int at = reader->Offset();
    if (!reader->Int("the number of meshes", &meshes) || !reader->String("the library", &facts->library))
        return false;
    if (meshes < 0 || meshes > reader->Left() / kMeshBytes)
        return reader->Fail(at, Text("the number of meshes is %d, but the %d bytes left hold 0 to %d", meshes,
                                     reader->Left(), reader->Left() / kMeshBytes));
    FXLoadBudget budget;
    budget.TakeFrames(static_cast<int>(facts->frames.size()));
    facts->meshes.resize(static_cast<std::size_t>(meshes));
    std::vector<PoolNumbers> numbers(facts->meshes.size());
    for (int i = 0; i < meshes; ++i) {
        MeshFacts& mesh = facts->meshes[static_cast<std::size_t>(i)];
        if (!ReadPackedMesh(reader, localMesh(i), &mesh))
            return false;
        budget.TakeMesh(std::min(mesh.vertices, mesh.corners), mesh.corners);
    }
    if (budget.IsExceeded())
        return reader->Fail(at, RefusalText("its meshes", budget));
    for (int i = 0; i < meshes; ++i) {
        const auto m = static_cast<std::size_t>(i);
        if (!ReadPool(reader, localMesh(i), facts->meshes[m], &numbers[m]))
            return false;
    }
    for (std::size_t f = 0; f < facts->frames.size(); ++f) {
        const std::string map = Text("the vector map of key frame %zu", f);
        MapCounts counts = {};
        if (!ReadVectorMap(reader, map, &counts))
            return false;
        for (int i = 0; i < meshes; ++i)
            if (!CheckNumbers(reader, localMesh(i), numbers[static_cast<std::size_t>(i)], map, counts))
                return false;
    }
    return true;
}

} // namespace

void CheckModel(const FXPackageData& data, Faults* faults, EntryFacts* facts) {
    RecordReader reader(data, faults);
    std::string magic;
    int count = 0;
    if (!reader.String("the magic word", &magic))
        return;
    if (magic != "om02" && magic != "om03") {
        reader.Fail(4, "it begins with '" + magic + "', but a model begins with om02 or om03");
        return;
    }
    facts->version = magic == "om02" ? 2 : 3;
    if (reader.String("the name", &facts->name) && reader.String("the library", &facts->library) &&
        reader.Count("meshes", kMeshBytes, &count) && localReadModelMeshes(&reader, count, facts))
        reader.End();
}

void CheckAnimation(const FXPackageData& data, Faults* faults, EntryFacts* facts) {
    RecordReader reader(data, faults);
    facts->version = localStartsWith(data, "oa03") ? 3 : 2;
    std::string magic;
    if (facts->version == 3)
        reader.String("the magic word", &magic);
    if (localReadAnimationHead(&reader, facts) &&
        (facts->version == 2 || localReadAnimationMeshes(&reader, facts)))
        reader.End();
}

void CheckLibrary(const FXPackageData& data, Faults* faults, EntryFacts* facts) {
    constexpr int kMaterialBytes = 8 + 17 * 4;
    RecordReader reader(data, faults);
    int count = 0;
    if (!reader.String("the name", &facts->name) || !reader.Count("materials", kMaterialBytes, &count))
        return;
    for (int i = 0; i < count; ++i) {
        MaterialFacts material;
        const std::string which = Text("material %d", i);
        float number = 0;
        if (!reader.String("the name of " + which, &material.name) ||
            !reader.String("the picture of " + which, &material.picture))
            return;
        for (const char* color : {"ambient", "diffuse", "specular", "emission"})
            if (!reader.Floats(Text("the %s colour of ", color) + which, 4))
                return;
        if (!reader.Float("the shininess of " + which, &number))
            return;
        facts->materials.push_back(material);
    }
    reader.End();
}

void CheckMatrix(const FXPackageData& data, Faults* faults) {
    RecordReader reader(data, faults);
    for (int column = 0; column < 4; ++column)
        if (!reader.Floats(Text("column %d", column), 4))
            return;
    reader.End();
}

void CheckPhaser(const FXPackageData& data, Faults* faults) {
    RecordReader reader(data, faults);
    float phase = 0;
    double duration = 0;
    if (!reader.Float("the phase", &phase) || !reader.Double("the duration", &duration))
        return;
    for (const char* flag : {"running", "reverse", "loop", "ping-pong", "smooth", "half smooth"})
        if (!reader.Flag(std::string("the flag ") + flag))
            return;
    reader.End();
}

std::string RefusalText(const std::string& what, const FXLoadBudget& budget) {
    return "the show leaves " + what + " out: " + budget.Describe().text;
}

std::optional<EntryKind> KindByMark(const FXPackageData& data, int type) {
    if (FindPictureType(type) != nullptr)
        return EntryKind::Picture;
    if (localStartsWith(data, "om02") || localStartsWith(data, "om03"))
        return EntryKind::Model;
    if (localStartsWith(data, "oa03"))
        return EntryKind::Animation;
    return std::nullopt;
}

EntryKind KindByShape(const FXPackageData& data) {
    for (const EntryKind kind :
         {EntryKind::Animation, EntryKind::Library, EntryKind::Phaser, EntryKind::Matrix}) {
        Faults faults;
        EntryFacts facts;
        CheckEntry(kind, data, &faults, &facts);
        if (faults.all.empty())
            return kind;
    }
    return EntryKind::Raw;
}

void CheckEntry(EntryKind kind, const FXPackageData& data, Faults* faults, EntryFacts* facts) {
    switch (kind) {
    case EntryKind::Model:
        return CheckModel(data, faults, facts);
    case EntryKind::Animation:
        return CheckAnimation(data, faults, facts);
    case EntryKind::Library:
        return CheckLibrary(data, faults, facts);
    case EntryKind::Matrix:
        return CheckMatrix(data, faults);
    case EntryKind::Phaser:
        return CheckPhaser(data, faults);
    case EntryKind::Picture:
    case EntryKind::Raw:
        return;
    }
}

std::vector<Reference> ReferencesOf(const EntryFacts& facts) {
    std::vector<Reference> all;
    for (std::size_t f = 0; f < facts.frames.size() && facts.version == 2; ++f)
        all.push_back({facts.frames[f], EntryKind::Model, Text("key frame %zu", f)});
    for (const MaterialFacts& material : facts.materials)
        if (!material.picture.empty())
            all.push_back({material.picture, EntryKind::Picture, "the picture of material " + material.name});
    if (!facts.library.empty())
        all.push_back({facts.library, EntryKind::Library, "the library"});
    return all;
}

std::optional<int> ReferenceNumber(const std::string& text) {
    int number = 0;
    return std::sscanf(text.c_str(), "%d", &number) == 1 ? std::optional(number) : std::nullopt;
}

int EntryNumber(const std::string& text) {
    const auto number = ReferenceNumber(text);
    return number && *number >= 0 && std::to_string(*number) == text ? *number : -1;
}
