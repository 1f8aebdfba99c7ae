// OpenGL on the window, by EGL.
#include "win32/egl/desktop_gl.h"
#include "win32/posix/last_error.h"
#include "win32/wayland/frames.h"
#include "win32/wayland/wayland.h"

#include <wayland-egl.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

namespace wayland {

namespace {

// Kept until the process ends, and the driver with it: unloading that gains nothing and is a risk.
EGLDisplay GlDisplay() {
    static const EGLDisplay display = [] {
        const EGLDisplay opened = eglGetPlatformDisplay(EGL_PLATFORM_WAYLAND_KHR, Connection(), nullptr);
        return opened != EGL_NO_DISPLAY && eglInitialize(opened, nullptr, nullptr) == EGL_TRUE
                   ? opened
                   : EGL_NO_DISPLAY;
    }();
    return display;
}

// Names may begin alike.
bool HasWord(const char* names, std::string_view name) {
    std::istringstream words(names != nullptr ? names : "");
    return std::find(std::istream_iterator<std::string>(words), {}, name) !=
           std::istream_iterator<std::string>();
}

class EglSurface final : public GlSurface {
public:
    EglSurface() = default;
    ~EglSurface() override {
        if (surface_ != EGL_NO_SURFACE)
            eglDestroySurface(GlDisplay(), surface_);
        if (native_ != nullptr)
            wl_egl_window_destroy(native_);
    }

    bool ListConfigs(std::vector<GlConfig>* configs) override;
    bool DrawsInSoftware() override;
    bool Create(const GlConfig& config) override;
    std::unique_ptr<GlContext> CreateContext() override;
    bool MakeCurrent(GlContext* context) override;
    bool Swap() override;

private:
    wl_egl_window* native_ = nullptr;
    EGLConfig config_ = nullptr;
    EGLSurface surface_ = EGL_NO_SURFACE;
    bool paced_ = false; // EGL has been told not to wait for the monitor
};

// Configurations of 10 bits a colour come first, and cost more. One with alpha may let the desktop through.
bool EglSurface::ListConfigs(std::vector<GlConfig>* configs) {
    if (GlDisplay() == EGL_NO_DISPLAY || !MeanDesktopOpenGl()) {
        SetErrorWords(ERROR_NOT_SUPPORTED,
                      "EGL has no OpenGL for this compositor (Mesa's has it: package libegl-mesa0)");
        return false;
    }
    for (GlConfig config : ListGlConfigs(GlDisplay(), EGL_WINDOW_BIT)) {
        constexpr EGLint kColours[] = {EGL_RED_SIZE, EGL_GREEN_SIZE, EGL_BLUE_SIZE};
        const auto attribute = [&](EGLint name) { return ConfigAttribute(GlDisplay(), config.native, name); };
        config.likeScreen = attribute(EGL_ALPHA_SIZE) == 0;
        if (std::ranges::all_of(kColours, [&](EGLint colour) { return attribute(colour) == 8; }))
            configs->push_back(config);
    }
    return true;
}

// EGL's device says it; where it does not, it counts as software.
bool EglSurface::DrawsInSoftware() {
    const auto displayAttribute =
        reinterpret_cast<PFNEGLQUERYDISPLAYATTRIBEXTPROC>(eglGetProcAddress("eglQueryDisplayAttribEXT"));
    const auto deviceString =
        reinterpret_cast<PFNEGLQUERYDEVICESTRINGEXTPROC>(eglGetProcAddress("eglQueryDeviceStringEXT"));
    EGLAttrib device = 0;
    if (displayAttribute == nullptr || deviceString == nullptr ||
        displayAttribute(GlDisplay(), EGL_DEVICE_EXT, &device) != EGL_TRUE)
        return true;
    const char* extensions = deviceString(reinterpret_cast<EGLDeviceEXT>(device), EGL_EXTENSIONS);
    return extensions == nullptr || HasWord(extensions, "EGL_MESA_device_software");
}

bool EglSurface::Create(const GlConfig& config) {
    config_ = config.native;
    native_ = wl_egl_window_create(WindowSurface(), TheWindow().width, TheWindow().height);
    if (native_ == nullptr)
        return false;
    surface_ = eglCreatePlatformWindowSurface(GlDisplay(), config_, native_, nullptr);
    return surface_ != EGL_NO_SURFACE;
}

std::unique_ptr<GlContext> EglSurface::CreateContext() {
    return EglContext::Create(GlDisplay(), config_);
}

bool EglSurface::MakeCurrent(GlContext* context) {
    int width = 0;
    int height = 0;
    if (context != nullptr && frames.TakeSize(&width, &height))
        wl_egl_window_resize(native_, width, height, 0, 0);
    if (!EglContext::MakeCurrent(GlDisplay(), surface_, context))
        return false;
    if (context != nullptr && !std::exchange(paced_, true))
        eglSwapInterval(GlDisplay(), 0); // which would wait for ever on an output that is off
    return true;
}

// What a lost frame holds is worked off before the loop sleeps, so that an end need not wait for it.
bool EglSurface::Swap() {
    static const auto finish = reinterpret_cast<void (*)()>(eglGetProcAddress("glFinish"));
    bool lost = true;
    const bool done = frames.Show([&] {
        lost = false;
        return eglSwapBuffers(GlDisplay(), surface_) == EGL_TRUE;
    });
    if (lost && finish != nullptr)
        finish();
    return done;
}

} // namespace

std::unique_ptr<GlSurface> OpenGl() {
    return WindowSurface() != nullptr ? std::make_unique<EglSurface>() : nullptr;
}

PROC FindGlFunction(const char* name) {
    return reinterpret_cast<PROC>(eglGetProcAddress(name));
}

} // namespace wayland
