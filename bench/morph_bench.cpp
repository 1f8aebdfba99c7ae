// The morph update per vertex, linear and on the splines, against a plain copy of the vertices that it
// writes.
#include "anim/morph_animation.h"
#include "geometry/mesh.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int kFrames = 5;

// Key frames of one mesh with moving vertices, prepared as the scene prepares them.
void localPrepare(FXAnim& animation, int vertices, bool linear) {
    for (int f = 0; f < kFrames; ++f) {
        auto* model = new FXModel;
        auto* mesh = new FXMesh;
        mesh->Realloc(vertices, 3);
        for (int v = 0; v < vertices; ++v) {
            tagFXVertex& vertex = mesh->vertices[v];
            vertex = {};
            const float angle = static_cast<float>(v) * 0.01f + static_cast<float>(f);
            vertex.pos[0] = std::sin(angle);
            vertex.pos[1] = std::cos(angle);
            vertex.pos[2] = angle * 0.001f;
            vertex.normal[2] = 1;
        }
        for (int i = 0; i < 3; ++i)
            mesh->indices[i] = i;
        model->meshes.Push(mesh);
        animation.models.Push(model);
        animation.frameTimes.Push(1000000);
    }
    animation.loop = false;
    animation.linear = linear;
    animation.UpdateInterpolation(true, true);
    animation.StartAnim(1000);
    animation.frame = 1; // a segment with neighbours on both sides
    animation.UpdateIFrame();
}

void localCopyOfTheVertices(benchmark::State& state) {
    FXAnim animation;
    localPrepare(animation, static_cast<int>(state.range(0)), true);
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
    localPrepare(animation, static_cast<int>(state.range(0)), linear);
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
