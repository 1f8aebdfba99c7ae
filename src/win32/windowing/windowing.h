// What the files of this folder share: the functions of win32.h for windows, messages and OpenGL, above
// whatever window system is in use.
#pragma once

#include "win32/window_system.h"

#include <vector>

struct ProgramWindow {
    HWND handle = nullptr; // null: there is no window
    WNDPROC proc = nullptr;
    bool shown = false;
    bool dying = false;             // WM_DESTROY has been sent
    std::vector<unsigned> heldKeys; // since before it was shown
};
extern ProgramWindow programWindow;

// True for the handle of the program's window while it lives.
inline bool IsProgramWindow(HWND window) {
    return window != nullptr && window == programWindow.handle;
}

// Message queue: a message for the program's window, which may still be in the making.
void PostToWindow(UINT message, WPARAM wParam, LPARAM lParam);
void DropMessages();

// A signal asks for the end: the window is destroyed by the message loop. For signal handlers.
void RequestEnd();
