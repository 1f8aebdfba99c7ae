// A window of 1280 x 1024 with OpenGL on it that does nothing: for programs that draw into the recorder and
// need no script.
#include "fakes/gl_recorder.h"

namespace {

template <class T> T Something() {
    return reinterpret_cast<T>(UINT_PTR{1});
}

} // namespace

int GetSystemMetrics(int index) {
    return index == SM_CXSCREEN ? 1280 : 1024;
}
BOOL GetClientRect(HWND, RECT* area) {
    *area = {0, 0, 1280, 1024};
    return TRUE;
}
BOOL GetWindowRect(HWND window, RECT* area) {
    return GetClientRect(window, area);
}
HWND SetParent(HWND, HWND) {
    return nullptr;
}
BOOL SetWindowPos(HWND, HWND, int, int, int, int, UINT) {
    return TRUE;
}
int MessageBoxA(HWND, const char*, const char*, UINT) {
    return IDOK;
}

HDC GetDC(HWND) {
    return Something<HDC>();
}
int ReleaseDC(HWND, HDC) {
    return 1;
}
int ChoosePixelFormat(HDC, const PIXELFORMATDESCRIPTOR*) {
    return 1;
}
BOOL SetPixelFormat(HDC, int, const PIXELFORMATDESCRIPTOR*) {
    return TRUE;
}
HGLRC wglCreateContext(HDC) {
    return Something<HGLRC>();
}
BOOL wglDeleteContext(HGLRC) {
    return TRUE;
}
BOOL wglMakeCurrent(HDC, HGLRC) {
    return TRUE;
}
PROC wglGetProcAddress(const char* name) {
    static const auto entryPoints = GLRecorder::EntryPoints();
    const auto at = entryPoints.find(name);
    return at != entryPoints.end() ? at->second : nullptr;
}
BOOL SwapBuffers(HDC) {
    return TRUE;
}
