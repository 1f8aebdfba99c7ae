// The monitors that have no show.
#pragma once

#include "win32/win32.h"

// Makes them black and hides the pointer there, until the full-screen window `show` goes. What the pointer
// does there counts as that window's. With the monitors, `show` changes too: it stays as large as the primary
// one.
#ifdef _WIN32
void CoverOtherMonitors(HWND show);
#else
inline void CoverOtherMonitors(HWND) {} // the window systems do so for each full-screen window
#endif
