// What the files of this folder share. The layer serves a program of one window: the saver's, which covers
// the primary monitor or lies in somebody else's window. All of it belongs to the main thread, but for OpenGL
// (gl_context.cpp), which has a connection to the X server of its own, so that no two threads ever wait for
// each other's replies.
//
// Win32's screen coordinates begin at the primary monitor's corner, X's at the screen's. Places here are X's.
#pragma once

#include "win32/win32.h"
#include "win32/x11/monitors.h"

#include <X11/Xlib.h>

#include <span>
#include <vector>

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
    Window parent = None;
    Place place; // in the parent
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

// The window takes a place in its parent; its picture and the procedure follow when the size is a new one.
void PlaceSaver(const Place& place);

// It fills its parent, which may have another size now.
void FollowParent();

// The input that any window of ours receives on the screen.
constexpr long kInputMask = KeyPressMask | KeyReleaseMask | ButtonPressMask | PointerMotionMask;

// Puts the message of an event, if it has one, into the queue.
void TranslateEvent(const XEvent& event);
void DropMessages();

// screen.cpp: the monitors as they were last read, the primary one first.
std::span<const Place> Monitors();
void ReadMonitors();
Window FocusedWindow(); // who has the keyboard; PointerRoot: whoever is below the pointer

// covers.cpp: one black window for each of these places, and no others.
void FitCovers(std::span<const Place> places);
bool IsCover(Window window);
std::span<const Window> Covers();

// full_screen.cpp: what makes the window the only thing that the user sees and talks to.
// Before the window is shown: covers the other monitors. A key that is down now was pressed for somebody
// else.
void PrepareFullScreen();
// True for the events of such a key, until it is released.
bool IsStaleKey(unsigned code, bool pressed);
// After it is shown: takes the keyboard and the pointer.
void EnterFullScreen();
void LeaveFullScreen();
// Asks for the keyboard and the pointer while somebody else holds them, comes up again when covered, and
// follows the monitors. Gives the milliseconds until it wants to be called again, -1 for not before an event.
int HoldScreen();
// The keyboard, and maybe the pointer, is somebody else's now.
void OnInputLost();
// An event of the root window: monitors changed, or windows on the screen.
void OnScreenEvent(const XEvent& event);
Cursor BlankCursor();

// gl_context.cpp: the picture in the window takes the window's new size.
void FitSurface(int width, int height);

// A signal asks for the end: the window is destroyed by the message loop. For signal handlers.
void RequestEnd();
