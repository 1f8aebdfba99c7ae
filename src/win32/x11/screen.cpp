// The screen as a whole: its monitors, its pointer, who has the keyboard.
#include "win32/x11/x11.h"

namespace {

std::vector<Place> monitors;

} // namespace

void ReadMonitors() {
    monitors = ListMonitors(Connection());
}

std::span<const Place> Monitors() {
    if (monitors.empty())
        ReadMonitors();
    return monitors;
}

int GetSystemMetrics(int index) {
    if (Connection() == nullptr)
        return 0;
    const Place& primary = Monitors().front();
    return index == SM_CXSCREEN ? primary.width : index == SM_CYSCREEN ? primary.height : 0;
}

// Where the pointer is on the X screen: that does not change when another monitor becomes the primary one,
// and positions are only compared with each other.
BOOL GetCursorPos(POINT* position) {
    Display* display = Connection();
    if (display == nullptr)
        return FALSE;
    Window root = None;
    Window child = None;
    int x = 0;
    int y = 0;
    int inWindowX = 0;
    int inWindowY = 0;
    unsigned buttons = 0;
    XQueryPointer(display, DefaultRootWindow(display), &root, &child, &x, &y, &inWindowX, &inWindowY,
                  &buttons);
    *position = {x, y};
    return TRUE;
}

Window FocusedWindow() {
    Window focus = None;
    int revert = 0;
    XGetInputFocus(Connection(), &focus, &revert);
    return focus;
}

HWND GetForegroundWindow() {
    const Window focus = Connection() != nullptr ? FocusedWindow() : None;
    return focus == PointerRoot ? nullptr : HandleOf(focus);
}
