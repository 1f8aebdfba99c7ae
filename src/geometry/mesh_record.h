// What is stored of a mesh.
#pragma once

#include "geometry/vertex.h"
#include "package/record.h"

// The arrays lie where they were read, or where the mesh has them.
struct FXMeshRecord {
    // A whole mesh.
    template <class Self, class V> static bool Fields(Self& self, V& v) {
        return HeadFields(self, v) && v.Elements("vertex", "vertices of", self.vertices) &&
               v.Elements("corner", "corners of", self.corners);
    }
    // A packed one, whose corners are in a pool.
    template <class Self, class V> static bool PackedFields(Self& self, V& v) {
        return HeadFields(self, v) && v.Int("the number of vertices of", self.vertexCount) &&
               v.Int("the number of corners of", self.cornerCount);
    }

    FXStr material;
    float extentU = 0;
    float extentV = 0;
    int draw = 0; // FXMesh::transparent
    int colorMode = 0;
    FXStored<tagFXVertex> vertices;
    FXStored<int> corners;
    int vertexCount = 0; // the most that its corners make
    int cornerCount = 0;

private:
    template <class Self, class V> static bool HeadFields(Self& self, V& v) {
        return v.String("the material of", self.material) &&
               v.Float("the texture's extent u of", self.extentU) &&
               v.Float("the texture's extent v of", self.extentV) && v.Int("the way to draw", self.draw) &&
               v.Int("the colour mode of", self.colorMode) && v.Checked(self);
    }
};
