#include "geometry/model.h"

#include "geometry/mesh.h"
#include "image/material.h"
#include "image/material_library.h"
#include "render/environment.h"

namespace {

// Calls the operation for every mesh there is.
template <class Operation> void localForEach(const FXOwnerArray<FXMesh>& meshes, Operation operation) {
    for (FXMesh* mesh : meshes)
        if (mesh != nullptr)
            operation(*mesh);
}

// As far as there is memory.
void localCopyMeshes(const FXOwnerArray<FXMesh>& from, FXOwnerArray<FXMesh>& to) {
    to.DestroyBuf();
    if (!to.Realloc(from.count))
        return;
    for (const FXMesh* mesh : from) {
        if (mesh == nullptr)
            to.PushNull();
        else if (FXMesh* copy = to.PushNew())
            copy->Copy(mesh);
        else
            return;
    }
}

} // namespace

void FXModel::Destroy() {
    name.Clear();
    matlibName.Clear();
    flipV = false;
    ShareMatlib(nullptr);
    loadedMeshes.DestroyBuf();
    meshes.DestroyBuf();
}

void FXModel::ShareMatlib(FXMatlib* library) {
    if (library != nullptr)
        ++library->refCount;
    if (matlib != nullptr)
        matlib->Release();
    matlib = library;
}

void FXModel::UpdateMeshes() {
    localCopyMeshes(loadedMeshes, meshes);
}

void FXModel::UseLoadedMeshes() {
    meshes.MoveFrom(loadedMeshes);
}

void FXModel::Copy(FXModel* src) {
    Destroy();
    flipV = src->flipV;
    matlibName = src->matlibName;
    ShareMatlib(src->matlib);
    localCopyMeshes(src->meshes, meshes);
}

FXMesh* FXModel::EnumMeshes(int i) const {
    return i >= 0 && i < meshes.count ? meshes[i] : nullptr;
}

const char* FXModel::EnumMeshNames(int i) const {
    const FXMesh* mesh = EnumMeshes(i);
    return mesh != nullptr && mesh->material != nullptr ? mesh->material->name.text : nullptr;
}

FXMesh* FXModel::FindMesh(const char* meshName) const {
    for (int i = 0; EnumMeshNames(i) != nullptr; ++i)
        if (meshes[i]->material->name.Compare(meshName))
            return meshes[i];
    return nullptr;
}

void FXModel::DisableMesh(int i, bool disable) {
    if (FXMesh* mesh = EnumMeshes(i))
        mesh->disabled = disable;
}

void FXModel::RemoveMesh(FXMesh* mesh) {
    FXOwnerArray<FXMesh>& group = meshes.Findpos(mesh) >= 0 ? meshes : loadedMeshes;
    if (const int at = group.Findpos(mesh); at >= 0)
        group.Release(at);
}

FXMesh* FXModel::DoubleMesh(const char* newName, const char* srcName) {
    const FXMesh* src = FindMesh(srcName);
    if (src == nullptr)
        return nullptr;
    FXMesh* target = FindMesh(newName);
    if (target != nullptr)
        RemoveMesh(target);
    else
        target = fxNew<FXMesh>();
    FXMaterial* material = matlib != nullptr ? matlib->FindMaterial(newName) : nullptr;
    if (target == nullptr || material == nullptr) {
        delete target;
        return nullptr;
    }
    target->Copy(src);
    target->material = material;
    target->materialName.Set(newName);
    return meshes.Push(target);
}

int FXModel::GetTotalVertices() const {
    int total = 0;
    localForEach(meshes, [&](const FXMesh& mesh) { total += mesh.vertexCount; });
    return total;
}

void FXModel::Normalize(bool onlyTouched) {
    localForEach(meshes, [&](FXMesh& mesh) { mesh.Normalize(onlyTouched); });
}

void FXModel::FlipHoriz() {
    localForEach(meshes, [](FXMesh& mesh) { mesh.FlipHoriz(); });
}

void FXModel::Transform(int ix, int iy, int iz, bool negX, bool negY, bool negZ) {
    localForEach(meshes, [&](FXMesh& mesh) { mesh.Transform(ix, iy, iz, negX, negY, negZ); });
}

void FXModel::FindMaxims(float* box) const {
    bool first = true;
    localForEach(meshes, [&](const FXMesh& mesh) { mesh.FindMultiMaxims(&first, box); });
}

void FXModel::UnitizeMaxims(const float* box) {
    localForEach(meshes, [&](FXMesh& mesh) { mesh.UnitizeMaxims(box); });
}

void FXModel::UnitizeMaximsStretch(const float* box) {
    localForEach(meshes, [&](FXMesh& mesh) { mesh.UnitizeMaximsStretch(box); });
}

void FXModel::UnitizeMaximsStretch1(const float* box) {
    localForEach(meshes, [&](FXMesh& mesh) { mesh.UnitizeMaximsStretch1(box); });
}

void FXModel::Unitize() {
    float box[6] = {};
    FindMaxims(box);
    UnitizeMaxims(box);
}

void FXModel::UnitizeStretch() {
    float box[6] = {};
    FindMaxims(box);
    UnitizeMaximsStretch(box);
}

void FXModel::UnitizeStretch1() {
    float box[6] = {};
    FindMaxims(box);
    UnitizeMaximsStretch1(box);
}

void FXModel::ResizeTextCoords() {
    localForEach(meshes, [this](FXMesh& mesh) {
        mesh.flipV = flipV;
        mesh.ResizeTexCoords();
    });
}

void FXModel::ResizeTextCoords1() {
    localForEach(meshes, [this](FXMesh& mesh) {
        mesh.flipV = flipV;
        mesh.ResizeTexCoords1();
    });
}

void FXModel::ComputeFrontTexCoords(int i) {
    if (i == -1)
        localForEach(meshes, [](FXMesh& mesh) { mesh.ComputeFrontTexCoords(); });
    else if (FXMesh* mesh = EnumMeshes(i))
        mesh->ComputeFrontTexCoords();
}

void FXModel::CopyTexCoords(int i, const FXModel* src) {
    if (src->meshes.count != meshes.count)
        return;
    for (int at = 0; at < meshes.count; ++at)
        if ((i == -1 || i == at) && meshes[at] != nullptr && src->meshes[at] != nullptr)
            meshes[at]->CopyTexCoords(src->meshes[at]);
}

void FXModel::UpdateColCol(const float* rgba) {
    localForEach(meshes, [&](FXMesh& mesh) {
        mesh.SetVerticesCol(rgba);
        mesh.colorMode = 1;
    });
}

void FXModel::UpdateColMat(const float* rgba) {
    localForEach(meshes, [&](FXMesh& mesh) {
        if (mesh.material != nullptr)
            mesh.material->MultiCols(rgba);
    });
}

void FXModel::PreserveColMat() {
    localForEach(meshes, [](FXMesh& mesh) {
        if (mesh.material != nullptr)
            mesh.material->PreserveCols();
    });
}

void FXModel::DrawAll(PEnv* env, int transparent) const {
    localForEach(meshes, [&](FXMesh& mesh) {
        if (mesh.transparent == transparent)
            env->RenderMesh(&mesh);
    });
}

void FXModel::OnRender(PEnv* env, double) {
    DrawAll(env, 0);
    env->EnableCullface(true, false);
    for (int i = meshes.count - 1; i >= 0; --i) // the far sides, in reverse
        if (meshes[i] != nullptr && meshes[i]->transparent == 1)
            env->RenderMesh(meshes[i]);
    env->EnableCullface(false, true);
    DrawAll(env, 1);
    env->EnableCullface(false, false);
    env->EnableDepthWrite(false);
    DrawAll(env, 2);
    env->EnableDepthWrite(true);
    DrawAll(env, 2);
}
