// The one thing that can be configured: the folder that holds the package. The host reads it when the window
// is created; the scene goes by it.
#pragma once

#include "base/str.h"

extern char orinPath[520]; // the data folder; empty when none is configured
extern const char* const scrRegName;
extern FXStr configProblem; // what is wrong with the stored configuration; empty when nothing is
extern FXStr configSearch;  // when it holds no folder: where the platform looked for one, in its words
