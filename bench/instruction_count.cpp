// Does each piece of work once under callgrind, which writes down how many instructions it took.
// instructions.py runs this and compares the counts with the stored ones.
#include "anim/morph_animation.h"
#include "fakes/gl_recorder.h"
#include "geometry/mesh.h"
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"
#include "host/configuration.h"
#include "inputs.h"
#include "package/package.h"
#include "platform/clock.h"
#include "scene/burning_desk.h"
#include "scene/show.h"
#include "show_stages.h"

#include <valgrind/callgrind.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

constexpr int kDirections = 1024;
constexpr int kVertices = 10000;
constexpr int kIndices = 10000;
constexpr int kMegabytes = 4;

// Counts the second time: the first one touches memory and binds functions.
template <class Work> void localCount(const std::string& name, Work work) {
    work();
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    work();
    CALLGRIND_DUMP_STATS_AT(name.c_str());
    CALLGRIND_STOP_INSTRUMENTATION;
}

void localCountPositionUpdate() {
    FXFireDesk fire;
    fire.Create(kDirections);
    double time = 1000;
    localCount("position-update", [&] { fire.UpdatePositions(time += kBenchStep); });
}

void localCountMorphUpdate(const char* name, bool linear) {
    FXAnim animation;
    PrepareMorph(&animation, kVertices, linear);
    double time = 1000;
    localCount(name, [&] { animation.UpdateIPos(time += 0.01); });
}

void localCountUnpacking(const char* name, bool onePosition) {
    FXMesh sheet;
    MakeSheet(&sheet, kIndices, onePosition);
    FXVectorMap map;
    FXNumPool pool(800000);
    sheet.ToVMap(&map, &pool, nullptr, 0, nullptr);
    FXMesh mesh;
    localCount(name, [&] {
        mesh.Realloc(sheet.vertexCount, sheet.indexCount);
        mesh.FromVMap(&map, &pool);
    });
}

void localCountPackage(const char* name, int flags) {
    const std::string file = MakePackage(kMegabytes, flags);
    localCount(name, [&] {
        FXPackage package;
        package.Load(file.c_str());
    });
    std::filesystem::remove(file);
}

void localCountMorphBuilding() {
    FXAnim morph;
    localCount("morph-building", [&] { LoadMorph(&morph, &show::pck); });
}

// False when the show has no pictures, or a stage ended before its frame: such frames are not those that are
// stored.
bool localCountFrames() {
    GLRecorder::SetNullMode(true);
    show::logsFile = "";
    std::snprintf(orinPath, sizeof orinPath, "%s", TAMBLOR_DATA_DIR);
    BuildScene(reinterpret_cast<HWND>(UINT_PTR{1}), false);
    bool whole = show::desk0_mat.prepared;
    for (int stage = 0; stage < 5; ++stage) {
        double time = EnterStage(stage);
        localCount("frame-of-stage-" + std::to_string(stage),
                   [&] { show::sc.OnRender(&show::gr, time += kBenchStep); });
        whole = whole && show::stage == stage;
    }
    localCountMorphBuilding();
    DestroyScene();
    return whole;
}

} // namespace

int main() {
    fxSetTickSource([] { return std::uint32_t{1000000}; }); // the random numbers too come from the clock
    localCountPositionUpdate();
    localCountMorphUpdate("morph-update-linear", true);
    localCountMorphUpdate("morph-update-splines", false);
    localCountUnpacking("unpacking", false);
    localCountUnpacking("unpacking-one-position", true);
    localCountPackage("package-loading", 0);
    localCountPackage("package-loading-scrambled", FXPackage::kScrambled);
    if (localCountFrames())
        return 0;
    std::fputs("the show was not drawn as it should\n", stderr);
    return 1;
}
