// The process entry and the window procedures around the program's own (ScreenSaverProc): the modes, the one
// window, the message loop, and what input asks it to close. All on the main thread. The state lives as long
// as the process.
#pragma once

#include "win32/win32.h"

extern HINSTANCE hMainInstance;
extern HWND hMainWindow;  // null until it has been created
extern int fChildPreview; // 1: a preview inside a parent window
extern int checking_pwd;  // 1 while the password is being asked for
extern int closing;       // 1 once the saver has decided to close
extern POINT pt_orig;     // where the pointer was when the window was created, on the screen

// Creates the saver window (in `parent`, or full screen for null), runs until it is destroyed, and gives the
// exit code: 0 also when the window could not be created.
int LaunchScreenSaver(HWND parent);

// The class's window procedure, in front of ScreenSaverProc.
LRESULT CALLBACK SysScreenSaverProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Behind it: what a saver does by default.
LRESULT CALLBACK DefScreenSaverProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
