#include "platform/clock.h"

#include "win32/win32.h"

#include <algorithm>
#include <utility>

namespace {

FXTickSource tickSource = nullptr;

} // namespace

std::uint32_t fxGetTicks() {
    return tickSource ? tickSource() : timeGetTime();
}

void fxSetTickSource(FXTickSource source) {
    tickSource = source;
}

double fxGetTime() {
    return fxGetTicks() / 1000.0;
}

double fxSecondsBetween(double from, double to) {
    constexpr double kRange = 4294967.296; // of the clock
    const double seconds = to - from;
    return seconds < -kRange / 2 ? seconds + kRange : seconds;
}

double FXTimeDiff::OnTime() {
    const double now = fxGetTime();
    return now - std::exchange(last, now);
}

void fxSleep(double seconds) {
    constexpr double kLongest = 4294967294.0; // one less than the platform's "without end"
    Sleep(seconds > 0.0 ? static_cast<DWORD>(std::min(seconds * 1000.0 + 0.5, kLongest)) : 0);
}
