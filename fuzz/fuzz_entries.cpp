// Any bytes as an entry of a package: loaded as a model, an animation and a material library, moved as the
// show moves it, saved and loaded again. What comes out must be whole: every index below its mesh's vertex
// count.
#include "anim/morph_animation.h"
#include "entry_package.h"
#include "geometry/mesh.h"
#include "image/material_library.h"
#include "package/package.h"

#include <string>

namespace {

void localExpectWhole(const FXModel& model) {
    for (const FXMesh* mesh : model.meshes)
        for (int i = 0; mesh != nullptr && i < mesh->indexCount; ++i)
            Expect(mesh->indices[i] >= 0 && mesh->indices[i] < mesh->vertexCount);
}

void localTryModel(FXPackage* package, std::size_t size) {
    FXModel model;
    {
        const FewElements few(size);
        Expect(model.LoadCN(package, kEntry));
    }
    model.UpdateMeshes();
    localExpectWhole(model);
    model.UnitizeStretch();
    model.Normalize(false);
    const int vertices = model.GetTotalVertices();
    FXModel again;
    Expect(model.Save(WorkFile().c_str()) && again.Load(WorkFile().c_str()));
    again.UpdateMeshes();
    localExpectWhole(again);
    Expect(again.GetTotalVertices() <= vertices);
}

void localTryAnimation(FXPackage* package, std::size_t size) {
    FXAnim animation;
    {
        const FewElements few(size);
        if (!animation.LoadCN(package, kEntry))
            return;
    }
    for (const FXModel* model : animation.models)
        if (model != nullptr)
            localExpectWhole(*model);
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
    WritePackage({bytes, size}, kRaw);
    FXPackage package;
    Expect(package.Load(WorkFile().c_str()));
    {
        const FewElements few(size);
        FXMatlib library;
        Expect(library.LoadC(&package, std::to_string(kEntry).c_str()));
    }
    localTryModel(&package, size);
    localTryAnimation(&package, size);
    return 0;
}
