// The two versions of the model format: whole mesh records, or packed ones that share a vector map.
#include "base/file_handle.h"
#include "geometry/load_budget.h"
#include "geometry/mesh.h"
#include "geometry/model.h"
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"
#include "image/material_library.h"
#include "package/file_block.h"
#include "package/package.h"
#include "platform/trace.h"
#include "render/environment.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr const char* kVersion2 = "om02";
constexpr const char* kVersion3 = "om03";
constexpr int kPoolStep = 800000;

// As many meshes as the count says and the budget holds.
template <class Read>
void localLoadMeshes(int count, FXLoadBudget* budget, FXArray<FXMesh*>* meshes, Read read) {
    if (!meshes->Realloc(std::min(count, FXLoadBudget::kMostMeshes)))
        return;
    for (int i = 0; i < count; ++i) {
        auto mesh = std::make_unique<FXMesh>();
        read(mesh.get());
        if (budget->IsExceeded())
            return;
        meshes->Push(mesh.release());
    }
}

bool localWriteInt(std::FILE* file, std::int32_t value) {
    return std::fwrite(&value, sizeof value, 1, file) == 1;
}

} // namespace

bool FXModel::LoadCN(FXPackage* pck, int id, FXLoadBudget* budget) {
    Destroy();
    const FXPackageData* entry = pck->GetDataPtr(id);
    if (entry == nullptr)
        return false;
    FXPackageData d = *entry; // the library may be read from the package meanwhile
    LoadFrom(pck, &d, budget);
    return true;
}

bool FXModel::Load(const char* path, FXLoadBudget* budget) {
    Destroy();
    FXFileBlock file;
    if (!file.Load(path))
        return false;
    LoadFrom(nullptr, &file.data, budget);
    return true;
}

void FXModel::LoadFrom(FXPackage* pck, FXPackageData* d, FXLoadBudget* given) {
    FXLoadBudget own;
    FXLoadBudget* budget = given != nullptr ? given : &own;
    FXStr magic;
    budget->TakeRecord(d->size);
    d->ReadString(&magic);
    if (magic.Compare(kVersion2))
        Load_v02CN(pck, d, budget);
    else if (magic.Compare(kVersion3))
        Load_v03CN(pck, d, budget);
    if (own.IsExceeded())
        err("model '%s' is left with %d meshes: %s\n", name.text, loadedMeshes.count, own.Describe().text);
}

void FXModel::LoadMatlib(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget) {
    d->ReadString(&matlibName);
    if (fxglobalEnv == nullptr)
        return;
    matlib = pck != nullptr ? fxglobalEnv->LoadMatlibC(pck, matlibName.text)
                            : fxglobalEnv->LoadMatlib(matlibName.text);
    if (matlib != nullptr && matlib->refCount == 1) // nobody else has it
        budget->TakeMaterials(matlib->materials.count);
}

void FXModel::Load_v02CN(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget) {
    d->ReadString(&name);
    LoadMatlib(pck, d, budget);
    localLoadMeshes(d->ReadCount(), budget, &loadedMeshes,
                    [&](FXMesh* mesh) { mesh->LoadMeshC(pck, d, matlib, budget); });
}

void FXModel::Load_v03CN(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget) {
    d->ReadString(&name);
    LoadMatlib(pck, d, budget);
    const int count = d->ReadCount();
    FXVectorMap map;
    FXNumPool pool;
    map.LoadC(pck, d);
    localLoadMeshes(count, budget, &loadedMeshes, [&](FXMesh* mesh) {
        mesh->LoadMeshIC(pck, d, matlib, budget);
        pool.LoadC(pck, d);
        mesh->FromVMap(&map, &pool);
    });
}

bool FXModel::Save(const char* path) {
    FXFile file = fxOpenFile(path, "wb");
    return file && Save_v03(file.get()) && fxCloseWritten(std::move(file));
}

bool FXModel::Save_v02(std::FILE* file) const {
    bool ok = FXStr(kVersion2).Save(file) && name.Save(file) && matlibName.Save(file);
    const auto there = [](const FXMesh* mesh) { return mesh != nullptr; };
    ok = ok &&
         localWriteInt(file, static_cast<std::int32_t>(std::count_if(meshes.begin(), meshes.end(), there)));
    for (const FXMesh* mesh : meshes)
        ok = ok && (mesh == nullptr || mesh->SaveMesh(file));
    return ok;
}

bool FXModel::Save_v03(std::FILE* file) {
    FXVectorMap map;
    std::vector<FXMesh*> stored;
    std::vector<std::unique_ptr<FXNumPool>> pools;
    for (FXMesh* mesh : meshes) {
        if (mesh == nullptr || mesh->disabled)
            continue;
        stored.push_back(mesh);
        pools.push_back(std::make_unique<FXNumPool>(kPoolStep));
        mesh->ToVMap(&map, pools.back().get(), nullptr, 0, nullptr);
    }
    bool ok = FXStr(kVersion3).Save(file) && name.Save(file) && matlibName.Save(file) &&
              localWriteInt(file, static_cast<std::int32_t>(stored.size())) && map.Save(file);
    for (std::size_t i = 0; i < stored.size(); ++i)
        ok = ok && stored[i]->SaveMeshI(file) && pools[i]->Save(file);
    return ok;
}

bool FXModel::Compile(FXPackage* pck) {
    if (matlib == nullptr || matlibName.IsEmpty())
        return true;
    FXStr file;
    if (!pck->AddTmpDataFile(&matlibName, &file))
        return true;
    matlib->Compile(pck);
    matlib->name = matlibName; // models that ask for the entry share it
    return matlib->Save(file.text);
}
