// The sheet's mesh: its patches, their triangles, and the light on them.
#pragma once

#include "models/morph_bird.h"

#include <vector>

class MeshBuilder;

// Every patch is a square of kPatchSide * kPatchSide corners of its own.
constexpr int kPatchSide = 3;
constexpr int kPatchCorners = kPatchSide * kPatchSide;
constexpr int kPatches = kPatchColumns * kPatchRows;

// Where all corners are, in half screen heights: patch after patch, by rows from the bottom, and within a
// patch by rows from the top.
using SheetCorners = std::vector<Vec3>;
// The corner's place on the sheet.
SheetPlace PlaceOf(int patch, int corner);

// Appends the corners as a mesh of the scene, where the screen is -1..1 both ways. Patches that touch shade
// as one surface unless a fold between them is sharp.
void AddSheet(MeshBuilder* mesh, const SheetCorners& corners);
// The sheet as it lies before the desktop: exactly flat and exactly filling the screen.
void AddFlatSheet(MeshBuilder* mesh);
