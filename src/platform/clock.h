// The time base: every motion is computed from fxGetTime, none from a count of frames.
#pragma once

#include <cstdint>

// Milliseconds since the system started; wraps to 0 after 2^32 (about 49.7 days).
using FXTickSource = std::uint32_t (*)();

std::uint32_t fxGetTicks();
// Replaces the platform's clock; null restores it. Tests and the film tool drive the show with it. Not to be
// called while a render loop runs.
void fxSetTickSource(FXTickSource source);

// fxGetTicks in seconds.
double fxGetTime();

// Seconds from one of fxGetTime's times to a later one, between which the clock may have started anew. A
// clock that is set back a little runs backwards.
double fxSecondsBetween(double from, double to);

// Measures from one call to the next.
struct FXTimeDiff {
    double OnTime(); // seconds since the last call; the first one counts from the start of the clock

    double last = 0.0;
};

// Rounded to whole milliseconds, at most 49 days; 0 gives up the rest of the time slice, and so does anything
// below.
void fxSleep(double seconds);
