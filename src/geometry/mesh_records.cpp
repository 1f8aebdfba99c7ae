// The two stored forms of a mesh: whole, and the header of a packed one.
#include "geometry/load_budget.h"
#include "geometry/mesh.h"
#include "geometry/mesh_record.h"
#include "image/material.h"
#include "image/material_library.h"
#include "platform/trace.h"

#include <algorithm>
#include <cstring>

void FXMesh::TakeHead(const FXMeshRecord& record, FXMatlib* lib) {
    materialName = record.material;
    material = lib != nullptr ? lib->FindMaterial(materialName.text) : nullptr;
    loadedU = record.extentU;
    loadedV = record.extentV;
    transparent = record.draw;
    colorMode = record.colorMode;
}

bool FXMesh::IndicesFit() const {
    return std::all_of(indices, indices + indexCount, [this](int i) { return i >= 0 && i < vertexCount; });
}

bool FXMesh::ReallocWithin(FXLoadBudget* budget, int newVertexCount, int newIndexCount) {
    const bool isWithin = budget == nullptr || budget->TakeMesh(newVertexCount, newIndexCount);
    return Realloc(isWithin ? newVertexCount : 0, isWithin ? newIndexCount : 0) && isWithin;
}

void FXMesh::LoadMeshC(FXPackage*, FXPackageData* d, FXMatlib* lib, FXLoadBudget* budget) {
    FXMeshRecord record;
    fxLoadRecord(record, d);
    TakeHead(record, lib);
    const bool fits = record.vertices.count >= 0 && record.corners.count >= 0;
    if (!ReallocWithin(budget, fits ? record.vertices.count : 0, fits ? record.corners.count : 0))
        return;
    if (vertexCount > 0 && record.vertices.bytes != nullptr)
        std::memcpy(vertices, record.vertices.bytes,
                    static_cast<std::size_t>(vertexCount) * sizeof *vertices);
    if (indexCount > 0 && record.corners.bytes != nullptr)
        std::memcpy(indices, record.corners.bytes, static_cast<std::size_t>(indexCount) * sizeof *indices);
    if (!IndicesFit())
        vertexCount = indexCount = 0;
}

void FXMesh::LoadMeshIC(FXPackage*, FXPackageData* d, FXMatlib* lib, FXLoadBudget* budget) {
    FXMeshRecord record;
    FXRecordReader reader(d);
    FXMeshRecord::PackedFields(record, reader);
    TakeHead(record, lib);
    // A corner takes a byte of the pool that follows, a vertex a corner.
    const int corners = record.cornerCount;
    const bool canBe = corners >= 0 && corners <= d->left && record.vertexCount >= 0;
    ReallocWithin(budget, canBe ? std::min(record.vertexCount, corners) : 0, canBe ? corners : 0);
}

void FXMesh::LoadMesh(std::FILE* file, FXMatlib* lib) {
    FXFileRest rest(file);
    LoadMeshC(nullptr, &rest.data, lib);
}

void FXMesh::LoadMeshI(std::FILE* file, FXMatlib* lib) {
    FXFileRest rest(file);
    LoadMeshIC(nullptr, &rest.data, lib);
}

FXMeshRecord FXMesh::Record() const {
    return {materialName,
            material ? material->extentU : 0,
            material ? material->extentV : 0,
            transparent,
            colorMode,
            {vertices, vertexCount},
            {indices, indexCount},
            vertexCount,
            indexCount};
}

bool FXMesh::SaveMesh(std::FILE* file) const {
    return fxSaveRecord(Record(), file);
}

bool FXMesh::SaveMeshI(std::FILE* file) const {
    FXMeshRecord record = Record();
    if (record.extentU == 0.0f) {
        record.extentU = loadedU;
        trc("save u from loaded_u (%g)\n", static_cast<double>(loadedU));
    }
    if (record.extentV == 0.0f)
        record.extentV = loadedV;
    FXRecordWriter writer(file);
    return FXMeshRecord::PackedFields(record, writer);
}
