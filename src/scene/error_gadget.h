// The error picture in the upper left corner, pixel for pixel.
#pragma once

#include "image/material.h"
#include "scene/desk_grid.h"
#include "scene/screen_placement.h"

class FXPackage;

// Built whether or not there is an error; the owner sets `visible`.
class FXErrGadget : public PRender {
public:
    virtual ~FXErrGadget() = default;

    void CreateCN(FXPackage* pck, int id); // needs the global environment's screen size
    void Create();                         // the same with the file "error_message.png"
    void Destroy();
    void OnRender(PEnv* env, double time) override;

    bool visible = false;
    FXDesk errDesk;
    FXMaterial errMat;
    FXScrPos01 placement;

private:
    template <class Load> void Build(Load load);
};
