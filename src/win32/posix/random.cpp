// The generator of the C library that the saver was made with, so that a show burns alike on every platform.
#include "win32/win32.h"

namespace {

thread_local std::uint32_t state = 1;

} // namespace

void crt_srand(unsigned seed) {
    state = seed;
}

int crt_rand() {
    state = state * 214013u + 2531011u;
    return static_cast<int>(state >> 16 & 0x7FFFu);
}
