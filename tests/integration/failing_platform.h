// What the library failing_platform, loaded into the saver before all others, does to it. The environment
// says what:
//   TAMBLOR_FAILS="glXMakeCurrent 1"  that function of GLX or EGL fails, from its second call on
//   TAMBLOR_NO_PROC=1                 there is no /proc and no /sys
//   TAMBLOR_LANGUAGE=1                a library sets the user's language for the whole process
//   TAMBLOR_NO_MEMORY=7               the eighth block that the saver's own code asks for with new is refused
//   TAMBLOR_HOLD=FILE                 frames stop where the file's Hold says
#pragma once

#include <cstdint>

struct Hold {
    enum Place : std::uint32_t { Nowhere, BeforeClearing, BeforeShowing };
    std::uint32_t place;  // for the saver
    std::uint32_t isHeld; // from it
    std::uint32_t frames; // shown
};
