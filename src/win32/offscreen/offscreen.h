// The window system of the film tool and the picture tests: a screen in memory alone, drawn by software
// OpenGL, with a desktop picture of the caller's. Only the window that fills it is ever made.
#pragma once

// From now on this is the window system in use, with a screen of width x height pixels, 1 to 16384 each. It
// is drawn in software even where there is a graphics card, so that a show looks alike on every machine.
// False when there is no software OpenGL. Called while there is no window.
bool OffscreenSetScreen(int width, int height);

// What is photographed from now on; copied. Top row first; blue, green, red, unused per pixel; pitch: bytes
// from one row to the next. A null picture or one of no size leaves no desktop, and then photographs fail.
void OffscreenSetDesktop(const unsigned char* bgrx, int width, int height, int pitch);
