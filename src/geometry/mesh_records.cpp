// The two stored forms of a mesh: whole, and the header of a packed one.
#include "geometry/mesh.h"
#include "image/material.h"
#include "image/material_library.h"
#include "package/package_data.h"
#include "platform/trace.h"

#include <algorithm>

// Everything before the vertices.
void FXMesh::LoadHeadC(FXPackageData* d, FXMatlib* lib) {
    d->ReadString(&materialName);
    material = lib != nullptr ? lib->FindMaterial(materialName.text) : nullptr;
    loadedU = d->ReadFloat();
    loadedV = d->ReadFloat();
    transparent = d->ReadInt();
    colorMode = d->ReadInt();
}

bool FXMesh::IndicesFit() const {
    return std::all_of(indices, indices + indexCount, [this](int i) { return i >= 0 && i < vertexCount; });
}

void FXMesh::LoadMeshC(FXPackage*, FXPackageData* d, FXMatlib* lib) {
    LoadHeadC(d, lib);
    const int wantedVertices = d->ReadInt();
    // The counts are believed only as far as the bytes go.
    const bool haveVertices = wantedVertices >= 0 &&
                              wantedVertices <= d->left / static_cast<int>(sizeof *vertices) &&
                              Realloc(wantedVertices, 0) &&
                              d->ReadCopyBlc(vertices, wantedVertices * static_cast<int>(sizeof *vertices));
    const int wantedIndices = d->ReadInt();
    const bool haveIndices = wantedIndices >= 0 &&
                             wantedIndices <= d->left / static_cast<int>(sizeof *indices) && haveVertices &&
                             Realloc(wantedVertices, wantedIndices) &&
                             d->ReadCopyBlc(indices, wantedIndices * static_cast<int>(sizeof *indices));
    if (!haveIndices || !IndicesFit())
        vertexCount = indexCount = 0;
}

void FXMesh::LoadMeshIC(FXPackage*, FXPackageData* d, FXMatlib* lib) {
    LoadHeadC(d, lib);
    const int vertexLimit = d->ReadInt();
    const int corners = d->ReadInt();
    // A corner takes a byte of the pool that follows, a vertex a corner.
    if (corners < 0 || corners > d->left || vertexLimit < 0)
        Realloc(0, 0);
    else
        Realloc(std::min(vertexLimit, corners), corners);
}

bool FXMesh::SaveHead(std::FILE* file, float u, float v) const {
    const std::int32_t modes[2] = {transparent, colorMode};
    const std::int32_t count = vertexCount;
    return materialName.Save(file) && std::fwrite(&u, sizeof u, 1, file) == 1 &&
           std::fwrite(&v, sizeof v, 1, file) == 1 && std::fwrite(modes, sizeof modes, 1, file) == 1 &&
           std::fwrite(&count, sizeof count, 1, file) == 1;
}

bool FXMesh::SaveMesh(std::FILE* file) const {
    const std::int32_t corners = indexCount;
    return SaveHead(file, material ? material->extentU : 0, material ? material->extentV : 0) &&
           fxWrite(vertices, sizeof *vertices, static_cast<std::size_t>(vertexCount), file) &&
           std::fwrite(&corners, sizeof corners, 1, file) == 1 &&
           fxWrite(indices, sizeof *indices, static_cast<std::size_t>(corners), file);
}

bool FXMesh::SaveMeshI(std::FILE* file) const {
    float u = material ? material->extentU : 0;
    float v = material ? material->extentV : 0;
    if (u == 0.0f) {
        u = loadedU;
        trc("save u from loaded_u (%g)\n", static_cast<double>(u));
    }
    if (v == 0.0f)
        v = loadedV;
    const std::int32_t corners = indexCount;
    return SaveHead(file, u, v) && std::fwrite(&corners, sizeof corners, 1, file) == 1;
}
