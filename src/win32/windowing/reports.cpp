// What a window system reports becomes messages.
#include "win32/windowing/windowing.h"

#include <algorithm>

namespace {

LPARAM Pair(int low, int high) {
    return (high & 0xFFFF) << 16 | (low & 0xFFFF);
}

// The Return that started the saver is no wish to end it.
bool IsHeld(unsigned code, bool pressed) {
    std::vector<unsigned>& held = programWindow.heldKeys;
    const auto at = std::ranges::find(held, code);
    if (at == held.end())
        return false;
    if (!pressed)
        held.erase(at);
    return true;
}

} // namespace

void ReportHeldKey(unsigned code) {
    programWindow.heldKeys.push_back(code);
}

// With Alt held, and for Alt and F10 themselves, a key is a system key. The saver does not ask which key it
// was, so the keysym stands for it.
void ReportKey(unsigned code, unsigned long keysym, bool altHeld, bool pressed) {
    constexpr unsigned long kAltLeft = 0xFFE9; // as X11 and Wayland number them
    constexpr unsigned long kAltRight = 0xFFEA;
    constexpr unsigned long kF10 = 0xFFC7;
    if (IsHeld(code, pressed))
        return;
    const bool system = altHeld || keysym == kAltLeft || keysym == kAltRight || keysym == kF10;
    const UINT message = pressed ? (system ? WM_SYSKEYDOWN : WM_KEYDOWN) : (system ? WM_SYSKEYUP : WM_KEYUP);
    PostToWindow(message, keysym, 0);
}

void ReportButton(PointerButton button, int x, int y) {
    constexpr UINT kMessages[] = {WM_LBUTTONDOWN, WM_MBUTTONDOWN, WM_RBUTTONDOWN};
    PostToWindow(kMessages[static_cast<int>(button)], 0, Pair(x, y));
}

void ReportPointer(int x, int y) {
    PostToWindow(WM_MOUSEMOVE, 0, Pair(x, y));
}

void ReportActivation(bool active) {
    PostToWindow(WM_ACTIVATEAPP, active ? 1 : 0, 0);
    PostToWindow(WM_ACTIVATE, active ? 1 : 0, 0);
}

void ReportSize(int width, int height) {
    PostToWindow(WM_SIZE, 0, Pair(width, height));
}

void ReportExposure() {
    PostToWindow(WM_PAINT, 0, 0);
}

void ReportCloseRequest() {
    PostToWindow(WM_CLOSE, 0, 0);
}

void ReportDestruction() {
    DestroyWindow(programWindow.handle);
}
