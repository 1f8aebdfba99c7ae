// The two versions of the model format: whole mesh records, or packed ones that share a vector map.
#include "base/file_handle.h"
#include "env/environment.h"
#include "geometry/mesh.h"
#include "geometry/model.h"
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"
#include "package/file_block.h"
#include "package/package.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace {

constexpr const char* kVersion2 = "om02";
constexpr const char* kVersion3 = "om03";
constexpr int kPoolStep = 800000;
// The bytes of a mesh that is stored at all; a count of more meshes than fit is a lie.
constexpr int kSmallestMesh = 28;

int localMeshCount(FXPackageData* d) {
    return std::clamp(d->ReadInt(), 0, d->left / kSmallestMesh);
}

bool localWriteInt(std::FILE* file, std::int32_t value) {
    return std::fwrite(&value, sizeof value, 1, file) == 1;
}

} // namespace

bool FXModel::LoadCN(FXPackage* pck, int id) {
    Destroy();
    const FXPackageData* entry = pck->GetDataPtr(id);
    if (entry == nullptr)
        return false;
    FXPackageData d = *entry; // the library may be read from the package meanwhile
    LoadFrom(pck, &d);
    return true;
}

bool FXModel::Load(const char* path) {
    Destroy();
    FXFileBlock file;
    if (!file.Load(path))
        return false;
    LoadFrom(nullptr, &file.data);
    return true;
}

void FXModel::LoadFrom(FXPackage* pck, FXPackageData* d) {
    FXStr magic;
    d->ReadString(&magic);
    if (magic.Compare(kVersion2))
        Load_v02CN(pck, d);
    else if (magic.Compare(kVersion3))
        Load_v03CN(pck, d);
}

void FXModel::LoadMatlib(FXPackage* pck, FXPackageData* d) {
    d->ReadString(&matlibName);
    if (fxglobalEnv == nullptr)
        return;
    matlib = pck != nullptr ? fxglobalEnv->LoadMatlibC(pck, matlibName.text)
                            : fxglobalEnv->LoadMatlib(matlibName.text);
}

void FXModel::Load_v02CN(FXPackage* pck, FXPackageData* d) {
    d->ReadString(&name);
    LoadMatlib(pck, d);
    const int count = localMeshCount(d);
    if (!loadedMeshes.Realloc(count))
        return;
    for (int i = 0; i < count; ++i) {
        loadedMeshes.Push(new FXMesh);
        loadedMeshes.Last()->LoadMeshC(pck, d, matlib);
    }
}

void FXModel::Load_v03CN(FXPackage* pck, FXPackageData* d) {
    d->ReadString(&name);
    LoadMatlib(pck, d);
    const int count = localMeshCount(d);
    if (!loadedMeshes.Realloc(count))
        return;
    FXVectorMap map;
    FXNumPool pool;
    map.LoadC(d);
    std::int64_t corners = 0;
    for (int i = 0; i < count; ++i) {
        loadedMeshes.Push(new FXMesh);
        loadedMeshes.Last()->LoadMeshIC(pck, d, matlib);
        corners += loadedMeshes.Last()->indexCount;
        if (corners > d->size) // each takes a byte of a pool: headers that lie do not add up to more memory
            return loadedMeshes.Last()->Destroy();
        pool.LoadC(d);
        loadedMeshes.Last()->FromVMap(&map, &pool);
    }
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
