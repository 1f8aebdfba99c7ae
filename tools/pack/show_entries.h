// What the scene asks a package for.
#pragma once

#include "pack/entry_kind.h"

#include <span>

struct ShowEntry {
    int id;
    EntryKind kind;
    const char* what; // "the medallion"
};
std::span<const ShowEntry> ShowEntries();
