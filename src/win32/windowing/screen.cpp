// The screen as a whole: its size, its pointer, who has the keyboard.
#include "win32/windowing/windowing.h"

int GetSystemMetrics(int index) {
    const Place screen = UsedWindowSystem().FindScreen();
    return index == SM_CXSCREEN ? screen.width : index == SM_CYSCREEN ? screen.height : 0;
}

BOOL GetCursorPos(POINT* position) {
    return UsedWindowSystem().FindPointer(position) ? TRUE : FALSE;
}

// One cursor is known: none.
HCURSOR SetCursor(HCURSOR cursor) {
    if (cursor == nullptr && programWindow.handle != nullptr)
        UsedWindowSystem().HideCursor();
    return nullptr;
}

// It would own the dialogs, which are lines on the terminal here.
HWND GetForegroundWindow() {
    return nullptr;
}
