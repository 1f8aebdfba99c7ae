// What the files of this folder share. The layer serves a program of one window: the saver's, which covers
// the screen or lies in somebody else's window. All of it belongs to the main thread, but for OpenGL
// (gl_context.cpp), which has a connection to the X server of its own, so that no two threads ever wait for
// each other's replies.
#pragma once

#include "win32/win32.h"

#include <X11/Xlib.h>

// A connection to the X server whose errors end nothing: a request that fails is passed over, and when the
// server goes away the process ends at once with exit code 0. Null when there is no server.
Display* OpenConnection();
// The main thread's connection, opened at the first call. Null when there is no server.
Display* Connection();

// Tells whether the requests made since it was constructed went well.
class ErrorTrap {
public:
    explicit ErrorTrap(Display* display);
    bool Clean(); // waits for the server
private:
    Display* display_;
};

// The saver's window.
struct SaverWindow {
    Window id = None; // None: there is no window
    WNDPROC proc = nullptr;
    bool fullScreen = false;
    bool shown = false;
    bool cursorHidden = false;
    bool dying = false; // WM_DESTROY has been sent
    bool gone = false;  // the server has destroyed it already, with its parent
};
extern SaverWindow saverWindow;

inline HWND HandleOf(Window id) {
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(id));
}
inline Window IdOf(HWND window) {
    return static_cast<Window>(reinterpret_cast<std::uintptr_t>(window));
}
// True for the handle of the saver's window while it lives.
inline bool IsSaverWindow(HWND window) {
    return window != nullptr && IdOf(window) == saverWindow.id;
}

// Puts the message of an event, if it has one, into the queue.
void TranslateEvent(const XEvent& event);
void DropMessages();

// full_screen.cpp: what makes the window the only thing that the user sees and talks to.
// Before the window is shown: a key that is down now was pressed for somebody else.
void RememberKeysDown();
// True for the events of such a key, until it is released.
bool IsStaleKey(unsigned code, bool pressed);
// After it is shown: takes the keyboard and the pointer.
void EnterFullScreen();
void LeaveFullScreen();
// Asks again for the keyboard and the pointer while somebody else holds them, and comes up again when
// covered. Gives the milliseconds until it wants to be called again, -1 for not before an event.
int HoldScreen();
// Other windows came above (true) or left.
void OnCovered(bool covered);

// gl_context.cpp: the picture in the window takes the window's new size.
void FitSurface(int width, int height);

// A signal asks for the end: the window is destroyed by the message loop. For signal handlers.
void RequestEnd();
