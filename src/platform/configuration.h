// The one thing that can be configured: the folder that holds the package.
#pragma once

#include "base/str.h"
#include "win32/win32.h"

extern char orinPath[520]; // the data folder; empty when none is configured
extern const char* const scrRegName;
extern FXStr configProblem; // what is wrong with the stored configuration; empty when nothing is
extern FXStr configSearch;  // when it holds no folder: the platform's words about where it looked for one

// Reads the folder into orinPath. Without a stored value, or with one longer than the buffer, orinPath stays
// as it is. Gives the status of opening, or else of closing, the configuration, 0 on success; never that of
// the reading.
LSTATUS localReadConfig();
