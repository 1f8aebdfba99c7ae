#include "platform/random.h"

#include "platform/clock.h"
#include "win32/win32.h"

void fxResetRandom() {
    crt_srand(static_cast<unsigned>(crt_rand()) * fxGetTicks());
}

float fxGetRandom() {
    return static_cast<float>(crt_rand() / 32767.0);
}
