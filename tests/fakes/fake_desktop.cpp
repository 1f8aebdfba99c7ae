#include "fakes/fake_desktop.h"

FakeDesktop fakeDesktop;

namespace {

void Note(const std::string& call) {
    fakeDesktop.calls += (fakeDesktop.calls.empty() ? "" : ", ") + call;
}

} // namespace

bool fxDesktopCopy(int w, int h) {
    Note("copy " + std::to_string(w) + "x" + std::to_string(h));
    fakeDesktop.held = !fakeDesktop.copyFails;
    return fakeDesktop.held;
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
    fakeDesktop.atRelease();
    fakeDesktop.held = false;
}
