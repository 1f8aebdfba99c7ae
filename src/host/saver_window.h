// The program's own window procedure: it builds the scene when the window is created, takes it down when the
// window is destroyed, and decides when the window may close. It paints nothing; the scene's own thread does.
#pragma once

#include "win32/win32.h"

extern bool escapeHit;            // a key came: close at once
extern bool started;              // the scene has been built, at
extern double startTime;          // fxGetTime
extern const char* const scrFile; // the saver's file in the system folder

LRESULT CALLBACK ScreenSaverProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// There are no settings: answers FALSE to everything.
INT_PTR CALLBACK ScreenSaverConfigureDialog(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
// Has nothing to register: TRUE.
BOOL RegisterDialogClasses(HINSTANCE instance);
