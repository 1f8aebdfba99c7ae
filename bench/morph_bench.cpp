// The morph update per vertex, linear and on the splines, against a plain copy of the vertices that it
// writes.
#include "anim/morph_animation.h"
#include "geometry/mesh.h"
#include "inputs.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace {

void localCopyOfTheVertices(benchmark::State& state) {
    FXAnim animation;
    PrepareMorph(&animation, static_cast<int>(state.range(0)), true);
    const FXMesh& mesh = *animation.imodel.EnumMeshes(0);
    std::vector<tagFXVertex> copy(static_cast<std::size_t>(mesh.vertexCount));
    for (auto _ : state) {
        std::copy(mesh.vertices, mesh.vertices + mesh.vertexCount, copy.begin());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void localMorph(benchmark::State& state, bool linear) {
    FXAnim animation;
    PrepareMorph(&animation, static_cast<int>(state.range(0)), linear);
    double time = 1000;
    for (auto _ : state) {
        animation.UpdateIPos(time += 0.01);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void localMorphLinear(benchmark::State& state) {
    localMorph(state, true);
}
void localMorphSpline(benchmark::State& state) {
    localMorph(state, false);
}
BENCHMARK(localCopyOfTheVertices)->Name("CopyOfTheVertices")->Arg(10000)->Arg(100000)->Arg(1000000);
BENCHMARK(localMorphLinear)->Name("MorphLinear")->Arg(10000)->Arg(100000)->Arg(1000000);
BENCHMARK(localMorphSpline)->Name("MorphSpline")->Arg(10000)->Arg(100000)->Arg(1000000);

} // namespace
