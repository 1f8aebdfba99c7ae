#include "win32/x11/monitors.h"

#include <X11/extensions/Xrandr.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <tuple>

namespace x11 {

namespace {

struct FreeMonitors {
    void operator()(XRRMonitorInfo* list) const { XRRFreeMonitors(list); }
};

// XDisplayWidth keeps the size that the screen had when the connection was made.
Place WholeScreen(Display* display) {
    Place place;
    FindGeometry(display, DefaultRootWindow(display), &place);
    return place;
}

Place Common(const Place& a, const Place& b) {
    const int x = std::max(a.x, b.x);
    const int y = std::max(a.y, b.y);
    return {x, y, std::min(a.x + a.width, b.x + b.width) - x, std::min(a.y + a.height, b.y + b.height) - y};
}

bool HasMonitors(Display* display) {
    int event = 0;
    int error = 0;
    int major = 0;
    int minor = 0;
    return XRRQueryExtension(display, &event, &error) != False &&
           XRRQueryVersion(display, &major, &minor) != 0 && std::tie(major, minor) >= std::tuple(1, 5);
}

} // namespace

bool FindGeometry(Display* display, Drawable drawable, Place* place, unsigned* depth) {
    Window root = None;
    unsigned width = 0;
    unsigned height = 0;
    unsigned border = 0;
    unsigned unasked = 0;
    const Status found = XGetGeometry(display, drawable, &root, &place->x, &place->y, &width, &height,
                                      &border, depth != nullptr ? depth : &unasked);
    place->width = static_cast<int>(width);
    place->height = static_cast<int>(height);
    return found != 0;
}

std::vector<Place> ListMonitors(Display* display) {
    struct Monitor {
        bool secondary;
        Place place;
    };
    const Place screen = WholeScreen(display);
    std::vector<Monitor> monitors;
    if (HasMonitors(display)) {
        int count = 0;
        const std::unique_ptr<XRRMonitorInfo, FreeMonitors> list(
            XRRGetMonitors(display, DefaultRootWindow(display), True, &count));
        for (int i = 0; list && i < count; ++i) {
            const XRRMonitorInfo& info = list.get()[i];
            const Place seen = Common({info.x, info.y, info.width, info.height}, screen);
            if (seen.width > 0 && seen.height > 0)
                monitors.push_back({info.primary == 0, seen});
        }
    }
    std::ranges::sort(monitors, {}, [](const Monitor& monitor) {
        return std::tuple(monitor.secondary, monitor.place.x, monitor.place.y);
    });
    std::vector<Place> places;
    places.reserve(monitors.size() + 1);
    for (const Monitor& monitor : monitors)
        places.push_back(monitor.place);
    if (places.empty())
        places.push_back(screen);
    return places;
}

// It has an extension of that name since version 23; its outputs have always had that name.
bool IsXwayland(Display* display) {
    struct FreeResources {
        void operator()(XRRScreenResources* list) const { XRRFreeScreenResources(list); }
    };
    struct FreeOutput {
        void operator()(XRROutputInfo* info) const { XRRFreeOutputInfo(info); }
    };
    int code = 0;
    int event = 0;
    int error = 0;
    if (XQueryExtension(display, "XWAYLAND", &code, &event, &error) != False)
        return true;
    if (!HasMonitors(display))
        return false;
    const std::unique_ptr<XRRScreenResources, FreeResources> list(
        XRRGetScreenResourcesCurrent(display, DefaultRootWindow(display)));
    for (int i = 0; list && i < list->noutput; ++i) {
        const std::unique_ptr<XRROutputInfo, FreeOutput> info(
            XRRGetOutputInfo(display, list.get(), list->outputs[i]));
        if (info &&
            std::string_view(info->name, static_cast<std::size_t>(info->nameLen)).starts_with("XWAYLAND"))
            return true;
    }
    return false;
}

void WatchMonitors(Display* display) {
    int event = 0;
    int error = 0;
    if (XRRQueryExtension(display, &event, &error) != False)
        XRRSelectInput(display, DefaultRootWindow(display),
                       RRScreenChangeNotifyMask | RRCrtcChangeNotifyMask | RROutputChangeNotifyMask);
}

// The root window itself is reported too: that alone comes when monitors are set by a request.
bool IsMonitorEvent(Display* display, const XEvent& event) {
    static const int first = [display] {
        int base = 0;
        int error = 0;
        return XRRQueryExtension(display, &base, &error) != False ? base : -1;
    }();
    if (event.type == ConfigureNotify)
        return event.xconfigure.window == DefaultRootWindow(display);
    return first >= 0 && (event.type == first + RRScreenChangeNotify || event.type == first + RRNotify);
}

} // namespace x11
