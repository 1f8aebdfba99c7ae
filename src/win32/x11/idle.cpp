// Whether the user is there, by the server's counter of idle time, and what speaks against a show.
#include "win32/x11/x11.h"

#include <X11/extensions/XRes.h>
#include <X11/extensions/sync.h>

#include <cstdio>
#include <cstring>

namespace x11 {

namespace {

int alarmEvent = 0; // the number of alarms among the events; 0: nobody has asked for any
XSyncAlarm idleAlarm = None;
XSyncAlarm activeAlarm = None;

XSyncCounter FindIdleCounter(Display* display) {
    int first = 0;
    int errors = 0;
    int major = SYNC_MAJOR_VERSION;
    int minor = SYNC_MINOR_VERSION;
    if (XSyncQueryExtension(display, &first, &errors) == 0 || XSyncInitialize(display, &major, &minor) == 0)
        return None;
    alarmEvent = first + XSyncAlarmNotify;
    XSyncCounter found = None;
    int count = 0;
    XSyncSystemCounter* counters = XSyncListSystemCounters(display, &count);
    for (int i = 0; i < count; ++i)
        if (std::strcmp(counters[i].name, "IDLETIME") == 0)
            found = counters[i].counter;
    XSyncFreeSystemCounterList(counters);
    return found;
}

XSyncAlarm SetAlarm(Display* display, XSyncCounter counter, XSyncTestType test, int milliseconds) {
    XSyncAlarmAttributes wishes = {};
    wishes.trigger.counter = counter;
    wishes.trigger.value_type = XSyncAbsolute;
    wishes.trigger.test_type = test;
    XSyncIntToValue(&wishes.trigger.wait_value, milliseconds);
    XSyncIntToValue(&wishes.delta, 0); // it stays, for the next time
    wishes.events = True;
    return XSyncCreateAlarm(display,
                            XSyncCACounter | XSyncCAValueType | XSyncCAValue | XSyncCATestType |
                                XSyncCADelta | XSyncCAEvents,
                            &wishes);
}

// XScreenSaverSuspend stops the server's own timer, but not its counter of idle time; whether a program has
// called it, only the list of what programs have made on the server tells at any time: the timer itself may
// be off, or longer. When the last program takes it back, the server begins to count idle time anew.
bool ServerTimerIsStopped(Display* display) {
    int events = 0;
    int errors = 0;
    if (XResQueryExtension(display, &events, &errors) == 0)
        return false;
    const Atom wanted = XInternAtom(display, "SaverSuspend", False);
    XResClient* clients = nullptr;
    int clientCount = 0;
    XResQueryClients(display, &clientCount, &clients);
    bool found = false;
    for (int i = 0; i < clientCount && !found; ++i) {
        XResType* types = nullptr;
        int typeCount = 0;
        XResQueryClientResources(display, clients[i].resource_base, &typeCount, &types);
        for (int k = 0; k < typeCount; ++k)
            found = found || types[k].resource_type == wanted;
        XFree(types);
    }
    XFree(clients);
    return found;
}

// A lock program or another saver does; so does a menu that is open.
bool KeyboardIsHeld(Display* display) {
    const bool held = XGrabKeyboard(display, DefaultRootWindow(display), False, GrabModeAsync, GrabModeAsync,
                                    CurrentTime) != GrabSuccess;
    if (!held)
        XUngrabKeyboard(display, CurrentTime);
    XFlush(display);
    return held;
}

} // namespace

// The alarms come first: an alarm is for what happens from then on, and the user may be idle already.
bool WatchIdle(int milliseconds) {
    Display* display = Connection();
    if (display == nullptr) {
        SayNoDisplay();
        return false;
    }
    UnwatchIdle();
    const XSyncCounter counter = FindIdleCounter(display);
    if (counter == None) {
        std::fprintf(stderr, "tamblor: the X server does not count idle time\n");
        return false;
    }
    idleAlarm = SetAlarm(display, counter, XSyncPositiveTransition, milliseconds);
    activeAlarm = SetAlarm(display, counter, XSyncNegativeTransition, milliseconds);
    XSyncValue idle = {};
    XSyncValue wanted = {};
    XSyncIntToValue(&wanted, milliseconds);
    XSyncQueryCounter(display, counter, &idle);
    ReportIdle(XSyncValueGreaterOrEqual(idle, wanted) != 0);
    return true;
}

void UnwatchIdle() {
    for (XSyncAlarm* alarm : {&idleAlarm, &activeAlarm}) {
        if (*alarm != None)
            XSyncDestroyAlarm(Connection(), *alarm);
        *alarm = None;
    }
}

bool OnIdleEvent(const XEvent& event) {
    if (alarmEvent == 0 || event.type != alarmEvent)
        return false;
    XSyncAlarmNotifyEvent alarm = {};
    std::memcpy(&alarm, &event, sizeof alarm);
    if (alarm.alarm == idleAlarm || alarm.alarm == activeAlarm)
        ReportIdle(alarm.alarm == idleAlarm);
    return true;
}

bool ShowIsUnwanted() {
    Display* display = Connection();
    return ServerTimerIsStopped(display) || KeyboardIsHeld(display);
}

} // namespace x11
