// What each entry of a package is taken for.
#pragma once

#include "pack/entry_kind.h"

#include <vector>

// By place in the package's table. The first of these that says something: a picture by its type; a model or
// an animation by its magic word; what another entry names it for; what the show asks its number for; what
// all of it has the shape of. Only a type makes a picture.
std::vector<EntryKind> KindsOf(const FXPackage& package);
// Of the first entry with that number, which must be there.
EntryKind KindOf(const FXPackage& package, int id);
