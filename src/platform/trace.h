// The trace: one text file of start-up facts and failures. Closed, which it is at first, every call does
// nothing.
#pragma once

#include "base/str.h"

// Opens the file and writes the banner. False, with no other report, when it cannot be created, and when the
// trace is open already, which the open file then says. One thread opens and closes.
bool fxOpenTraces(const char* name);
bool fxTracesOpened();
void fxCloseTraces();
void fxCloseTracesFile(); // the file alone, with the closing banner

// One entry each, formatted as printf does, cut to 4096 characters, and flushed; callers end their formats
// with "\n". Any thread may call them; they do not allocate.
void trc(const char* format, ...) FX_PRINTF(1, 2);  // with thread and time in front
void err(const char* format, ...) FX_PRINTF(1, 2);  // the same behind "#ERROR: "
void trc1(const char* format, ...) FX_PRINTF(1, 2); // the message alone

// As err, and also, whether or not the trace is open, in a message box that it waits for; gives the box's
// result.
int errmsg(const char* format, ...) FX_PRINTF(1, 2);
