#include "fakes/fake_desktop.h"

FakeDesktop fakeDesktop;

bool fxDesktopCopy(int w, int h) {
    fakeDesktop.calls += "copy " + std::to_string(w) + "x" + std::to_string(h);
    return fakeDesktop.held = !fakeDesktop.copyFails;
}

bool fxDesktopLock(FXDesktopPixels* pixels) {
    fakeDesktop.calls += ", lock";
    *pixels = fakeDesktop.pixels;
    return !fakeDesktop.lockFails;
}

void fxDesktopUnlock() {
    fakeDesktop.calls += ", unlock";
    fakeDesktop.held = false;
}

void fxDesktopRelease() {
    fakeDesktop.calls += fakeDesktop.calls.empty() ? "release" : ", release";
    fakeDesktop.atRelease();
    fakeDesktop.held = false;
}
