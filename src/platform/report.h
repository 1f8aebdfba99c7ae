// Reports of failures after which the show goes on.
#pragma once

#include "base/str.h"
#include "win32/win32.h"

// One line, formatted as printf does, without its end: to the standard error stream behind "tamblor: ", and
// as an error into the trace if that is open.
void fxReport(const char* format, ...) FX_PRINTF(1, 2);

// The platform's description of one of its errors, in one line; its number when it has none.
FXStr fxErrorWords(DWORD error);
