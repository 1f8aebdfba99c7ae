#include "pack/shape_records.h"

#include "geometry/num_pool.h"
#include "geometry/vector_map.h"
#include "pack/text.h"

#include <cstdint>
#include <cstring>
#include <set>

namespace {

constexpr const char* kKinds[] = {"position", "normal", "texture coordinate"};

bool localWholeTriangles(RecordReader* reader, int at, const std::string& which, int corners) {
    if (corners < 0)
        return reader->Fail(at, Text("the number of corners of %s is %d", which.c_str(), corners));
    if (corners % 3 != 0)
        reader->Warn(at, Text("%s has %d corners, which are no whole triangles: the last %d make none",
                              which.c_str(), corners, corners % 3));
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
    const int rest = pool->Left();
    if (rest > 0)
        pool->Warn(pool->Offset(), Text("the pool of %s has %s more than its corners take: the show does not "
                                        "read that far",
                                        which.c_str(), Counted(rest, "byte", "bytes").c_str()));
    return pool->Unused("not used", rest);
}

} // namespace

bool ShapeReader::Checked(const FXMeshRecord& mesh) {
    if (mesh.draw < 0 || mesh.draw > 2)
        return Fail(OffsetOf("the way to draw"),
                    Text("%s is to be drawn in way %d, but there are 0, 1 and 2: it would not be drawn",
                         Which().c_str(), mesh.draw));
    return mesh.colorMode == 0 || mesh.colorMode == 1 ||
           Fail(OffsetOf("the colour mode of"),
                Text("the colour mode of %s is %d, neither 0 nor 1: it would not be drawn", Which().c_str(),
                     mesh.colorMode));
}

bool ReadFullMesh(ShapeReader* reader, const std::string& which, MeshFacts* mesh) {
    FXMeshRecord record;
    reader->Of(which);
    const bool read = FXMeshRecord::Fields(record, *reader);
    *mesh = {record.material.text, record.vertices.count, record.corners.count};
    if (!read)
        return false;
    const int at = reader->OffsetOf("corners of");
    for (int i = 0; i < mesh->corners; ++i) {
        int vertex = 0;
        std::memcpy(&vertex, static_cast<const unsigned char*>(record.corners.bytes) + 4 * i, sizeof vertex);
        if (vertex < 0 || vertex >= mesh->vertices)
            return reader->Fail(at + 4 + 4 * i, Text("corner %d of %s is vertex %d, but there are %d", i,
                                                     which.c_str(), vertex, mesh->vertices));
    }
    return localWholeTriangles(reader, at, which, mesh->corners);
}

bool ReadPackedMesh(ShapeReader* reader, const std::string& which, MeshFacts* mesh) {
    FXMeshRecord record;
    reader->Of(which);
    const bool read = FXMeshRecord::PackedFields(record, *reader);
    *mesh = {record.material.text, record.vertexCount, record.cornerCount};
    if (!read)
        return false;
    const int at = reader->OffsetOf("the number of vertices of");
    if (mesh->vertices < 0)
        return reader->Fail(at, Text("the number of vertices of %s is %d", which.c_str(), mesh->vertices));
    if (mesh->vertices == 0 && mesh->corners > 0) {
        reader->Warn(at, Text("%s has %d corners, but no vertices: the show leaves it empty", which.c_str(),
                              mesh->corners));
        mesh->corners = 0;
    }
    return localWholeTriangles(reader, reader->OffsetOf("the number of corners of"), which, mesh->corners);
}

bool ReadPool(ShapeReader* reader, const std::string& which, const MeshFacts& mesh, PoolNumbers* numbers) {
    FXStored<unsigned char> stored;
    reader->Of(which);
    if (!FXNumPool::Fields(stored, *reader))
        return false;
    FXPackageData block;
    block.InitData(stored.bytes, stored.count);
    return reader->Inside(block, reader->Offset() - stored.count,
                          [&](RecordReader* pool) { return localReadCorners(pool, which, mesh, numbers); });
}

bool ReadVectorMap(ShapeReader* reader, const std::string& which, MapCounts* counts) {
    FXVectorMap map;
    reader->Of(which);
    const bool read = FXVectorMap::Fields(map, *reader);
    *counts = {map.posCount, map.normCount, map.texCount};
    return read;
}

bool CheckNumbers(ShapeReader* reader, const std::string& mesh, const PoolNumbers& numbers,
                  const std::string& which, const MapCounts& counts) {
    for (std::size_t kind = 0; kind < 3; ++kind)
        if (numbers.highest[kind] >= counts[kind])
            return reader->Fail(numbers.offset[kind],
                                Text("%s names %s %d, but %s has %d", mesh.c_str(), kKinds[kind],
                                     numbers.highest[kind], which.c_str(), counts[kind]));
    return true;
}
