// The two versions of the animation format: a list of model names, or key frames that share one topology.
#include "anim/morph_animation.h"
#include "base/file_handle.h"
#include "geometry/load_budget.h"
#include "geometry/mesh.h"
#include "geometry/num_pool.h"
#include "package/file_block.h"
#include "package/package.h"
#include "platform/trace.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr const char* kVersion3 = "oa03";
constexpr int kSmallestEntry = 8;
constexpr int kPoolStep = 800000;
bool localIsVersion3(const FXPackageData& d) {
    return d.left >= kSmallestEntry && d.cur[0] == 4 && std::memcmp(d.cur + 4, kVersion3, 4) == 0;
}

bool localSaveFlags(const FXAnim& a, std::FILE* file) {
    const unsigned char flags[4] = {a.playing, a.backwards, a.loop, a.pingPong};
    return std::fwrite(&a.storedParam, sizeof a.storedParam, 1, file) == 1 &&
           std::fwrite(flags, sizeof flags, 1, file) == 1;
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
    LoadHead(d);
    const int whole = isVersion3 ? Load_v03CN(pck, d, budget) : Load_v02CN(pck, budget);
    FinishLoading();
    if (own.IsExceeded())
        err("animation of %d key frames is left with %d: %s\n", frameNames.count, whole, own.Describe().text);
}

void FXAnim::LoadHead(FXPackageData* d) {
    d->ReadStringArray(&frameNames);
    d->ReadArray(&frameTimes);
    graph.LoadC(d);
    storedParam = d->ReadFloat();
    for (bool* flag : {&playing, &backwards, &loop, &pingPong})
        *flag = d->ReadBool();
}

// Both versions give how many key frames, from the first on, the budget had room for.
int FXAnim::Load_v02CN(FXPackage* pck, FXLoadBudget* budget) {
    if (!models.Realloc(frameNames.count))
        return 0;
    while (models.count < frameNames.count)
        models.Push(nullptr);
    for (int f = 0; f < frameNames.count; ++f) {
        int id = 0;
        auto model = std::make_unique<FXModel>();
        const bool isThere =
            pck == nullptr ? model->Load(frameNames.Get(f), budget)
                           : std::sscanf(frameNames.Get(f), "%d", &id) == 1 && model->LoadCN(pck, id, budget);
        if (isThere && !budget->TakeFrames(1))
            return f;
        if (isThere)
            models[f] = model.release();
    }
    return frameNames.count;
}

int FXAnim::Load_v03CN(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget) {
    const int frames = frameNames.count;
    const int meshes = d->ReadCount();
    if (!budget->TakeFrames(frames) || !models.Realloc(frames))
        return 0;
    for (int f = 0; f < frames; ++f) {
        models.Push(new FXModel);
        models[f]->name.Set(frameNames.Get(f));
    }
    if (frames == 0)
        return 0;
    FXModel& first = *models[0];
    first.LoadMatlib(pck, d, budget);
    if (!first.loadedMeshes.Realloc(std::min(meshes, FXLoadBudget::kMostMeshes)))
        return 0;
    for (int m = 0; m < meshes; ++m) {
        auto mesh = std::make_unique<FXMesh>();
        mesh->LoadMeshIC(pck, d, first.matlib, budget);
        if (budget->IsExceeded()) {
            first.Destroy();
            return 0;
        }
        first.loadedMeshes.Push(mesh.release());
    }
    for (int f = 1; f < frames; ++f) {
        models[f]->ShareMatlib(first.matlib);
        if (!models[f]->loadedMeshes.Realloc(meshes))
            return 0;
        for (int m = 0; m < meshes; ++m) {
            models[f]->loadedMeshes.Push(new FXMesh);
            models[f]->loadedMeshes[m]->CopyMeshI(first.loadedMeshes[m]);
        }
    }
    std::vector<FXNumPool> pools(static_cast<std::size_t>(meshes));
    for (FXNumPool& pool : pools)
        pool.LoadC(pck, d);
    FXVectorMap map;
    for (FXModel* model : models) {
        map.LoadC(pck, d);
        for (int m = 0; m < meshes; ++m)
            model->loadedMeshes[m]->FromVMap(&map, &pools[static_cast<std::size_t>(m)]);
    }
    return frames;
}

void FXAnim::FinishLoading() {
    for (FXModel* model : models)
        if (model != nullptr) {
            model->UpdateMeshes();
            model->ResizeTextCoords();
        }
}

bool FXAnim::SaveHead(std::FILE* file) const {
    return frameNames.Save(file) && frameTimes.Save(file) && graph.Save(file) && localSaveFlags(*this, file);
}

bool FXAnim::Save(const char* path) {
    FXFile file = fxOpenFile(path, "wb");
    return file && Save_v03(file.get()) && fxCloseWritten(std::move(file));
}

bool FXAnim::Save_v02(std::FILE* file) const {
    return SaveHead(file);
}

// Writes the headers and the pools that all key frames share.
bool FXAnim::PackFirstFrame(FXVectorMap* map, std::FILE* file, FXArray<int>* redirects) {
    const FXModel& first = *models[0];
    std::vector<std::unique_ptr<FXNumPool>> pools;
    for (int m = 0; m < first.meshes.count; ++m) {
        FXArray<int>* const redirect[3] = {&redirects[3 * m], &redirects[3 * m + 1], &redirects[3 * m + 2]};
        for (FXArray<int>* numbers : redirect)
            numbers->Realloc(first.meshes[m]->indexCount);
        pools.push_back(std::make_unique<FXNumPool>(kPoolStep));
        first.meshes[m]->ToVMap(map, pools.back().get(), this, m, redirect);
    }
    bool ok = true;
    for (const FXMesh* mesh : first.meshes)
        ok = ok && mesh->SaveMeshI(file);
    for (const auto& pool : pools)
        ok = ok && pool->Save(file);
    return ok;
}

bool FXAnim::Save_v03(std::FILE* file) {
    const FXModel* first = EnumModels(0);
    const std::int32_t meshes = first != nullptr ? first->meshes.count : 0;
    for (FXModel* model : models) {
        if (first == nullptr || model == nullptr || model->meshes.count != meshes)
            return false;
        for (int m = 0; m < meshes; ++m) {
            if (!localSameLayout(first->meshes[m], model->meshes[m]))
                return false;
        }
    }
    // Before the vertices of different key frames are compared by their numbers.
    for (FXModel* model : models)
        for (FXMesh* mesh : model->meshes)
            mesh->DiscardVertices();

    FXVectorMap map;
    std::vector<FXArray<int>> redirects(static_cast<std::size_t>(meshes) * 3);
    bool ok = frameNames.count == models.count && FXStr(kVersion3).Save(file) && SaveHead(file) &&
              std::fwrite(&meshes, sizeof meshes, 1, file) == 1 &&
              (first ? first->matlibName : FXStr()).Save(file);
    ok = ok && (first == nullptr || PackFirstFrame(&map, file, redirects.data()));
    for (int f = 0; f < models.count && ok; ++f) {
        const FXArray<int>* numbers = redirects.data();
        for (int m = 0; m < meshes && f > 0; ++m, numbers += 3) {
            const FXArray<int>* const redirect[3] = {numbers, numbers + 1, numbers + 2};
            models[f]->meshes[m]->ApplyRedir(&map, redirect);
        }
        ok = map.Save(file);
    }
    return ok;
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
