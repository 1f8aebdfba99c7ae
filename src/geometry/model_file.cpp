// The two versions of the model format: whole mesh records, or packed ones that share a vector map.
#include "base/file_handle.h"
#include "geometry/load_budget.h"
#include "geometry/mesh.h"
#include "geometry/mesh_record.h"
#include "geometry/model.h"
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"
#include "image/material_library.h"
#include "package/package.h"
#include "package/record.h"
#include "platform/trace.h"
#include "render/environment.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

bool FXModel::LoadCN(FXPackage* pck, int id, FXLoadBudget* budget) {
    Destroy();
    const FXPackageData* entry = pck->GetDataPtr(id);
    if (entry == nullptr)
        return false;
    FXPackageData d = *entry; // the library may be read from the package meanwhile
    LoadFrom(pck, &d, budget);
    return true;
}

void FXModel::ListPictures(FXPackage* pck, int id, FXArray<int>* entries) {
    struct Head {
        bool Begin() const { return false; } // that is all

        FXStr name = {};
        FXStr library = {};
        int count = 0;
    } head;
    const FXPackageData* entry = pck->GetDataPtr(id);
    if (entry == nullptr)
        return;
    FXPackageData d = *entry;
    FXStr magic;
    d.ReadString(&magic);
    FXRecordReader reader(&d);
    HeadFields(head, reader);
    FXMatlib::ListPictures(pck, head.library.text, entries);
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

void FXModel::LoadMatlib(FXPackage* pck, FXLoadBudget* budget) {
    if (fxglobalEnv == nullptr)
        return;
    matlib = pck != nullptr ? fxglobalEnv->LoadMatlibC(pck, matlibName.text)
                            : fxglobalEnv->LoadMatlib(matlibName.text);
    if (matlib != nullptr && matlib->refCount == 1) // nobody else has it
        budget->TakeMaterials(matlib->materials.count);
}

// Takes as many meshes as the budget and the memory hold.
struct FXModel::Loader {
    bool Begin() const {
        model.LoadMatlib(pck, budget);
        return model.loadedMeshes.Realloc(std::min(count, FXLoadBudget::kMostMeshes));
    }
    bool Mesh(int) const { return Add(&FXMesh::LoadMeshC); }
    bool Map() {
        map.LoadC(pck, d);
        return true;
    }
    bool PackedMesh(int) const { return Add(&FXMesh::LoadMeshIC); }
    bool Pool(int i) {
        pool.LoadC(pck, d);
        model.loadedMeshes[i]->FromVMap(&map, &pool);
        return true;
    }
    bool Add(void (FXMesh::*load)(FXPackage*, FXPackageData*, FXMatlib*, FXLoadBudget*)) const {
        FXMesh* mesh = model.loadedMeshes.PushNew();
        if (mesh == nullptr)
            return false;
        (mesh->*load)(pck, d, model.matlib, budget);
        if (budget->IsExceeded())
            delete model.loadedMeshes.Release(model.loadedMeshes.count - 1);
        return !budget->IsExceeded();
    }

    FXModel& model;
    FXPackage* pck;
    FXPackageData* d;
    FXLoadBudget* budget;
    FXStr& name = model.name;
    FXStr& library = model.matlibName;
    int count = 0;
    FXVectorMap map = {};
    FXNumPool pool = {};
};

void FXModel::Load_v02CN(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget) {
    Loader loader = {*this, pck, d, budget};
    FXRecordReader reader(d);
    Fields_v02(loader, reader);
}

void FXModel::Load_v03CN(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget) {
    Loader loader = {*this, pck, d, budget};
    FXRecordReader reader(d);
    Fields_v03(loader, reader);
}

// Writes the meshes that it is given.
struct FXModel::Saver {
    bool Begin() const { return true; }
    bool Mesh(int i) const { return meshes[i]->SaveMesh(file); }
    bool Map() const { return map.Save(file); }
    bool PackedMesh(int i) const { return meshes[i]->SaveMeshI(file); }
    bool Pool(int i) const { return pools[i]->Save(file); }

    const FXStr& name;
    const FXStr& library;
    std::FILE* file;
    FXArray<FXMesh*> meshes = {};
    int count = 0; // of them
    FXVectorMap map = {};
    FXOwnerArray<FXNumPool> pools = {};
};

bool FXModel::Save(const char* path) {
    FXFile file = fxOpenFile(path, "wb");
    return file && Save_v03(file.get()) && fxCloseWritten(std::move(file));
}

bool FXModel::Save_v02(std::FILE* file) const {
    Saver saver = {name, matlibName, file};
    for (FXMesh* mesh : meshes)
        if (mesh != nullptr && !saver.meshes.Push(mesh))
            return false;
    saver.count = saver.meshes.count;
    FXRecordWriter writer(file);
    return FXStr(kVersion2).Save(file) && Fields_v02(saver, writer);
}

bool FXModel::Save_v03(std::FILE* file) {
    Saver saver = {name, matlibName, file};
    for (FXMesh* mesh : meshes) {
        if (mesh == nullptr || mesh->disabled)
            continue;
        FXNumPool* pool = saver.pools.Push(new (std::nothrow) FXNumPool(FXNumPool::kSaveStep));
        if (pool == nullptr || !saver.meshes.Push(mesh))
            return false;
        mesh->ToVMap(&saver.map, pool, nullptr, 0, nullptr);
    }
    saver.count = saver.meshes.count;
    FXRecordWriter writer(file);
    return FXStr(kVersion3).Save(file) && Fields_v03(saver, writer);
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
