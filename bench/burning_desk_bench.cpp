// One frame of the burning desk at 1024 directions, against a plain copy of the vertices that it writes.
#include "fakes/gl_recorder.h"
#include "render/gl_device.h"
#include "scene/burning_desk.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

namespace {

constexpr int kDirections = 1024;

void localCopyOfItsVertices(benchmark::State& state) {
    FXFireDesk fire;
    fire.Create(kDirections);
    const FXMesh& mesh = fire.desk.mesh;
    std::vector<tagFXVertex> copy(static_cast<std::size_t>(mesh.vertexCount));
    for (auto _ : state) {
        std::copy(mesh.vertices, mesh.vertices + mesh.vertexCount, copy.begin());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(localCopyOfItsVertices)->Name("CopyOfItsVertices");

void localPositionUpdate(benchmark::State& state) {
    FXFireDesk fire;
    fire.Create(kDirections);
    double time = 1000;
    for (auto _ : state) {
        fire.UpdatePositions(time);
        time += 1e-7; // the burn must not run off the screen while it is measured
        benchmark::ClobberMemory();
    }
}
BENCHMARK(localPositionUpdate)->Name("PositionUpdate");

void localBurningFrame(benchmark::State& state) {
    GLRecorder::SetNullMode(true);
    FXGL device;
    FXFireDesk fire;
    fire.Create(kDirections);
    double time = 1000;
    for (auto _ : state) {
        fire.OnRender(&device, time);
        time += 1e-7;
    }
    GLRecorder::SetNullMode(false);
}
BENCHMARK(localBurningFrame)->Name("BurningFrame");

} // namespace
