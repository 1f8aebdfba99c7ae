// What whirls before there is a bird: shards of the sheet and the embers ahead of them. Times are seconds
// since the morph began.
#pragma once

#include "models/morph_bird.h"
#include "models/morph_sheet.h"

class MeshBuilder;

// Moves the corners from the bird, where they are given, to where the shards still are at this time.
void ScatterShards(SheetCorners* corners, float seconds, Vec3 centre);

constexpr int kEmbers = 400;
// Appends the embers facing the viewer, drawn out along their way; spent ones are points behind the sheet.
void AddEmbers(MeshBuilder* mesh, float seconds, Vec3 centre);
// All embers as points behind the flat sheet.
void AddSpentEmbers(MeshBuilder* mesh);
// The scene takes every texture coordinate of the morph from where its last key frame has the corner on the
// screen. So there each ember is a square across the whole screen, so far behind that nothing of it is drawn,
// and one that is a point, as far in front, keeps the middle of the model where it was.
void AddEmbersForTexture(MeshBuilder* mesh);
