// X events become messages.
#include "win32/x11/x11.h"

#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace {

void Post(UINT message, WPARAM wParam, LPARAM lParam) {
    PostMessageA(HandleOf(saverWindow.id), message, wParam, lParam);
}

LPARAM PlaceOf(int x, int y) {
    return (y & 0xFFFF) << 16 | (x & 0xFFFF);
}

// With Alt held, and for Alt and F10 themselves, a key is a system key. The saver does not ask which key it
// was, so the keysym's number stands for it.
void PostKey(XKeyEvent key, bool pressed) {
    if (IsStaleKey(key.keycode, pressed))
        return;
    const KeySym symbol = XLookupKeysym(&key, 0);
    const bool system =
        (key.state & Mod1Mask) != 0 || symbol == XK_Alt_L || symbol == XK_Alt_R || symbol == XK_F10;
    const UINT message = pressed ? (system ? WM_SYSKEYDOWN : WM_KEYDOWN) : (system ? WM_SYSKEYUP : WM_KEYUP);
    Post(message, static_cast<WPARAM>(symbol), 0);
}

// The wheel and further buttons are no buttons here.
void PostButton(const XButtonEvent& button) {
    constexpr UINT kMessages[] = {WM_LBUTTONDOWN, WM_MBUTTONDOWN, WM_RBUTTONDOWN};
    if (button.button >= Button1 && button.button <= Button3)
        Post(kMessages[button.button - Button1], 0, PlaceOf(button.x, button.y));
}

// What a grab does to the focus is our own doing.
void PostActivation(const XFocusChangeEvent& focus) {
    if (focus.mode == NotifyGrab || focus.mode == NotifyUngrab || focus.detail == NotifyPointer)
        return;
    const WPARAM active = focus.type == FocusIn ? 1 : 0;
    Post(WM_ACTIVATEAPP, active, 0);
    Post(WM_ACTIVATE, active, 0);
}

// A preview fills its parent.
void OnParentEvent(const XEvent& event) {
    if (event.type == ConfigureNotify)
        FollowParent();
}

// The window went with its parent: everything is taken down but the window itself.
void OnGone() {
    saverWindow.gone = true;
    DestroyWindow(HandleOf(saverWindow.id));
}

} // namespace

void TranslateEvent(const XEvent& event) {
    if (saverWindow.id == None)
        return;
    if (saverWindow.fullScreen && event.xany.window == saverWindow.parent)
        return OnScreenEvent(event);
    if (event.xany.window == saverWindow.parent)
        return OnParentEvent(event);
    if (event.xany.window != saverWindow.id && !IsCover(event.xany.window))
        return;
    switch (event.type) {
    case KeyPress:
    case KeyRelease:
        return PostKey(event.xkey, event.type == KeyPress);
    case ButtonPress:
        return PostButton(event.xbutton);
    case MotionNotify:
        return Post(WM_MOUSEMOVE, 0, PlaceOf(event.xmotion.x, event.xmotion.y));
    case FocusOut:
        if (event.xfocus.detail != NotifyPointer)
            OnInputLost();
        [[fallthrough]];
    case FocusIn:
        return PostActivation(event.xfocus);
    case Expose:
        return Post(WM_PAINT, 0, 0);
    case ClientMessage:
        if (event.xclient.data.l[0] ==
            static_cast<long>(XInternAtom(Connection(), "WM_DELETE_WINDOW", False)))
            Post(WM_CLOSE, 0, 0);
        return;
    case DestroyNotify:
        return OnGone();
    default:
        return;
    }
}
