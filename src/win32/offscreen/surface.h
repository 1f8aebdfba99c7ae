// What the files of this folder share: the window, as EGL sees it.
#pragma once

#include "win32/win32.h"

#include <EGL/egl.h>

struct OffscreenWindow {
    EGLDisplay display = EGL_NO_DISPLAY; // EGL_NO_DISPLAY: there is no window
    int width = 0;
    int height = 0;
};
extern OffscreenWindow offscreenWindow;

bool IsOffscreenWindow(HWND window);

// gl_context.cpp: Mesa's renderer that needs no window system, initialised at the first call. EGL_NO_DISPLAY
// when it is missing, or offers no OpenGL.
EGLDisplay SoftwareDisplay();
