#include "image/canvas.h"

#include "image/colors.h"

#include <algorithm>
#include <cstddef>

void FXCanvas::Clear(const float* rgba) {
    FXPixmap::Clear(fxColToInt1(rgba));
}

void FXCanvas::Destroy() {
    FXPixmap::Destroy();
    opaque = true;
    alphaFromRed = false;
}

bool FXCanvas::Copy(const FXCanvas* src) {
    if (!Realloc(src->usedWidth, src->usedHeight))
        return false;
    for (int y = 0; y < usedHeight; ++y) {
        const std::uint32_t* from = src->pixels + static_cast<std::ptrdiff_t>(y) * src->width;
        std::uint32_t* to = pixels + static_cast<std::ptrdiff_t>(y) * width;
        std::copy_n(from, usedWidth, to);
        if (std::any_of(to, to + usedWidth, [](std::uint32_t pixel) { return pixel >> 24 != 255u; }))
            opaque = false;
    }
    return true;
}
