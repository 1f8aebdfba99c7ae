// The black windows on the monitors that have no show. Keys, buttons and moves of the pointer that they
// receive count as the saver window's.
#include "win32/x11/x11.h"

#include <algorithm>

namespace x11 {

namespace {

std::vector<Window> covers;

Window CreateCover(Display* display, const Place& place) {
    XSetWindowAttributes wishes = {};
    wishes.background_pixel = BlackPixel(display, DefaultScreen(display));
    wishes.override_redirect = True;
    wishes.event_mask = kInputMask;
    wishes.cursor = BlankCursor();
    return XCreateWindow(display, DefaultRootWindow(display), place.x, place.y,
                         static_cast<unsigned>(place.width), static_cast<unsigned>(place.height), 0,
                         CopyFromParent, InputOutput, nullptr,
                         CWBackPixel | CWOverrideRedirect | CWEventMask | CWCursor, &wishes);
}

} // namespace

void FitCovers(std::span<const Place> places) {
    Display* display = Connection();
    for (; covers.size() > places.size(); covers.pop_back())
        XDestroyWindow(display, covers.back());
    for (std::size_t i = 0; i < covers.size(); ++i)
        XMoveResizeWindow(display, covers[i], places[i].x, places[i].y,
                          static_cast<unsigned>(places[i].width), static_cast<unsigned>(places[i].height));
    for (std::size_t i = covers.size(); i < places.size(); ++i) {
        covers.push_back(CreateCover(display, places[i]));
        XMapRaised(display, covers.back());
    }
}

bool IsCover(Window window) {
    return std::ranges::find(covers, window) != covers.end();
}

std::span<const Window> Covers() {
    return covers;
}

} // namespace x11
