// X events become reports.
#include "win32/x11/x11.h"

#include <X11/Xutil.h>

#include <poll.h>

namespace x11 {

namespace {

void OnKey(XKeyEvent key, bool pressed) {
    ReportKey(key.keycode, XLookupKeysym(&key, 0), (key.state & Mod1Mask) != 0, pressed);
}

// The wheel and further buttons are no buttons here.
void OnButton(const XButtonEvent& button) {
    constexpr PointerButton kButtons[] = {PointerButton::Left, PointerButton::Middle, PointerButton::Right};
    if (button.button >= Button1 && button.button <= Button3)
        ReportButton(kButtons[button.button - Button1], button.x, button.y);
}

// What a grab does to the focus is our own doing.
void OnFocus(const XFocusChangeEvent& focus) {
    if (focus.mode == NotifyGrab || focus.mode == NotifyUngrab || focus.detail == NotifyPointer)
        return;
    ReportActivation(focus.type == FocusIn);
}

// A preview fills its parent.
void OnParentEvent(const XEvent& event) {
    if (event.type == ConfigureNotify)
        FollowParent();
    OnVisibilityEvent(event);
}

// The window went with its parent: everything is taken down but the window itself.
void OnGone() {
    saverWindow.gone = true;
    ReportDestruction();
}

void Translate(const XEvent& event) {
    if (saverWindow.id == None)
        return;
    if (saverWindow.fullScreen && event.xany.window == saverWindow.parent)
        return OnScreenEvent(event);
    if (event.xany.window == saverWindow.parent)
        return OnParentEvent(event);
    if (event.xany.window != saverWindow.id && event.xany.window != saverWindow.focus &&
        !IsCover(event.xany.window))
        return;
    switch (event.type) {
    case KeyPress:
    case KeyRelease:
        return OnKey(event.xkey, event.type == KeyPress);
    case ButtonPress:
        return OnButton(event.xbutton);
    case MotionNotify:
        return ReportPointer(event.xmotion.x, event.xmotion.y);
    case FocusOut:
        if (event.xfocus.detail != NotifyPointer)
            OnInputLost();
        [[fallthrough]];
    case FocusIn:
        return OnFocus(event.xfocus);
    case Expose:
        return ReportExposure();
    case ClientMessage:
        if (event.xclient.data.l[0] ==
            static_cast<long>(XInternAtom(Connection(), "WM_DELETE_WINDOW", False)))
            ReportCloseRequest();
        return;
    case DestroyNotify:
        return OnGone();
    default:
        if (event.xany.window == saverWindow.id)
            OnVisibilityEvent(event);
        return;
    }
}

} // namespace

int ReadEvents() {
    Display* display = Connection();
    const int untilPower = WatchMonitorPower();
    int milliseconds = saverWindow.fullScreen ? HoldScreen() : -1;
    if (milliseconds < 0 || (untilPower >= 0 && untilPower < milliseconds))
        milliseconds = untilPower;
    while (XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        if (!OnIdleEvent(event))
            Translate(event);
        milliseconds = 0;
    }
    return milliseconds;
}

void WaitForEvents(int wake, int milliseconds) {
    pollfd sources[] = {{ConnectionNumber(Connection()), POLLIN, 0}, {wake, POLLIN, 0}};
    poll(sources, 2, milliseconds);
}

} // namespace x11
