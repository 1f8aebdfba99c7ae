// The platform of the film tool and the picture tests: one window that lies in memory alone, drawn by
// software OpenGL, and a desktop picture of the caller's.
#pragma once

#include "win32/win32.h"

// The window is the whole screen: width x height pixels, 1 to 16384 each. It is drawn in software even where
// there is a graphics card, so that a show looks alike on every machine. Null when there is no software
// OpenGL, or when the window is open already.
HWND OffscreenOpen(int width, int height);
// Device contexts and OpenGL contexts are released before. Closed already, nothing happens.
void OffscreenClose();

// What is photographed from now on; copied. Top row first; blue, green, red, unused per pixel; pitch: bytes
// from one row to the next. A null picture or one of no size leaves no desktop, and then photographs fail.
void OffscreenSetDesktop(const unsigned char* bgrx, int width, int height, int pitch);

struct OffscreenDesktop {
    const unsigned char* bgrx; // null: there is none
    int width;
    int height; // rows follow each other without a gap
};
// The picture last set, for the desktop source; valid until the next is set.
OffscreenDesktop OffscreenGetDesktop();
