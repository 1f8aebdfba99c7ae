// What tests of drawn things share: a device that knows what was drawn where, and triangles.
#pragma once

#include "anim/morph_animation.h"
#include "base/file_handle.h"
#include "geometry/model.h"
#include "unit/recorded_device.h"
#include "unit/test_mesh.h"
#include "unit/test_package.h"

struct SceneDevice : FXGL {
    struct Drawn {
        const FXMesh* mesh;
        FXMatrix matrix;
    };
    void RenderMesh(FXMesh* mesh) override {
        drawn.push_back({mesh, matrix});
        FXGL::RenderMesh(mesh);
    }
    std::vector<Drawn> drawn;
};

inline std::vector<TestVertex> TriangleAt(float x) {
    return {{{x, 0, 0}, {0, x, 1}}, {{x + 1, 0, 0}}, {{x, 1, 0}}};
}

inline FXModel* NewModel(const std::vector<std::vector<TestVertex>>& triangles, const char* material = "",
                         const char* library = "") {
    auto* model = new FXModel;
    model->matlibName.Set(library);
    for (const std::vector<TestVertex>& vertices : triangles)
        AddMesh(model, vertices, {0, 1, 2}).materialName.Set(material);
    return model;
}

// A model of one triangle, as it stands in a package.
inline std::string TriangleModel(const TempFolder& folder) {
    const std::unique_ptr<FXModel> model(NewModel({TriangleAt(0)}));
    EXPECT_TRUE(model->Save_v02(fxOpenFile(folder.File("model").c_str(), "wb").get()));
    return folder.Read("model");
}

// A morph as the show has it: fitted by its last key frame, and played once.
inline void Prepare(FXAnim* anim) {
    anim->UnitizeStretch1(anim->models.count - 1);
    anim->Normalize(-1, false);
    anim->ComputeFrontTexCoords(anim->models.count - 1, -1);
    anim->UpdateInterpolation(true, true);
}
inline bool PlaysToItsEnd(FXAnim* anim, PEnv* env) {
    anim->loop = anim->backwards = false;
    anim->StartAnim(0);
    for (int i = 0; i <= anim->frameTimes.count; ++i)
        anim->OnRender(env, anim->startTime + 1.5 * anim->frameDuration);
    return !anim->playing;
}
