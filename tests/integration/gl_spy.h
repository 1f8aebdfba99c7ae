// What the library gl_spy, loaded into the saver before all others, is told by the test and tells it: through
// a file that both map.
#pragma once

#include <cstdint>

struct GlSpy {
    // For the saver. GLX's extensions, "" for those of the driver; whether the renderer says that it is
    // hardware; how far the monitor is off (0: on), -1 for a server that cannot turn it off.
    char extensions[256];
    int accelerated;
    int powerLevel;
    // From it.
    std::uint32_t frames; // shown
    char intervalBy[32];  // the function that last set the swap interval
    int interval;
    int samples; // of the configuration that it chose
};
