// The two versions of the animation format: a list of model names, or key frames that share one topology.
#include "anim/morph_animation.h"
#include "base/file_handle.h"
#include "geometry/load_budget.h"
#include "geometry/mesh.h"
#include "geometry/num_pool.h"
#include "image/material_library.h"
#include "package/package.h"
#include "package/record.h"
#include "platform/trace.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr int kSmallestEntry = 8;

bool localIsVersion3(const FXPackageData& d) {
    return d.left >= kSmallestEntry && d.cur[0] == 4 && std::memcmp(d.cur + 4, FXAnim::kVersion3, 4) == 0;
}

bool localSameLayout(const FXMesh* a, const FXMesh* b) {
    return a != nullptr && b != nullptr && a->vertexCount == b->vertexCount &&
           std::equal(a->indices, a->indices + a->indexCount, b->indices, b->indices + b->indexCount);
}

} // namespace

bool FXAnim::LoadCN(FXPackage* pck, int id, FXLoadBudget* budget) {
    Destroy();
    const FXPackageData* entry = pck->GetDataPtr(id);
    if (entry == nullptr || entry->size < kSmallestEntry)
        return false;
    FXPackageData d = *entry; // models and libraries are read from the package meanwhile
    LoadFrom(pck, &d, budget);
    return true;
}

void FXAnim::ListPictures(FXPackage* pck, int id, FXArray<int>* entries) {
    struct Head {
        bool Begin() const { return false; } // that is all
        bool PackedMesh(int) const { return false; }
        bool Pools() const { return false; }
        bool Pool(int) const { return false; }
        bool Map(int) const { return false; }

        FXStr library = {};
        int frames = 0;
        int count = 0;
    } head;
    const FXPackageData* entry = pck->GetDataPtr(id);
    if (entry == nullptr || !localIsVersion3(*entry))
        return;
    FXPackageData d = *entry;
    d.ReadBlc(kSmallestEntry);
    FXAnim names;
    FXRecordReader reader(&d);
    if (Fields_v02(names, reader)) {
        Fields_v03(head, reader);
        FXMatlib::ListPictures(pck, head.library.text, entries);
    }
}

bool FXAnim::Load(const char* path) {
    Destroy();
    FXFileBlock file;
    if (!file.Load(path) || file.data.size < kSmallestEntry)
        return false;
    LoadFrom(nullptr, &file.data, nullptr);
    return true;
}

void FXAnim::LoadFrom(FXPackage* pck, FXPackageData* d, FXLoadBudget* given) {
    FXLoadBudget own;
    FXLoadBudget* budget = given != nullptr ? given : &own;
    budget->TakeRecord(d->size);
    const bool isVersion3 = localIsVersion3(*d);
    if (isVersion3)
        d->ReadBlc(kSmallestEntry);
    FXRecordReader reader(d);
    Fields_v02(*this, reader);
    const int whole = isVersion3 ? Load_v03CN(pck, d, budget) : Load_v02CN(pck, budget);
    FinishLoading();
    if (own.IsExceeded())
        err("animation of %d key frames is left with %d: %s\n", frameNames.count, whole, own.Describe().text);
}

// Both versions give how many key frames, from the first on, there was room for.
int FXAnim::Load_v02CN(FXPackage* pck, FXLoadBudget* budget) {
    if (!models.Realloc(frameNames.count))
        return 0;
    while (models.count < frameNames.count)
        models.PushNull();
    for (int f = 0; f < frameNames.count; ++f) {
        int id = 0;
        FXModel* model = fxNew<FXModel>();
        if (model == nullptr)
            return f;
        const bool isThere =
            pck == nullptr ? model->Load(frameNames.Get(f), budget)
                           : std::sscanf(frameNames.Get(f), "%d", &id) == 1 && model->LoadCN(pck, id, budget);
        if (isThere && budget->TakeFrames(1))
            models[f] = model;
        else
            delete model;
        if (budget->IsExceeded())
            return f;
    }
    return frameNames.count;
}

struct FXAnim::Loader {
    bool Begin() const {
        if (frames == 0 || !budget->TakeFrames(frames) || !models.Realloc(frames))
            return false;
        for (int f = 0; f < frames; ++f) {
            FXModel* model = models.PushNew();
            if (model == nullptr)
                return false;
            model->name.Set(anim.frameNames.Get(f));
        }
        models[0]->matlibName = library;
        models[0]->LoadMatlib(pck, budget);
        return models[0]->loadedMeshes.Realloc(std::min(count, FXLoadBudget::kMostMeshes));
    }
    bool PackedMesh(int) const {
        FXMesh* mesh = models[0]->loadedMeshes.PushNew();
        if (mesh != nullptr)
            mesh->LoadMeshIC(pck, d, models[0]->matlib, budget);
        return mesh != nullptr && !budget->IsExceeded();
    }
    // All key frames have the meshes of the first.
    bool Pools() {
        for (int f = 1; f < frames; ++f) {
            models[f]->ShareMatlib(models[0]->matlib);
            if (!models[f]->loadedMeshes.Realloc(count))
                return false;
            for (const FXMesh* mesh : models[0]->loadedMeshes) {
                FXMesh* copy = models[f]->loadedMeshes.PushNew();
                if (copy == nullptr)
                    return false;
                copy->CopyMeshI(mesh);
            }
        }
        return pools.Realloc(count);
    }
    bool Pool(int) {
        FXNumPool* pool = pools.PushNew();
        if (pool != nullptr)
            pool->LoadC(pck, d);
        return pool != nullptr;
    }
    bool Map(int f) {
        map.LoadC(pck, d);
        for (int m = 0; m < count; ++m) {
            FXMesh* mesh = models[f]->loadedMeshes[m];
            if (f > 0 && mesh->FromVMapLike(models[0]->loadedMeshes[m], *built[m], map))
                continue;
            mesh->FromVMap(&map, pools[m]);
            if (f == 0 && built.PushNew() == nullptr)
                return false;
            if (f == 0)
                built.Last()->Append(map.Used());
        }
        return true;
    }

    FXAnim& anim;
    FXPackage* pck;
    FXPackageData* d;
    FXLoadBudget* budget;
    FXOwnerArray<FXModel>& models = anim.models;
    int frames = anim.frameNames.count;
    int count = 0; // of meshes
    FXStr library = {};
    FXVectorMap map = {};
    FXOwnerArray<FXNumPool> pools = {};
    // What the vertices of each mesh are built from, in every key frame.
    FXOwnerArray<FXArray<FXTriple>> built = {};
};

int FXAnim::Load_v03CN(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget) {
    Loader loader = {*this, pck, d, budget};
    FXRecordReader reader(d);
    if (Fields_v03(loader, reader))
        return frameNames.count;
    for (FXModel* model : models) // the meshes that there are have nothing in them yet
        model->Destroy();
    return 0;
}

void FXAnim::FinishLoading() {
    for (FXModel* model : models)
        if (model != nullptr) {
            model->UseLoadedMeshes();
            model->ResizeTextCoords();
        }
}

bool FXAnim::Save(const char* path) {
    FXFile file = fxOpenFile(path, "wb");
    return file && Save_v03(file.get()) && fxCloseWritten(std::move(file));
}

bool FXAnim::Save_v02(std::FILE* file) const {
    FXRecordWriter writer(file);
    return Fields_v02(*this, writer);
}

struct FXAnim::Saver {
    // Packs the first key frame, whose headers and pools all others share.
    bool Begin() {
        for (int m = 0; m < count; ++m) {
            FXMesh* mesh = anim.models[0]->meshes[m];
            FXNumPool* pool = pools.Push(new (std::nothrow) FXNumPool(FXNumPool::kSaveStep));
            for (int kind = 0; kind < 3; ++kind) {
                FXArray<int>* numbers = redirects.PushNew();
                if (pool == nullptr || numbers == nullptr || !numbers->Realloc(mesh->indexCount))
                    return false;
            }
            mesh->ToVMap(&map, pool, &anim, m, redirects.items + 3 * m);
        }
        return true;
    }
    bool PackedMesh(int m) const { return anim.models[0]->meshes[m]->SaveMeshI(file); }
    bool Pools() const { return true; }
    bool Pool(int m) const { return pools[m]->Save(file); }
    bool Map(int f) {
        for (int m = 0; m < count && f > 0; ++m)
            anim.models[f]->meshes[m]->ApplyRedir(&map, redirects.items + 3 * m);
        return map.Save(file);
    }

    FXAnim& anim;
    std::FILE* file;
    int frames = anim.models.count;
    int count = frames > 0 ? anim.models[0]->meshes.count : 0; // of meshes
    FXStr library = frames > 0 ? anim.models[0]->matlibName : FXStr();
    FXVectorMap map = {};
    FXOwnerArray<FXNumPool> pools = {};
    FXOwnerArray<FXArray<int>> redirects = {}; // three for each mesh
};

// As many names, and key frames of one layout?
bool FXAnim::FramesAreAlike() const {
    const FXModel* first = EnumModels(0);
    return frameNames.count == models.count &&
           std::all_of(models.begin(), models.end(), [first](const FXModel* model) {
               return first != nullptr && model != nullptr &&
                      std::equal(first->meshes.begin(), first->meshes.end(), model->meshes.begin(),
                                 model->meshes.end(), localSameLayout);
           });
}

bool FXAnim::Save_v03(std::FILE* file) {
    if (!FramesAreAlike())
        return false;
    // Before the vertices of different key frames are compared by their numbers.
    for (FXModel* model : models)
        for (FXMesh* mesh : model->meshes)
            mesh->DiscardVertices();
    Saver saver = {*this, file};
    FXRecordWriter writer(file);
    return FXStr(kVersion3).Save(file) && Fields_v02(*this, writer) && Fields_v03(saver, writer);
}

bool FXAnim::Compile(FXPackage* pck) {
    bool ok = true;
    for (int f = 0; f < models.count && f < frameNames.count; ++f) {
        ok = ok && (models[f] == nullptr || models[f]->Compile(pck));
        int size = 0, type = kRaw;
        if (models[f] == nullptr || !FXPackage::CheckFile(frameNames.Get(f), &size, &type))
            continue;
        FXStr stored(frameNames.Get(f)), file;
        if (pck->AddTmpDataFile(&stored, &file))
            ok = ok && models[f]->Save(file.text);
        frameNames.Change(f, stored.text);
    }
    return ok;
}

bool FXAnim::TestRedirect(int meshA, int vertexA, int meshB, int vertexB) {
    if (meshB < 0)
        return false; // nobody knows whose it was
    return std::all_of(models.begin(), models.end(), [&](const FXModel* model) {
        const tagFXVertex& a = model->meshes[meshA]->vertices[vertexA];
        const tagFXVertex& b = model->meshes[meshB]->vertices[vertexB];
        return std::equal(a.pos, a.pos + 3, b.pos) && std::equal(a.normal, a.normal + 3, b.normal) &&
               std::equal(a.tex, a.tex + 2, b.tex) && a.color[0] == b.color[0];
    });
}
