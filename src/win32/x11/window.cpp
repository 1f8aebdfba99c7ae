// Windows: the program's own, and questions about others.
#include "win32/x11/x11.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <utility>

namespace x11 {

SaverWindow saverWindow;

namespace {

// From a place in a parent or on the screen to X's.
Place PlaceIn(Window parent, const Place& place) {
    if (parent != DefaultRootWindow(Connection()))
        return place;
    const Place& primary = Monitors().front();
    return {place.x + primary.x, place.y + primary.y, place.width, place.height};
}

Window CreateXWindow(Display* display, Window parent, const Place& place, bool child) {
    constexpr long kAsChild =
        StructureNotifyMask | VisibilityChangeMask | ExposureMask; // keys and clicks stay the parent's
    constexpr long kAsScreen = kAsChild | kInputMask | FocusChangeMask;
    XSetWindowAttributes wishes = {};
    wishes.background_pixmap = None; // what lies below stays visible until the first frame
    wishes.border_pixel = 0;
    wishes.override_redirect = True;
    wishes.event_mask = child ? kAsChild : kAsScreen;
    ErrorTrap trap(display);
    const Window id =
        XCreateWindow(display, parent, place.x, place.y, static_cast<unsigned>(std::max(place.width, 1)),
                      static_cast<unsigned>(std::max(place.height, 1)), 0, CopyFromParent, InputOutput,
                      nullptr, CWBackPixmap | CWBorderPixel | CWOverrideRedirect | CWEventMask, &wishes);
    return trap.Clean() ? id : None;
}

// What happens around the window: to the monitors and on top of it, or to its parent's size.
void WatchSurroundings() {
    Display* display = Connection();
    XSelectInput(display, saverWindow.parent,
                 saverWindow.fullScreen ? StructureNotifyMask | SubstructureNotifyMask : StructureNotifyMask);
    if (saverWindow.fullScreen)
        WatchMonitors(display);
    else
        FollowParent();
}

void Introduce(Display* display, Window id, const char* title) {
    XStoreName(display, id, title);
    char name[] = "tamblor";
    XClassHint hint = {name, name};
    XSetClassHint(display, id, &hint);
    Atom protocols[] = {XInternAtom(display, "WM_DELETE_WINDOW", False)};
    XSetWMProtocols(display, id, protocols, 1);
}

} // namespace

void PlaceSaver(const Place& place) {
    const Place before = std::exchange(saverWindow.place, place);
    if (place == before)
        return;
    XMoveResizeWindow(Connection(), saverWindow.id, place.x, place.y, static_cast<unsigned>(place.width),
                      static_cast<unsigned>(place.height));
    if (place.width == before.width && place.height == before.height)
        return;
    FitSurface(place.width, place.height);
    ReportSize(place.width, place.height);
}

void FollowParent() {
    Place parent;
    if (FindWindow(HandleOf(saverWindow.parent), &parent))
        PlaceSaver(PlaceIn(saverWindow.parent, {0, 0, parent.width, parent.height}));
}

HWND CreateWindow(const WindowRequest& request) {
    Display* display = Connection();
    if (display == nullptr) {
        SayNoDisplay();
        return nullptr;
    }
    const bool child = request.parent != nullptr || DaemonWindow() != None;
    const Window parent = request.parent != nullptr ? IdOf(request.parent)
                          : DaemonWindow() != None  ? DaemonWindow()
                                                    : DefaultRootWindow(display);
    const Place place = PlaceIn(parent, request.place);
    const Window id = CreateXWindow(display, parent, place, child);
    if (id == None)
        return nullptr;
    saverWindow = {};
    saverWindow.id = id;
    saverWindow.parent = parent;
    saverWindow.place = place;
    saverWindow.fullScreen = !child;
    WatchSurroundings();
    Introduce(display, id, request.title);
    return HandleOf(id);
}

void ShowWindow() {
    if (saverWindow.fullScreen)
        PrepareFullScreen();
    XMapRaised(Connection(), saverWindow.id); // also above the black windows, where monitors overlap
    XSync(Connection(), False);
    if (saverWindow.fullScreen)
        EnterFullScreen();
}

void DestroyWindow() {
    if (!saverWindow.gone) {
        if (saverWindow.fullScreen)
            LeaveFullScreen();
        XDestroyWindow(Connection(), saverWindow.id);
        XFlush(Connection());
    }
    saverWindow = {};
}

// The root window stands for the desktop, which is as large as the primary monitor.
bool FindWindow(HWND window, Place* place) {
    Display* display = Connection();
    if (display == nullptr || window == nullptr)
        return false;
    if (IdOf(window) == DefaultRootWindow(display)) {
        *place = FindScreen();
        return true;
    }
    const Place& primary = Monitors().front();
    XWindowAttributes facts = {};
    ErrorTrap trap(display);
    if (XGetWindowAttributes(display, IdOf(window), &facts) == 0)
        return false;
    Window child = None;
    *place = {0, 0, facts.width, facts.height};
    XTranslateCoordinates(display, IdOf(window), facts.root, 0, 0, &place->x, &place->y, &child);
    place->x -= primary.x;
    place->y -= primary.y;
    return trap.Clean();
}

HWND SetParent(HWND parent) {
    Display* display = Connection();
    ErrorTrap trap(display);
    Window root = None;
    Window before = None;
    Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, saverWindow.id, &root, &before, &children, &count) == 0)
        return nullptr;
    if (children != nullptr)
        XFree(children);
    saverWindow.parent = parent ? IdOf(parent) : root;
    saverWindow.place.x = saverWindow.place.y = 0;
    XReparentWindow(display, saverWindow.id, saverWindow.parent, 0, 0);
    return trap.Clean() ? HandleOf(before) : nullptr;
}

bool PlaceWindow(const Place& place) {
    Display* display = Connection();
    ErrorTrap trap(display);
    PlaceSaver(PlaceIn(saverWindow.parent, place));
    XRaiseWindow(display, saverWindow.id);
    return trap.Clean();
}

void ShowBlack() {
    Display* display = Connection();
    ErrorTrap trap(display);
    XSetWindowBackground(display, saverWindow.id, BlackPixel(display, DefaultScreen(display)));
    XClearWindow(display, saverWindow.id);
    trap.Clean();
}

} // namespace x11
