// What the files of this folder share: the functions of win32.h for windows, messages and OpenGL, above
// whatever window system is in use.
#pragma once

#include "win32/linux/frame_pace.h"
#include "win32/window_system.h"

#include <vector>

struct ProgramWindow {
    HWND handle = nullptr; // null: there is no window
    WNDPROC proc = nullptr;
    bool shown = false;
    bool dying = false;             // WM_DESTROY has been sent
    std::vector<unsigned> heldKeys; // since before it was shown
    int mouseThreshold = 0;         // pixels; 0: every move counts
    POINT pointerRest = {};         // where the pointer rested, or was when a move counted
    POINT pointerLast = {};         // where it was last reported
    DWORD pointerMoved = 0;         // when it was last reported
};
extern ProgramWindow programWindow;
extern FramePace framePace; // of what is drawn on it

// As the window system last reported; for who has asked it to watch.
extern bool userIsIdle;

// True for the handle of the program's window while it lives.
inline bool IsProgramWindow(HWND window) {
    return window != nullptr && window == programWindow.handle;
}

// The user's settings hold for this program: it is the saver. Else none does.
void HonourSettings();
// A setting by its name; `otherwise` where none is set, or none holds.
int Setting(const char* name, int otherwise);

// Once, from within the function that finds out that OpenGL works on the window, or that it does not.
void CallWhenOpenGlIsThere(void (*function)());

// reports.cpp: from here on, only moves beyond the threshold count.
void SetMouseThreshold();

// Message queue: a message for the program's window, which may still be in the making.
void PostToWindow(UINT message, WPARAM wParam, LPARAM lParam);
void DropMessages();

// A signal asks for the end: the window is destroyed by the message loop. For signal handlers, once the other
// function has been called.
void RequestEnd();
void PrepareForRequests();
