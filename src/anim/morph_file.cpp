// The two versions of the animation format: a list of model names, or key frames that share one topology.
#include "anim/morph_animation.h"
#include "base/file_handle.h"
#include "geometry/mesh.h"
#include "geometry/num_pool.h"
#include "package/file_block.h"
#include "package/package.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr const char* kVersion3 = "oa03";
constexpr int kSmallestEntry = 8;
constexpr int kPoolStep = 800000;
constexpr int kSmallestMesh = 32; // a header and an empty pool

// What an entry may ask for, so that no loader costs more than in proportion to its bytes: a mesh in a key
// frame, and a key frame without meshes, takes 8 bytes at the least, a corner in a key frame a quarter of
// one.
constexpr std::int64_t kBytesPerMesh = 8;
constexpr std::int64_t kCornersPerByte = 4;
// Version 2 names entries, and may name one often.
constexpr std::int64_t kTimesThePackage = 16;

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

bool FXAnim::LoadCN(FXPackage* pck, int id) {
    Destroy();
    const FXPackageData* entry = pck->GetDataPtr(id);
    if (entry == nullptr || entry->size < kSmallestEntry)
        return false;
    FXPackageData d = *entry; // models and libraries are read from the package meanwhile
    LoadFrom(pck, &d);
    return true;
}

bool FXAnim::Load(const char* path) {
    Destroy();
    FXFileBlock file;
    if (!file.Load(path) || file.data.size < kSmallestEntry)
        return false;
    LoadFrom(nullptr, &file.data);
    return true;
}

void FXAnim::LoadFrom(FXPackage* pck, FXPackageData* d) {
    if (localIsVersion3(*d)) {
        d->ReadBlc(kSmallestEntry);
        Load_v03CN(pck, d);
    } else {
        Load_v02CN(pck, d);
    }
    FinishLoading();
}

void FXAnim::LoadHead(FXPackageData* d) {
    d->ReadStringArray(&frameNames);
    d->ReadArray(&frameTimes);
    graph.LoadC(d);
    storedParam = d->ReadFloat();
    for (bool* flag : {&playing, &backwards, &loop, &pingPong})
        *flag = d->ReadBool();
}

void FXAnim::Load_v02CN(FXPackage* pck, FXPackageData* d) {
    LoadHead(d);
    std::int64_t budget = pck != nullptr ? kTimesThePackage * pck->dataSize : 0;
    for (int i = 0; i < frameNames.count; ++i) {
        models.Push(nullptr);
        const char* frameName = frameNames.Get(i);
        int id = 0;
        auto model = std::make_unique<FXModel>();
        if (pck == nullptr) {
            if (!model->Load(frameName))
                continue;
        } else {
            const bool isId = std::sscanf(frameName, "%d", &id) == 1;
            const FXPackageData* entry = isId ? pck->GetDataPtr(id) : nullptr;
            if (entry == nullptr || entry->size > budget)
                continue;
            budget -= entry->size;
            model->LoadCN(pck, id);
        }
        models[i] = model.release();
    }
}

void FXAnim::Load_v03CN(FXPackage* pck, FXPackageData* d) {
    LoadHead(d);
    const std::int64_t bytes = d->size;
    const int frames = frameNames.count;
    const int meshes = std::clamp(d->ReadInt(), 0, d->left / kSmallestMesh);
    if (frames * std::int64_t{std::max(meshes, 1)} > bytes / kBytesPerMesh || !models.Realloc(frames))
        return;
    for (int f = 0; f < frames; ++f) {
        models.Push(new FXModel);
        models[f]->name.Set(frameNames.Get(f));
    }
    if (frames == 0)
        return;
    FXModel& first = *models[0];
    first.LoadMatlib(pck, d);
    std::int64_t corners = 0;
    for (int m = 0; m < meshes; ++m) {
        first.loadedMeshes.Push(new FXMesh);
        first.loadedMeshes[m]->LoadMeshIC(pck, d, first.matlib);
        corners += first.loadedMeshes[m]->indexCount;
        if (frames * corners > bytes * kCornersPerByte)
            return first.Destroy();
    }
    for (int f = 1; f < frames; ++f) {
        models[f]->ShareMatlib(first.matlib);
        for (int m = 0; m < meshes; ++m) {
            models[f]->loadedMeshes.Push(new FXMesh);
            models[f]->loadedMeshes[m]->CopyMeshI(first.loadedMeshes[m]);
        }
    }
    std::vector<FXNumPool> pools(static_cast<std::size_t>(meshes));
    for (FXNumPool& pool : pools)
        pool.LoadC(d);
    FXVectorMap map;
    for (FXModel* model : models) {
        map.LoadC(d);
        for (int m = 0; m < meshes; ++m)
            model->loadedMeshes[m]->FromVMap(&map, &pools[static_cast<std::size_t>(m)]);
    }
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

bool FXAnim::TestRedirect(int meshA, int vertexA, int meshB, int vertexB) {
    return std::all_of(models.begin(), models.end(), [&](const FXModel* model) {
        const tagFXVertex& a = model->meshes[meshA]->vertices[vertexA];
        const tagFXVertex& b = model->meshes[meshB]->vertices[vertexB];
        return std::equal(a.pos, a.pos + 3, b.pos) && std::equal(a.normal, a.normal + 3, b.normal) &&
               std::equal(a.tex, a.tex + 2, b.tex) && a.color[0] == b.color[0];
    });
}
