// The desktop's picture from a buffer of the test's.
#pragma once

#include "image/desktop_source.h"

#include <string>

struct FakeDesktop {
    FXDesktopPixels pixels = {}; // what the lock shows
    bool copyFails = false;
    bool lockFails = false;

    std::string calls;    // "copy 640x480, lock, unlock, release"
    bool held = false;    // a copy that nobody has given back
    bool isQuiet = false; // nothing is written down
};
extern FakeDesktop fakeDesktop;
