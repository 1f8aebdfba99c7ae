// The error picture in the upper left corner, pixel for pixel.
#pragma once

#include "image/material.h"
#include "scene/desk_grid.h"
#include "scene/screen_placement.h"

class FXPackage;

// Built whether or not there is an error; the owner sets `visible`. Its corner is 10 pixels from the
// screen's, by the screen's size at Create. Draws over everything: without depth test and lights, which it
// leaves off, with its own matrix in force. A picture that does not load fills the screen plain white.
class FXErrGadget : public PRender {
public:
    virtual ~FXErrGadget() = default;

    // From a package entry; needs the global environment, with its device current.
    void CreateCN(FXPackage* pck, int id);
    void Create(); // the same with the file "error_message.png"
    void Destroy();
    void OnRender(PEnv* env, double time) override;

    bool visible = false;
    FXDesk errDesk;
    FXMaterial errMat;
    FXScrPos01 placement;

private:
    template <class Load> void Build(Load load);
};
