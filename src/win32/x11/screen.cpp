// The screen as a whole: its monitors, its pointer, who has the keyboard.
#include "win32/x11/x11.h"

namespace x11 {

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

Place FindScreen() {
    if (Connection() == nullptr)
        return {};
    if (DaemonWindow() != None) {
        Place window;
        const bool found = FindGeometry(Connection(), DaemonWindow(), &window);
        return found ? Place{0, 0, window.width, window.height} : Place{};
    }
    const Place& primary = Monitors().front();
    return {0, 0, primary.width, primary.height};
}

// Where the pointer is on the X screen: that does not change when another monitor becomes the primary one,
// and positions are only compared with each other.
bool FindPointer(POINT* position) {
    Display* display = Connection();
    if (display == nullptr)
        return false;
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
    return true;
}

Window FocusedWindow() {
    Window focus = None;
    int revert = 0;
    XGetInputFocus(Connection(), &focus, &revert);
    return focus;
}

} // namespace x11
