#include "image/canvas.h"

#include "image/colors.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

// The index of the cell at x, brought into 0..size - 1; not a number: 0.
int localCell(float x, int size) {
    if (!(x > 0))
        return 0;
    return x < static_cast<float>(size) ? static_cast<int>(x) : size - 1;
}

} // namespace

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

void FXCanvas::GetColor(float u, float v, float* out) const {
    if (pixels == nullptr)
        return fxColSetBlackT(out);
    const std::ptrdiff_t row = localCell(v * GetHeightF(), height);
    fxColFromInt1(out, pixels[row * width + localCell(u * GetWidthF(), width)]);
}

float FXCanvas::GetBump(float u, float v) const {
    float color[4];
    GetColor(u, 1 - v, color);
    return color[0];
}

void FXCanvas::ExtendEdges() {
    if (usedWidth == 0 || usedHeight == 0)
        return;
    std::uint32_t* row = pixels;
    for (int y = 0; y < usedHeight; ++y, row += width)
        std::fill(row + usedWidth, row + width, row[usedWidth - 1]);
    for (int y = usedHeight; y < height; ++y, row += width)
        std::copy_n(row - width, width, row);
}
