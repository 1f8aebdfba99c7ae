// What the library platform_spy, loaded into the saver before all others, sees of it and does to it. The
// environment says what:
//   TAMBLOR_SPY=FILE                  a PlatformSpy that the test maps, too
//   TAMBLOR_FAILS="glXMakeCurrent 1"  that function of GLX or EGL fails, from its second call on
//   TAMBLOR_LACKS="wl_shm wl_seat"    the compositor has none of these interfaces
//   TAMBLOR_LANGUAGE=1                a library sets the user's language for the whole process
//   TAMBLOR_NO_MEMORY=7               the eighth block that the saver's own code asks for with new is refused
#pragma once

#include <atomic>
#include <cstdint>

struct PlatformSpy {
    enum Place : std::uint32_t { Nowhere, BeforeClearing, BeforeShowing };
    using Number = std::atomic<std::uint32_t>;

    // For the saver.
    Number place;                // where its next frame stops
    Number waitsForClock;        // each frame, until that has gone on
    std::atomic<int> powerLevel; // how far the monitor is off; 0: on, -1: the server cannot turn it off
    char extensions[256];        // of GLX; "" for those of the driver
    int accelerated;             // the renderer says that it is hardware

    // From it.
    Number isHeld;   // a frame, at that place
    Number frames;   // shown
    Number tick;     // of its clock, for which the last one was drawn
    Number textures; // that OpenGL keeps
    Number uploads;  // pictures handed to OpenGL since the start
    Number proxy;    // the greatest number that an object of Wayland's has had; they are used again
    std::atomic<std::uint64_t> heap; // bytes in use; looked at now and then
    char intervalBy[32];             // the function that last set the swap interval
    int interval;
    int samples; // of the configuration that it chose
};
