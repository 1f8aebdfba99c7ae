// Our own work in a whole frame of each stage: everything but OpenGL, which is the recorder in its null mode.
#include "fakes/gl_recorder.h"
#include "host/configuration.h"
#include "scene/show.h"
#include "show_stages.h"

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

void localBuildOnce() {
    static const bool built = [] {
        GLRecorder::SetNullMode(true);
        show::logsFile = "";
        std::snprintf(orinPath, sizeof orinPath, "%s", TAMBLOR_DATA_DIR);
        BuildScene(reinterpret_cast<HWND>(UINT_PTR{1}), false);
        return true;
    }();
    static_cast<void>(built);
}

void localOwnWorkInAFrame(benchmark::State& state) {
    localBuildOnce();
    double time = EnterStage(static_cast<int>(state.range(0)));
    for (auto _ : state)
        show::sc.OnRender(&show::gr, time += kBenchStep);
    if (show::stage != state.range(0))
        state.SkipWithError("the stage ended");
}
BENCHMARK(localOwnWorkInAFrame)
    ->Name("OwnWorkInAFrame")
    ->ArgName("stage")
    ->DenseRange(0, 4)
    ->Unit(benchmark::kMicrosecond);

} // namespace
