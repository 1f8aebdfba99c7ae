// What a window system reports becomes messages.
#include "win32/windowing/windowing.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

bool userIsIdle = false;

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

POINT PointerPosition(POINT otherwise) {
    UsedWindowSystem().FindPointer(&otherwise);
    return otherwise;
}

// A desk that shakes moves the pointer by a few pixels around one place, which may wander over the hours. So
// a move counts that leads away from where the pointer came to rest last.
bool IsTremble(POINT now) {
    constexpr DWORD kRestMs = 1000;
    ProgramWindow& window = programWindow;
    const DWORD time = timeGetTime();
    if (time - std::exchange(window.pointerMoved, time) > kRestMs)
        window.pointerRest = window.pointerLast;
    window.pointerLast = now;
    const LONG across = std::abs(now.x - window.pointerRest.x);
    const LONG down = std::abs(now.y - window.pointerRest.y);
    if (std::max(across, down) <= window.mouseThreshold)
        return true;
    window.pointerRest = now;
    return false;
}

} // namespace

void SetMouseThreshold() {
    programWindow.mouseThreshold = Setting("mouse_threshold", 0);
    if (programWindow.mouseThreshold == 0)
        return;
    programWindow.pointerRest = programWindow.pointerLast = PointerPosition({});
    programWindow.pointerMoved = timeGetTime();
}

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

// With a threshold, the position counts that the screen gives: what is reported is relative to one of several
// windows.
void ReportPointer(int x, int y) {
    if (programWindow.mouseThreshold > 0 && IsTremble(PointerPosition({x, y})))
        return;
    PostToWindow(WM_MOUSEMOVE, 0, Pair(x, y));
}

void ReportActivation(bool active) {
    PostToWindow(WM_ACTIVATEAPP, active ? 1 : 0, 0);
    PostToWindow(WM_ACTIVATE, active ? 1 : 0, 0);
}

void ReportSize(int width, int height) {
    PostToWindow(WM_SIZE, 0, Pair(width, height));
}

void ReportVisibility(bool seen) {
    framePace.SetSeen(seen);
}

void ReportExposure() {
    PostToWindow(WM_PAINT, 0, 0);
}

void ReportCloseRequest() {
    PostToWindow(WM_CLOSE, 0, 0);
}

void ReportIdle(bool idle) {
    userIsIdle = idle;
}

void ReportDestruction() {
    DestroyWindow(programWindow.handle);
}
