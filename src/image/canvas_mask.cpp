// A second picture as the alpha of the first.
#include "image/canvas.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

bool FXCanvas::LoadMaskCN(FXPackage* pkg, int entry) {
    FXCanvas mask;
    return mask.CreateFromPictCN(pkg, entry) && TakeMask(mask);
}

bool FXCanvas::LoadMaskC(FXPackage* pkg, const char* text) {
    int entry = 0;
    return std::sscanf(text, "%d", &entry) == 1 && LoadMaskCN(pkg, entry);
}

bool FXCanvas::LoadMask(const char* fileName) {
    FXCanvas mask;
    mask.detectTrans = false; // its red is wanted, whatever its name
    return mask.CreateFromPict(fileName) && TakeMask(mask);
}

bool FXCanvas::TakeMask(const FXCanvas& mask) {
    if (mask.usedWidth > usedWidth || mask.usedHeight > usedHeight)
        return false;
    opaque = mask.usedWidth == usedWidth && mask.usedHeight == usedHeight;
    std::uint32_t* pixel = pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, ++pixel) {
            const bool covered = x < mask.usedWidth && y < mask.usedHeight;
            const std::uint32_t alpha =
                covered ? mask.pixels[static_cast<std::ptrdiff_t>(y) * mask.width + x] & 255u : 0;
            *pixel = (*pixel & 0x00FFFFFFu) | alpha << 24;
            if (covered && alpha != 255)
                opaque = false;
        }
    return true;
}
