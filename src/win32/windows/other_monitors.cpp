// One black window over the whole desktop, with a hole where the primary monitor is. It belongs to the show's
// window: it stays above that one's place, and goes when that does.
#include "win32/other_monitors.h"

namespace {

constexpr const char* kClassName = "TamblorCoverClass";

HWND localShow(HWND cover) {
    return GetWindow(cover, GW_OWNER);
}

// What of the desktop the primary monitor does not show, in the cover's own coordinates. May be empty.
HRGN localRest(const RECT& desktop, int width, int height) {
    HRGN rest = CreateRectRgn(0, 0, desktop.right, desktop.bottom);
    HRGN primary = CreateRectRgn(-desktop.left, -desktop.top, width - desktop.left, height - desktop.top);
    CombineRgn(rest, rest, primary, RGN_DIFF);
    DeleteObject(primary);
    return rest;
}

// The primary monitor's corner is the origin; right and bottom are the desktop's extents.
void localFit(HWND cover) {
    const RECT desktop = {GetSystemMetrics(SM_XVIRTUALSCREEN), GetSystemMetrics(SM_YVIRTUALSCREEN),
                          GetSystemMetrics(SM_CXVIRTUALSCREEN), GetSystemMetrics(SM_CYVIRTUALSCREEN)};
    const int width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
    HRGN rest = localRest(desktop, width, height);
    RECT box = {};
    const bool needed = GetRgnBox(rest, &box) != NULLREGION;
    SetWindowPos(localShow(cover), nullptr, 0, 0, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    SetWindowRgn(cover, rest, TRUE); // which keeps the region
    SetWindowPos(cover, HWND_TOPMOST, desktop.left, desktop.top, desktop.right, desktop.bottom,
                 SWP_NOACTIVATE | (needed ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
}

LRESULT CALLBACK localProcedure(HWND cover, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN:
        return SendMessageA(localShow(cover), message, wParam, lParam);
    case WM_MOUSEACTIVATE: // the keyboard stays with the show
        return MA_NOACTIVATE;
    case WM_SETCURSOR:
        SetCursor(nullptr);
        return TRUE;
    case WM_DISPLAYCHANGE:
        localFit(cover);
        return 0;
    case WM_CLOSE:
        return 0;
    default:
        return DefWindowProcA(cover, message, wParam, lParam);
    }
}

} // namespace

void CoverOtherMonitors(HWND show) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = localProcedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = kClassName;
    RegisterClassA(&windowClass);
    const HWND cover = CreateWindowExA(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kClassName, "",
                                       WS_POPUP, 0, 0, 0, 0, show, nullptr, windowClass.hInstance, nullptr);
    if (cover != nullptr) // without it the other monitors stay as they are
        localFit(cover);
}
