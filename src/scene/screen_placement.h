// Places a flat picture on the screen by pixels.
#pragma once

#include "base/rect.h"
#include "render/environment.h"
#include "render/matrix.h"

// The owner sets the four sizes, then the position; OnRender applies the matrix that brings a desk at rest
// onto the picture's pixels. Sizes of 0 place it over the whole screen.
class FXScrPos01 : public PRender {
public:
    virtual ~FXScrPos01() = default;

    void SetPos(float x, float y);     // of the upper left corner, in pixels from the screen's
    void ShiftPos(float dx, float dy); // in fractions of the screen
    void Update();
    void UpdateSize(); // the picture's size in the middle of the screen, whatever the position
    // Narrows the placement, as it is, where an area of w x h is wider in proportion than the screen; mode 0
    // keeps its middle in place, 1 its right edge, any other its left one.
    void UpdateAspectH1(int mode, float w, float h);
    // The picture's pixels on a screen of w x h, rounded down towards 0; nothing without a screen.
    void GetPixelRC(FXRect* rc, int w, int h) const;
    void OnRender(PEnv* env, double time) override; // draws nothing itself
    virtual void Destroy() {}

    float screenW = 0;
    float screenH = 0;
    float picW = 0;
    float picH = 0;
    float posX = 0;
    float posY = 0;
    FXMatrix placeMatrix;
    bool relative = false; // on top of the matrix in force

private:
    bool HasSizes() const { return screenW > 0 && screenH > 0 && picW > 0 && picH > 0; }
};
