// The scrambling of a package's body: its own inverse.
#pragma once

#include <cstddef>

// Writes `size` bytes to `to` (which must not overlap): with N the integer part of the square root of size, the first
// N*N bytes are a matrix that is transposed; the rest follows unchanged.
void fxScramble(const unsigned char* from, unsigned char* to, std::size_t size);
