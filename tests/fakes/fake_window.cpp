// Windows, messages, OpenGL on them, the desktop, and the list of what was done.
#include "fakes/fake_win32.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

FakeWin32 fakeWin32;

namespace {

std::mutex callsMutex; // a loop thread calls, too
std::vector<std::string> calls;
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

void NoteFakeCall(const char* format, ...) {
    if (fakeWin32.isQuiet)
        return;
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    const std::lock_guard lock(callsMutex);
    calls.emplace_back(text);
}

std::vector<std::string> TakeFakeCalls() {
    const std::lock_guard lock(callsMutex);
    return std::exchange(calls, {});
}

void ResetFakeWin32() {
    fakeWin32 = {};
    classProc = nullptr;
    windowLives = quitPosted = false;
    posted.clear();
    TakeFakeCalls();
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

FAKE(BOOL, IsWindow, (HWND window), Lives(window) || fakeWin32.windows.contains(window))
FAKE(BOOL, ShowWindow, (HWND, int show), TRUE, "ShowWindow(%d)", show)
FAKE(BOOL, UpdateWindow, (HWND), TRUE, "UpdateWindow()")
FAKE(BOOL, ValidateRect, (HWND, const RECT*), TRUE, "ValidateRect()")
FAKE(BOOL, GetClientRect, (HWND, RECT* area), (*area = fakeWin32.clientArea, TRUE))
FAKE(BOOL, GetWindowRect, (HWND, RECT*), FALSE)
FAKE(HWND, SetParent, (HWND, HWND), nullptr)
FAKE(HWND, GetForegroundWindow, (), fakeWin32.foreground)
FAKE(BOOL, SetWindowPos, (HWND, HWND, int, int, int, int, UINT), FALSE)

BOOL GetMessageA(MSG* message, HWND, UINT, UINT) {
    while (posted.empty()) {
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
    *message = posted.front();
    posted.pop_front();
    return TRUE;
}

FAKE(BOOL, TranslateMessage, (const MSG*), FALSE)

FAKE(LRESULT, DispatchMessageA, (const MSG* message),
     SendMessageA(message->hwnd, message->message, message->wParam, message->lParam))

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    NoteFakeCall("PostMessageA(0x%x)", message);
    if (Lives(window))
        posted.push_back({window, message, wParam, lParam, 0, {}});
    return Lives(window);
}

FAKE(LRESULT, SendMessageA, (HWND window, UINT message, WPARAM wParam, LPARAM lParam),
     Lives(window) && classProc != nullptr ? classProc(window, message, wParam, lParam) : 0)

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

FAKE(INT_PTR, DialogBoxParamA, (HINSTANCE, const char* name, HWND parent, DLGPROC, LPARAM), -1,
     "DialogBoxParamA(%u, 0x%x)", Number(name), Number(parent))
FAKE(int, MessageBoxA, (HWND, const char* text, const char* title, UINT type), IDOK,
     "MessageBoxA(%s, %s, 0x%x)", text, title ? title : "no title", type)
FAKE(HCURSOR, SetCursor, (HCURSOR cursor), nullptr, "SetCursor(%u)", Number(cursor))
FAKE(BOOL, GetCursorPos, (POINT * position), (*position = fakeWin32.pointer, TRUE))
FAKE(HICON, LoadIconA, (HINSTANCE, const char*), nullptr)
FAKE(HGDIOBJ, GetStockObject, (int), nullptr)
FAKE(int, GetSystemMetrics, (int index),
     index == SM_CXSCREEN ? fakeWin32.screenWidth : fakeWin32.screenHeight)

FAKE(HDC, GetDC, (HWND), FakeHandle<HDC>(0xDC, "GetDC"))
FAKE(int, ReleaseDC, (HWND, HDC), 1, "ReleaseDC()")
FAKE(int, ChoosePixelFormat, (HDC, const PIXELFORMATDESCRIPTOR* wanted),
     (fakeWin32.pixelFormat = *wanted, FakeFails("ChoosePixelFormat") ? 0 : 7))
FAKE(BOOL, SetPixelFormat, (HDC, int format, const PIXELFORMATDESCRIPTOR*), !FakeFails("SetPixelFormat"),
     "SetPixelFormat(%d)", format)
FAKE(HGLRC, wglCreateContext, (HDC), FakeHandle<HGLRC>(0x61, "wglCreateContext"))
FAKE(BOOL, wglDeleteContext, (HGLRC), (SetLastError(0), TRUE), "wglDeleteContext()")
BOOL wglMakeCurrent(HDC dc, HGLRC context) {
    const bool on = dc != nullptr && context != nullptr;
    return NoteFakeCall("wglMakeCurrent(%s)", on ? "on" : "off"), !on || !FakeFails("wglMakeCurrent");
}
FAKE(BOOL, SwapBuffers, (HDC), TRUE, "SwapBuffers()")

FAKE(bool, fxDesktopCopy, (int w, int h), !FakeFails("fxDesktopCopy"), "fxDesktopCopy(%d, %d)", w, h)
FAKE(bool, fxDesktopLock, (FXDesktopPixels * pixels),
     (*pixels = fakeWin32.desktop, !FakeFails("fxDesktopLock")), "fxDesktopLock()")
FAKE(void, fxDesktopUnlock, (), void(), "fxDesktopUnlock()")
FAKE(void, fxDesktopRelease, (), void(), "fxDesktopRelease()")
