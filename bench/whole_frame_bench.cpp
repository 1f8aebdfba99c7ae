// Whole frames at 1920 x 1080 with software OpenGL, stage by stage; run beside frame_bench.cpp's figures.
#include "film/show_driver.h"
#include "host/configuration.h"
#include "render/gl.h"
#include "scene/show.h"
#include "show_stages.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

namespace {

ShowDriver driver;

void localWholeFrame(benchmark::State& state) {
    show::gr.SetAct(true);
    double time = EnterStage(static_cast<int>(state.range(0)));
    glFinish();
    for (auto _ : state) {
        show::sc.OnRender(&show::gr, time += kBenchStep);
        glFinish();
    }
    if (show::stage != state.range(0))
        state.SkipWithError("the stage ended");
    show::gr.SetAct(false);
}
BENCHMARK(localWholeFrame)
    ->Name("WholeFrame")
    ->ArgName("stage")
    ->DenseRange(0, 4)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    ShowDriver::Settings settings;
    settings.width = 1920;
    settings.height = 1080;
    settings.dataFolder = TAMBLOR_DATA_DIR;
    std::string error;
    if (!driver.Open(settings, &error)) {
        std::fprintf(stderr, "tamblor_bench_gl: %s\n", error.c_str());
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    driver.Close();
    return 0;
}
