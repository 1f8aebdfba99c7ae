// Random numbers of the effects, from the C library's generator: each thread draws a sequence of its own.
#pragma once

// Starts another sequence, from the last one's next number and the clock.
void fxResetRandom();
// 0.0 to 1.0, both included, in steps of 1/32767.
float fxGetRandom();
