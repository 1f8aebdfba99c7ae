// The sheet's mesh: its patches, their triangles, and the light on them.
#pragma once

#include "models/morph_bird.h"

#include <vector>

class MeshBuilder;

constexpr int kPatches = kPatchColumns * kPatchRows;

// Every patch is a rectangle with corners of its own: four, and two in the middle of its sides. In the wings
// those are on the sides along the pleats, in the body on those along the spine.
constexpr int kPatchCorners = 6;

// Where all corners are, in half screen heights: patch after patch, by rows from the bottom.
using SheetCorners = std::vector<Vec3>;
// The corner's place on the sheet, and that of the patch's middle.
SheetPlace PlaceOf(int patch, int corner);
SheetPlace MiddleOf(int patch);

// operation(patch, corner of the patch) for all of them.
template <class Operation> void ForEachCorner(Operation operation) {
    for (int patch = 0; patch < kPatches; ++patch)
        for (int corner = 0; corner < kPatchCorners; ++corner)
            operation(patch, corner);
}

// Appends the corners as a mesh of the scene, where the screen is -1..1 both ways. Patches that touch shade
// as one surface unless a fold between them is sharp.
void AddSheet(MeshBuilder* mesh, const SheetCorners& corners);
// The sheet as it lies before the desktop: exactly flat and exactly filling the screen.
void AddFlatSheet(MeshBuilder* mesh);
