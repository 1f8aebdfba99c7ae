// The packed form of a mesh: for every corner, the numbers of its position, normal and texture coordinate.
#include "geometry/mesh.h"
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"

#include <algorithm>

namespace {

// How a number stands in the stream: two bits of the corner's flags byte for each of the three.
enum Code { kNext = 0, kByte = 1, kWord = 2, kInt = 3 };

Code localCodeOf(int number, int previous) {
    if (number == previous + 1)
        return kNext;
    return number <= 0xFF ? kByte : number <= 0xFFFF ? kWord : kInt;
}

void localPushNumber(FXNumPool* pool, Code code, int number) {
    if (code == kByte)
        pool->PushByte(static_cast<unsigned char>(number));
    else if (code == kWord)
        pool->PushWord(static_cast<unsigned short>(number));
    else if (code == kInt)
        pool->PushInt(number);
}

// The last corner's numbers, position, normal, texture coordinate: where the next corner starts from.
struct Corner {
    int number[3] = {-1, -1, -1};
};

void localPushCorner(FXNumPool* pool, Corner* last, const int (&number)[3]) {
    Code code[3];
    for (int i = 0; i < 3; ++i)
        code[i] = localCodeOf(number[i], last->number[i]);
    pool->PushByte(static_cast<unsigned char>(code[0] | code[1] << 2 | code[2] << 4));
    for (int i = 0; i < 3; ++i)
        localPushNumber(pool, code[i], number[i]);
    std::copy_n(number, 3, last->number);
}

bool localReadNumber(FXNumPool* pool, int code, int* number) {
    unsigned char byte = 0;
    unsigned short word = 0;
    switch (code) {
    case kNext:
        *number = static_cast<int>(static_cast<unsigned>(*number) + 1u);
        return true;
    case kByte:
        if (!pool->GetNextByte(&byte))
            return false;
        *number = byte;
        return true;
    case kWord:
        if (!pool->GetNextWord(&word))
            return false;
        *number = word;
        return true;
    default:
        return pool->GetNextInt(number);
    }
}

// False when the stream ends first or names a vector that is not there.
bool localReadCorner(FXNumPool* pool, const int (&counts)[3], Corner* corner) {
    unsigned char flags = 0;
    if (!pool->GetNextByte(&flags))
        return false;
    for (int i = 0; i < 3; ++i) {
        int& number = corner->number[i];
        if (!localReadNumber(pool, flags >> 2 * i & 3, &number) || number < 0 || number >= counts[i])
            return false;
    }
    return true;
}

tagFXVertex localVertex(const FXVectorMap& map, const FXTriple& from) {
    tagFXVertex vertex = {};
    map.GetVecPos(from.p, vertex.pos);
    map.GetVecNorm(from.n, vertex.normal);
    map.GetVecTex(from.t, vertex.tex);
    return vertex;
}

} // namespace

void FXMesh::DiscardVertices() {
    for (int v = 0; v < vertexCount; ++v)
        vertices[v].touched = -1;
    for (int i = 0; i < indexCount; ++i)
        vertices[indices[i]].touched = 0;
    int kept = 0;
    for (int v = 0; v < vertexCount; ++v)
        if (vertices[v].touched == 0)
            vertices[v].touched = kept++;
    for (int i = 0; i < indexCount; ++i)
        indices[i] = vertices[indices[i]].touched;
    const tagFXVertex* end =
        std::remove_if(vertices, vertices + vertexCount, [](const tagFXVertex& v) { return v.touched < 0; });
    vertexCount = static_cast<int>(end - vertices);
    // Without memory for a block of the right size, the larger one serves.
    if (void* fitting = fxRealloc(vertices, static_cast<std::size_t>(vertexCount) * sizeof *vertices)) {
        vertices = static_cast<tagFXVertex*>(fitting);
        vertexCapacity = vertexCount;
    }
}

void FXMesh::ToVMap(FXVectorMap* map, FXNumPool* pool, PMeshSaveClb* clb, int meshKey,
                    FXArray<int>* const* redirect) {
    if (indexCount == 0 || vertexCount == 0)
        return;
    DiscardVertices();
    Corner last;
    for (int i = 0; i < indexCount; ++i) {
        const tagFXVertex* v = &vertices[indices[i]];
        const int number[3] = {map->PushVecPos(v, clb, meshKey, indices[i]),
                               map->PushVecNorm(v, clb, meshKey, indices[i]),
                               map->PushVecTex(v, clb, meshKey, indices[i])};
        for (int kind = 0; kind < 3 && redirect != nullptr; ++kind)
            redirect[kind]->Push(number[kind]);
        localPushCorner(pool, &last, number);
    }
}

bool FXMesh::FromVMapLike(const FXMesh* first, const FXArray<FXTriple>& built, const FXVectorMap& map) {
    const auto isThere = [&](const FXTriple& from) {
        return from.p < map.posCount && from.n < map.normCount && from.t < map.texCount;
    };
    if (built.count != first->vertexCount || built.count > vertexCount || indexCount != first->indexCount ||
        !std::all_of(built.begin(), built.end(), isThere))
        return false;
    vertexCount = built.count;
    for (int v = 0; v < vertexCount; ++v)
        vertices[v] = localVertex(map, built[v]);
    std::copy_n(first->indices, indexCount, indices);
    return true;
}

bool FXMesh::FromVMap(FXVectorMap* map, FXNumPool* pool) {
    if (indexCount == 0 || vertexCount == 0) {
        vertexCount = indexCount = 0;
        return true;
    }
    const int room = vertexCount;
    const int counts[3] = {map->posCount, map->normCount, map->texCount};
    map->ClearUsed();
    pool->Reseek();
    vertexCount = 0;
    Corner corner;
    for (int i = 0; i < indexCount; ++i) {
        int at = -1;
        if (localReadCorner(pool, counts, &corner)) {
            const auto [p, n, t] = corner.number;
            at = map->GetUsed(p, n, t);
            if (at < 0 && vertexCount < room && map->PushUsed(p, n, t, vertexCount)) {
                at = vertexCount++;
                vertices[at] = localVertex(*map, {p, n, t});
            }
        }
        if (at < 0) {
            vertexCount = indexCount = 0;
            return false;
        }
        indices[i] = at;
    }
    return true;
}

void FXMesh::ApplyRedir(FXVectorMap* map, const FXArray<int>* const* redirect) const {
    for (int i = 0; i < indexCount; ++i) {
        const tagFXVertex* v = &vertices[indices[i]];
        map->SetVecPos(v, (*redirect[0])[i]);
        map->SetVecNorm(v, (*redirect[1])[i]);
        map->SetVecTex(v, (*redirect[2])[i]);
    }
}
