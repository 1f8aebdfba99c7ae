// The window of a screen saver daemon that stands for the screen, and the picture of the desktop that belongs
// to it: the daemon's photograph, else the wallpaper behind the window.
#include "win32/x11/x11.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <utility>

namespace x11 {

namespace {

constexpr int kLargest = 16384; // pixels a side, of a picture that is read

Window daemonWindow = None;
bool desktopIsAllowed = false;

Window ParentOf(Display* display, Window window) {
    Window root = None;
    Window parent = None;
    Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, window, &root, &parent, &children, &count) == 0)
        return None;
    if (children != nullptr)
        XFree(children);
    return parent;
}

// The pixmap that a property names; None when it is not there, or holds anything else.
Pixmap NamedPixmap(Display* display, Window window, const char* property) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    const int found = XGetWindowProperty(display, window, XInternAtom(display, property, False), 0, 1, False,
                                         XA_PIXMAP, &type, &format, &count, &left, &data);
    Pixmap pixmap = None;
    if (found == Success && type == XA_PIXMAP && format == 32 && count == 1)
        pixmap = *reinterpret_cast<const unsigned long*>(data); // as Xlib keeps what is 32 bits wide
    if (data != nullptr)
        XFree(data);
    return pixmap;
}

// False when there is no such pixmap, or it is of another depth than the screen.
bool ReadPixmap(Display* display, Pixmap pixmap, Photograph* picture) {
    Place size;
    unsigned depth = 0;
    XWindowAttributes isWindow = {};
    if (pixmap == None || XGetWindowAttributes(display, pixmap, &isWindow) != 0 ||
        !FindGeometry(display, pixmap, &size, &depth) ||
        depth != static_cast<unsigned>(DefaultDepth(display, DefaultScreen(display))) ||
        std::max(size.width, size.height) > kLargest)
        return false;
    XImage* image = XGetImage(display, pixmap, 0, 0, static_cast<unsigned>(size.width),
                              static_cast<unsigned>(size.height), AllPlanes, ZPixmap);
    if (image == nullptr)
        return false;
    picture->width = size.width;
    picture->height = size.height;
    Convert(display, image, picture);
    XDestroyImage(image);
    return true;
}

// The daemon's photograph hangs on its window or, where the show is in a pane, on one around that. None when
// there is none.
Pixmap ReadScreenshot(Display* display, Photograph* picture) {
    for (Window window = daemonWindow; window != None; window = ParentOf(display, window)) {
        const Pixmap pixmap = NamedPixmap(display, window, "_SCREENSAVER_SCREENSHOT");
        if (ReadPixmap(display, pixmap, picture))
            return pixmap;
    }
    return None;
}

Pixmap ReadWallpaper(Display* display, Photograph* picture) {
    for (const char* property : {"_XROOTPMAP_ID", "ESETROOT_PMAP_ID"}) {
        const Pixmap pixmap = NamedPixmap(display, DefaultRootWindow(display), property);
        if (ReadPixmap(display, pixmap, picture))
            return pixmap;
    }
    return None;
}

// The window shows the picture, which is repeated, from that place on, until the first frame comes: a slow
// machine takes seconds to build the show. Nothing is shown in a window of another depth.
void ShowMeanwhile(Display* display, Pixmap picture, const Place& from) {
    const unsigned width = static_cast<unsigned>(from.width);
    const unsigned height = static_cast<unsigned>(from.height);
    const Pixmap background =
        XCreatePixmap(display, saverWindow.id, width, height,
                      static_cast<unsigned>(DefaultDepth(display, DefaultScreen(display))));
    XGCValues values = {};
    values.fill_style = FillTiled;
    values.tile = picture;
    values.ts_x_origin = -from.x;
    values.ts_y_origin = -from.y;
    const GC pen =
        XCreateGC(display, background, GCFillStyle | GCTile | GCTileStipXOrigin | GCTileStipYOrigin, &values);
    XFillRectangle(display, background, pen, 0, 0, width, height);
    XSetWindowBackgroundPixmap(display, saverWindow.id, background);
    XMapWindow(display, saverWindow.id);
    XFreeGC(display, pen);
    XFreePixmap(display, background);
    XFlush(display);
}

Photograph Sized(int width, int height) {
    return {
        std::vector<unsigned char>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4),
        width, height};
}

const unsigned char* PixelOf(const Photograph& picture, int x, int y) {
    return &picture.pixels[(static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                            static_cast<std::size_t>(x)) *
                           4];
}

// The photograph of a screen in a window of another size: each pixel is the average of those that it covers.
Photograph Scaled(const Photograph& from, int width, int height) {
    Photograph scaled = Sized(width, height);
    unsigned char* to = scaled.pixels.data();
    const auto start = [](int at, int size, int wanted) {
        return static_cast<int>(static_cast<long long>(at) * size / wanted);
    };
    for (int y = 0; y < height; ++y) {
        const int top = start(y, from.height, height);
        const int bottom = std::max(top + 1, start(y + 1, from.height, height));
        for (int x = 0; x < width; ++x, to += 4) {
            const int left = start(x, from.width, width);
            const int right = std::max(left + 1, start(x + 1, from.width, width));
            unsigned sums[3] = {};
            for (int fromY = top; fromY < bottom; ++fromY)
                for (int fromX = left; fromX < right; ++fromX)
                    for (int i = 0; i < 3; ++i)
                        sums[i] += PixelOf(from, fromX, fromY)[i];
            const unsigned count = static_cast<unsigned>((bottom - top) * (right - left));
            for (int i = 0; i < 3; ++i)
                to[i] = static_cast<unsigned char>(sums[i] / count);
        }
    }
    return scaled;
}

// The part of a wallpaper, which is repeated over the X screen, from that place on.
Photograph Part(const Photograph& wallpaper, const Place& place) {
    Photograph part = Sized(place.width, place.height);
    unsigned char* to = part.pixels.data();
    const auto wrapped = [](int at, int size) { return (at % size + size) % size; };
    for (int y = 0; y < place.height; ++y)
        for (int x = 0; x < place.width; ++x, to += 4)
            std::copy_n(PixelOf(wallpaper, wrapped(place.x + x, wallpaper.width),
                                wrapped(place.y + y, wallpaper.height)),
                        4, to);
    return part;
}

// The number of the monitor that its middle lies on.
int MonitorOf(Display* display, Window window) {
    Place place;
    Window child = None;
    if (!FindGeometry(display, window, &place) ||
        !XTranslateCoordinates(display, window, DefaultRootWindow(display), place.width / 2, place.height / 2,
                               &place.x, &place.y, &child))
        return 1;
    const auto found = std::ranges::find_if(Monitors(), [&](const Place& monitor) {
        return monitor.x <= place.x && place.x < monitor.x + monitor.width && monitor.y <= place.y &&
               place.y < monitor.y + monitor.height;
    });
    return found == Monitors().end() ? 1 : static_cast<int>(found - Monitors().begin()) + 1;
}

} // namespace

Window DaemonWindow() {
    return daemonWindow;
}

int EnterWindow(HWND window, bool desktopAllowed) {
    Display* display = Connection();
    XWindowAttributes facts = {};
    if (display == nullptr || IdOf(window) == DefaultRootWindow(display) ||
        XGetWindowAttributes(display, IdOf(window), &facts) == 0 || facts.c_class != InputOutput)
        return 0;
    daemonWindow = IdOf(window);
    desktopIsAllowed = desktopAllowed;
    return MonitorOf(display, daemonWindow);
}

bool FindDaemonPicture(int width, int height, Photograph* picture, std::string* problem) {
    Display* display = Connection();
    Photograph found;
    Place place = {0, 0, width, height};
    Pixmap pixmap = desktopIsAllowed ? ReadScreenshot(display, &found) : None;
    if (pixmap != None) {
        const bool fits = found.width == width && found.height == height;
        if (fits)
            ShowMeanwhile(display, pixmap, place);
        *picture = fits ? std::move(found) : Scaled(found, width, height);
        return true;
    }
    Window child = None;
    pixmap = ReadWallpaper(display, &found);
    if (pixmap != None && XTranslateCoordinates(display, daemonWindow, DefaultRootWindow(display), 0, 0,
                                                &place.x, &place.y, &child)) {
        ShowMeanwhile(display, pixmap, place);
        *picture = Part(found, place);
        return true;
    }
    *picture = {};
    *problem = "no photograph or wallpaper for the window (desktop capture)";
    return false;
}

} // namespace x11
