// OpenGL on the window, by EGL. The picture lies in a pixel buffer of EGL's, which has one colour buffer:
// what was drawn can be read before and after Swap.
#include "win32/offscreen/screen.h"

#include <EGL/eglext.h>

#include <cstdlib>

namespace offscreen {

namespace {

// EGL keeps for each thread which OpenGL is meant, and starts every thread with OpenGL ES.
bool MeanDesktopOpenGl() {
    return eglBindAPI(EGL_OPENGL_API) == EGL_TRUE;
}

EGLint Attribute(EGLDisplay display, EGLConfig config, EGLint name) {
    EGLint value = 0;
    eglGetConfigAttrib(display, config, name, &value);
    return value;
}

std::vector<GlConfig> ListConfigs(EGLDisplay display) {
    // clang-format off
    constexpr EGLint kWishes[] = {
        EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_COLOR_BUFFER_TYPE, EGL_RGB_BUFFER,
        EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_DEPTH_SIZE, 1, EGL_NONE};
    // clang-format on
    EGLint count = 0;
    eglChooseConfig(display, kWishes, nullptr, 0, &count);
    std::vector<EGLConfig> found(static_cast<std::size_t>(count));
    eglChooseConfig(display, kWishes, found.data(), count, &count);
    std::vector<GlConfig> configs;
    configs.reserve(found.size());
    for (EGLConfig config : found)
        configs.push_back({config, Attribute(display, config, EGL_DEPTH_SIZE),
                           Attribute(display, config, EGL_STENCIL_SIZE),
                           Attribute(display, config, EGL_SAMPLES)});
    return configs;
}

EGLDisplay OpenDisplay() {
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 0); // Mesa's own switch; whoever sets it otherwise is heeded
    EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE)
        return EGL_NO_DISPLAY;
    if (MeanDesktopOpenGl() && !ListConfigs(display).empty())
        return display;
    eglTerminate(display);
    return EGL_NO_DISPLAY;
}

bool MakeCurrentThere(EGLSurface surface, EGLContext context) {
    return MeanDesktopOpenGl() && eglMakeCurrent(SoftwareDisplay(), surface, surface, context) == EGL_TRUE;
}

class EglContext final : public GlContext {
public:
    explicit EglContext(EGLContext context) : context_(context) {}
    ~EglContext() override {
        MeanDesktopOpenGl();
        if (eglGetCurrentContext() == context_)
            MakeCurrentThere(EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(SoftwareDisplay(), context_);
    }
    EGLContext Get() const { return context_; }

private:
    EGLContext context_;
};

class EglSurface final : public GlSurface {
public:
    EglSurface() = default;
    ~EglSurface() override {
        if (surface_ != EGL_NO_SURFACE)
            eglDestroySurface(SoftwareDisplay(), surface_);
    }

    bool ListConfigs(std::vector<GlConfig>* configs) override {
        *configs = offscreen::ListConfigs(SoftwareDisplay());
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
        if (!MeanDesktopOpenGl())
            return nullptr;
        const EGLContext context = eglCreateContext(SoftwareDisplay(), config_, EGL_NO_CONTEXT, nullptr);
        return context != EGL_NO_CONTEXT ? std::make_unique<EglContext>(context) : nullptr;
    }

    bool MakeCurrent(GlContext* context) override {
        return context != nullptr ? MakeCurrentThere(surface_, static_cast<EglContext*>(context)->Get())
                                  : MakeCurrentThere(EGL_NO_SURFACE, EGL_NO_CONTEXT);
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
