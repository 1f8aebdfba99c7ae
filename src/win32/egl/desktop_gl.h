// OpenGL by EGL, which starts every thread with OpenGL ES: what the window systems have in common that use
// it.
#pragma once

#include "win32/window_system.h"

#include <EGL/egl.h>

#include <cstddef>
#include <memory>
#include <vector>

// EGL keeps for each thread which OpenGL is meant. False where it has no desktop OpenGL.
inline bool MeanDesktopOpenGl() {
    return eglBindAPI(EGL_OPENGL_API) == EGL_TRUE;
}

inline EGLint ConfigAttribute(EGLDisplay display, EGLConfig config, EGLint name) {
    EGLint value = 0;
    eglGetConfigAttrib(display, config, name, &value);
    return value;
}

// Those for surfaces of that kind (EGL_WINDOW_BIT, ...), the driver's favourite first.
inline std::vector<GlConfig> ListGlConfigs(EGLDisplay display, EGLint surfaceType) {
    // clang-format off
    const EGLint wishes[] = {
        EGL_SURFACE_TYPE, surfaceType, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_COLOR_BUFFER_TYPE, EGL_RGB_BUFFER,
        EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_DEPTH_SIZE, 1, EGL_NONE};
    // clang-format on
    EGLint count = 0;
    eglChooseConfig(display, wishes, nullptr, 0, &count);
    std::vector<EGLConfig> found(static_cast<std::size_t>(count));
    eglChooseConfig(display, wishes, found.data(), count, &count);
    std::vector<GlConfig> configs;
    configs.reserve(found.size());
    for (EGLConfig config : found)
        configs.push_back({config, ConfigAttribute(display, config, EGL_DEPTH_SIZE),
                           ConfigAttribute(display, config, EGL_STENCIL_SIZE),
                           ConfigAttribute(display, config, EGL_SAMPLES)});
    return configs;
}

class EglContext final : public GlContext {
public:
    // Null when the driver has none.
    static std::unique_ptr<GlContext> Create(EGLDisplay display, EGLConfig config) {
        if (!MeanDesktopOpenGl())
            return nullptr;
        const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
        return context != EGL_NO_CONTEXT ? std::make_unique<EglContext>(display, context) : nullptr;
    }
    EglContext(EGLDisplay display, EGLContext context) : display_(display), context_(context) {}
    ~EglContext() override {
        MeanDesktopOpenGl();
        if (eglGetCurrentContext() == context_)
            eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(display_, context_);
    }
    // On the calling thread, with that surface; a null context: none is current there any more.
    static bool MakeCurrent(EGLDisplay display, EGLSurface surface, GlContext* context) {
        const EGLSurface drawn = context != nullptr ? surface : EGL_NO_SURFACE;
        const EGLContext native =
            context != nullptr ? static_cast<EglContext*>(context)->context_ : EGL_NO_CONTEXT;
        return MeanDesktopOpenGl() && eglMakeCurrent(display, drawn, drawn, native) == EGL_TRUE;
    }

private:
    EGLDisplay display_;
    EGLContext context_;
};
