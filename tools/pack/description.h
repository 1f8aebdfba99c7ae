// A line about an entry, for a person.
#pragma once

#include "pack/entry_kind.h"

#include <string>

struct Description {
    std::string kind; // "png", "model" ...: one word
    std::string contents;
};

// Of the entry at that place of the package's table, of that kind, as the show's own readers see it. Pictures
// need the codec to be loaded; without it nothing is said about them.
Description Describe(FXPackage* package, int index, EntryKind kind);
