// Whether an entry is whole, by kind, and what it names.
#pragma once

#include "geometry/load_budget.h"
#include "pack/entry_kind.h"
#include "pack/faults.h"
#include "pack/shape_records.h"

#include <optional>
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

// What the entry holds by its type or its magic word; none when they do not say.
std::optional<EntryKind> KindByMark(const FXPackageData& data, int type);
// What kind of record all of it is, without a fault or a warning. Animations and libraries, whose counts must
// fit, come before what any numbers would make.
EntryKind KindByShape(const FXPackageData& data);
// Why something of it is left out: "the show leaves its meshes out: it takes ...".
std::string RefusalText(const std::string& what, const FXLoadBudget& budget);
// As one of that kind. Pictures and raw bytes are taken as they are.
void CheckEntry(EntryKind kind, const FXPackageData& data, Faults* faults, EntryFacts* facts);

// What the entry names.
struct Reference {
    std::string text;
    EntryKind kind;
    std::string what; // "the library"
};
std::vector<Reference> ReferencesOf(const EntryFacts& facts);

// The number that the show reads in what a record names; none when it reads none.
std::optional<int> ReferenceNumber(const std::string& text);
// The same of a plain number that is not below 0; else -1.
int EntryNumber(const std::string& text);
