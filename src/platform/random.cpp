#include "platform/random.h"

#include "platform/clock.h"

#include <atomic>

namespace {

std::atomic<std::uint32_t> state = 1;

// The linear congruential generator of Microsoft's C library: state * 214013 + 2531011 modulo 2^32, bits 16
// to 30, which makes 0..32767. The effects were tuned with it, and a show burns alike on every platform.
int localRand() {
    std::uint32_t before = state.load(std::memory_order_relaxed);
    std::uint32_t after = 0;
    do
        after = before * 214013u + 2531011u;
    while (!state.compare_exchange_weak(before, after, std::memory_order_relaxed));
    return static_cast<int>(after >> 16 & 0x7FFFu);
}

} // namespace

void fxSeedRandom(std::uint32_t seed) {
    state = seed;
}

void fxResetRandom() {
    fxSeedRandom(static_cast<std::uint32_t>(localRand()) * fxGetTicks());
}

float fxGetRandom() {
    return static_cast<float>(localRand() / 32767.0);
}
