#include "win32/offscreen/offscreen.h"

#include "win32/offscreen/screen.h"

#include <cstring>
#include <poll.h>

namespace offscreen {

Place screen;
bool hasWindow = false;

namespace {

constexpr int kLargest = 16384; // pixels a side
const HWND kTheWindow = reinterpret_cast<HWND>(static_cast<UINT_PTR>(1));

Photograph desktop; // the caller's; empty: there is none

bool PhotographDesktop(int width, int height, Photograph* picture, std::string* problem) {
    if (desktop.pixels.empty() || desktop.width < width || desktop.height < height) {
        *problem =
            "there is no desktop of " + std::to_string(width) + " x " + std::to_string(height) + " pixels";
        return false;
    }
    *picture = desktop;
    return true;
}

HWND CreateWindow(const WindowRequest& request) {
    if (hasWindow || request.parent != nullptr)
        return nullptr;
    hasWindow = true;
    return kTheWindow;
}

bool FindWindow(HWND window, Place* place) {
    const bool found = hasWindow && window == kTheWindow;
    if (found)
        *place = screen;
    return found;
}

void WaitForEvents(int wake, int milliseconds) {
    pollfd source = {wake, POLLIN, 0};
    poll(&source, 1, milliseconds);
}

} // namespace

} // namespace offscreen

// There is nobody in front of this screen: no pointer, no cursor, no events, and nothing to show.
const WindowSystem kOffscreen = {
    .name = "offscreen",
    .Open = [] { return offscreen::screen.width > 0; },
    .FindHindrance = [] { return std::string(); },
    .EnterWindow = [](HWND, bool) { return 0; }, // there are no other windows
    .EnterLayer = [](const std::string&) { return false; },
    .CountShows = [] { return 1; },
    .ChooseShow = [](int, int) {},
    .FindScreen = [] { return offscreen::screen; },
    .FindPointer = [](POINT*) { return false; },
    .PhotographDesktop = offscreen::PhotographDesktop,
    .CreateWindow = offscreen::CreateWindow,
    .ShowWindow = [] {},
    .DestroyWindow = [] { offscreen::hasWindow = false; },
    .FindWindow = offscreen::FindWindow,
    .SetParent = [](HWND) -> HWND { return nullptr; }, // there are no other windows
    .PlaceWindow = [](const Place&) { return true; },  // it always fills the screen
    .HideCursor = [] {},
    .ShowBlack = [] {},
    .ReadEvents = [] { return -1; },
    .WaitForEvents = offscreen::WaitForEvents,
    .WatchIdle = [](int) { return false; }, // nobody's input is known
    .UnwatchIdle = [] {},
    .ShowIsUnwanted = [] { return false; },
    .OpenGl = offscreen::OpenGl,
    .FindGlFunction = offscreen::FindGlFunction,
};

bool OffscreenSetScreen(int width, int height) {
    static constexpr const WindowSystem* kOnly[] = {&kOffscreen};
    if (width < 1 || height < 1 || width > offscreen::kLargest || height > offscreen::kLargest ||
        offscreen::SoftwareDisplay() == EGL_NO_DISPLAY)
        return false;
    offscreen::screen = {0, 0, width, height};
    OfferWindowSystems(kOnly);
    return true;
}

void OffscreenSetDesktop(const unsigned char* bgrx, int width, int height, int pitch) {
    Photograph& desktop = offscreen::desktop;
    desktop = {};
    if (bgrx == nullptr || width < 1 || height < 1 || pitch < 4 * width)
        return;
    const std::size_t row = static_cast<std::size_t>(width) * 4;
    desktop = {std::vector<unsigned char>(row * height), width, height};
    for (int y = 0; y < height; ++y)
        std::memcpy(&desktop.pixels[row * y], bgrx + static_cast<std::ptrdiff_t>(y) * pitch, row);
}
