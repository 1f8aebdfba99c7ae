// A picture in memory: decoded from the package, captured from the desktop, or cleared to a colour.
#pragma once

#include "image/pixmap.h"

class FXPackage;

// Loaders leave the canvas as it was when there is no picture to be had, and say so; of one that the codec
// cannot convert, a cleared canvas of its size remains. A picture is never resampled: the storage beyond it
// holds backColor.
class FXCanvas : public FXPixmap {
public:
    void Clear(const float* rgba);
    void Destroy();
    // The used pixels of another canvas. False when there is no memory.
    bool Copy(const FXCanvas* src);

    int GetWidth() const { return usedWidth; }
    int GetHeight() const { return usedHeight; }
    float GetWidthF() const { return static_cast<float>(usedWidth); }
    float GetHeightF() const { return static_cast<float>(usedHeight); }

    // Entry of a package; its number as text; a file. Need the codec (codec.h); false without it.
    bool CreateFromPictCN(FXPackage* pkg, int entry);
    bool CreateFromPictC(FXPackage* pkg, const char* text);
    bool CreateFromPict(const char* fileName);

    bool opaque = true;        // no pixel loaded or copied so far had alpha below 255
    bool detectTrans = true;   // a file with "tran" in its name is loaded with alphaFromRed
    bool alphaFromRed = false; // loading gives a white picture whose alpha is the source's red
    bool clearOnLoad = true;   // loading fills the whole storage with backColor first
    float backColor[4] = {0, 0, 0, 0};
};
