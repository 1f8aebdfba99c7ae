// Where windows and monitors lie.
#pragma once

#include "win32/window_system.h"

#include <X11/Xlib.h>

#include <vector>

namespace x11 {

// Of a window or a pixmap; the depth only where it is asked for. False when it is gone.
bool FindGeometry(Display* display, Drawable drawable, Place* place, unsigned* depth = nullptr);

// The monitors on the X screen, the primary one first: the one flagged so, else the leftmost. Without
// RandR 1.5, or with every monitor off, the whole screen is one; the list is never empty.
std::vector<Place> ListMonitors(Display* display);

// Whether the X server is a client of a Wayland compositor's.
bool IsXwayland(Display* display);

// Asks for the events that report other monitors, or other places of theirs. They come to the root window.
void WatchMonitors(Display* display);
// True for such an event.
bool IsMonitorEvent(Display* display, const XEvent& event);

} // namespace x11
