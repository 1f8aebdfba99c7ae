// The window, and the few other things of the platform that a show asks for.
#include "win32/offscreen/offscreen.h"
#include "win32/offscreen/surface.h"

#include <cstdio>
#include <cstring>
#include <vector>

OffscreenWindow offscreenWindow;

namespace {

constexpr int kLargest = 16384; // pixels a side
const HWND kTheWindow = reinterpret_cast<HWND>(static_cast<UINT_PTR>(1));

struct Desktop {
    std::vector<unsigned char> bgrx;
    int width = 0;
    int height = 0;
};
Desktop desktop;

BOOL GetArea(HWND window, RECT* area) {
    const bool found = IsOffscreenWindow(window);
    *area = {0, 0, found ? offscreenWindow.width : 0, found ? offscreenWindow.height : 0};
    return found ? TRUE : FALSE;
}

} // namespace

bool IsOffscreenWindow(HWND window) {
    return window == kTheWindow && offscreenWindow.display != EGL_NO_DISPLAY;
}

HWND OffscreenOpen(int width, int height) {
    if (offscreenWindow.display != EGL_NO_DISPLAY || width < 1 || height < 1 || width > kLargest ||
        height > kLargest)
        return nullptr;
    offscreenWindow = {SoftwareDisplay(), width, height};
    return offscreenWindow.display != EGL_NO_DISPLAY ? kTheWindow : nullptr;
}

void OffscreenClose() {
    offscreenWindow = {};
    desktop = {};
}

void OffscreenSetDesktop(const unsigned char* bgrx, int width, int height, int pitch) {
    desktop = {};
    if (bgrx == nullptr || width < 1 || height < 1 || pitch < 4 * width)
        return;
    const std::size_t row = static_cast<std::size_t>(width) * 4;
    desktop = {std::vector<unsigned char>(row * height), width, height};
    for (int y = 0; y < height; ++y)
        std::memcpy(&desktop.bgrx[row * y], bgrx + static_cast<std::ptrdiff_t>(y) * pitch, row);
}

OffscreenDesktop OffscreenGetDesktop() {
    return {desktop.bgrx.empty() ? nullptr : desktop.bgrx.data(), desktop.width, desktop.height};
}

int GetSystemMetrics(int index) {
    return index == SM_CXSCREEN ? offscreenWindow.width : index == SM_CYSCREEN ? offscreenWindow.height : 0;
}

BOOL GetClientRect(HWND window, RECT* area) {
    return GetArea(window, area);
}

BOOL GetWindowRect(HWND window, RECT* area) {
    return GetArea(window, area);
}

// The window has no parent and always fills its screen.
HWND SetParent(HWND, HWND) {
    return nullptr;
}

BOOL SetWindowPos(HWND window, HWND, int, int, int, int, UINT) {
    return IsOffscreenWindow(window) ? TRUE : FALSE;
}

int MessageBoxA(HWND, const char* text, const char* title, UINT) {
    std::fprintf(stderr, "%s: %s\n", title ? title : "", text ? text : "");
    return IDOK;
}
