#include "image/desktop_shot.h"

#include "image/colors.h"
#include "win32/win32.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

bool FXScrShot::Update() {
    const int w = GetSystemMetrics(SM_CXSCREEN);
    const int h = GetSystemMetrics(SM_CYSCREEN);
    if (w <= 0 || h <= 0 || !fxDesktopCopy(w, h))
        return false;
    if (!Realloc(w, h)) {
        fxDesktopRelease();
        return false;
    }
    float black[4];
    fxColSetBlack(black);
    Clear(black);
    FXDesktopPixels source;
    if (!fxDesktopLock(&source)) {
        fxDesktopRelease();
        return false;
    }
    Convert(source);
    fxDesktopUnlock();
    return true;
}

void FXScrShot::Convert(const FXDesktopPixels& source) {
    const int w = std::min(source.width, usedWidth);
    const int h = std::min(source.height, usedHeight);
    for (int y = 0; y < h; ++y) {
        const unsigned char* s = source.bytes + static_cast<std::ptrdiff_t>(y) * source.pitch;
        std::uint32_t* row = pixels + static_cast<std::ptrdiff_t>(y) * width;
        for (int x = 0; x < w; ++x, s += 4)
            row[x] = 0xFF000000u | static_cast<std::uint32_t>(s[0]) << 16 |
                     static_cast<std::uint32_t>(s[1]) << 8 | s[2];
    }
}
