// What a GIF says about its picture besides the coded pixels.
#pragma once

#include "codec/pixel_layout.h"
#include "package/package_data.h"

// The screen, and where on it the first frame lies.
struct GifScreen {
    int width = 0; // pixels
    int height = 0;
    int left = 0;
    int top = 0;
    int ground = 0; // the number of the colour beside the frame: the transparent one, if there is one
    CodecPalette palette;
};

// False when the file ends before its first frame. Whether it is large enough for its screen is known already
// (image/picture_header.h).
bool fxReadGifScreen(FXPackageData* file, GifScreen* screen);
// The picture becomes the screen with the frame on it. False when the frame does not lie there, or there is
// no memory.
bool fxPlaceOnScreen(const CodecPicture& frame, const GifScreen& screen, CodecPicture* picture);
