// Whether the entries of a package are whole, and what they name is there.
#pragma once

#include "pack/entry_check.h"

#include <functional>
#include <string>
#include <vector>

struct EntryFindings {
    int id = 0;
    EntryKind kind = EntryKind::Raw; // what it is, or is asked to be
    Faults faults;
};

// Decodes every picture, when the codec is loaded. Calls `done` after each entry. Of entries with the same
// number the first alone is looked at. The last findings, of id -1, are about what is missing.
std::vector<EntryFindings> CheckContents(FXPackage* package, const std::function<void()>& done);
