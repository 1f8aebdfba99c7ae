// An X server of the test's own (Xvfb) with a known picture on the desktop, and a client that looks at the
// screen, plays the user, changes the monitors, and is the other program that the saver meets.
#pragma once

#include "integration/program.h"

#define Picture XPicture // the film tool has a type of that name
#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xfixes.h>
#include <X11/extensions/Xrandr.h>
#include <X11/keysym.h>
#undef Picture

#include <algorithm>
#include <cstring>
#include <utility>

struct Area {
    int x, y, width, height;
};

// A picture of the screen: rows from the top, 0x00RRGGBB per pixel.
struct ScreenPicture {
    int width = 0;
    std::vector<std::uint32_t> pixels;

    bool IsBlack() const { return !pixels.empty() && std::ranges::count(pixels, 0u) == std::ssize(pixels); }
    std::uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
};

// The largest difference of any colour channel between two pixels, 0..255.
inline int ChannelDistance(std::uint32_t a, std::uint32_t b) {
    int worst = 0;
    for (int shift = 0; shift < 24; shift += 8)
        worst = std::max(worst,
                         std::abs(static_cast<int>(a >> shift & 255u) - static_cast<int>(b >> shift & 255u)));
    return worst;
}

// What a desktop of that size shows: smooth ramps with a fine pattern, so that a shift by one pixel is seen.
inline std::uint32_t DesktopColour(int left, int top, int width, int height) {
    const auto ramp = [](int at, int size) { return static_cast<std::uint32_t>(40 + at * 160 / size); };
    const std::uint32_t fine = (left / 4 + top / 4) % 2 ? 40u : 0u;
    return (ramp(left, width) + fine) << 16 | (ramp(top, height) + fine) << 8 | ramp(width - left, width);
}
inline ScreenPicture DesktopPicture(int width, int height) {
    ScreenPicture picture{width, {}};
    for (int i = 0; i < width * height; ++i)
        picture.pixels.push_back(DesktopColour(i % width, i / width, width, height));
    return picture;
}

// A picture comes to show a part of a desktop, stretched, which blurs its fine pattern.
inline bool ShowsStretched(const ScreenPicture& picture, const Area& part, int width, int height) {
    constexpr int kTolerance = 45, kSteps = 16;
    const int rows = static_cast<int>(picture.pixels.size()) / std::max(picture.width, 1);
    bool same = rows > 0;
    for (int i = 0; same && i < kSteps * kSteps; ++i) {
        const auto at = [](int step, int size) { return (2 * step + 1) * size / (2 * kSteps); };
        const int column = i % kSteps, row = i / kSteps;
        same = ChannelDistance(picture.At(at(column, picture.width), at(row, rows)),
                               DesktopColour(part.x + at(column, part.width), part.y + at(row, part.height),
                                             width, height)) <= kTolerance;
    }
    return same;
}

// As X tools write the number of a window.
inline std::string Hexadecimal(Window window) {
    return (testing::Message() << "0x" << std::hex << window).GetString();
}

// How many pixels are of another colour, rounding apart; all of them in a picture of another size.
inline std::size_t Difference(const ScreenPicture& a, const ScreenPicture& b, int tolerance = 12) {
    if (a.width != b.width || a.pixels.size() != b.pixels.size())
        return std::max(a.pixels.size(), b.pixels.size());
    std::size_t different = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i)
        different += ChannelDistance(a.pixels[i], b.pixels[i]) > tolerance;
    return different;
}
class VirtualDisplay {
public:
    VirtualDisplay(int screenWidth, int screenHeight) : width(screenWidth), height(screenHeight) {
        // Xvfb picks a free number itself and writes it to the pipe once it listens: no race between tests.
        int ends[2];
        if (pipe(ends) != 0)
            return;
        const std::string size = std::to_string(width) + "x" + std::to_string(height) + "x24";
        server_.Start(
            {XVFB_EXE, "-displayfd", std::to_string(ends[1]), "-screen", "0", size, "-nolisten", "tcp"}, {},
            "/", "/dev/null");
        close(ends[1]);
        for (char c = 0; read(ends[0], &c, 1) == 1 && c != '\n';)
            name_ += c;
        close(ends[0]);
        connection = name_ == ":" ? nullptr : XOpenDisplay(name_.c_str());
        if (connection == nullptr)
            return;
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; }); // windows come and go under the queries
        MovePointer(width / 3, height / 3);
        const Pixmap pixmap = MakePixmap(DesktopPicture(width, height));
        XSetWindowBackgroundPixmap(connection, Root(), pixmap);
        XFreePixmap(connection, pixmap);
        XClearWindow(connection, Root());
        Sync();
    }
    ~VirtualDisplay() { Kill(); }
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;
    void Kill() { // the server goes away, as at a log-out
        if (connection != nullptr)
            XCloseDisplay(std::exchange(connection, nullptr));
        name_ = ":";             // the next server gets its number
        server_.Signal(SIGTERM); // it has a file to remove
        server_.WaitForExit();
    }
    const std::string& Name() const { return name_; }
    Window Root() const { return DefaultRootWindow(connection); }
    void Sync() const { XSync(connection, False); }

    std::uint32_t DesktopPixel(int left, int top) const { return DesktopColour(left, top, width, height); }
    ScreenPicture Photograph() const { return Photograph(Root(), {0, 0, width, height}); }
    // Of a window's own picture, also where it lies outside of the screen.
    ScreenPicture Photograph(Window window, const Area& area) const {
        const unsigned w = static_cast<unsigned>(area.width), h = static_cast<unsigned>(area.height);
        ScreenPicture picture{area.width,
                              std::vector<std::uint32_t>(std::size_t{w} * h, 0xFFFFFF)}; // when it fails
        if (XImage* image = XGetImage(connection, window, area.x, area.y, w, h, AllPlanes, ZPixmap)) {
            std::memcpy(picture.pixels.data(), image->data, 4 * picture.pixels.size());
            XDestroyImage(image);
        }
        for (std::uint32_t& pixel : picture.pixels)
            pixel &= 0xFFFFFFu;
        return picture;
    }
    std::uint32_t PixelAt(int left, int top) const { return Photograph(Root(), {left, top, 1, 1}).At(0, 0); }
    // Until the screen's pixel comes within `tolerance` of (or, with `differ`, leaves) the colour.
    bool WaitForPixel(int left, int top, std::uint32_t colour, int tolerance, bool differ = false) const {
        return Eventually(
            [&] { return (ChannelDistance(PixelAt(left, top), colour) <= tolerance) != differ; });
    }
    bool WaitForBlack(const Area& area) const {
        return Eventually([&] { return Photograph(Root(), area).IsBlack(); });
    }
    bool CursorIsHidden() const {
        XFixesCursorImage* cursor = XFixesGetCursorImage(connection);
        const auto isClear = [](unsigned long pixel) { return (pixel >> 24 & 255u) == 0; };
        const bool hidden =
            std::all_of(cursor->pixels, cursor->pixels + cursor->width * cursor->height, isClear);
        XFree(cursor);
        return hidden;
    }
    bool WaitForHiddenCursor() const {
        return Eventually([this] { return CursorIsHidden(); });
    }

    // Visible windows on the screen or within another one, the lowest first; none of a pixel, for messages.
    std::vector<Window> VisibleWindows(Window within = None, int narrowest = 2) const {
        Window root = 0, parent = 0, *children = nullptr;
        unsigned count = 0;
        XQueryTree(connection, within != None ? within : Root(), &root, &parent, &children, &count);
        std::vector<Window> windows(children, children + count);
        XFree(children);
        std::erase_if(windows, [&](Window window) {
            const XWindowAttributes attributes = Attributes(window);
            return attributes.map_state != IsViewable || attributes.width < narrowest;
        });
        return windows;
    }
    Window WaitForWindow() const {
        std::vector<Window> windows;
        Eventually([&] { return !(windows = VisibleWindows()).empty(); });
        return windows.empty() ? 0 : windows.back();
    }
    // A visible window of that size on the screen or in a window there; 0 when there is none.
    Window WindowOfSize(int wantedWidth, int wantedHeight) const {
        std::vector<Window> windows = VisibleWindows(None, 1);
        for (std::size_t i = 0; i < windows.size(); ++i) {
            const XWindowAttributes attributes = Attributes(windows[i]);
            if (attributes.width == wantedWidth && attributes.height == wantedHeight)
                return windows[i];
            std::ranges::copy(VisibleWindows(windows[i], 1), std::back_inserter(windows));
        }
        return 0;
    }
    void PressKey(KeySym key) const {
        TurnKey(key, true);
        TurnKey(key, false);
    }
    void TurnKey(KeySym key, bool down) const {
        XTestFakeKeyEvent(connection, XKeysymToKeycode(connection, key), down, CurrentTime);
        Sync();
    }
    void MovePointer(int left, int top) const {
        XTestFakeMotionEvent(connection, -1, left, top, CurrentTime);
        Sync();
    }
    void ClickButton(unsigned button) const {
        for (const bool down : {true, false})
            XTestFakeButtonEvent(connection, button, down, CurrentTime);
        Sync();
    }

    Pixmap MakePixmap(ScreenPicture picture) const {
        const int screen = DefaultScreen(connection);
        const unsigned w = static_cast<unsigned>(picture.width);
        const unsigned h = static_cast<unsigned>(picture.pixels.size()) / w;
        const Pixmap pixmap = XCreatePixmap(connection, Root(), w, h, 24);
        XImage* image = XCreateImage(connection, DefaultVisual(connection, screen), 24, ZPixmap, 0,
                                     reinterpret_cast<char*>(picture.pixels.data()), w, h, 32, 0);
        XPutImage(connection, pixmap, DefaultGC(connection, screen), image, 0, 0, 0, 0, w, h);
        image->data = nullptr; // the vector's
        XDestroyImage(image);
        return pixmap;
    }

    // The desktop's upper left part, repeated.
    void NameWallpaper(int partWidth, int partHeight) const {
        ScreenPicture picture{partWidth, {}};
        for (int i = 0; i < partWidth * partHeight; ++i)
            picture.pixels.push_back(DesktopPixel(i % partWidth, i / partWidth));
        Name(Root(), "_XROOTPMAP_ID", MakePixmap(picture));
    }

    // Above all others, in one colour, 0x00RRGGBB.
    Window ShowWindow(const Area& area, unsigned long colour = 0) const {
        const Window window =
            XCreateSimpleWindow(connection, Root(), area.x, area.y, static_cast<unsigned>(area.width),
                                static_cast<unsigned>(area.height), 0, 0, colour);
        XSelectInput(connection, window, KeyPressMask);
        XMapRaised(connection, window);
        Sync();
        return window;
    }
    void DestroyWindow(Window window) const {
        XDestroyWindow(connection, window);
        Sync();
    }
    void TakeFocus(Window window) const {
        XSetInputFocus(connection, window, RevertToPointerRoot, CurrentTime);
        Sync();
    }
    Window Focus() const {
        Window focus = None;
        int revert = 0;
        XGetInputFocus(connection, &focus, &revert);
        return focus;
    }
    // A property of one number.
    void Name(Window window, const char* property, XID value, Atom type = XA_PIXMAP) const {
        XChangeProperty(connection, window, XInternAtom(connection, property, False), type, 32,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(&value), 1);
        Sync();
    }
    // Keyboard and pointer, each with the server's answer.
    std::pair<int, int> GrabInput() const {
        return {XGrabKeyboard(connection, Root(), False, GrabModeAsync, GrabModeAsync, CurrentTime),
                XGrabPointer(connection, Root(), False, 0, GrabModeAsync, GrabModeAsync, None, None,
                             CurrentTime)};
    }
    void ReleaseInput() const {
        XUngrabKeyboard(connection, CurrentTime);
        XUngrabPointer(connection, CurrentTime);
        Sync();
    }
    bool WaitUntilInputIsGrabbed() const { // both, by somebody else
        return Eventually([this] {
            const auto answers = GrabInput();
            ReleaseInput();
            return answers == std::pair{AlreadyGrabbed, AlreadyGrabbed};
        });
    }

    // Anew, where there is one of that name. The first one takes the place of the screen's own.
    void SetMonitor(const char* name, const Area& area, bool primary) const {
        DeleteMonitor(name);
        int count = 0;
        XRRMonitorInfo* before = XRRGetMonitors(connection, Root(), True, &count);
        RROutput output = before != nullptr && before->automatic != 0 ? before->outputs[0] : None;
        XRRFreeMonitors(before);
        const Atom atom = XInternAtom(connection, name, False);
        const auto& [x, y, w, h] = area;
        XRRMonitorInfo info = {atom, primary, False, output != None, x, y, w, h, 100, 100, &output};
        XRRSetMonitor(connection, Root(), &info);
        Sync();
    }
    void DeleteMonitor(const char* name) const {
        XRRDeleteMonitor(connection, Root(), XInternAtom(connection, name, False));
        Sync();
    }

    Display* connection = nullptr; // null: there is no server
    const int width, height;

private:
    XWindowAttributes Attributes(Window window) const {
        XWindowAttributes attributes = {};
        XGetWindowAttributes(connection, window, &attributes);
        return attributes;
    }

    Program server_;
    std::string name_ = ":";
};
