// The heap of Tamblor's own code, without what the OpenGL driver and other libraries hold.
#pragma once

#include <cstddef>

// Bytes in use, of blocks taken and given back by code that was linked into this program statically.
std::ptrdiff_t OwnHeapInUse();
