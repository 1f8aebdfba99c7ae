#include "integration/other_program.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

#include <unistd.h>
#include <utility>

namespace {

constexpr int kPatienceMs = 15000;
constexpr int kPollMs = 20;

RRMode FindOrMakeMode(Display* display, XRRScreenResources* resources, int width, int height) {
    const unsigned w = static_cast<unsigned>(width);
    const unsigned h = static_cast<unsigned>(height);
    for (int i = 0; i < resources->nmode; ++i)
        if (resources->modes[i].width == w && resources->modes[i].height == h)
            return resources->modes[i].id;
    std::string name = std::to_string(width) + "x" + std::to_string(height) + " of the test";
    XRRModeInfo mode = {};
    mode.width = mode.hTotal = w;
    mode.height = mode.vTotal = h;
    mode.dotClock = 60ul * w * h;
    mode.name = name.data();
    mode.nameLength = static_cast<unsigned>(name.size());
    const RRMode made = XRRCreateMode(display, DefaultRootWindow(display), &mode);
    XRRAddOutputMode(display, resources->outputs[0], made);
    return made;
}

// Keyboard and pointer, each with the server's answer.
std::pair<int, int> Grab(Display* display) {
    const Window root = DefaultRootWindow(display);
    return {XGrabKeyboard(display, root, False, GrabModeAsync, GrabModeAsync, CurrentTime),
            XGrabPointer(display, root, False, 0, GrabModeAsync, GrabModeAsync, None, None, CurrentTime)};
}

} // namespace

OtherProgram::OtherProgram(const VirtualDisplay& display) : display_(XOpenDisplay(display.Name().c_str())) {}

OtherProgram::~OtherProgram() {
    XCloseDisplay(display_);
}

void OtherProgram::ShowWindow(int x, int y, int width, int height, unsigned long colour) {
    XSetWindowAttributes wishes = {};
    wishes.background_pixel = colour;
    wishes.override_redirect = True;
    wishes.event_mask = KeyPressMask;
    window_ = XCreateWindow(display_, DefaultRootWindow(display_), x, y, static_cast<unsigned>(width),
                            static_cast<unsigned>(height), 0, CopyFromParent, InputOutput, nullptr,
                            CWBackPixel | CWOverrideRedirect | CWEventMask, &wishes);
    XMapRaised(display_, window_);
    XSync(display_, False);
}

void OtherProgram::TakeFocus() {
    XSetInputFocus(display_, window_, RevertToPointerRoot, CurrentTime);
    XSync(display_, False);
}

bool OtherProgram::GrabInput() {
    const auto [keys, moves] = Grab(display_);
    return keys == GrabSuccess && moves == GrabSuccess;
}

void OtherProgram::ReleaseInput() {
    XUngrabKeyboard(display_, CurrentTime);
    XUngrabPointer(display_, CurrentTime);
    XSync(display_, False);
}

bool OtherProgram::WaitUntilInputIsGrabbed() {
    for (int waited = 0; waited < kPatienceMs; waited += kPollMs) {
        const auto [keys, moves] = Grab(display_);
        ReleaseInput();
        if (keys == AlreadyGrabbed && moves == AlreadyGrabbed)
            return true;
        usleep(kPollMs * 1000);
    }
    return false;
}

bool OtherProgram::UnmapAndGrabInput(unsigned long window) {
    XGrabServer(display_);
    XUnmapWindow(display_, window);
    const bool grabbed = GrabInput();
    XUngrabServer(display_);
    XSync(display_, False);
    return grabbed;
}

void OtherProgram::ResizeWindow(unsigned long window, int width, int height) {
    XResizeWindow(display_, window, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(display_, False);
}

bool OtherProgram::ReceivedAKey() {
    XSync(display_, False);
    XEvent event;
    return XCheckTypedEvent(display_, KeyPress, &event) != False;
}

int OtherProgram::CountChangesOfWindows(int milliseconds) {
    XSelectInput(display_, DefaultRootWindow(display_), SubstructureNotifyMask);
    XSync(display_, True);
    usleep(static_cast<unsigned>(milliseconds) * 1000);
    XSync(display_, False);
    return XPending(display_);
}

void OtherProgram::SetMonitor(const Monitor& monitor) {
    DeleteMonitor(monitor.name);
    const Window root = DefaultRootWindow(display_);
    int count = 0;
    XRRMonitorInfo* before = XRRGetMonitors(display_, root, True, &count);
    const RROutput output = before != nullptr && before->automatic != 0 ? before->outputs[0] : None;
    XRRFreeMonitors(before);
    XRRMonitorInfo* info = XRRAllocateMonitor(display_, output != None ? 1 : 0);
    if (output != None)
        info->outputs[0] = output;
    info->name = XInternAtom(display_, monitor.name, False);
    info->primary = monitor.primary;
    info->x = monitor.x;
    info->y = monitor.y;
    info->width = monitor.width;
    info->height = monitor.height;
    info->mwidth = info->mheight = 100;
    XRRSetMonitor(display_, root, info);
    XRRFreeMonitors(info);
    XSync(display_, False);
}

void OtherProgram::DeleteMonitor(const char* name) {
    XRRDeleteMonitor(display_, DefaultRootWindow(display_), XInternAtom(display_, name, False));
    XSync(display_, False);
}

void OtherProgram::SetScreenSize(int width, int height) {
    const Window root = DefaultRootWindow(display_);
    XRRScreenResources* resources = XRRGetScreenResourcesCurrent(display_, root);
    const RRMode mode = FindOrMakeMode(display_, resources, width, height);
    XRRSetCrtcConfig(display_, resources, resources->crtcs[0], CurrentTime, 0, 0, None, RR_Rotate_0, nullptr,
                     0);
    XRRSetScreenSize(display_, root, width, height, width, height);
    XRRSetCrtcConfig(display_, resources, resources->crtcs[0], CurrentTime, 0, 0, mode, RR_Rotate_0,
                     resources->outputs, 1);
    XRRFreeScreenResources(resources);
    XSync(display_, False);
}
