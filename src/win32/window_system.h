// The seam inside the platform layer for Linux. A window system is one table of functions, and one class for
// OpenGL on its window; each is a folder (x11/, offscreen/). windowing/ writes the functions of win32.h above
// it, once, and calls nothing else of a window system. docs/window-systems.md has it as a table: who calls
// what, on which thread, and what failure means.
//
// The program has one window, which covers the primary monitor or lies in another program's window. A screen
// saver daemon's window takes the place of the monitor (EnterWindow).
// Everything belongs to the main thread, but for GlSurface::MakeCurrent and Swap.
#pragma once

#include "win32/win32.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

// Pixels: in a window's parent, or on the screen, where (0, 0) is the primary monitor's corner.
struct Place {
    int x = 0, y = 0, width = 0, height = 0;

    bool operator==(const Place&) const = default;
};

inline bool Overlap(const Place& a, const Place& b) {
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

struct WindowRequest {
    HWND parent = nullptr; // null: the window covers the screen, and all input is its own
    Place place;
    const char* title = "";
};

// A picture of the desktop: top row first, without gaps; blue, green, red, unused per pixel.
struct Photograph {
    std::vector<unsigned char> pixels;
    int width = 0;
    int height = 0;
};

// Buffers that OpenGL could draw on in the window: 8 bits a colour at least, a depth buffer, and two colour
// buffers where the window shows them.
struct GlConfig {
    void* native = nullptr; // the window system's own name for it
    int depthBits = 0;
    int stencilBits = 0;
    int samples = 0;        // of each pixel; 0: it is not multisampled
    bool likeScreen = true; // the colours are laid out as the screen's; others may let the desktop through
};

// An OpenGL context. It is deleted while no other thread has it current.
class GlContext {
public:
    GlContext() = default;
    virtual ~GlContext() = default;
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;
};

// What OpenGL draws on: the program's window, or something that fills it.
class GlSurface {
public:
    GlSurface() = default;
    virtual ~GlSurface() = default;
    GlSurface(const GlSurface&) = delete;
    GlSurface& operator=(const GlSurface&) = delete;

    // All that there are, the driver's favourite first. False when the window system has no OpenGL at all; it
    // then gives ERROR_NOT_SUPPORTED words of its own (posix/last_error.h).
    virtual bool ListConfigs(std::vector<GlConfig>* configs) = 0;
    // Whether the processor draws, not a graphics card; may be asked before Create.
    virtual bool DrawsInSoftware() = 0;
    // Makes the surface, with one of them.
    virtual bool Create(const GlConfig& config) = 0;
    // Null when the driver has none.
    virtual std::unique_ptr<GlContext> CreateContext() = 0;
    // On the calling thread; null: none is current there any more.
    virtual bool MakeCurrent(GlContext* context) = 0;
    // Shows what was drawn; false when the window is gone.
    virtual bool Swap() = 0;
};

struct WindowSystem {
    const char* name;

    // Connects. False: this window system is not there. When none is, the last of those on offer is used all
    // the same: its functions fail, and CreateWindow says on stderr what is missing.
    bool (*Open)();
    // What keeps a show over the whole screen from being right here, or the system from opening, in words for
    // the user; "": nothing.
    std::string (*FindHindrance)();

    // From now on a window of another program is the screen, as it is and will be: FindScreen gives its size,
    // the program's window lies in it, takes no input and leaves the cursor, the focus and what lies above it
    // alone, and the photograph is the one that the other program has made or, where pictures of the desktop
    // are not allowed, the wallpaper. Called before all else. Gives the number of
    // the monitor that the window lies on, 1 for the primary one; 0 when there is no such window.
    int (*EnterWindow)(HWND window, bool desktopAllowed);
    // From now on the window is a part of the desktop, on its layer of that name (background, bottom, top,
    // overlay): it takes no input. Called before all else, but ChooseShow. False where there are no layers.
    bool (*EnterLayer)(const std::string& name);
    // For a show on each monitor, a process each. How many there can be: the monitors that show no part of
    // another one.
    int (*CountShows)();
    // This process has the show of that number, 0 on the primary monitor, of so many. The first one alone
    // takes the keyboard and the pointer, and covers the monitors that have no show. What is "the primary
    // monitor" below is then this show's; without one, its window is hidden. Before all other calls.
    void (*ChooseShow)(int number, int count);

    // The size of the primary monitor; none when there is no connection.
    Place (*FindScreen)();
    // The pointer's position, of which only changes count.
    bool (*FindPointer)(POINT* position);
    // What the screen shows, at most so many pixels from its corner. False, with no picture and what failed
    // in `problem`, a line for the trace.
    bool (*PhotographDesktop)(int width, int height, Photograph* picture, std::string* problem);

    // The program's window, not shown yet. Null when it cannot be.
    HWND (*CreateWindow)(const WindowRequest& request);
    // Shows it; one that covers the screen then takes all input, and keeps both until it is destroyed.
    void (*ShowWindow)();
    void (*DestroyWindow)();
    // Where a window lies on the screen, whosever it is. False when there is no such window.
    bool (*FindWindow)(HWND window, Place* place);
    // Gives the parent before, null when it stays as it was. A null parent is the screen.
    HWND (*SetParent)(HWND parent);
    // Moves and raises it.
    bool (*PlaceWindow)(const Place& place);
    // Hides the cursor while it is over the window.
    void (*HideCursor)();
    // Fills the window with black: there will be no picture.
    void (*ShowBlack)();

    // Reports what has happened, without waiting; gives the milliseconds until it has to be called again, -1
    // for not before an event.
    int (*ReadEvents)();
    // Waits until ReadEvents has something to report, or the file descriptor `wake` something to read, at
    // most so many milliseconds; -1: without limit.
    void (*WaitForEvents)(int wake, int milliseconds);

    // From now on reports when nobody has touched anything for so many milliseconds, at once where that is so
    // already, and when somebody does again. Nothing wakes the process in between. False, with a line on
    // stderr, when this cannot be known.
    bool (*WatchIdle)(int milliseconds);
    void (*UnwatchIdle)();
    // Whether a program has asked the window system itself for the screen to stay on, or holds the keyboard,
    // as what locks the screen does.
    bool (*ShowIsUnwanted)();

    // OpenGL on the window; null when the window is gone.
    std::unique_ptr<GlSurface> (*OpenGl)();
    // An entry point of OpenGL, null when it is unknown. Any thread.
    PROC (*FindGlFunction)(const char* name);
};

// One per folder; an executable links those that it offers, or loads them (windowing/window_modules.h).
extern const WindowSystem kWayland;
extern const WindowSystem kX11;
extern const WindowSystem kOffscreen;

// From now on, the first of these that opens is in use. Called before all that needs one.
void OfferWindowSystems(std::span<const WindowSystem* const> systems);
// The one in use; opened at the first call.
const WindowSystem& UsedWindowSystem();

// What the window system in use reports, from ReadEvents or any other of its functions; the messages follow
// from it (windowing/reports.cpp).
// The window system's number of the key, and its keysym without modifiers.
void ReportKey(unsigned code, unsigned long keysym, bool altHeld, bool pressed);
// This key has been down since before the window had the keyboard: it was pressed for another program, and is
// ignored until it is released.
void ReportHeldKey(unsigned code);
enum class PointerButton { Left, Middle, Right };
void ReportButton(PointerButton button, int x, int y);
void ReportPointer(int x, int y); // in the window
void ReportActivation(bool active);
void ReportSize(int width, int height); // the window's, a new one
// Whether anybody can see the window: it is shown, not covered as a whole, on a monitor that is on. At first
// it is seen; while it is not, nothing is drawn.
void ReportVisibility(bool seen);
void ReportExposure();
void ReportIdle(bool idle); // while it is asked for; the same may come twice
void ReportCloseRequest();
void ReportDestruction(); // somebody else has destroyed the window
