// The bird that the sheet is folded into, and how it unfolds again.
#pragma once

#include "noise.h"

// Lengths are half screen heights: the screen is kAspect wide to either side and 1 high up and down. x is to
// the right, y upwards, z towards the viewer.
constexpr float kAspect = 16.0f / 9.0f;

// The sheet's patches, cut apart while it is not whole: cells of a grid that share no corners with their
// neighbours. Rows of patches are folded against each other in the wings, columns in the tail.
constexpr int kPatchColumns = 32;
constexpr int kPatchRows = 18;
constexpr int kBodyColumns = 8;

// A place on the sheet: s from -1 at the left to 1 at the right, t from -1 at the bottom to 1 at the top, and
// the patch that it is a corner of.
struct SheetPlace {
    float s, t;
    int column, row; // row 0 is at the bottom
};

// Angles are degrees.
struct BirdPose {
    float yaw = 0;       // 0: seen from its right, flying to the right; 90: flying towards the viewer
    float elevation = 0; // of the viewer; 90: seen from above
    float roll = 0;      // about its own axis, the left wing upwards
    float open = 0;      // of the wings: 0 folded along the body, 1 spread
    float dihedral = 0;  // of the spread wings above the level, at the shoulder
    float bend = 0;      // more of it at the tips
    float neck = 0;      // 0 stretched, 1 raised
    float wingSheet = 0; // 0 wing, 1 a part of the flat sheet
    float bodySheet = 0; // the same for head, body and tail
    float curl = 0;      // of the unfolding sheet's sides towards the viewer
    float size = 1;
    float x = 0;
    float y = 0;
};

// Where the place is in this pose. With both sheets at 1, no curl and seen from above it is the place on the
// screen.
Vec3 BirdPoint(const SheetPlace& place, const BirdPose& pose);
// Patches of head, body and tail, as opposed to the wings.
constexpr bool IsBodyPatch(int column) {
    return column >= (kPatchColumns - kBodyColumns) / 2 && column < (kPatchColumns + kBodyColumns) / 2;
}
