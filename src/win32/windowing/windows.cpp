// Windows: the program's own, and questions about others.
#include "win32/posix/settings_file.h"
#include "win32/windowing/windowing.h"

#include <cstdlib>
#include <string>

ProgramWindow programWindow;
FramePace framePace;

namespace {

bool settingsHold = false;

// The one class that the program registers.
std::string className;
WNDPROC classProc = nullptr;

// A clock that a test turns asks for every frame.
int FrameLimit() {
    const bool limited = settingsHold && std::getenv("TAMBLOR_CLOCK") == nullptr;
    return limited ? Setting("max_fps", FramePace::kByDefault) : 0;
}

void Release() {
    UsedWindowSystem().DestroyWindow();
    programWindow = {};
    DropMessages();
}

} // namespace

void HonourSettings() {
    settingsHold = true;
}

int Setting(const char* name, int otherwise) {
    return settingsHold ? SettingNumber(name, otherwise) : otherwise;
}

ATOM RegisterClassA(const WNDCLASSA* windowClass) {
    className = windowClass->lpszClassName;
    classProc = windowClass->lpfnWndProc;
    return 1;
}

// The window is shown only after WM_CREATE: the desktop is photographed in there.
HWND CreateWindowExA(DWORD, const char* name, const char* title, DWORD style, int x, int y, int width,
                     int height, HWND parent, HMENU, HINSTANCE, void*) {
    if (programWindow.handle != nullptr || classProc == nullptr || className != name)
        return nullptr;
    const HWND outer = (style & WS_CHILD) != 0 ? parent : nullptr;
    programWindow.handle = UsedWindowSystem().CreateWindow({outer, {x, y, width, height}, title});
    if (programWindow.handle == nullptr)
        return nullptr;
    programWindow.proc = classProc;
    if (SendMessageA(programWindow.handle, WM_CREATE, 0, 0) == -1) {
        Release();
        return nullptr;
    }
    if ((style & WS_VISIBLE) != 0)
        ShowWindow(programWindow.handle, SW_SHOW);
    return programWindow.handle;
}

BOOL DestroyWindow(HWND window) {
    if (!IsProgramWindow(window) || programWindow.dying)
        return FALSE;
    programWindow.dying = true;
    framePace.End(); // the loop is about to be waited for
    SendMessageA(window, WM_DESTROY, 0, 0);
    Release();
    return TRUE;
}

BOOL ShowWindow(HWND window, int) {
    if (!IsProgramWindow(window))
        return FALSE;
    const bool before = programWindow.shown;
    programWindow.shown = true;
    if (!before) {
        SetMouseThreshold();
        framePace.Begin(FrameLimit());
        UsedWindowSystem().ShowWindow();
    }
    return before ? TRUE : FALSE;
}

HWND SetParent(HWND window, HWND parent) {
    return IsProgramWindow(window) ? UsedWindowSystem().SetParent(parent) : nullptr;
}

BOOL SetWindowPos(HWND window, HWND, int x, int y, int width, int height, UINT) {
    if (!IsProgramWindow(window) || width <= 0 || height <= 0)
        return FALSE;
    return UsedWindowSystem().PlaceWindow({x, y, width, height}) ? TRUE : FALSE;
}

// OpenGL paints, at its own pace.
BOOL UpdateWindow(HWND window) {
    return IsProgramWindow(window) ? TRUE : FALSE;
}

BOOL ValidateRect(HWND window, const RECT*) {
    return IsProgramWindow(window) ? TRUE : FALSE;
}

BOOL IsWindow(HWND window) {
    Place place;
    return UsedWindowSystem().FindWindow(window, &place) ? TRUE : FALSE;
}

BOOL GetClientRect(HWND window, RECT* area) {
    Place place;
    const bool found = UsedWindowSystem().FindWindow(window, &place);
    *area = {0, 0, place.width, place.height};
    return found ? TRUE : FALSE;
}

BOOL GetWindowRect(HWND window, RECT* area) {
    Place place;
    const bool found = UsedWindowSystem().FindWindow(window, &place);
    *area = {place.x, place.y, place.x + place.width, place.y + place.height};
    return found ? TRUE : FALSE;
}
