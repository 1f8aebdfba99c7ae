// Windows, messages and OpenGL on them.
#include "fakes/fake_state.h"

#include <utility>

namespace {

WNDPROC classProc = nullptr;
bool windowLives = false;
std::deque<MSG> posted;
bool quitPosted = false;
int quitCode = 0;

unsigned Number(const void* handle) {
    return static_cast<unsigned>(reinterpret_cast<UINT_PTR>(handle));
}

bool Lives(HWND window) {
    return windowLives && window == kFakeWindow;
}

template <class T> T FakeHandle(UINT_PTR value, const char* function) {
    return FakeFails(function) ? nullptr : reinterpret_cast<T>(value);
}

} // namespace

void ResetFakeWindow() {
    classProc = nullptr;
    windowLives = quitPosted = false;
    posted.clear();
}

void AdoptFakeWindow(WNDPROC proc) {
    classProc = proc;
    windowLives = true;
}

ATOM RegisterClassA(const WNDCLASSA* windowClass) {
    NoteFakeCall("RegisterClassA(%s, 0x%x)", windowClass->lpszClassName, windowClass->style);
    classProc = windowClass->lpfnWndProc;
    return FakeFails("RegisterClassA") ? 0 : 1;
}

HWND CreateWindowExA(DWORD exStyle, const char* name, const char* title, DWORD style, int x, int y, int width,
                     int height, HWND parent, HMENU, HINSTANCE, void*) {
    NoteFakeCall("CreateWindowExA(%u, %s, %s, 0x%x, %d, %d, %d, %d, 0x%x)", exStyle, name, title, style, x, y,
                 width, height, Number(parent));
    if (FakeFails("CreateWindowExA"))
        return nullptr;
    windowLives = true;
    windowLives = SendMessageA(kFakeWindow, WM_CREATE, 0, 0) != -1;
    return windowLives ? kFakeWindow : nullptr;
}

BOOL DestroyWindow(HWND window) {
    if (!Lives(window))
        return FALSE;
    NoteFakeCall("DestroyWindow()");
    SendMessageA(window, WM_DESTROY, 0, 0);
    windowLives = false;
    posted.clear();
    return TRUE;
}

BOOL IsWindow(HWND window) {
    return Lives(window) || fakeWin32.windows.contains(window);
}
BOOL ShowWindow(HWND, int show) {
    return NoteFakeCall("ShowWindow(%d)", show), TRUE;
}
BOOL UpdateWindow(HWND) {
    return NoteFakeCall("UpdateWindow()"), TRUE;
}
BOOL ValidateRect(HWND, const RECT*) {
    return NoteFakeCall("ValidateRect()"), TRUE;
}
BOOL GetClientRect(HWND, RECT* area) {
    return *area = fakeWin32.clientArea, TRUE;
}
BOOL GetWindowRect(HWND window, RECT* area) {
    const auto at = fakeWin32.windowAreas.find(window);
    return *area = at != fakeWin32.windowAreas.end() ? at->second : fakeWin32.clientArea, TRUE;
}
HWND SetParent(HWND, HWND parent) {
    NoteFakeCall("SetParent(0x%x)", Number(parent));
    return std::exchange(fakeWin32.parent, parent);
}
HWND GetForegroundWindow() {
    return fakeWin32.foreground;
}

BOOL SetWindowPos(HWND, HWND, int x, int y, int width, int height, UINT flags) {
    return NoteFakeCall("SetWindowPos(%d, %d, %d, %d, %u)", x, y, width, height, flags), TRUE;
}

BOOL GetMessageA(MSG* message, HWND, UINT, UINT) {
    for (;;) {
        if (!posted.empty()) {
            *message = posted.front();
            posted.pop_front();
            return TRUE;
        }
        if (quitPosted) {
            *message = {};
            message->message = WM_QUIT;
            message->wParam = static_cast<WPARAM>(quitCode);
            return FALSE;
        }
        if (fakeWin32.steps.empty())
            return -1;
        const std::function<void()> step = fakeWin32.steps.front();
        fakeWin32.steps.pop_front();
        step();
    }
}

BOOL TranslateMessage(const MSG*) {
    return FALSE;
}

LRESULT DispatchMessageA(const MSG* message) {
    return SendMessageA(message->hwnd, message->message, message->wParam, message->lParam);
}

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    NoteFakeCall("PostMessageA(0x%x)", message);
    if (Lives(window))
        posted.push_back({window, message, wParam, lParam, 0, {}});
    return Lives(window);
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return Lives(window) && classProc != nullptr ? classProc(window, message, wParam, lParam) : 0;
}

void PostQuitMessage(int exitCode) {
    NoteFakeCall("PostQuitMessage(%d)", exitCode);
    quitPosted = true;
    quitCode = exitCode;
}

LRESULT DefWindowProcA(HWND window, UINT message, WPARAM, LPARAM) {
    NoteFakeCall("DefWindowProcA(0x%x)", message);
    if (message == WM_CLOSE)
        DestroyWindow(window);
    return 0;
}

INT_PTR DialogBoxParamA(HINSTANCE, const char* name, HWND parent, DLGPROC, LPARAM) {
    return NoteFakeCall("DialogBoxParamA(%u, 0x%x)", Number(name), Number(parent)), -1;
}

int MessageBoxA(HWND, const char* text, const char* title, UINT type) {
    return NoteFakeCall("MessageBoxA(%s, %s, 0x%x)", text, title ? title : "no title", type), IDOK;
}

HCURSOR SetCursor(HCURSOR cursor) {
    return NoteFakeCall("SetCursor(%u)", Number(cursor)), nullptr;
}
BOOL GetCursorPos(POINT* position) {
    return *position = fakeWin32.pointer, TRUE;
}
HICON LoadIconA(HINSTANCE, const char*) {
    return nullptr;
}
HGDIOBJ GetStockObject(int) {
    return nullptr;
}

int GetSystemMetrics(int index) {
    return index == SM_CXSCREEN ? fakeWin32.screenWidth : index == SM_CYSCREEN ? fakeWin32.screenHeight : 0;
}

HDC GetDC(HWND) {
    return FakeHandle<HDC>(0xDC, "GetDC");
}
int ReleaseDC(HWND, HDC) {
    return NoteFakeCall("ReleaseDC()"), 1;
}

int ChoosePixelFormat(HDC, const PIXELFORMATDESCRIPTOR* wanted) {
    fakeWin32.pixelFormat = *wanted;
    return FakeFails("ChoosePixelFormat") ? 0 : 7;
}

BOOL SetPixelFormat(HDC, int format, const PIXELFORMATDESCRIPTOR*) {
    return NoteFakeCall("SetPixelFormat(%d)", format), !FakeFails("SetPixelFormat");
}

HGLRC wglCreateContext(HDC) {
    return FakeHandle<HGLRC>(0x61, "wglCreateContext");
}
BOOL wglDeleteContext(HGLRC) {
    fakeWin32.lastError = 0;
    return NoteFakeCall("wglDeleteContext()"), TRUE;
}

BOOL wglMakeCurrent(HDC dc, HGLRC context) {
    const bool on = dc != nullptr && context != nullptr;
    return NoteFakeCall("wglMakeCurrent(%s)", on ? "on" : "off"), !on || !FakeFails("wglMakeCurrent");
}

PROC wglGetProcAddress(const char* name) {
    const auto entry = fakeWin32.glEntryPoints.find(name);
    return entry != fakeWin32.glEntryPoints.end() ? entry->second : nullptr;
}

BOOL SwapBuffers(HDC) {
    return NoteFakeCall("SwapBuffers()"), TRUE;
}
