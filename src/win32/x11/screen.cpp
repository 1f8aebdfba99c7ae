// The screen as a whole: its size, its pointer, who has the keyboard.
#include "win32/x11/x11.h"

int GetSystemMetrics(int index) {
    Display* display = Connection();
    if (display == nullptr)
        return 0;
    const int screen = DefaultScreen(display);
    return index == SM_CXSCREEN   ? DisplayWidth(display, screen)
           : index == SM_CYSCREEN ? DisplayHeight(display, screen)
                                  : 0;
}

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

HWND GetForegroundWindow() {
    Display* display = Connection();
    if (display == nullptr)
        return nullptr;
    Window focus = None;
    int revert = 0;
    XGetInputFocus(display, &focus, &revert);
    return focus == PointerRoot ? nullptr : HandleOf(focus);
}
