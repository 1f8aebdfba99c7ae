#include "integration/virtual_display.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xfixes.h>
#include <X11/extensions/Xrandr.h>

#include <csignal>
#include <cstdlib>
#include <utility>

namespace {

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

std::pair<unsigned, unsigned> Size(int width, int height) {
    return {static_cast<unsigned>(width), static_cast<unsigned>(height)};
}

} // namespace

int ScreenPicture::CountLit(int left, int top, int w, int h) const {
    int lit = 0;
    for (int y = top; y < top + h; ++y)
        for (int x = left; x < left + w; ++x)
            lit += At(x, y) != 0;
    return lit;
}

int ChannelDistance(std::uint32_t a, std::uint32_t b) {
    int worst = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const int d = static_cast<int>(a >> shift & 255u) - static_cast<int>(b >> shift & 255u);
        worst = std::max(worst, std::abs(d));
    }
    return worst;
}

// Xvfb picks a free number itself and writes it to the pipe once it listens: no race between tests.
VirtualDisplay::VirtualDisplay(int width, int height, const char* lacks) : width_(width), height_(height) {
    int ends[2];
    if (pipe(ends) != 0)
        return;
    const std::string size = std::to_string(width) + "x" + std::to_string(height) + "x24";
    std::vector<std::string> words = {
        XVFB_EXE, "-displayfd", std::to_string(ends[1]), "-screen", "0", size, "-nolisten", "tcp"};
    if (lacks != nullptr)
        words.insert(words.end(), {"-extension", lacks});
    server_.Start(words, {}, "/", "/dev/null");
    close(ends[1]);
    std::string number;
    for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';)
        number += c;
    close(ends[0]);
    name_ = ":" + number;
    display_ = number.empty() ? nullptr : XOpenDisplay(name_.c_str());
    if (display_ == nullptr)
        return;
    XSetErrorHandler(
        [](Display*, XErrorEvent*) { return 0; }); // windows come and go under the tests' queries
    MovePointer(width / 3, height / 3);
    PaintDesktop();
}

void VirtualDisplay::Kill() {
    if (display_ != nullptr)
        XCloseDisplay(display_);
    display_ = nullptr;
    server_.Signal(SIGTERM); // it has a file to remove
    server_.WaitForExit();
}

unsigned long VirtualDisplay::Root() const {
    return DefaultRootWindow(display_);
}

std::uint32_t VirtualDisplay::DesktopPixel(int x, int y) const {
    const auto ramp = [](int at, int size) { return static_cast<std::uint32_t>(40 + at * 160 / size); };
    const std::uint32_t fine = (x / 4 + y / 4) % 2 ? 40u : 0u;
    return (ramp(x, width_) + fine) << 16 | (ramp(y, height_) + fine) << 8 | (ramp(width_ - x, width_));
}

void VirtualDisplay::PaintDesktop() {
    const int screen = DefaultScreen(display_);
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width_) * height_);
    for (int y = 0; y < height_; ++y)
        for (int x = 0; x < width_; ++x)
            pixels[static_cast<std::size_t>(y) * width_ + x] = DesktopPixel(x, y);
    const auto [w, h] = Size(width_, height_);
    const Pixmap pixmap = XCreatePixmap(display_, Root(), w, h, 24);
    XImage* image = XCreateImage(display_, DefaultVisual(display_, screen), 24, ZPixmap, 0,
                                 reinterpret_cast<char*>(pixels.data()), w, h, 32, 0);
    XPutImage(display_, pixmap, DefaultGC(display_, screen), image, 0, 0, 0, 0, w, h);
    image->data = nullptr; // the vector's
    XDestroyImage(image);
    XSetWindowBackgroundPixmap(display_, Root(), pixmap);
    XClearWindow(display_, Root());
    XFreePixmap(display_, pixmap);
    XSync(display_, False);
}

ScreenPicture VirtualDisplay::Photograph() const {
    ScreenPicture picture;
    const auto [w, h] = Size(width_, height_);
    XImage* image = XGetImage(display_, Root(), 0, 0, w, h, AllPlanes, ZPixmap);
    if (image == nullptr)
        return picture;
    picture.width = width_;
    picture.height = height_;
    picture.pixels.reserve(static_cast<std::size_t>(width_) * height_);
    for (int y = 0; y < height_; ++y)
        for (int x = 0; x < width_; ++x)
            picture.pixels.push_back(static_cast<std::uint32_t>(XGetPixel(image, x, y)) & 0xFFFFFFu);
    XDestroyImage(image);
    return picture;
}

std::uint32_t VirtualDisplay::PixelAt(int x, int y) const {
    return PixelIn(Root(), x, y);
}

std::uint32_t VirtualDisplay::PixelIn(unsigned long window, int x, int y) const {
    XImage* image = XGetImage(display_, window, x, y, 1, 1, AllPlanes, ZPixmap);
    if (image == nullptr)
        return 0;
    const std::uint32_t pixel = static_cast<std::uint32_t>(XGetPixel(image, 0, 0)) & 0xFFFFFFu;
    XDestroyImage(image);
    return pixel;
}

bool VirtualDisplay::WaitForPixel(int x, int y, std::uint32_t colour, int tolerance, bool differ) const {
    return Eventually([&] { return (ChannelDistance(PixelAt(x, y), colour) <= tolerance) != differ; });
}

std::vector<unsigned long> VirtualDisplay::ChildrenOf(unsigned long window) const {
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    std::vector<unsigned long> found;
    if (XQueryTree(display_, window, &root, &parent, &children, &count) == 0)
        return found;
    for (unsigned i = 0; i < count; ++i) {
        XWindowAttributes attributes;
        if (XGetWindowAttributes(display_, children[i], &attributes) != 0 &&
            attributes.map_state == IsViewable)
            found.push_back(children[i]);
    }
    if (children != nullptr)
        XFree(children);
    return found;
}

std::vector<unsigned long> VirtualDisplay::VisibleWindows() const {
    std::vector<unsigned long> windows = ChildrenOf(Root());
    std::erase_if(windows, [this](Window window) {
        XWindowAttributes attributes = {};
        return XGetWindowAttributes(display_, window, &attributes) == 0 || attributes.width <= 1;
    });
    return windows;
}

unsigned long VirtualDisplay::WindowOfSize(int width, int height) const {
    for (const Window outer : ChildrenOf(Root())) {
        std::vector<unsigned long> windows = ChildrenOf(outer);
        windows.push_back(outer);
        for (const Window window : windows) {
            XWindowAttributes attributes = {};
            if (XGetWindowAttributes(display_, window, &attributes) != 0 && attributes.width == width &&
                attributes.height == height)
                return window;
        }
    }
    return 0;
}

unsigned long VirtualDisplay::WaitForWindow() const {
    std::vector<unsigned long> windows;
    Eventually([&] { return !(windows = VisibleWindows()).empty(); });
    return windows.empty() ? 0 : windows.back();
}

bool VirtualDisplay::HasFocus(unsigned long window) const {
    Window focus = None;
    int revert = 0;
    XGetInputFocus(display_, &focus, &revert);
    return focus == window;
}

bool VirtualDisplay::CursorIsHidden() const {
    XFixesCursorImage* cursor = XFixesGetCursorImage(display_);
    bool hidden = true;
    for (int i = 0; cursor != nullptr && i < cursor->width * cursor->height; ++i)
        hidden = hidden && (cursor->pixels[i] >> 24 & 255u) == 0;
    XFree(cursor);
    return hidden;
}

bool VirtualDisplay::WaitForHiddenCursor() const {
    return Eventually([this] { return CursorIsHidden(); });
}

void VirtualDisplay::HoldKey(unsigned long keysym) {
    XTestFakeKeyEvent(display_, XKeysymToKeycode(display_, keysym), True, CurrentTime);
    XSync(display_, False);
}

void VirtualDisplay::ReleaseKey(unsigned long keysym) {
    XTestFakeKeyEvent(display_, XKeysymToKeycode(display_, keysym), False, CurrentTime);
    XSync(display_, False);
}

void VirtualDisplay::MovePointer(int x, int y) {
    XTestFakeMotionEvent(display_, -1, x, y, CurrentTime);
    XSync(display_, False);
}

void VirtualDisplay::ClickButton(unsigned button) {
    XTestFakeButtonEvent(display_, button, True, CurrentTime);
    XTestFakeButtonEvent(display_, button, False, CurrentTime);
    XSync(display_, False);
}

unsigned long VirtualDisplay::ShowWindow(int x, int y, int width, int height, unsigned long colour) {
    const auto [w, h] = Size(width, height);
    const Window window = XCreateSimpleWindow(display_, Root(), x, y, w, h, 0, 0, colour);
    XSelectInput(display_, window, KeyPressMask);
    XMapRaised(display_, window);
    XSync(display_, False);
    return window;
}

void VirtualDisplay::ResizeWindow(unsigned long window, int width, int height) {
    const auto [w, h] = Size(width, height);
    XResizeWindow(display_, window, w, h);
    XSync(display_, False);
}

void VirtualDisplay::DestroyWindow(unsigned long window) {
    XDestroyWindow(display_, window);
    XSync(display_, False);
}

void VirtualDisplay::TakeFocus(unsigned long window) {
    XSetInputFocus(display_, window, RevertToPointerRoot, CurrentTime);
    XSync(display_, False);
}

bool VirtualDisplay::ReceivedAKey() {
    XSync(display_, False);
    XEvent event;
    return XCheckTypedEvent(display_, KeyPress, &event) != False;
}

bool VirtualDisplay::GrabInput() {
    const auto [keys, moves] = Grab(display_);
    return keys == GrabSuccess && moves == GrabSuccess;
}

void VirtualDisplay::ReleaseInput() {
    XUngrabKeyboard(display_, CurrentTime);
    XUngrabPointer(display_, CurrentTime);
    XSync(display_, False);
}

bool VirtualDisplay::WaitUntilInputIsGrabbed() {
    return Eventually([this] {
        const auto [keys, moves] = Grab(display_);
        ReleaseInput();
        return keys == AlreadyGrabbed && moves == AlreadyGrabbed;
    });
}

bool VirtualDisplay::UnmapAndGrabInput(unsigned long window) {
    XGrabServer(display_);
    XUnmapWindow(display_, window);
    const bool grabbed = GrabInput();
    XUngrabServer(display_);
    XSync(display_, False);
    return grabbed;
}

int VirtualDisplay::CountChangesOfWindows(int milliseconds) {
    XSelectInput(display_, DefaultRootWindow(display_), SubstructureNotifyMask);
    XSync(display_, True);
    usleep(static_cast<unsigned>(milliseconds) * 1000);
    XSync(display_, False);
    return XPending(display_);
}

void VirtualDisplay::SetMonitor(const char* name, int x, int y, int width, int height, bool primary) {
    DeleteMonitor(name);
    int count = 0;
    XRRMonitorInfo* before = XRRGetMonitors(display_, Root(), True, &count);
    const RROutput output = before != nullptr && before->automatic != 0 ? before->outputs[0] : None;
    XRRFreeMonitors(before);
    XRRMonitorInfo* info = XRRAllocateMonitor(display_, output != None ? 1 : 0);
    if (output != None)
        info->outputs[0] = output;
    info->name = XInternAtom(display_, name, False);
    info->primary = primary;
    info->x = x;
    info->y = y;
    info->width = width;
    info->height = height;
    info->mwidth = info->mheight = 100;
    XRRSetMonitor(display_, Root(), info);
    XRRFreeMonitors(info);
    XSync(display_, False);
}

void VirtualDisplay::DeleteMonitor(const char* name) {
    XRRDeleteMonitor(display_, Root(), XInternAtom(display_, name, False));
    XSync(display_, False);
}

void VirtualDisplay::SetScreenSize(int width, int height) {
    XRRScreenResources* resources = XRRGetScreenResourcesCurrent(display_, Root());
    const RRMode mode = FindOrMakeMode(display_, resources, width, height);
    XRRSetCrtcConfig(display_, resources, resources->crtcs[0], CurrentTime, 0, 0, None, RR_Rotate_0, nullptr,
                     0);
    XRRSetScreenSize(display_, Root(), width, height, width, height);
    XRRSetCrtcConfig(display_, resources, resources->crtcs[0], CurrentTime, 0, 0, mode, RR_Rotate_0,
                     resources->outputs, 1);
    XRRFreeScreenResources(resources);
    XSync(display_, False);
}
