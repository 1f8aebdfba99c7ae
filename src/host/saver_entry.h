// The process entry and the procedure of the window class: the modes, the one window, the message loop. All
// on the main thread. The state lives as long as the process.
#pragma once

#include "win32/win32.h"

extern HINSTANCE hMainInstance;
extern HWND hMainWindow; // null until it has been created

// Creates the saver window (in `parent`, or full screen for null), runs until it is destroyed, and gives the
// exit code: 0 also when the window could not be created.
int LaunchScreenSaver(HWND parent);

// The class's window procedure, in front of ScreenSaverProc.
LRESULT CALLBACK SysScreenSaverProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
