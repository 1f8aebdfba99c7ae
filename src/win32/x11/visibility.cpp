// Whether anybody sees the window: nothing is drawn while nobody does.
#include "win32/x11/x11.h"

#define BOOL XBool // win32.h has a type of that name
#include <X11/extensions/dpms.h>
#undef BOOL

#include <chrono>

namespace x11 {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kBetweenLooks{2000};

Clock::time_point nextLook;

bool CanTurnOff(Display* display) {
    int event = 0;
    int error = 0;
    return DPMSQueryExtension(display, &event, &error) != False && DPMSCapable(display) != False;
}

// Stand-by and suspension are dark as well.
bool IsMonitorOff(Display* display) {
    CARD16 level = DPMSModeOn;
    XBool enabled = False;
    return DPMSInfo(display, &level, &enabled) != False && enabled != False && level != DPMSModeOn;
}

bool IsSeen() {
    return saverWindow.mapped && saverWindow.parentMapped && !saverWindow.covered && !saverWindow.monitorOff;
}

void Note(bool SaverWindow::*fact, bool value) {
    const bool before = IsSeen();
    saverWindow.*fact = value;
    if (IsSeen() != before)
        ReportVisibility(!before);
}

} // namespace

int WatchMonitorPower() {
    static const bool can = CanTurnOff(Connection());
    if (!can)
        return -1;
    const auto now = Clock::now();
    if (now >= nextLook) {
        Note(&SaverWindow::monitorOff, IsMonitorOff(Connection()));
        nextLook = now + kBetweenLooks;
    }
    return static_cast<int>(std::chrono::ceil<milliseconds>(nextLook - now).count());
}

// The window's own picture, in a window inside it, does not count as covering it.
void OnVisibilityEvent(const XEvent& event) {
    switch (event.type) {
    case VisibilityNotify:
        return Note(&SaverWindow::covered, event.xvisibility.state == VisibilityFullyObscured);
    case MapNotify:
    case UnmapNotify:
        return Note(event.xany.window == saverWindow.id ? &SaverWindow::mapped : &SaverWindow::parentMapped,
                    event.type == MapNotify);
    default:
        return;
    }
}

} // namespace x11
