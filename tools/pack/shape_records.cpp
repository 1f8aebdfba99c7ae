#include "pack/shape_records.h"

#include "geometry/vertex.h"
#include "pack/text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

namespace {

constexpr int kVertexBytes = sizeof(tagFXVertex);
constexpr int kDrawnFloats = 12; // position, normal, texture coordinate, colour
constexpr const char* kKinds[] = {"position", "normal", "texture coordinate"};

bool localReadHead(RecordReader* reader, const std::string& which, MeshFacts* mesh) {
    float extent = 0;
    int draw = 0, color = 0;
    if (!reader->String("the material of " + which, &mesh->material) ||
        !reader->Float("the texture's extent u of " + which, &extent) ||
        !reader->Float("the texture's extent v of " + which, &extent))
        return false;
    const int at = reader->Offset();
    if (!reader->Int("the way to draw " + which, &draw) ||
        !reader->Int("the colour mode of " + which, &color))
        return false;
    if (draw < 0 || draw > 2)
        return reader->Fail(
            at, Text("%s is to be drawn in way %d, but there are 0, 1 and 2: it would not be drawn",
                     which.c_str(), draw));
    return color == 0 || color == 1 ||
           reader->Fail(at + 4, Text("the colour mode of %s is %d, neither 0 nor 1: it would not be drawn",
                                     which.c_str(), color));
}

bool localWholeTriangles(RecordReader* reader, int at, const std::string& which, int corners) {
    if (corners < 0)
        return reader->Fail(at, Text("the number of corners of %s is %d", which.c_str(), corners));
    if (corners % 3 != 0)
        reader->Warn(at, Text("%s has %d corners, which are no whole triangles: the last %d make none",
                              which.c_str(), corners, corners % 3));
    return true;
}

bool localReadVertices(RecordReader* reader, const std::string& which, int count) {
    for (int i = 0; i < count; ++i) {
        const std::string of = Text(" of vertex %d of %s", i, which.c_str());
        if (!reader->Floats("position" + of, 3) || !reader->Floats("normal" + of, 3) ||
            !reader->Floats("texture coordinate" + of, 2) || !reader->Floats("colour" + of, 4))
            return false;
        reader->Skip(kVertexBytes - kDrawnFloats * 4);
        reader->Tell(kVertexBytes - kDrawnFloats * 4, "not drawn");
    }
    return true;
}

using Triple = std::array<int, 3>;

// The next corner's numbers.
bool localReadCorner(RecordReader* pool, const std::string& what, Triple* last) {
    FXPackageData flags;
    if (!pool->Bytes(what, 1, &flags))
        return false;
    const int start = pool->Offset() - 1;
    for (std::size_t kind = 0; kind < 3; ++kind) {
        const int code = flags.start[0] >> 2 * kind & 3;
        const int size = code == 3 ? 4 : code;
        FXPackageData number;
        if (!pool->Bytes("a number of " + what, size, &number))
            return false;
        if (code == 0) {
            if ((*last)[kind] == INT32_MAX)
                return pool->Fail(start, what + " has a number beyond 32 bits");
            ++(*last)[kind];
            continue;
        }
        (*last)[kind] = 0;
        std::memcpy(&(*last)[kind], number.start, static_cast<std::size_t>(size));
        if ((*last)[kind] < 0)
            return pool->Fail(start, Text("%s names %s %d", what.c_str(), kKinds[kind], (*last)[kind]));
    }
    pool->Tell(pool->Offset() - start, what + Text(": position %d, normal %d, texture coordinate %d",
                                                   (*last)[0], (*last)[1], (*last)[2]));
    return true;
}

bool localReadCorners(RecordReader* pool, const std::string& which, const MeshFacts& mesh,
                      PoolNumbers* numbers) {
    Triple triple = {-1, -1, -1};
    std::set<Triple> distinct;
    for (int corner = 0; corner < mesh.corners; ++corner) {
        const int at = pool->Offset();
        if (!localReadCorner(pool, Text("corner %d of %s", corner, which.c_str()), &triple))
            return false;
        for (std::size_t kind = 0; kind < 3; ++kind)
            if (triple[kind] > numbers->highest[kind]) {
                numbers->highest[kind] = triple[kind];
                numbers->offset[kind] = at;
            }
        distinct.insert(triple);
        if (static_cast<int>(distinct.size()) > mesh.vertices)
            return pool->Fail(at, Text("corner %d of %s makes vertex %zu, but its head says %d", corner,
                                       which.c_str(), distinct.size(), mesh.vertices));
    }
    if (const int rest = pool->Left(); rest > 0) {
        pool->Warn(pool->Offset(), Text("the pool of %s has %s more than its corners take: the show does not "
                                        "read that far",
                                        which.c_str(), Counted(rest, "byte", "bytes").c_str()));
        pool->Skip(rest);
        pool->Tell(rest, "not used");
    }
    return true;
}

} // namespace

bool ReadFullMesh(RecordReader* reader, const std::string& which, MeshFacts* mesh) {
    if (!localReadHead(reader, which, mesh) ||
        !reader->Count("vertices of " + which, kVertexBytes, &mesh->vertices) ||
        !localReadVertices(reader, which, mesh->vertices))
        return false;
    std::vector<int> indices;
    const int countAt = reader->Offset();
    if (!reader->Ints("corner", which, &indices))
        return false;
    mesh->corners = static_cast<int>(indices.size());
    const auto wrong = std::ranges::find_if(indices, [&](int i) { return i < 0 || i >= mesh->vertices; });
    if (wrong != indices.end()) {
        const auto corner = static_cast<int>(wrong - indices.begin());
        return reader->Fail(countAt + 4 + 4 * corner, Text("corner %d of %s is vertex %d, but there are %d",
                                                           corner, which.c_str(), *wrong, mesh->vertices));
    }
    return localWholeTriangles(reader, countAt, which, mesh->corners);
}

bool ReadPackedMesh(RecordReader* reader, const std::string& which, MeshFacts* mesh) {
    if (!localReadHead(reader, which, mesh))
        return false;
    const int at = reader->Offset();
    if (!reader->Int("the number of vertices of " + which, &mesh->vertices) ||
        !reader->Int("the number of corners of " + which, &mesh->corners))
        return false;
    if (mesh->vertices < 0)
        return reader->Fail(at, Text("the number of vertices of %s is %d", which.c_str(), mesh->vertices));
    if (mesh->vertices == 0 && mesh->corners > 0) {
        reader->Warn(at, Text("%s has %d corners, but no vertices: the show leaves it empty", which.c_str(),
                              mesh->corners));
        mesh->corners = 0;
    }
    return localWholeTriangles(reader, at + 4, which, mesh->corners);
}

bool ReadPool(RecordReader* reader, const std::string& which, const MeshFacts& mesh, PoolNumbers* numbers) {
    int size = 0;
    FXPackageData block;
    if (!reader->Count("bytes in the pool of " + which, 1, &size))
        return false;
    const int start = reader->Offset();
    return reader->Bytes("the pool of " + which, size, &block) &&
           reader->Inside(block, start,
                          [&](RecordReader* pool) { return localReadCorners(pool, which, mesh, numbers); });
}

bool ReadVectorMap(RecordReader* reader, const std::string& which, MapCounts* counts) {
    return reader->Vectors("position", 3, which, &(*counts)[0]) &&
           reader->Vectors("normal", 3, which, &(*counts)[1]) &&
           reader->Vectors("texture coordinate", 2, which, &(*counts)[2]);
}

bool CheckNumbers(RecordReader* reader, const std::string& mesh, const PoolNumbers& numbers,
                  const std::string& which, const MapCounts& counts) {
    for (std::size_t kind = 0; kind < 3; ++kind)
        if (numbers.highest[kind] >= counts[kind])
            return reader->Fail(numbers.offset[kind],
                                Text("%s names %s %d, but %s has %d", mesh.c_str(), kKinds[kind],
                                     numbers.highest[kind], which.c_str(), counts[kind]));
    return true;
}
