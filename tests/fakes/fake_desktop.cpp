#include "fakes/fake_desktop.h"

FakeDesktop fakeDesktop;

namespace {

void Note(const std::string& call) {
    if (!fakeDesktop.isQuiet)
        fakeDesktop.calls += fakeDesktop.calls.empty() ? call : ", " + call;
}

} // namespace

bool fxDesktopCopy(int w, int h) {
    Note("copy " + std::to_string(w) + "x" + std::to_string(h));
    return fakeDesktop.held = !fakeDesktop.copyFails;
}

bool fxDesktopLock(FXDesktopPixels* pixels) {
    Note("lock");
    *pixels = fakeDesktop.pixels;
    return !fakeDesktop.lockFails;
}

void fxDesktopUnlock() {
    Note("unlock");
    fakeDesktop.held = false;
}

void fxDesktopRelease() {
    Note("release");
    fakeDesktop.held = false;
}
