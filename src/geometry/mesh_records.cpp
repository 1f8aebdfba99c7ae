// The two stored forms of a mesh: whole, and the header of a packed one.
#include "geometry/load_budget.h"
#include "geometry/mesh.h"
#include "image/material.h"
#include "image/material_library.h"
#include "package/file_block.h"
#include "package/package_data.h"
#include "platform/trace.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

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

bool FXMesh::ReallocWithin(FXLoadBudget* budget, int newVertexCount, int newIndexCount) {
    const bool isWithin = budget == nullptr || budget->TakeMesh(newVertexCount, newIndexCount);
    return Realloc(isWithin ? newVertexCount : 0, isWithin ? newIndexCount : 0) && isWithin;
}

void FXMesh::LoadMeshC(FXPackage*, FXPackageData* d, FXMatlib* lib, FXLoadBudget* budget) {
    LoadHeadC(d, lib);
    // The counts are believed only as far as the bytes go. What is there is read past in any case.
    constexpr int kVertex = sizeof *vertices, kIndex = sizeof *indices;
    const int wantedVertices = d->ReadInt();
    const bool haveVertices = wantedVertices >= 0 && wantedVertices <= d->left / kVertex;
    const void* storedVertices = haveVertices ? d->ReadBlc(wantedVertices * kVertex) : nullptr;
    const int wantedIndices = d->ReadInt();
    const bool haveIndices = haveVertices && wantedIndices >= 0 && wantedIndices <= d->left / kIndex;
    if (!ReallocWithin(budget, haveIndices ? wantedVertices : 0, haveIndices ? wantedIndices : 0))
        return;
    if (vertexCount > 0)
        std::memcpy(vertices, storedVertices, static_cast<std::size_t>(vertexCount) * kVertex);
    if (haveIndices)
        d->ReadCopyBlc(indices, wantedIndices * kIndex);
    if (!IndicesFit())
        vertexCount = indexCount = 0;
}

void FXMesh::LoadMeshIC(FXPackage*, FXPackageData* d, FXMatlib* lib, FXLoadBudget* budget) {
    LoadHeadC(d, lib);
    const int vertexLimit = d->ReadInt();
    const int corners = d->ReadInt();
    // A corner takes a byte of the pool that follows, a vertex a corner.
    const bool canBe = corners >= 0 && corners <= d->left && vertexLimit >= 0;
    ReallocWithin(budget, canBe ? std::min(vertexLimit, corners) : 0, canBe ? corners : 0);
}

void FXMesh::LoadMesh(std::FILE* file, FXMatlib* lib) {
    FXFileRest rest(file);
    LoadMeshC(nullptr, &rest.data, lib);
}

void FXMesh::LoadMeshI(std::FILE* file, FXMatlib* lib) {
    FXFileRest rest(file);
    LoadMeshIC(nullptr, &rest.data, lib);
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
