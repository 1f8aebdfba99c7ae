// The cube that drifts over the show: six reflecting faces under six skins, on a random closed curve.
#pragma once

#include "anim/bezier_spline.h"
#include "image/material.h"
#include "render/matrix.h"
#include "scene/desk_grid.h"
#include "scene/phaser.h"

class FXPackage;

// Comes 15 seconds after its first OnRender, fading in over 2. Moves through points within 0.7 of the origin
// in x and y, on top of the matrix in force, and leaves the last face's matrix. Draws with lighting and depth
// testing as the caller has set them; calls OpenGL directly for the reflection, so its context must be
// current. Where a picture is missing, its faces are plain; without memory for the path it stays at the
// origin.
class FXDemoGadget : public PRender {
public:
    static constexpr int kFaces = 6;

    virtual ~FXDemoGadget() = default;

    // From the package entries of the reflection and the skin. Uploads them: the device must be current.
    void CreateCN(FXPackage* pck, int envId, int skinId);
    void Create(const char* envFile, const char* skinFile); // the same with pictures from files
    void Destroy();
    void OnRender(PEnv* env, double time) override;

    FXDesk faces[kFaces]; // with the reflection, laid on by sphere mapping
    FXDesk skins[kFaces];
    FXMaterial envMat;
    FXMaterial skinMat;
    FXMatrix faceMats[kFaces]; // from the face -1..1 at z = 0 to its side of the cube -1..1
    FXPhaser spinX;            // a turn in 56 seconds
    FXPhaser spinY;            // a turn in 72
    FXBezierSpline path;       // twenty points and back to the first
    FXPhaser travel;           // once along it
    bool needStart = true;     // OnRender has not been called since Create
    bool waiting = true;       // not to be seen yet
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
