// The scrambling of a package's body: its own inverse.
#pragma once

#include <cstddef>

// In place: with N the integer part of the square root of size, the first N*N bytes are a matrix that is
// transposed; the rest stays.
void fxScramble(unsigned char* bytes, std::size_t size);
