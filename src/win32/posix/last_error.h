// The words of errors.
#pragma once

#include "win32/win32.h"

#include <string>

// From now on, FormatMessageA gives these words for that error, on every thread; empty: its usual ones. For
// errors of which each is different. Called by the main thread.
void SetErrorWords(DWORD error, const std::string& words);
