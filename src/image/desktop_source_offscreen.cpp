// The desktop where there is no screen: the picture that the program has set.
#include "image/desktop_source.h"
#include "platform/trace.h"
#include "win32/offscreen/offscreen.h"

namespace {

int copyWidth = 0;
int copyHeight = 0;

} // namespace

bool fxDesktopCopy(int w, int h) {
    const OffscreenDesktop desktop = OffscreenGetDesktop();
    if (desktop.bgrx == nullptr || desktop.width < w || desktop.height < h) {
        err("there is no desktop of %d x %d pixels\n", w, h);
        return false;
    }
    copyWidth = w;
    copyHeight = h;
    return true;
}

bool fxDesktopLock(FXDesktopPixels* pixels) {
    const OffscreenDesktop desktop = OffscreenGetDesktop();
    *pixels = {desktop.bgrx, desktop.width * 4, copyWidth, copyHeight};
    return desktop.bgrx != nullptr && copyWidth > 0;
}

void fxDesktopUnlock() {
    fxDesktopRelease();
}

void fxDesktopRelease() {
    copyWidth = copyHeight = 0;
}
