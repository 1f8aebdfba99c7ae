#include "geometry/vector_map.h"

#include "package/record.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

constexpr int kFree = -1;        // a slot
constexpr int kNoKey = -1;       // of a loaded vector
constexpr int kNoUser = INT_MIN; // a position: neither a vertex nor ~vertex

// Equal floats hash alike; 0 and -0 are equal.
std::size_t localHash(const float* value, int width) {
    std::uint64_t hash = 14695981039346656037u; // FNV-1a
    for (int i = 0; i < width; ++i)
        hash = (hash ^ std::bit_cast<std::uint32_t>(value[i] == 0 ? 0.0f : value[i])) * 1099511628211u;
    return static_cast<std::size_t>(hash);
}

int localKey(const FXArray<int>& keys, int i) {
    return i < keys.count ? keys[i] : kNoKey;
}

void localPushKey(FXArray<int>* keys, int vectorsBefore, int key) {
    while (keys->count < vectorsBefore)
        keys->Push(kNoKey);
    keys->Push(key);
}

// Elements from the end to n get the value. False, with fewer of them, when there is no memory.
template <class T> bool localExtend(FXArray<T>* list, int n, T value) {
    if (n > list->capacity && !list->Realloc(std::max(n, list->capacity <= n / 2 ? n : 2 * list->capacity)))
        return false;
    while (list->count < n)
        list->Push(value);
    return true;
}

void localGet(const FXFloatArray& values, int width, int i, float* out) {
    std::copy_n(values.items + static_cast<std::ptrdiff_t>(i) * width, width, out);
}

void localSet(FXFloatArray& values, int width, int i, const float* value) {
    std::copy_n(value, width, values.items + static_cast<std::ptrdiff_t>(i) * width);
}

// Each number less, or plus, the one `step` behind it; the last `step` stay.
void localDifferences(FXFloatArray& values, int count, int step, bool forward) {
    const auto change = [&](int i) { // never as floats: a register may not keep every bit of them
        std::uint32_t bits = 0;
        std::uint32_t next = 0;
        std::memcpy(&bits, &values[i], sizeof bits);
        std::memcpy(&next, &values[i + step], sizeof next);
        bits = forward ? bits - next : bits + next;
        std::memcpy(&values[i], &bits, sizeof bits);
    };
    if (forward)
        for (int i = 0; i < count - step; ++i)
            change(i);
    else
        for (int i = count - step - 1; i >= 0; --i)
            change(i);
}

void localMangle(FXFloatArray& values, int vectors, int width, bool forward) {
    const int count = vectors * width;
    for (const int step : {width, 1}) // whose order makes no difference, either way
        localDifferences(values, count, step, forward);
}

} // namespace

void FXVectorMap::Destroy() {
    ClearUsed();
    firstUser_.DestroyBuf();
    for (FXFloatArray* values : {&positions, &normals, &texCoords})
        values->DestroyBuf();
    for (FXArray<int>* keys : {&posMesh, &posVertex, &normMesh, &normVertex, &texMesh, &texVertex})
        keys->DestroyBuf();
    posCount = normCount = texCount = 0;
    for (Index* index : {&posIndex_, &normIndex_, &texIndex_})
        index->Clear();
}

// Takes in what came since the last time; from the first vector on when one was set.
void FXVectorMap::Index::Update(const FXFloatArray& values, int width, int count) {
    if (isStale)
        Clear();
    for (; indexed < count; ++indexed)
        byHash[localHash(&values.items[indexed * width], width)].push_back(indexed);
}

void FXVectorMap::Index::Clear() {
    byHash.clear();
    indexed = 0;
    isStale = false;
}

int FXVectorMap::Find(Index* index, const Kind& kind, const float* value, PMeshSaveClb* clb, int meshKey,
                      int vertexKey) {
    index->Update(kind.values, kind.width, kind.count);
    const auto found = index->byHash.find(localHash(value, kind.width));
    if (found == index->byHash.end())
        return -1;
    for (const int i : found->second)
        if (std::equal(value, value + kind.width, &kind.values.items[i * kind.width]) &&
            (clb == nullptr ||
             clb->TestRedirect(meshKey, vertexKey, localKey(kind.meshKeys, i), localKey(kind.vertexKeys, i))))
            return i;
    return -1;
}

int FXVectorMap::Push(Index* index, Kind kind, const float* value, PMeshSaveClb* clb, int meshKey,
                      int vertexKey) {
    const int shared = Find(index, kind, value, clb, meshKey, vertexKey);
    if (shared >= 0)
        return shared;
    kind.values.count = kind.count * kind.width; // without the rest of a loaded array
    for (int i = 0; i < kind.width; ++i)
        kind.values.Push(value[i]);
    localPushKey(&kind.meshKeys, kind.count, meshKey);
    localPushKey(&kind.vertexKeys, kind.count, vertexKey);
    return kind.count++;
}

int FXVectorMap::PushVecPos(const tagFXVertex* v, PMeshSaveClb* clb, int meshKey, int vertexKey) {
    return Push(&posIndex_, Positions(), v->pos, clb, meshKey, vertexKey);
}

int FXVectorMap::PushVecNorm(const tagFXVertex* v, PMeshSaveClb* clb, int meshKey, int vertexKey) {
    return Push(&normIndex_, Normals(), v->normal, clb, meshKey, vertexKey);
}

int FXVectorMap::PushVecTex(const tagFXVertex* v, PMeshSaveClb* clb, int meshKey, int vertexKey) {
    return Push(&texIndex_, TexCoords(), v->tex, clb, meshKey, vertexKey);
}

int FXVectorMap::FindVecPos(int meshKey, int vertexKey, const tagFXVertex* v, PMeshSaveClb* clb) {
    return Find(&posIndex_, Positions(), v->pos, clb, meshKey, vertexKey);
}

int FXVectorMap::FindVecNorm(int meshKey, int vertexKey, const tagFXVertex* v, PMeshSaveClb* clb) {
    return Find(&normIndex_, Normals(), v->normal, clb, meshKey, vertexKey);
}

int FXVectorMap::FindVecTex(int meshKey, int vertexKey, const tagFXVertex* v, PMeshSaveClb* clb) {
    return Find(&texIndex_, TexCoords(), v->tex, clb, meshKey, vertexKey);
}

void FXVectorMap::GetVecPos(int i, float* out) const {
    localGet(positions, 3, i, out);
}
void FXVectorMap::GetVecNorm(int i, float* out) const {
    localGet(normals, 3, i, out);
}
void FXVectorMap::GetVecTex(int i, float* out) const {
    localGet(texCoords, 2, i, out);
}
void FXVectorMap::SetVecPos(const tagFXVertex* v, int i) {
    localSet(positions, 3, i, v->pos);
    posIndex_.isStale = true;
}
void FXVectorMap::SetVecNorm(const tagFXVertex* v, int i) {
    localSet(normals, 3, i, v->normal);
    normIndex_.isStale = true;
}
void FXVectorMap::SetVecTex(const tagFXVertex* v, int i) {
    localSet(texCoords, 2, i, v->tex);
    texIndex_.isStale = true;
}

void FXVectorMap::ManglePos(bool forward) {
    localMangle(positions, posCount, 3, forward);
}
void FXVectorMap::MangleNorm(bool forward) {
    localMangle(normals, normCount, 3, forward);
}
void FXVectorMap::MangleTex(bool forward) {
    localMangle(texCoords, texCount, 2, forward);
}

bool FXVectorMap::Save(std::FILE* file) const {
    return fxSaveRecord(*this, file);
}

void FXVectorMap::Load(std::FILE* file) {
    FXFileRest rest(file);
    LoadC(nullptr, &rest.data);
}

void FXVectorMap::LoadC(FXPackage*, FXPackageData* d) {
    Destroy();
    fxLoadRecord(*this, d);
}

// Where the triple stands in the slots, or the free one where it would.
int FXVectorMap::SlotOf(const FXTriple& triple) const {
    std::uint64_t hash = static_cast<std::uint32_t>(triple.p);
    for (const int number : {triple.n, triple.t})
        hash = hash * 0x9E3779B97F4A7C15u + static_cast<std::uint32_t>(number);
    hash *= 0x9E3779B97F4A7C15u;
    const int mask = slots_.count - 1;
    int slot = static_cast<int>(hash >> 33) & mask;
    while (slots_[slot] != kFree && triples_[slots_[slot]] != triple)
        slot = (slot + 1) & mask;
    return slot;
}

bool FXVectorMap::GrowSlots() {
    FXArray<int> before;
    if (!before.Realloc(slots_.count))
        return false;
    for (const int vertex : slots_)
        before.Push(vertex);
    const int wanted = std::max(64, 2 * slots_.count);
    if (!slots_.Realloc(wanted))
        return false;
    slots_.RemoveAll();
    localExtend(&slots_, wanted, kFree);
    for (const int vertex : before)
        if (vertex != kFree)
            slots_[SlotOf(triples_[vertex])] = vertex;
    return true;
}

bool FXVectorMap::PushShared(int vertex) {
    if (2 * (shared_ + 1) > slots_.count && !GrowSlots())
        return false;
    int& slot = slots_[SlotOf(triples_[vertex])];
    if (slot == kFree) { // the first of equals stays
        slot = vertex;
        ++shared_;
    }
    return true;
}

bool FXVectorMap::PushUsed(int p, int n, int t, int vertex) {
    if (!localExtend(&triples_, vertex + 1, {-1, -1, -1}) ||
        !localExtend(&firstUser_, std::max(p + 1, posCount), kNoUser))
        return false;
    triples_[vertex] = {p, n, t};
    int& user = firstUser_[p];
    if (user == kNoUser) {
        user = vertex;
        return true;
    }
    if (user >= 0) {
        if (!PushShared(user))
            return false;
        user = ~user;
    }
    return PushShared(vertex);
}

int FXVectorMap::GetUsed(int p, int n, int t) const {
    if (p < 0 || p >= firstUser_.count)
        return -1;
    const int user = firstUser_[p];
    if (user >= 0)
        return GetUsed1(user, n, t);
    return user == kNoUser ? -1 : slots_[SlotOf({p, n, t})];
}

int FXVectorMap::GetUsed1(int vertex, int n, int t) const {
    if (vertex < 0 || vertex >= triples_.count)
        return -1;
    const FXTriple& triple = triples_[vertex];
    return triple.n == n && triple.t == t ? vertex : -1;
}

// Costs what was used, not what there is: a map may serve many small meshes.
void FXVectorMap::ClearUsed() {
    for (const FXTriple& triple : triples_)
        if (triple.p >= 0)
            firstUser_[triple.p] = kNoUser;
    triples_.RemoveAll();
    slots_.RemoveAll();
    shared_ = 0;
}
