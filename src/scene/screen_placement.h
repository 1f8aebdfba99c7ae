// Places a flat picture on the screen by pixels.
#pragma once

#include "env/drawable.h"
#include "math/matrix.h"

// The owner sets the four sizes, then the position; OnRender applies the matrix that brings a desk at rest
// onto the picture's pixels. Sizes of 0 place it over the whole screen.
class FXScrPos01 : public PRender {
public:
    virtual ~FXScrPos01() = default;

    void SetPos(float x, float y);     // of the upper left corner, in pixels from the screen's
    void ShiftPos(float dx, float dy); // in fractions of the screen
    void Update();
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
};
