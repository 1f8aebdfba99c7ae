// What the library soak_spy, loaded into the saver before all others, tells the test: through a file that
// both map. Each number is as it was at the last frame shown.
#pragma once

#include <cstdint>

struct SoakSpy {
    std::uint32_t tick;     // of the saver's clock, for which that frame was drawn; it came before the rest
    std::uint32_t frames;   // shown
    std::uint32_t textures; // that OpenGL keeps
    std::uint32_t uploads;  // pictures handed to OpenGL since the start
    std::uint32_t lists;    // and other objects of OpenGL's; the saver needs none
    std::uint32_t proxy;    // the greatest number that an object of Wayland's has had; they are used again
    std::uint64_t heap;     // bytes in use; looked at now and then
};
