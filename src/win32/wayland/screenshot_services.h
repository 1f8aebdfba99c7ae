// Pictures of the screen from services on the session bus, for compositors that hand them to no ordinary
// client. Both functions ask once and wait for a few seconds at most; without a picture they give false, an
// empty picture and what was refused in `problem`, a line for the trace.
#pragma once

#include "win32/window_system.h"

#include <string>

namespace wayland {

// What KWin shows on the output of that name, in the output's own pixels. KWin does this for programs alone
// whose desktop entry names the interface.
bool PhotographByKwin(const std::string& output, Photograph* picture, std::string* problem);

// What the desktop's portal for screenshots shows on an output. The portal photographs the desktop as a
// whole, so it is told where the output lies in it: both places as the compositor lays out its outputs,
// `desktop` just around all of them. The picture has width x height pixels, the output's own. The portal may
// ask the user; the file that it makes is deleted.
bool PhotographByPortal(const Place& desktop, const Place& output, int width, int height, Photograph* picture,
                        std::string* problem);

} // namespace wayland
