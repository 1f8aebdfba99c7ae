// The desktop on Linux, as the window system in use photographs it.
#include "image/desktop_source.h"
#include "platform/trace.h"
#include "win32/window_system.h"

namespace {

Photograph copy;

} // namespace

bool fxDesktopCopy(int w, int h) {
    std::string problem;
    const bool taken = UsedWindowSystem().PhotographDesktop(w, h, &copy, &problem);
    if (!taken)
        err("%s\n", problem.c_str());
    return taken;
}

bool fxDesktopLock(FXDesktopPixels* pixels) {
    *pixels = {copy.pixels.data(), copy.width * 4, copy.width, copy.height};
    return !copy.pixels.empty();
}

void fxDesktopUnlock() {
    fxDesktopRelease();
}

void fxDesktopRelease() {
    copy = {};
}
