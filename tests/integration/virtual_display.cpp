#include "integration/virtual_display.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xfixes.h>

#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Generous, for a busy machine under sanitizers; a passing test never waits this long.
constexpr int kPatienceMs = 40000;
constexpr int kPollMs = 10;

// Xvfb picks a free number itself and writes it to the pipe once it listens: no race between tests.
int StartServer(int width, int height, const char* lacks, int* number) {
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
    const std::string fd = std::to_string(ends[1]);
    const pid_t pid = fork();
    if (pid == 0) {
        close(ends[0]);
        if (freopen("/dev/null", "w", stderr) == nullptr || freopen("/dev/null", "w", stdout) == nullptr)
            _exit(126);
        execl(XVFB_EXE, "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", screen.c_str(), "-nolisten", "tcp",
              lacks ? "-extension" : nullptr, lacks, nullptr);
        _exit(127);
    }
    close(ends[1]);
    std::string text;
    pollfd ready{ends[0], POLLIN, 0};
    char c = 0;
    while (poll(&ready, 1, kPatienceMs) > 0 && read(ends[0], &c, 1) == 1 && c != '\n')
        text += c;
    close(ends[0]);
    *number = std::atoi(text.c_str());
    return text.empty() ? -1 : pid;
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

VirtualDisplay::VirtualDisplay(int width, int height, const char* lacks) : width_(width), height_(height) {
    server_ = StartServer(width, height, lacks, &number_);
    if (server_ < 0)
        return;
    display_ = XOpenDisplay(Name().c_str());
    if (display_ == nullptr)
        return;
    XSetErrorHandler(
        [](Display*, XErrorEvent*) { return 0; }); // windows come and go under the tests' queries
    MovePointer(width / 3, height / 3);
    PaintDesktop();
}

VirtualDisplay::~VirtualDisplay() {
    Kill();
}

void VirtualDisplay::Kill() {
    if (display_ != nullptr)
        XCloseDisplay(display_);
    display_ = nullptr;
    if (server_ < 0)
        return;
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
    server_ = -1;
}

std::uint32_t VirtualDisplay::DesktopPixel(int x, int y) const {
    const auto ramp = [](int at, int size) { return static_cast<std::uint32_t>(40 + at * 160 / size); };
    const std::uint32_t fine = (x / 4 + y / 4) % 2 ? 40u : 0u;
    return (ramp(x, width_) + fine) << 16 | (ramp(y, height_) + fine) << 8 | (ramp(width_ - x, width_));
}

void VirtualDisplay::PaintDesktop() {
    const int screen = DefaultScreen(display_);
    const Window root = RootWindow(display_, screen);
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width_) * height_);
    for (int y = 0; y < height_; ++y)
        for (int x = 0; x < width_; ++x)
            pixels[static_cast<std::size_t>(y) * width_ + x] = DesktopPixel(x, y);
    const unsigned w = static_cast<unsigned>(width_);
    const unsigned h = static_cast<unsigned>(height_);
    const Pixmap pixmap = XCreatePixmap(display_, root, w, h, 24);
    XImage* image = XCreateImage(display_, DefaultVisual(display_, screen), 24, ZPixmap, 0,
                                 reinterpret_cast<char*>(pixels.data()), w, h, 32, 0);
    XPutImage(display_, pixmap, DefaultGC(display_, screen), image, 0, 0, 0, 0, w, h);
    image->data = nullptr; // the vector's
    XDestroyImage(image);
    XSetWindowBackgroundPixmap(display_, root, pixmap);
    XClearWindow(display_, root);
    XFreePixmap(display_, pixmap);
    XSync(display_, False);
}

ScreenPicture VirtualDisplay::Photograph() const {
    ScreenPicture picture;
    XImage* image = XGetImage(display_, DefaultRootWindow(display_), 0, 0, static_cast<unsigned>(width_),
                              static_cast<unsigned>(height_), AllPlanes, ZPixmap);
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
    return PixelIn(DefaultRootWindow(display_), x, y);
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
    for (int waited = 0; waited < kPatienceMs; waited += kPollMs) {
        if ((ChannelDistance(PixelAt(x, y), colour) <= tolerance) != differ)
            return true;
        usleep(kPollMs * 1000);
    }
    return false;
}

std::vector<unsigned long> VirtualDisplay::ChildrenOf(unsigned long window) const {
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
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
    std::vector<unsigned long> windows = ChildrenOf(DefaultRootWindow(display_));
    std::erase_if(windows, [this](Window window) {
        XWindowAttributes attributes = {};
        return XGetWindowAttributes(display_, window, &attributes) == 0 || attributes.width <= 1;
    });
    return windows;
}

unsigned long VirtualDisplay::WindowOfSize(int width, int height) const {
    for (const Window outer : ChildrenOf(DefaultRootWindow(display_))) {
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
    for (int waited = 0; waited < kPatienceMs; waited += kPollMs) {
        const std::vector<unsigned long> windows = VisibleWindows();
        if (!windows.empty())
            return windows.back();
        usleep(kPollMs * 1000);
    }
    return 0;
}

unsigned long VirtualDisplay::CreateParent(int x, int y, int width, int height, unsigned long colour) {
    const Window window =
        XCreateSimpleWindow(display_, DefaultRootWindow(display_), x, y, static_cast<unsigned>(width),
                            static_cast<unsigned>(height), 0, 0, colour);
    XMapWindow(display_, window);
    XSync(display_, False);
    return window;
}

void VirtualDisplay::DestroyParent(unsigned long window) {
    XDestroyWindow(display_, window);
    XSync(display_, False);
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
    for (int waited = 0; waited < kPatienceMs; waited += kPollMs) {
        if (CursorIsHidden())
            return true;
        usleep(kPollMs * 1000);
    }
    return false;
}

void VirtualDisplay::PressKey(unsigned long keysym) {
    const unsigned code = XKeysymToKeycode(display_, keysym);
    XTestFakeKeyEvent(display_, code, True, CurrentTime);
    XTestFakeKeyEvent(display_, code, False, CurrentTime);
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
