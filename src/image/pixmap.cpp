#include "image/pixmap.h"

#include "base/memory.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

bool FXPixmap::Realloc(int w, int h) {
    if (w < 0 || h < 0 || w > kMostSide || h > kMostSide) {
        Destroy();
        return false;
    }
    const int newWidth = powerOfTwo ? fxPower2(w) : w;
    const int newHeight = powerOfTwo ? fxPower2(h) : h;
    const std::int64_t count = std::int64_t{newWidth} * newHeight;
    if (pixels == nullptr || capacity < count) {
        Destroy();
        if (count <= kMostPixels)
            pixels = static_cast<std::uint32_t*>(
                fxRealloc(nullptr, static_cast<std::size_t>(count) * sizeof *pixels));
        if (pixels == nullptr)
            return false;
        capacity = static_cast<int>(count);
    }
    width = newWidth;
    height = newHeight;
    usedWidth = w;
    usedHeight = h;
    return true;
}

void FXPixmap::Clear(std::uint32_t value) {
    if (pixels != nullptr)
        std::fill_n(pixels, static_cast<std::size_t>(width) * static_cast<std::size_t>(height), value);
}

void FXPixmap::ReleasePixels() {
    std::free(pixels);
    pixels = nullptr;
    capacity = 0;
}

void FXPixmap::MoveFrom(FXPixmap* other) {
    std::free(pixels);
    pixels = std::exchange(other->pixels, nullptr);
    capacity = other->capacity;
    width = other->width;
    height = other->height;
    usedWidth = other->usedWidth;
    usedHeight = other->usedHeight;
    other->Destroy();
}

void FXPixmap::Destroy() {
    ReleasePixels();
    width = height = usedWidth = usedHeight = 0;
}
