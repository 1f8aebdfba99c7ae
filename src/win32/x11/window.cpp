// Windows: the saver's own, and questions about others.
#include "win32/x11/x11.h"

#include <X11/Xutil.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

SaverWindow saverWindow;

namespace {

// The one class that the program registers.
std::string className;
WNDPROC classProc = nullptr;

// A window's place: relative to its parent, or on the screen as Win32 counts. The root window stands for the
// desktop, which is as large as the primary monitor.
bool FindPlace(HWND window, bool onScreen, Place* place) {
    Display* display = Connection();
    if (display == nullptr || window == nullptr)
        return false;
    const Place& primary = Monitors().front();
    if (IdOf(window) == DefaultRootWindow(display)) {
        *place = {0, 0, primary.width, primary.height};
        return true;
    }
    XWindowAttributes facts = {};
    ErrorTrap trap(display);
    if (XGetWindowAttributes(display, IdOf(window), &facts) == 0)
        return false;
    *place = {facts.x, facts.y, facts.width, facts.height};
    Window child = None;
    if (onScreen) {
        XTranslateCoordinates(display, IdOf(window), facts.root, 0, 0, &place->x, &place->y, &child);
        place->x -= primary.x;
        place->y -= primary.y;
    }
    return trap.Clean();
}

RECT RectOf(const Place& place) {
    return {place.x, place.y, place.x + place.width, place.y + place.height};
}

// From a place in a parent as Win32 counts to X's.
Place PlaceIn(Window parent, const Place& place) {
    if (parent != DefaultRootWindow(Connection()))
        return place;
    const Place& primary = Monitors().front();
    return {place.x + primary.x, place.y + primary.y, place.width, place.height};
}

Window CreateXWindow(Display* display, Window parent, const Place& place, bool child) {
    constexpr long kAsChild = StructureNotifyMask | ExposureMask; // keys and clicks stay the parent's
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

void Show() {
    if (saverWindow.shown)
        return;
    saverWindow.shown = true;
    if (saverWindow.fullScreen)
        PrepareFullScreen();
    XMapRaised(Connection(), saverWindow.id);
    XSync(Connection(), False);
    if (saverWindow.fullScreen)
        EnterFullScreen();
}

void Release() {
    if (!saverWindow.gone) {
        if (saverWindow.fullScreen)
            LeaveFullScreen();
        XDestroyWindow(Connection(), saverWindow.id);
        XFlush(Connection());
    }
    saverWindow = {};
    DropMessages();
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
    PostMessageA(HandleOf(saverWindow.id), WM_SIZE, 0, place.height << 16 | (place.width & 0xFFFF));
}

void FollowParent() {
    Place parent;
    if (FindPlace(HandleOf(saverWindow.parent), false, &parent))
        PlaceSaver(PlaceIn(saverWindow.parent, {0, 0, parent.width, parent.height}));
}

ATOM RegisterClassA(const WNDCLASSA* windowClass) {
    className = windowClass->lpszClassName;
    classProc = windowClass->lpfnWndProc;
    return 1;
}

// The window is mapped only after WM_CREATE: the desktop is photographed in there.
HWND CreateWindowExA(DWORD, const char* name, const char* title, DWORD style, int x, int y, int width,
                     int height, HWND parent, HMENU, HINSTANCE, void*) {
    Display* display = Connection();
    if (display == nullptr) {
        const char* wanted = std::getenv("DISPLAY");
        std::fprintf(stderr, "tamblor: cannot open display %s\n", wanted ? wanted : "(DISPLAY is not set)");
        return nullptr;
    }
    if (saverWindow.id != None || classProc == nullptr || className != name)
        return nullptr;
    const bool child = (style & WS_CHILD) != 0;
    const Window outer = child ? IdOf(parent) : DefaultRootWindow(display);
    const Place place = PlaceIn(outer, {x, y, width, height});
    const Window id = CreateXWindow(display, outer, place, child);
    if (id == None)
        return nullptr;
    saverWindow = {};
    saverWindow.id = id;
    saverWindow.proc = classProc;
    saverWindow.parent = outer;
    saverWindow.place = place;
    saverWindow.fullScreen = !child;
    WatchSurroundings();
    Introduce(display, id, title);
    if (SendMessageA(HandleOf(id), WM_CREATE, 0, 0) == -1) {
        Release();
        return nullptr;
    }
    if ((style & WS_VISIBLE) != 0)
        Show();
    return HandleOf(id);
}

BOOL DestroyWindow(HWND window) {
    if (!IsSaverWindow(window) || saverWindow.dying)
        return FALSE;
    saverWindow.dying = true;
    SendMessageA(window, WM_DESTROY, 0, 0);
    Release();
    return TRUE;
}

BOOL ShowWindow(HWND window, int) {
    if (!IsSaverWindow(window))
        return FALSE;
    const bool before = saverWindow.shown;
    Show();
    return before ? TRUE : FALSE;
}

HWND SetParent(HWND window, HWND parent) {
    if (!IsSaverWindow(window))
        return nullptr;
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

BOOL SetWindowPos(HWND window, HWND, int x, int y, int width, int height, UINT) {
    if (!IsSaverWindow(window) || width <= 0 || height <= 0)
        return FALSE;
    Display* display = Connection();
    ErrorTrap trap(display);
    PlaceSaver(PlaceIn(saverWindow.parent, {x, y, width, height}));
    XRaiseWindow(display, saverWindow.id);
    return trap.Clean() ? TRUE : FALSE;
}

// OpenGL paints, at its own pace.
BOOL UpdateWindow(HWND window) {
    return IsSaverWindow(window) ? TRUE : FALSE;
}

BOOL ValidateRect(HWND window, const RECT*) {
    return IsSaverWindow(window) ? TRUE : FALSE;
}

BOOL IsWindow(HWND window) {
    Place place;
    return FindPlace(window, false, &place) ? TRUE : FALSE;
}

BOOL GetClientRect(HWND window, RECT* area) {
    Place place;
    const bool found = FindPlace(window, false, &place);
    *area = {0, 0, place.width, place.height};
    return found ? TRUE : FALSE;
}

BOOL GetWindowRect(HWND window, RECT* area) {
    Place place;
    const bool found = FindPlace(window, true, &place);
    *area = RectOf(place);
    return found ? TRUE : FALSE;
}
