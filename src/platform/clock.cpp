#include "platform/clock.h"

#include "win32/win32.h"

namespace {

FXTickSource tickSource = nullptr;

} // namespace

std::uint32_t fxGetTicks() { return tickSource ? tickSource() : timeGetTime(); }

void fxSetTickSource(FXTickSource source) { tickSource = source; }

double fxGetTime() { return fxGetTicks() / 1000.0; }

void fxSleep(double seconds) { Sleep(seconds <= 0.0 ? 0 : static_cast<DWORD>(seconds * 1000.0 + 0.5)); }

double FXTimeDiff::OnTime() {
    const double now = fxGetTime();
    const double difference = now - previous_;
    previous_ = now;
    return difference;
}
