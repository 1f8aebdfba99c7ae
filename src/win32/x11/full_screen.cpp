// What makes the saver's window the only thing that the user sees and talks to: it covers the primary
// monitor, black windows cover the others, all of them stay on top, receive every key and every move of the
// pointer, and hide the cursor.
//
// A program that locks the screen is known by its window: it covers the saver's monitor, and no window
// manager has a say in it. It asks for the keyboard and the pointer before that window is shown, or after: so
// both are free for a while when such a window is made, and as long as one is shown above the saver's.
#include "win32/x11/x11.h"

#include <X11/XKBlib.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace x11 {

namespace {

using Clock = std::chrono::steady_clock; // not the show's, which may stand still
using std::chrono::milliseconds;

// Between two requests for the keyboard and the pointer: soon in the first second, patiently after. A menu
// that is open holds both until it closes.
constexpr milliseconds kAskSoon{50};
constexpr milliseconds kSoonFor{1000};
constexpr milliseconds kAskPatiently{250};
constexpr milliseconds kLook{50};    // not more often at what lies above, however much moves on the screen
constexpr milliseconds kYield{3000}; // after a lock program's window was made: it asks again for so long
constexpr milliseconds kRaise{500};  // not more often: another program may want to be on top as much

Clock::time_point wantedSince; // since when keyboard or pointer are missing
Clock::time_point nextAsk;
Clock::time_point nextLook;
bool monitorsChanged = false;
bool stackChanged = false;
bool keyboardHeld = false;
bool pointerHeld = false;
bool locked = false; // a lock program's window is above
Cursor blank = None;

void TryGrabs() {
    Display* display = Connection();
    if (!keyboardHeld)
        keyboardHeld = XGrabKeyboard(display, saverWindow.id, False, GrabModeAsync, GrabModeAsync,
                                     CurrentTime) == GrabSuccess;
    if (!pointerHeld)
        pointerHeld =
            XGrabPointer(display, saverWindow.id, False, ButtonPressMask | PointerMotionMask, GrabModeAsync,
                         GrabModeAsync, None, saverWindow.cursorHidden ? BlankCursor() : None,
                         CurrentTime) == GrabSuccess;
}

// Inside the window that has the focus, and gone with this process: the server then gives the focus back to
// that window, however the process ends.
Window CreateFocusWindow(Window focus) {
    Display* display = Connection();
    XSetWindowAttributes wishes = {};
    wishes.override_redirect = True;
    wishes.event_mask = KeyPressMask | KeyReleaseMask | FocusChangeMask;
    const Window window = XCreateWindow(display, focus, -1, -1, 1, 1, 0, 0, InputOnly, nullptr,
                                        CWOverrideRedirect | CWEventMask, &wishes);
    XMapWindow(display, window);
    return window;
}

void DropFocusWindow() {
    if (saverWindow.focus != None)
        XDestroyWindow(Connection(), saverWindow.focus);
    saverWindow.focus = None;
}

// The next best without a grab: keys go to the window that has the focus.
void TakeFocus() {
    Display* display = Connection();
    const Window before = FocusedWindow();
    if (before == saverWindow.id || (before != None && before == saverWindow.focus))
        return;
    DropFocusWindow();
    if (before == None || before == PointerRoot) {
        XSetInputFocus(display, saverWindow.id, before == None ? RevertToNone : RevertToPointerRoot,
                       CurrentTime);
        return;
    }
    saverWindow.focus = CreateFocusWindow(before);
    XSetInputFocus(display, saverWindow.focus, RevertToParent, CurrentTime);
}

void ReleaseGrabs() {
    XUngrabKeyboard(Connection(), CurrentTime);
    XUngrabPointer(Connection(), CurrentTime);
    keyboardHeld = pointerHeld = false;
}

void AskForInput(Clock::time_point now) {
    TryGrabs();
    const bool soon = now - wantedSince < kSoonFor;
    if (!soon && !keyboardHeld)
        TakeFocus();
    nextAsk = now + (soon ? kAskSoon : kAskPatiently);
}

bool IsOwn(Window window) {
    return window == saverWindow.id || IsCover(window);
}

// But for a rim of a few pixels: some of these windows are a little smaller than the screen.
bool CoversSaver(int x, int y, int width, int height) {
    constexpr int kRim = 2;
    const Place& own = saverWindow.place;
    return x <= own.x + kRim && y <= own.y + kRim && x + width >= own.x + own.width - kRim &&
           y + height >= own.y + own.height - kRim;
}

bool IsLocker(const XWindowAttributes& facts) {
    return facts.override_redirect != False && CoversSaver(facts.x, facts.y, facts.width, facts.height);
}

// Another show's window, on its monitor, does not.
bool TouchesOurs(const XWindowAttributes& facts) {
    const Place window = {facts.x, facts.y, facts.width, facts.height};
    return std::ranges::any_of(Monitors(), [&](const Place& place) { return Overlap(window, place); });
}

// All our windows are shown, above all others that show anything; or they are not; or they need not be.
enum class Stack { OnTop, Covered, Locked };

Stack LookAtStack() {
    Display* display = Connection();
    Window root = None;
    Window parent = None;
    Window* windows = nullptr; // from the lowest to the highest
    unsigned count = 0;
    if (XQueryTree(display, DefaultRootWindow(display), &root, &parent, &windows, &count) == 0)
        return Stack::OnTop;
    std::size_t missing = 1 + Covers().size();
    bool above = false;
    bool locker = false;
    bool below = false; // below the saver's
    for (unsigned i = count; i > 0 && missing > 0 && !locker; --i) {
        XWindowAttributes facts = {};
        if (XGetWindowAttributes(display, windows[i - 1], &facts) == 0 || facts.map_state == IsUnmapped)
            continue;
        if (IsOwn(windows[i - 1]))
            --missing;
        else if (!below && IsLocker(facts))
            locker = true;
        else if (facts.c_class != InputOnly && TouchesOurs(facts))
            above = true;
        below = below || windows[i - 1] == saverWindow.id;
        if (below && above)
            break;
    }
    if (windows != nullptr)
        XFree(windows);
    return locker ? Stack::Locked : missing > 0 || above ? Stack::Covered : Stack::OnTop;
}

// The saver's window last: monitors may overlap.
void Raise() {
    for (const Window cover : Covers())
        XMapRaised(Connection(), cover);
    XMapRaised(Connection(), saverWindow.id);
}

void StayOnTop(Clock::time_point now) {
    stackChanged = false;
    nextLook = now + kLook;
    if (!HasMonitor())
        return;
    const Stack stack = LookAtStack();
    const bool was = std::exchange(locked, stack == Stack::Locked);
    if (locked)
        ReleaseGrabs();
    else if (was)
        wantedSince = nextAsk = now;
    if (stack != Stack::Covered)
        return;
    Raise();
    nextLook = now + kRaise;
}

void FollowMonitors() {
    monitorsChanged = false;
    const std::vector<Place> before(Monitors().begin(), Monitors().end());
    const bool had = HasMonitor();
    ReadMonitors();
    if (!HasMonitor())
        XUnmapWindow(Connection(), saverWindow.id);
    if (!HasMonitor() || (had && std::ranges::equal(Monitors(), before)))
        return;
    FitCovers(Monitors().subspan(1));
    PlaceSaver(Monitors().front());
    if (!locked)
        Raise();
}

// The focus is the next best meanwhile, which keeps no program from a grab.
void OnCreated(const XCreateWindowEvent& window) {
    if (!TakesInput() || window.override_redirect == False || IsOwn(window.window) ||
        !CoversSaver(window.x, window.y, window.width, window.height))
        return;
    ReleaseGrabs();
    TakeFocus();
    wantedSince = nextAsk = Clock::now() + kYield;
}

void OnStacked(Window window) {
    stackChanged = stackChanged || !IsOwn(window);
}

// Their repeats must not look like new presses.
void ReportKeysDown() {
    Display* display = Connection();
    char keys[32] = {};
    XQueryKeymap(display, keys);
    for (unsigned code = 0; code < sizeof keys * 8; ++code)
        if ((keys[code / 8] >> code % 8 & 1) != 0)
            ReportHeldKey(code);
    XkbSetDetectableAutoRepeat(display, True, nullptr);
}

} // namespace

Cursor BlankCursor() {
    if (blank == None) {
        Display* display = Connection();
        const char nothing[1] = {0};
        XColor black = {};
        const Pixmap bitmap = XCreateBitmapFromData(display, DefaultRootWindow(display), nothing, 1, 1);
        blank = XCreatePixmapCursor(display, bitmap, bitmap, &black, &black, 0, 0);
        XFreePixmap(display, bitmap);
    }
    return blank;
}

void PrepareFullScreen() {
    ReportKeysDown();
    FitCovers(Monitors().subspan(1));
}

void EnterFullScreen() {
    keyboardHeld = pointerHeld = locked = false;
    monitorsChanged = stackChanged = true; // what happened before the root window was watched is not reported
    wantedSince = nextAsk = nextLook = Clock::now();
    HoldScreen();
}

int HoldScreen() {
    const auto now = Clock::now();
    if (monitorsChanged)
        FollowMonitors();
    if (stackChanged && now >= nextLook)
        StayOnTop(now);
    const auto wanting = [] { return TakesInput() && !locked && (!keyboardHeld || !pointerHeld); };
    if (wanting() && now >= nextAsk)
        AskForInput(now);
    auto wake = Clock::time_point::max();
    if (stackChanged)
        wake = std::min(wake, nextLook);
    if (wanting())
        wake = std::min(wake, nextAsk);
    if (wake == Clock::time_point::max())
        return -1;
    return static_cast<int>(std::chrono::ceil<milliseconds>(wake - now).count());
}

void OnInputLost() {
    if (keyboardHeld && pointerHeld)
        wantedSince = nextAsk = Clock::now();
    keyboardHeld = pointerHeld = false;
}

void OnScreenEvent(const XEvent& event) {
    if (IsMonitorEvent(Connection(), event)) {
        monitorsChanged = true;
        return;
    }
    switch (event.type) {
    case CreateNotify:
        return OnCreated(event.xcreatewindow);
    case MapNotify:
        return OnStacked(event.xmap.window);
    case ConfigureNotify:
        return OnStacked(event.xconfigure.window);
    case ReparentNotify:
        return OnStacked(event.xreparent.window);
    case CirculateNotify:
        return OnStacked(event.xcirculate.window);
    case UnmapNotify: // by somebody else; the server ends the grabs of a window that is not seen
        if (locked || IsOwn(event.xunmap.window))
            stackChanged = true;
        if (event.xunmap.window == saverWindow.id)
            OnInputLost();
        return;
    default:
        return;
    }
}

void LeaveFullScreen() {
    Display* display = Connection();
    ReleaseGrabs();
    DropFocusWindow();
    FitCovers({});
    if (blank != None)
        XFreeCursor(display, blank);
    blank = None;
}

void HideCursor() {
    if (saverWindow.gone || !saverWindow.fullScreen)
        return;
    saverWindow.cursorHidden = true;
    XDefineCursor(Connection(), saverWindow.id, BlankCursor());
}

} // namespace x11
