// The cube that drifts over the show: six reflecting faces under six skins, on a random closed curve.
#pragma once

#include "anim/bezier_spline.h"
#include "image/material.h"
#include "render/matrix.h"
#include "scene/desk_grid.h"
#include "scene/phaser.h"

class FXPackage;

// Shows itself 15 seconds after its first OnRender, fading in over 2. Draws with lighting and depth testing
// as the caller has set them; calls OpenGL directly for the reflection, so its context must be current.
// Leaves the last face's matrix in force.
class FXDemoGadget : public PRender {
public:
    static constexpr int kFaces = 6;

    virtual ~FXDemoGadget() = default;

    void CreateCN(FXPackage* pck, int envId, int skinId);
    void Create(const char* envFile, const char* skinFile); // the same with pictures from files
    void Destroy();
    void OnRender(PEnv* env, double time) override;

    FXDesk faces[kFaces]; // with the reflection, laid on by sphere mapping
    FXDesk skins[kFaces];
    FXMaterial envMat;
    FXMaterial skinMat;
    FXMatrix faceMats[kFaces];
    FXPhaser spinX;
    FXPhaser spinY;
    FXBezierSpline path;
    FXPhaser travel;
    bool needStart = true;
    bool waiting = true;
    bool fading = true;
    FXPhaser delay;
    FXPhaser fade;

private:
    template <class Load> void Build(Load load);
    void CreatePath();
    void FadeIn(PEnv* env, double time);
    void PlaceCube(PEnv* env, double time);
    void DrawFaces(PEnv* env, FXDesk* desks, const FXMatrix& cube, double time);
};
