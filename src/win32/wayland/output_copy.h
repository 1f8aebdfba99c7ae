// A copy of what an output shows, made by the compositor. Each function waits for it, for a few seconds at
// most, and gives what went wrong, or "". The photograph is at most so large.
#pragma once

#include "win32/wayland/outputs.h"
#include "win32/wayland/shared_picture.h"

#include <functional>
#include <string>

namespace wayland {

// image_copy_capture.cpp; the compositor offers it
std::string CopyByImageCapture(const Output& output, int width, int height, Photograph* photograph);
// screencopy.cpp
std::string CopyByScreencopy(const Output& output, int width, int height, Photograph* photograph);

// What the protocols' events fill in.
struct Copy {
    SharedPicture picture; // all but its bytes
    bool described = false, done = false, failed = false;
};
inline Copy* CopyOf(void* listenersData) {
    return static_cast<Copy*>(listenersData);
}

// Waits until the copy is described, asks for it in a buffer of that size, and waits for it.
std::string TakeCopy(Copy* copy, const std::function<void(wl_buffer*)>& ask, int width, int height,
                     Photograph* photograph);

} // namespace wayland
