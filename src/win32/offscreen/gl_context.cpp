// OpenGL on the window: WGL's calls over EGL. The picture lies in a pixel buffer of EGL's, which has one
// colour buffer: what was drawn can be read before and after SwapBuffers.
#include "win32/offscreen/surface.h"

#include <EGL/eglext.h>

#include <cstdlib>

struct HDC__ {
    EGLConfig config = nullptr;
    EGLSurface surface = EGL_NO_SURFACE;
};

struct HGLRC__ {
    EGLContext context;
};

namespace {

constexpr int kTheFormat = 1; // the number of the chosen pixel format
HDC theDc = nullptr;

// EGL keeps the kind of OpenGL that is meant for each thread, and starts every thread with the one for
// telephones.
bool MeanDesktopOpenGl() {
    return eglBindAPI(EGL_OPENGL_API) == EGL_TRUE;
}

EGLConfig FindConfig(EGLDisplay display, int depthBits, int stencilBits) {
    // clang-format off
    const EGLint wishes[] = {
        EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_COLOR_BUFFER_TYPE, EGL_RGB_BUFFER,
        EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8,
        EGL_DEPTH_SIZE, depthBits, EGL_STENCIL_SIZE, stencilBits, EGL_NONE};
    // clang-format on
    EGLConfig config = nullptr;
    EGLint count = 0;
    return eglChooseConfig(display, wishes, &config, 1, &count) == EGL_TRUE && count > 0 ? config : nullptr;
}

EGLDisplay OpenDisplay() {
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 0); // Mesa's own switch; whoever sets it otherwise is heeded
    EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE)
        return EGL_NO_DISPLAY;
    if (MeanDesktopOpenGl() && FindConfig(display, 1, 0) != nullptr)
        return display;
    eglTerminate(display);
    return EGL_NO_DISPLAY;
}

} // namespace

// Kept until the process ends, and the driver with it: unloading that gains nothing and leaks.
EGLDisplay SoftwareDisplay() {
    static const EGLDisplay display = OpenDisplay();
    return display;
}

HDC GetDC(HWND window) {
    if (theDc != nullptr || !IsOffscreenWindow(window))
        return nullptr;
    theDc = new HDC__;
    return theDc;
}

int ReleaseDC(HWND, HDC dc) {
    if (dc == nullptr || dc != theDc)
        return 0;
    if (dc->surface != EGL_NO_SURFACE)
        eglDestroySurface(offscreenWindow.display, dc->surface);
    delete dc;
    theDc = nullptr;
    return 1;
}

// Nearest to what is wanted: drivers have no 16 bits of stencil, some have none at all.
int ChoosePixelFormat(HDC dc, const PIXELFORMATDESCRIPTOR* wanted) {
    if (dc == nullptr)
        return 0;
    const int ladder[][2] = {
        {wanted->cDepthBits, wanted->cStencilBits}, {wanted->cDepthBits, 8}, {wanted->cDepthBits, 0}, {1, 0}};
    for (const auto& [depthBits, stencilBits] : ladder) {
        dc->config = FindConfig(offscreenWindow.display, depthBits, stencilBits);
        if (dc->config != nullptr)
            return kTheFormat;
    }
    return 0;
}

BOOL SetPixelFormat(HDC dc, int format, const PIXELFORMATDESCRIPTOR*) {
    if (dc == nullptr || format != kTheFormat || dc->config == nullptr || dc->surface != EGL_NO_SURFACE)
        return FALSE;
    const EGLint size[] = {EGL_WIDTH, offscreenWindow.width, EGL_HEIGHT, offscreenWindow.height, EGL_NONE};
    dc->surface = eglCreatePbufferSurface(offscreenWindow.display, dc->config, size);
    return dc->surface != EGL_NO_SURFACE ? TRUE : FALSE;
}

HGLRC wglCreateContext(HDC dc) {
    if (dc == nullptr || dc->surface == EGL_NO_SURFACE || !MeanDesktopOpenGl())
        return nullptr;
    const EGLContext context = eglCreateContext(offscreenWindow.display, dc->config, EGL_NO_CONTEXT, nullptr);
    return context != EGL_NO_CONTEXT ? new HGLRC__{context} : nullptr;
}

BOOL wglDeleteContext(HGLRC context) {
    if (context == nullptr)
        return FALSE;
    MeanDesktopOpenGl();
    if (eglGetCurrentContext() == context->context)
        wglMakeCurrent(nullptr, nullptr);
    eglDestroyContext(offscreenWindow.display, context->context);
    delete context;
    return TRUE;
}

BOOL wglMakeCurrent(HDC dc, HGLRC context) {
    if (offscreenWindow.display == EGL_NO_DISPLAY || !MeanDesktopOpenGl())
        return dc == nullptr ? TRUE : FALSE;
    const bool on = dc != nullptr && context != nullptr;
    const EGLSurface surface = on ? dc->surface : EGL_NO_SURFACE;
    const EGLContext wanted = on ? context->context : EGL_NO_CONTEXT;
    return eglMakeCurrent(offscreenWindow.display, surface, surface, wanted) == EGL_TRUE ? TRUE : FALSE;
}

PROC wglGetProcAddress(const char* name) {
    return reinterpret_cast<PROC>(eglGetProcAddress(name));
}

BOOL SwapBuffers(HDC dc) {
    return dc != nullptr && dc->surface != EGL_NO_SURFACE ? TRUE : FALSE;
}
