// A photograph of the whole desktop.
#pragma once

#include "image/canvas.h"
#include "image/desktop_source.h"

// Taken once, before anything of the saver is drawn. The canvas is the picture: opaque, the storage beyond it
// black.
class FXScrShot : public FXCanvas {
public:
    FXScrShot() = default;
    ~FXScrShot() { fxDesktopRelease(); }

    // Photographs the desktop. False, with the canvas as it was (or black, when only the last step fails),
    // when the platform's source fails; why is in the trace.
    bool Update();

    // The conversion alone: the source's pixels, with alpha 255, into a canvas of at least their size.
    void Convert(const FXDesktopPixels& source);
};
