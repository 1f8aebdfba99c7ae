// Whether an entry is whole, by kind, and what it names.
#pragma once

#include "pack/entry_kind.h"
#include "pack/faults.h"
#include "pack/shape_records.h"

#include <string>
#include <vector>

struct MaterialFacts {
    std::string name;
    std::string picture; // an entry's number, or empty
};

struct EntryFacts {
    int version = 0;     // of a model or animation
    std::string name;    // of a model or library
    std::string library; // that a model or animation names
    std::vector<MeshFacts> meshes;
    std::vector<std::string> frames; // an animation's
    std::vector<MaterialFacts> materials;
};

void CheckModel(const FXPackageData& data, Faults* faults, EntryFacts* facts);
void CheckAnimation(const FXPackageData& data, Faults* faults, EntryFacts* facts);
void CheckLibrary(const FXPackageData& data, Faults* faults, EntryFacts* facts);
void CheckMatrix(const FXPackageData& data, Faults* faults);
void CheckPhaser(const FXPackageData& data, Faults* faults);

// What the entry seems to hold: by its type, its first bytes, or because it is a whole record of that kind.
EntryKind KindOf(const FXPackageData& data, int type);
// As one of that kind. Pictures and raw bytes are taken as they are.
void CheckEntry(EntryKind kind, const FXPackageData& data, Faults* faults, EntryFacts* facts);

// An entry's number as records name it; -1 when the text is none.
int EntryNumber(const std::string& text);
