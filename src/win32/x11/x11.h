// What the files of this folder share. The window covers the primary monitor or lies in somebody else's
// window; a daemon's (daemon_window.cpp) stands for the screen. All of it belongs to the main thread, but for
// OpenGL (gl_surface.cpp), which has a connection to the X server of its own, so that no two threads ever
// wait for each other's replies.
//
// The screen's coordinates begin at the primary monitor's corner (win32/window_system.h), X's at the X
// screen's. Places here are X's.
#pragma once

#include "win32/window_system.h"
#include "win32/x11/monitors.h"

#include <X11/Xlib.h>

#include <span>
#include <vector>

namespace x11 {

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

// The program's window.
struct SaverWindow {
    Window id = None; // None: there is no window
    Window parent = None;
    Window focus = None; // receives keys as well: it has the focus where the keyboard cannot be had
    Place place;         // in the parent
    bool fullScreen = false;
    bool cursorHidden = false;
    bool mapped = true, parentMapped = true, covered = false, monitorOff = false; // as far as was reported
    bool gone = false; // the server has destroyed it already, with its parent
};
extern SaverWindow saverWindow;

inline HWND HandleOf(Window id) {
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(id));
}
inline Window IdOf(HWND window) {
    return static_cast<Window>(reinterpret_cast<std::uintptr_t>(window));
}

// The window takes a place in its parent; its picture and the procedure follow when the size is a new one.
void PlaceSaver(const Place& place);

// It fills its parent, which may have another size now.
void FollowParent();

// The input that any window of ours receives on the screen.
constexpr long kInputMask = KeyPressMask | KeyReleaseMask | ButtonPressMask | PointerMotionMask;

// daemon_window.cpp: the window that stands for the screen; None: the primary monitor does.
Window DaemonWindow();
// What the show there burns: false, with no picture and a line for the trace, when there is none.
bool FindDaemonPicture(int width, int height, Photograph* picture, std::string* problem);

// photograph.cpp: fills the photograph, which has the image's size. The image is of the screen's depth.
void Convert(Display* display, XImage* image, Photograph* picture);

// screen.cpp: the monitors as they were last read: the show's, which is the primary one unless this process
// has another show, and those to be covered.
std::span<const Place> Monitors();
void ReadMonitors();
// As they are now.
std::vector<Place> ListOwnMonitors(Display* display);
bool HasMonitor();      // there is one for this show; else the place is that of one that has gone
bool TakesInput();      // the show is the first one
Window FocusedWindow(); // who has the keyboard; PointerRoot: whoever is below the pointer

// covers.cpp: one black window for each of these places, and no others.
void FitCovers(std::span<const Place> places);
bool IsCover(Window window);
std::span<const Window> Covers();

// full_screen.cpp: what makes the window the only thing that the user sees and talks to.
// Before the window is shown: covers the other monitors, and reports the keys that are down.
void PrepareFullScreen();
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

// visibility.cpp: whether anybody sees the window. The server does not say when a monitor goes off, so it is
// asked now and then: gives the milliseconds until it wants to be called again, -1 for never.
int WatchMonitorPower();
// Of the window, or of its parent.
void OnVisibilityEvent(const XEvent& event);
// idle.cpp: true for an alarm, which it reports.
bool OnIdleEvent(const XEvent& event);

// screen.cpp: the line on stderr for a user whose X server cannot be reached.
void SayNoDisplay();

// gl_surface.cpp: the picture in the window takes the window's new size.
void FitSurface(int width, int height);

// The functions of the window system's table (x11.cpp), in the file that their subject has.
std::string FindHindrance();
int EnterWindow(HWND window, bool desktopAllowed);
int CountShows();
void ChooseShow(int number, int count);
Place FindScreen();
bool FindPointer(POINT* position);
bool PhotographDesktop(int width, int height, Photograph* picture, std::string* problem);
HWND CreateWindow(const WindowRequest& request);
void ShowWindow();
void DestroyWindow();
bool FindWindow(HWND window, Place* place);
HWND SetParent(HWND parent);
bool PlaceWindow(const Place& place);
void HideCursor();
void ShowBlack();
int ReadEvents();
void WaitForEvents(int wake, int milliseconds);
bool WatchIdle(int milliseconds);
void UnwatchIdle();
bool ShowIsUnwanted();
std::unique_ptr<GlSurface> OpenGl();
PROC FindGlFunction(const char* name);

} // namespace x11
