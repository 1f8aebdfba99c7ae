// One vertex as drawn, and as written raw into model files: 76 bytes, little-endian.
//
// Positions are in the model's own units until it is fitted into -1..1 (FXMesh). `color` counts where the
// mesh has colorMode 1. `touched` is scratch: ComputeNormals, ExtendPositions and ApplyBumpMap set it to 1
// for a vertex of a face with a normal, or one they moved, ApplyBumpMap to 0 for one it did not move;
// ComputeNormals and Normalize look at it under onlyTouched; DiscardVertices leaves the vertex's new number
// in it. Nothing else clears it, and files hold whatever it was.
#pragma once

#include <cstdint>

struct tagFXVertex {
    template <class Self, class V> static bool Fields(Self& self, V& v) {
        return v.Floats("position of", self.pos, 3) && v.Floats("normal of", self.normal, 3) &&
               v.Floats("texture coordinate of", self.tex, 2) && v.Floats("colour of", self.color, 4) &&
               v.Unused("not drawn", sizeof self.normalSum + sizeof self.touched + sizeof self.objIndex);
    }

    float pos[3];
    float normal[3];
    float tex[2];
    float color[4];
    float normalSum[3]; // of the unit normals of the faces around it, as ComputeNormals left it
    std::int32_t touched;
    std::int32_t objIndex[3]; // position, normal and texture coordinate of the imported corner
};

static_assert(sizeof(tagFXVertex) == 76, "the record in model files");
