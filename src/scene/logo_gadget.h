// The maker's medallion, turning in the lower right corner over its label.
#pragma once

#include "geometry/model.h"
#include "image/material.h"
#include "scene/desk_grid.h"
#include "scene/phaser.h"

extern double rotate_dur; // seconds per turn

// The medallion, a model in -1..1, is 0.18 of the screen's height wide, or of a portrait screen's width; its
// right edge lies at 0.9, its lower one at -0.85. A model that does not load is not drawn, a label without
// its picture is plain.
class FXOrinGadget : public PRender {
public:
    virtual ~FXOrinGadget() = default;

    // From the package entries of the label's picture and the medallion. The device must be current.
    void CreateCN(FXPackage* pck, int pictureId, int modelId);
    // The same with the files "orin_medallion.om" and "label.png"; the medallion is as faint as the label.
    void Create();
    void Destroy();
    // Round on any screen: sized by the height, or by the width of a portrait one. Lit by the scene's lights.
    // Leaves the label's matrix in force and lights off.
    void OnRender(PEnv* env, double time) override;

    bool showModel = true;
    bool needStart = false;
    FXModel medallion;
    FXDesk label;
    FXMaterial labelMat;
    FXPhaser spin;

private:
    void FinishCreate();
    void DrawModel(PEnv* env, double time);
};
