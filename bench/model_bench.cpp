// Unpacking of meshes: millions of indices per second, and how that holds as meshes grow. The hard case has
// one position and one texture coordinate for all corners, so that only the normals tell vertices apart.
#include "geometry/mesh.h"
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"
#include "inputs.h"

#include <benchmark/benchmark.h>

namespace {

void localUnpack(benchmark::State& state, bool onePosition) {
    FXMesh sheet;
    MakeSheet(&sheet, static_cast<int>(state.range(0)), onePosition);
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
