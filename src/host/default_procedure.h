// What a saver does by default with a message that the program's own procedure leaves alone: it hides the
// cursor, and takes input as a request to close.
#pragma once

#include "win32/win32.h"

// All on the main thread; the state lives as long as the process.
extern int fChildPreview; // 1: a preview inside a parent window
extern int checking_pwd;  // 1 while the password is being asked for
extern int closing;       // 1 once the saver has decided to close
extern POINT pt_orig;     // where the pointer was when the window was created, on the screen

LRESULT CALLBACK DefScreenSaverProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
