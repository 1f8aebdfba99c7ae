// Random numbers of the effects: one generator for all threads, which may draw from it at the same time.
#pragma once

#include <cstdint>

// 0.0 to 1.0, both included, in steps of 1/32767.
float fxGetRandom();
// Starts another sequence, from the last one's next number and the clock.
void fxResetRandom();
// Starts the sequence of that seed: how tests and the film tool repeat a show.
void fxSeedRandom(std::uint32_t seed);
