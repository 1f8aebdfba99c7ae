// OpenGL on the window, by EGL. The picture lies in a pixel buffer of EGL's, which has one colour buffer:
// what was drawn can be read before and after Swap.
#include "win32/egl/desktop_gl.h"
#include "win32/offscreen/screen.h"

#include <EGL/eglext.h>

#include <cstdlib>

namespace offscreen {

namespace {

EGLDisplay OpenDisplay() {
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 0); // Mesa's own switch; whoever sets it otherwise is heeded
    EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE)
        return EGL_NO_DISPLAY;
    if (MeanDesktopOpenGl() && !ListGlConfigs(display, EGL_PBUFFER_BIT).empty())
        return display;
    eglTerminate(display);
    return EGL_NO_DISPLAY;
}

class EglSurface final : public GlSurface {
public:
    EglSurface() = default;
    ~EglSurface() override {
        if (surface_ != EGL_NO_SURFACE)
            eglDestroySurface(SoftwareDisplay(), surface_);
    }

    bool ListConfigs(std::vector<GlConfig>* configs) override {
        *configs = ListGlConfigs(SoftwareDisplay(), EGL_PBUFFER_BIT);
        return true;
    }

    bool DrawsInSoftware() override { return true; }

    bool Create(const GlConfig& config) override {
        const EGLint size[] = {EGL_WIDTH, screen.width, EGL_HEIGHT, screen.height, EGL_NONE};
        config_ = config.native;
        surface_ = eglCreatePbufferSurface(SoftwareDisplay(), config_, size);
        return surface_ != EGL_NO_SURFACE;
    }

    std::unique_ptr<GlContext> CreateContext() override {
        return EglContext::Create(SoftwareDisplay(), config_);
    }

    bool MakeCurrent(GlContext* context) override {
        return EglContext::MakeCurrent(SoftwareDisplay(), surface_, context);
    }

    bool Swap() override { return true; }

private:
    EGLConfig config_ = nullptr;
    EGLSurface surface_ = EGL_NO_SURFACE;
};

} // namespace

// Kept until the process ends, and the driver with it: unloading that gains nothing and leaks.
EGLDisplay SoftwareDisplay() {
    static const EGLDisplay display = OpenDisplay();
    return display;
}

std::unique_ptr<GlSurface> OpenGl() {
    return std::make_unique<EglSurface>();
}

PROC FindGlFunction(const char* name) {
    return reinterpret_cast<PROC>(eglGetProcAddress(name));
}

} // namespace offscreen
