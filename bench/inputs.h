// What the benchmarks work on, and the count of instructions.
#pragma once

#include "anim/morph_animation.h"
#include "geometry/mesh.h"

#include <string>

// Key frames of one mesh with moving vertices, prepared as the scene prepares them; at a segment with
// neighbours on both sides.
void PrepareMorph(FXAnim* animation, int vertices, bool linear);

// A sheet of squares with about that many indices; neighbours share their corners. With one position and one
// texture coordinate for all of them, only the normals tell vertices apart.
void MakeSheet(FXMesh* mesh, int indices, bool onePosition);

// Writes a package of about the given size, with a hundred entries of bytes that do not repeat, and gives its
// name. flags: as for FXPackage::Save. The caller removes it.
std::string MakePackage(int megabytes, int flags);
