// Which message goes where, one table for each window procedure that a message may pass, and when the saver
// may close. These decide over plain values; the procedures act.
#pragma once

#include "win32/win32.h"

// Sent to the saver window: does the password allow it to close?
constexpr UINT SCRM_VERIFYPW = 0x8000;

// What SysScreenSaverProc, in front, does with a message.
enum class SysAction {
    Forward, // to ScreenSaverProc
    Create,  // remember the pointer's place (full screen: hide it as well), then forward
    Destroy, // post the quit message, then forward
    Default, // the system's default
    Swallow, // answer 0
};
SysAction RouteSysMessage(UINT message, WPARAM wParam, bool preview, bool closing);

// What ScreenSaverProc, the program's own, does.
enum class SaverAction {
    Default, // to DefScreenSaverProc
    Create,  // build the scene
    Destroy, // take it down
    Close,   // destroy the window if the close rule allows it
    Key,     // destroy the window, then to DefScreenSaverProc
    KeepBackground,
    KeepPainted, // OpenGL paints
    Resized,     // the scene gets the size of the client area, then to DefScreenSaverProc
};
SaverAction RouteSaverMessage(UINT message);

// What DefScreenSaverProc, behind, does.
enum class DefAction {
    Default,        // the system's default
    Close,          // ask for the password if there is one, then destroy the window
    VerifyPassword, // answer SCRM_VERIFYPW
    HideCursor,
    PointerMoved, // a close request if the pointer is not where it was at the start; then the default
    CloseRequest, // post WM_CLOSE, then the default
    Swallow,      // answer 0
};
DefAction RouteDefMessage(UINT message, WPARAM wParam, bool preview, bool closing, bool checkingPassword);

// The answer to a request to close the window (WM_CLOSE). A preview, and a saver that saw a key, close at
// once. Else the scene must have been built (`started`, at `startTime`) and more than 4 seconds have passed:
// the user may still be moving the mouse after starting the saver. Times in seconds; one that is not a number
// does not close.
bool SaverMayClose(bool preview, bool escapeHit, bool started, double now, double startTime);
