// OpenGL on the program's window: WGL's calls above the window system's.
#include "win32/windowing/pixel_format.h"
#include "win32/windowing/windowing.h"

#include <optional>
#include <utility>

// A device context.
struct HDC__ {
    std::unique_ptr<GlSurface> surface; // null: what was tried has failed
    std::optional<GlConfig> config;     // the pixel format, once it is chosen
    bool created = false;               // the surface has it
};

struct HGLRC__ {
    std::unique_ptr<GlContext> context;
    bool works = false; // it has been current
};

namespace {

constexpr int kNotSet = -1;
constexpr int kSamples = 4;   // by default, where a graphics card draws
constexpr int kTheFormat = 1; // the number of the chosen pixel format
HDC theDc = nullptr;
void (*whenThere)() = nullptr;

// No driver comes any more.
void TellThatOpenGlIsThere() {
    if (auto* const function = std::exchange(whenThere, nullptr))
        function();
}

// For the functions that end in a context. There will be no picture: the window shows black instead of what
// lies below.
BOOL Fail(HDC dc, DWORD error) {
    SetLastError(error);
    if (dc == nullptr)
        return FALSE;
    *dc = {};
    UsedWindowSystem().ShowBlack();
    TellThatOpenGlIsThere();
    return FALSE;
}

} // namespace

void CallWhenOpenGlIsThere(void (*function)()) {
    whenThere = function;
}

HDC GetDC(HWND window) {
    if (theDc != nullptr || !IsProgramWindow(window))
        return nullptr;
    std::unique_ptr<GlSurface> surface = UsedWindowSystem().OpenGl();
    if (surface == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        UsedWindowSystem().ShowBlack();
        TellThatOpenGlIsThere();
        return nullptr;
    }
    theDc = new HDC__;
    theDc->surface = std::move(surface);
    return theDc;
}

int ReleaseDC(HWND, HDC dc) {
    if (dc == nullptr || dc != theDc)
        return 0;
    theDc = nullptr;
    delete dc;
    return 1;
}

int ChoosePixelFormat(HDC dc, const PIXELFORMATDESCRIPTOR* wanted) {
    if (dc == nullptr || dc->surface == nullptr)
        return 0;
    std::vector<GlConfig> configs;
    if (!dc->surface->ListConfigs(&configs))
        return Fail(dc, ERROR_NOT_SUPPORTED);
    int samples = Setting("samples", kNotSet);
    if (samples == kNotSet) // else the driver is not asked
        samples = dc->surface->DrawsInSoftware() ? 0 : kSamples;
    const GlConfig* chosen = ChooseConfig(configs, wanted->cDepthBits, wanted->cStencilBits, samples);
    if (chosen == nullptr)
        return Fail(dc, ERROR_BAD_DRIVER);
    dc->config = *chosen;
    return kTheFormat;
}

BOOL SetPixelFormat(HDC dc, int format, const PIXELFORMATDESCRIPTOR*) {
    if (dc == nullptr || format != kTheFormat || !dc->config || dc->created)
        return FALSE;
    dc->created = dc->surface->Create(*dc->config);
    return dc->created ? TRUE : Fail(dc, ERROR_BAD_DRIVER);
}

HGLRC wglCreateContext(HDC dc) {
    if (dc == nullptr || !dc->created)
        return nullptr;
    std::unique_ptr<GlContext> context = dc->surface->CreateContext();
    if (context == nullptr) {
        Fail(dc, ERROR_BAD_DRIVER);
        return nullptr;
    }
    return new HGLRC__{std::move(context)};
}

BOOL wglDeleteContext(HGLRC context) {
    if (context == nullptr)
        return FALSE;
    delete context;
    return TRUE;
}

// The loop's thread comes here at every frame.
BOOL wglMakeCurrent(HDC dc, HGLRC context) {
    if (dc == nullptr || context == nullptr)
        return theDc == nullptr || !theDc->created || theDc->surface->MakeCurrent(nullptr) ? TRUE : FALSE;
    if (dc->created && dc->surface->MakeCurrent(context->context.get())) {
        context->works = true;
        TellThatOpenGlIsThere();
        return TRUE;
    }
    return context->works ? FALSE : Fail(dc, ERROR_BAD_DRIVER);
}

PROC wglGetProcAddress(const char* name) {
    return UsedWindowSystem().FindGlFunction(name);
}

BOOL SwapBuffers(HDC dc) {
    const bool shown = dc != nullptr && dc->created && dc->surface->Swap();
    framePace.Await();
    return shown ? TRUE : FALSE;
}
