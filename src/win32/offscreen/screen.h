// What the files of this folder share.
#pragma once

#include "win32/window_system.h"

#include <EGL/egl.h>

namespace offscreen {

// The screen, and the window that fills it.
extern Place screen;
extern bool hasWindow;

// gl_surface.cpp: Mesa's renderer that needs no window system, initialised at the first call. EGL_NO_DISPLAY
// when it is missing, or offers no OpenGL.
EGLDisplay SoftwareDisplay();

std::unique_ptr<GlSurface> OpenGl();
PROC FindGlFunction(const char* name);

} // namespace offscreen
