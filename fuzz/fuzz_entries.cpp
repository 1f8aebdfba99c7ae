// Any bytes as an entry of a package: loaded as a model, an animation and a material library, moved as the
// show moves it, saved and loaded again. What comes out must be whole: every index below its mesh's vertex
// count.
#include "anim/morph_animation.h"
#include "geometry/mesh.h"
#include "image/material_library.h"
#include "package/package.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

constexpr int kEntry = 7;

void Expect(bool good) {
    if (!good)
        std::abort();
}

const std::string& WorkFile() {
    static const std::string name =
        (std::filesystem::temp_directory_path() / ("tamblor-fuzz-entry-" + std::to_string(getpid())))
            .string();
    static const struct Remover {
        ~Remover() { std::filesystem::remove(name); }
    } remover;
    return name;
}

std::string Ints(std::initializer_list<std::int32_t> values) {
    return {reinterpret_cast<const char*>(values.begin()), 4 * values.size()};
}

void WritePackage(const unsigned char* bytes, std::size_t size) {
    std::ofstream file(WorkFile(), std::ios::binary);
    file << Ints({5}) << "pck01" << Ints({1, kEntry, 1, 0, 1, static_cast<std::int32_t>(size), 1, kRaw});
    file.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
}

void ExpectWhole(const FXModel& model) {
    for (const FXMesh* mesh : model.meshes)
        for (int i = 0; mesh != nullptr && i < mesh->indexCount; ++i)
            Expect(mesh->indices[i] >= 0 && mesh->indices[i] < mesh->vertexCount);
}

void TryModel(FXPackage* package) {
    FXModel model;
    Expect(model.LoadCN(package, kEntry));
    model.UpdateMeshes();
    ExpectWhole(model);
    model.UnitizeStretch();
    model.Normalize(false);
    const int vertices = model.GetTotalVertices();
    FXModel again;
    Expect(model.Save(WorkFile().c_str()) && again.Load(WorkFile().c_str()));
    again.UpdateMeshes();
    ExpectWhole(again);
    Expect(again.GetTotalVertices() <= vertices);
}

void TryAnimation(FXPackage* package) {
    FXAnim animation;
    if (!animation.LoadCN(package, kEntry))
        return;
    for (const FXModel* model : animation.models)
        if (model != nullptr)
            ExpectWhole(*model);
    const int last = animation.models.count - 1;
    animation.UnitizeStretch1(last);
    animation.ComputeFrontTexCoords(last, -1);
    for (const bool linear : {true, false}) {
        animation.linear = linear;
        animation.UpdateInterpolation(true, true);
        animation.StartAnim(10);
        for (double time = 10; time < 14; time += 0.3) {
            if (animation.playing && time - animation.startTime >= animation.frameDuration)
                animation.ContinueAnim(time), ++animation.frame, animation.UpdateIFrame();
            animation.UpdateIPos(time);
        }
    }
    static_cast<void>(animation.Save(WorkFile().c_str()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    WritePackage(bytes, size);
    FXPackage package;
    Expect(package.Load(WorkFile().c_str()));
    FXMatlib library;
    Expect(library.LoadC(&package, std::to_string(kEntry).c_str()));
    TryModel(&package);
    TryAnimation(&package);
    return 0;
}
