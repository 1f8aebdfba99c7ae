// What makes the saver's window the only thing that the user sees and talks to: it stays on top, receives
// every key and every move of the pointer, and hides the cursor.
#include "win32/x11/x11.h"

#include <X11/XKBlib.h>

#include <bitset>
#include <chrono>

namespace {

using Clock = std::chrono::steady_clock; // not the show's, which may stand still
using std::chrono::milliseconds;

constexpr milliseconds kTick{50};
constexpr int kGrabTries = 20;      // for a second; a menu that is open holds the keyboard until it closes
constexpr milliseconds kRaise{500}; // not more often: another program may want to be on top as much

int triesLeft = 0;
Clock::time_point nextTry;
Clock::time_point nextRaise;
bool covered = false;
bool keyboardHeld = false;
bool pointerHeld = false;
Window focusBefore = None;
Cursor blank = None;
std::bitset<256> downBefore;

Cursor BlankCursor(Display* display) {
    if (blank == None) {
        const char nothing[1] = {0};
        XColor black = {};
        const Pixmap bitmap = XCreateBitmapFromData(display, saverWindow.id, nothing, 1, 1);
        blank = XCreatePixmapCursor(display, bitmap, bitmap, &black, &black, 0, 0);
        XFreePixmap(display, bitmap);
    }
    return blank;
}

void TryGrabs() {
    Display* display = Connection();
    if (!keyboardHeld)
        keyboardHeld = XGrabKeyboard(display, saverWindow.id, False, GrabModeAsync, GrabModeAsync,
                                     CurrentTime) == GrabSuccess;
    if (!pointerHeld)
        pointerHeld =
            XGrabPointer(display, saverWindow.id, False, ButtonPressMask | PointerMotionMask, GrabModeAsync,
                         GrabModeAsync, None, saverWindow.cursorHidden ? BlankCursor(display) : None,
                         CurrentTime) == GrabSuccess;
}

// The next best without a grab: keys go to the window that has the focus.
void TakeFocus() {
    int revert = 0;
    XGetInputFocus(Connection(), &focusBefore, &revert);
    XSetInputFocus(Connection(), saverWindow.id, RevertToPointerRoot, CurrentTime);
}

} // namespace

// The Return that started the saver is no wish to end it. Its repeats must not look like new presses.
void RememberKeysDown() {
    Display* display = Connection();
    char keys[32] = {};
    XQueryKeymap(display, keys);
    for (unsigned code = 0; code < downBefore.size(); ++code)
        downBefore[code] = (keys[code / 8] >> code % 8 & 1) != 0;
    XkbSetDetectableAutoRepeat(display, True, nullptr);
}

void EnterFullScreen() {
    keyboardHeld = pointerHeld = covered = false;
    triesLeft = kGrabTries;
    nextTry = nextRaise = Clock::now();
    HoldScreen();
}

int HoldScreen() {
    const auto now = Clock::now();
    const bool wanting = triesLeft > 0 && !(keyboardHeld && pointerHeld);
    if (wanting && now >= nextTry) {
        TryGrabs();
        nextTry = now + kTick;
        if (--triesLeft == 0 && !keyboardHeld)
            TakeFocus();
    }
    if (covered && now >= nextRaise) {
        XRaiseWindow(Connection(), saverWindow.id);
        nextRaise = now + kRaise;
    }
    return wanting || covered ? static_cast<int>(kTick.count()) : -1;
}

void OnCovered(bool is) {
    covered = is;
}

void LeaveFullScreen() {
    Display* display = Connection();
    XUngrabKeyboard(display, CurrentTime);
    XUngrabPointer(display, CurrentTime);
    if (focusBefore != None)
        XSetInputFocus(display, focusBefore, RevertToPointerRoot, CurrentTime);
    focusBefore = None;
    if (blank != None)
        XFreeCursor(display, blank);
    blank = None;
}

bool IsStaleKey(unsigned code, bool pressed) {
    if (code >= downBefore.size() || !downBefore[code])
        return false;
    downBefore[code] = pressed;
    return true;
}

// One cursor is known: none.
HCURSOR SetCursor(HCURSOR cursor) {
    if (saverWindow.id == None || saverWindow.gone)
        return nullptr;
    saverWindow.cursorHidden = cursor == nullptr;
    if (saverWindow.cursorHidden)
        XDefineCursor(Connection(), saverWindow.id, BlankCursor(Connection()));
    return nullptr;
}
