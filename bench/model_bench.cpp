// Unpacking of meshes: millions of indices per second, and how that holds as meshes grow. The hard case has
// one position and one texture coordinate for all corners, so that only the normals tell vertices apart.
#include "geometry/mesh.h"
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <initializer_list>

namespace {

// A sheet of squares with about that many indices; neighbours share their corners.
void localMakeSheet(FXMesh* mesh, int indices, bool onePosition) {
    const int side = static_cast<int>(std::sqrt(indices / 6.0));
    mesh->Realloc((side + 1) * (side + 1), side * side * 6);
    for (int v = 0; v < mesh->vertexCount; ++v) {
        tagFXVertex& vertex = mesh->vertices[v];
        vertex = {};
        const float x = static_cast<float>(v % (side + 1));
        const float y = static_cast<float>(v / (side + 1));
        vertex.normal[0] = x;
        vertex.normal[1] = y;
        if (onePosition)
            continue;
        vertex.pos[0] = vertex.tex[0] = x;
        vertex.pos[1] = vertex.tex[1] = y;
    }
    int* index = mesh->indices;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const int p = y * (side + 1) + x;
            const int q = p + side + 1;
            for (const int corner : {p, q, p + 1, q, q + 1, p + 1})
                *index++ = corner;
        }
}

void localUnpack(benchmark::State& state, bool onePosition) {
    FXMesh sheet;
    localMakeSheet(&sheet, static_cast<int>(state.range(0)), onePosition);
    FXVectorMap map;
    FXNumPool pool(800000);
    sheet.ToVMap(&map, &pool, nullptr, 0, nullptr);
    FXMesh mesh;
    for (auto _ : state) {
        mesh.Realloc(sheet.vertexCount, sheet.indexCount);
        if (!mesh.FromVMap(&map, &pool))
            state.SkipWithError("did not unpack");
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * sheet.indexCount);
}

void localUnpackSheet(benchmark::State& state) {
    localUnpack(state, false);
}
void localUnpackOnePosition(benchmark::State& state) {
    localUnpack(state, true);
}
BENCHMARK(localUnpackSheet)
    ->Name("UnpackSheet")
    ->RangeMultiplier(10)
    ->Range(10000, 10000000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(localUnpackOnePosition)
    ->Name("UnpackOnePosition")
    ->RangeMultiplier(10)
    ->Range(10000, 10000000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
