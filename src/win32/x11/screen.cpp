// The screen as a whole: its monitors, its pointer, who has the keyboard.
#include "win32/x11/x11.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace x11 {

namespace {

std::vector<Place> monitors;
bool hasMonitor = true;
std::size_t show = 0; // this process's
std::size_t shows = 1;

// The monitors that have a show, and behind them those that show a part of one of them.
std::vector<Place> ShowsFirst(const std::vector<Place>& all, std::size_t* count) {
    std::vector<Place> apart;
    std::vector<Place> others;
    for (const Place& each : all) {
        const bool overlaps =
            std::ranges::any_of(apart, [&](const Place& one) { return Overlap(one, each); });
        (overlaps ? others : apart).push_back(each);
    }
    *count = apart.size();
    apart.insert(apart.end(), others.begin(), others.end());
    return apart;
}

} // namespace

int CountShows() {
    std::size_t count = 1;
    if (Connection() != nullptr)
        ShowsFirst(ListMonitors(Connection()), &count);
    return static_cast<int>(count);
}

void ChooseShow(int number, int count) {
    show = static_cast<std::size_t>(number);
    shows = static_cast<std::size_t>(count);
}

// The first show covers what is left.
std::vector<Place> ListOwnMonitors(Display* display) {
    std::vector<Place> all = ListMonitors(display);
    if (shows == 1)
        return all;
    std::size_t count = 0;
    all = ShowsFirst(all, &count);
    if (show > 0)
        return show < count ? std::vector{all[show]} : std::vector<Place>();
    all.erase(all.begin() + 1, all.begin() + static_cast<std::ptrdiff_t>(std::min(shows, count)));
    return all;
}

void ReadMonitors() {
    std::vector<Place> now = ListOwnMonitors(Connection());
    hasMonitor = !now.empty();
    if (hasMonitor)
        monitors = std::move(now);
    else if (monitors.empty()) // it went while this process started
        monitors = {{0, 0, 1, 1}};
}

bool HasMonitor() {
    return hasMonitor;
}

bool TakesInput() {
    return show == 0;
}

std::span<const Place> Monitors() {
    if (monitors.empty())
        ReadMonitors();
    return monitors;
}

void SayNoDisplay() {
    std::fprintf(stderr, "tamblor: %s\n", FindHindrance().c_str());
}

// Xwayland gives a window the keyboard only while the compositor gives it to that window, whatever it grabs.
std::string FindHindrance() {
    Display* display = Connection();
    const char* wanted = std::getenv("DISPLAY");
    if (display == nullptr)
        return std::string("cannot open display ") + (wanted ? wanted : "(DISPLAY is not set)");
    if (!IsXwayland(display))
        return "";
    return "DISPLAY=" + std::string(DisplayString(display)) +
           " is Xwayland, which does not give a saver the keyboard: what is typed would go to the window "
           "below";
}

Place FindScreen() {
    if (Connection() == nullptr)
        return {};
    if (DaemonWindow() != None) {
        Place window;
        const bool found = FindGeometry(Connection(), DaemonWindow(), &window);
        return found ? Place{0, 0, window.width, window.height} : Place{};
    }
    const Place& primary = Monitors().front();
    return {0, 0, primary.width, primary.height};
}

// Where the pointer is on the X screen: that does not change when another monitor becomes the primary one,
// and positions are only compared with each other.
bool FindPointer(POINT* position) {
    Display* display = Connection();
    if (display == nullptr)
        return false;
    Window root = None;
    Window child = None;
    int x = 0;
    int y = 0;
    int inWindowX = 0;
    int inWindowY = 0;
    unsigned buttons = 0;
    XQueryPointer(display, DefaultRootWindow(display), &root, &child, &x, &y, &inWindowX, &inWindowY,
                  &buttons);
    *position = {x, y};
    return true;
}

Window FocusedWindow() {
    Window focus = None;
    int revert = 0;
    XGetInputFocus(Connection(), &focus, &revert);
    return focus;
}

} // namespace x11
