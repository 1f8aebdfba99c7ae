// A picture in shared memory, as compositors hand it over.
#pragma once

#include "win32/window_system.h"

#include <cstdint>

namespace wayland {

struct SharedPicture {
    const unsigned char* bytes = nullptr;
    std::uint32_t format = 0; // wl_shm's
    int width = 0, height = 0;
    int stride = 0;          // bytes from one row to the next
    bool upsideDown = false; // the lowest row comes first
    int transform = 0;       // the output's, which is still in the picture
};

// Whether the format's pixels can be read.
bool IsKnownFormat(std::uint32_t format);
// As the user sees it on the output, at most so large, from its corner on. The format is a known one.
Photograph ToPhotograph(const SharedPicture& picture, int width, int height);

} // namespace wayland
