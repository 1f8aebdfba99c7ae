#include "pack/entry_check.h"

#include "anim/morph_animation.h"
#include "image/material_library.h"
#include "pack/shape_records.h"
#include "pack/text.h"
#include "render/matrix.h"
#include "scene/phaser.h"

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

// The parts of a model.
struct ModelChecker {
    bool Begin() const { return true; }
    bool Mesh(int i) const { return ReadFullMesh(&reader, localMesh(i), &facts.meshes.emplace_back()); }
    bool Map() { return ReadVectorMap(&reader, "the vector map", &counts); }
    bool PackedMesh(int i) const {
        return ReadPackedMesh(&reader, localMesh(i), &facts.meshes.emplace_back());
    }
    bool Pool(int i) const {
        PoolNumbers numbers;
        return ReadPool(&reader, localMesh(i), facts.meshes.back(), &numbers) &&
               CheckNumbers(&reader, localMesh(i), numbers, "the vector map", counts);
    }

    ShapeReader& reader;
    EntryFacts& facts;
    FXStr name = {};
    FXStr library = {};
    int count = 0;
    MapCounts counts = {};
};

void localCheckModel(ShapeReader* reader, EntryFacts* facts) {
    FXStr magic;
    if (!reader->String("the magic word", magic))
        return;
    const bool isVersion2 = magic.Compare(FXModel::kVersion2);
    if (!isVersion2 && !magic.Compare(FXModel::kVersion3)) {
        reader->Fail(4, Text("it begins with '%s', but a model begins with om02 or om03", magic.text));
        return;
    }
    facts->version = isVersion2 ? 2 : 3;
    ModelChecker checker = {*reader, *facts};
    if (isVersion2 ? FXModel::Fields_v02(checker, *reader) : FXModel::Fields_v03(checker, *reader))
        reader->End();
    facts->name = checker.name.text;
    facts->library = checker.library.text;
}

// The parts of an animation.
struct AnimationChecker {
    bool Begin() {
        budget.TakeFrames(frames);
        return true;
    }
    bool PackedMesh(int i) {
        MeshFacts& mesh = facts.meshes.emplace_back();
        if (!ReadPackedMesh(&reader, localMesh(i), &mesh))
            return false;
        budget.TakeMesh(std::min(mesh.vertices, mesh.corners), mesh.corners);
        return true;
    }
    bool Pools() const {
        return !budget.IsExceeded() || reader.Fail(reader.Offset(), RefusalText("its meshes", budget));
    }
    bool Pool(int i) {
        return ReadPool(&reader, localMesh(i), facts.meshes[static_cast<std::size_t>(i)],
                        &numbers.emplace_back());
    }
    bool Map(int f) const {
        const std::string map = Text("the vector map of key frame %d", f);
        MapCounts counts = {};
        return ReadVectorMap(&reader, map, &counts) && reader.Each(count, [&](int i) {
            return CheckNumbers(&reader, localMesh(i), numbers[static_cast<std::size_t>(i)], map, counts);
        });
    }

    ShapeReader& reader;
    EntryFacts& facts;
    int frames;
    int count = 0; // of meshes
    FXStr library = {};
    FXLoadBudget budget = {};
    std::vector<PoolNumbers> numbers = {};
};

bool localReadAnimationHead(ShapeReader* reader, EntryFacts* facts) {
    FXAnim head;
    const bool read = FXAnim::Fields_v02(head, *reader);
    for (int i = 0; i < head.frameNames.count; ++i)
        facts->frames.emplace_back(head.frameNames.Get(i));
    if (!read)
        return false;
    const FXBezierGraph& graph = head.graph;
    if (graph.positions.count != graph.values.count)
        reader->Warn(reader->OffsetOf("value"),
                     Text("the graph has %d positions, but %d values: the show uses neither",
                          graph.positions.count, graph.values.count));
    return head.frameTimes.count == head.frameNames.count ||
           reader->Fail(reader->OffsetOf("time"),
                        Text("there are %d times for %d key frames: the show plays by the times",
                             head.frameTimes.count, head.frameNames.count));
}

void localCheckAnimation(ShapeReader* reader, bool isVersion3, EntryFacts* facts) {
    facts->version = isVersion3 ? 3 : 2;
    FXStr magic;
    if (isVersion3 && !reader->String("the magic word", magic))
        return;
    if (!localReadAnimationHead(reader, facts))
        return;
    AnimationChecker checker = {*reader, *facts, static_cast<int>(facts->frames.size())};
    if (!isVersion3 || FXAnim::Fields_v03(checker, *reader))
        reader->End();
    facts->library = checker.library.text;
}

// The materials of a library.
struct LibraryChecker {
    bool Begin() const { return true; }
    bool Material(int i) const {
        FXMaterial material;
        reader.Of(Text("material %d", i));
        const bool read = FXMaterial::Fields(material, reader);
        if (read)
            facts.materials.push_back({material.name.text, material.texRef.text});
        return read;
    }

    ShapeReader& reader;
    EntryFacts& facts;
    FXStr name = {};
    int count = 0;
};

void localCheckLibrary(ShapeReader* reader, EntryFacts* facts) {
    LibraryChecker checker = {*reader, *facts};
    if (FXMatlib::Fields(checker, *reader))
        reader->End();
    facts->name = checker.name.text;
}

template <class Record> void localCheckRecord(ShapeReader* reader) {
    Record record;
    if (Record::Fields(record, *reader))
        reader->End();
}

} // namespace

std::string RefusalText(const std::string& what, const FXLoadBudget& budget) {
    return "the show leaves " + what + " out: " + budget.Describe().text;
}

std::optional<EntryKind> KindByMark(const FXPackageData& data, int type) {
    if (FindPictureType(type) != nullptr)
        return EntryKind::Picture;
    if (localStartsWith(data, FXModel::kVersion2) || localStartsWith(data, FXModel::kVersion3))
        return EntryKind::Model;
    if (localStartsWith(data, FXAnim::kVersion3))
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
    ShapeReader reader(data, faults);
    switch (kind) {
    case EntryKind::Model:
        return localCheckModel(&reader, facts);
    case EntryKind::Animation:
        return localCheckAnimation(&reader, localStartsWith(data, FXAnim::kVersion3), facts);
    case EntryKind::Library:
        return localCheckLibrary(&reader, facts);
    case EntryKind::Matrix:
        return localCheckRecord<FXMatrix>(&reader);
    case EntryKind::Phaser:
        return localCheckRecord<FXPhaser>(&reader);
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
