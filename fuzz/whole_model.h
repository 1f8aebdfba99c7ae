// What a model must be, whatever it was loaded from.
#pragma once

#include "geometry/mesh.h"
#include "geometry/model.h"
#include "work_file.h"

// Every index is below its mesh's vertex count.
inline void ExpectWhole(const FXModel& model) {
    for (const FXMesh* mesh : model.meshes)
        for (int i = 0; mesh != nullptr && i < mesh->indexCount; ++i)
            Expect(mesh->indices[i] >= 0 && mesh->indices[i] < mesh->vertexCount);
}
