// A compositor that does whatever comes to its mind, and the program above the Wayland layer, which shows its
// window, photographs the desktop, draws and ends: outputs, seats, buffers and surfaces come, change and go.
#include "fake_compositor.h"
#include "work_file.h"

#include "win32/wayland/frames.h"
#include "win32/wayland/screenshot_services.h"
#include "win32/wayland/shared_memory.h"

// These keep what has been chosen for the process; here each input begins as a new one would.
#include "win32/wayland/input.cpp"
#include "win32/wayland/layer.cpp"
#include "win32/wayland/outputs.cpp"

namespace {

bool windowIsThere = false;

void localDestroyWindow() {
    if (std::exchange(windowIsThere, false))
        wayland::DestroyWindow();
}

void localShowWindow(Script* script) {
    if (std::exchange(windowIsThere, true))
        return;
    const Place screen = wayland::FindScreen();
    Expect(wayland::CreateWindow({nullptr, {0, 0, screen.width, screen.height}, "show"}) != nullptr);
    Photograph picture;
    std::string problem;
    const bool found = wayland::PhotographDesktop(screen.width > 0 ? 64 : 1, 48, &picture, &problem);
    Expect(found == problem.empty());
    Expect(picture.pixels.size() == static_cast<std::size_t>(picture.width) * picture.height * 4);
    if (script->Byte() % 4 == 0)
        wayland::ShowBlack();
    wayland::ShowWindow();
}

void localDraw() {
    int width = 0;
    int height = 0;
    if (!windowIsThere)
        return;
    if (wayland::frames.TakeSize(&width, &height))
        Expect(width > 0 && height > 0);
    wayland::frames.Show([] {
        wl_surface_commit(wayland::WindowSurface());
        return true;
    });
}

void localAct(Script* script) {
    POINT position = {};
    switch (script->Byte() % 8) {
    case 0:
        return localShowWindow(script);
    case 1:
        return localDraw();
    case 2:
        return localDestroyWindow();
    case 3:
        Expect(wayland::CountShows() >= 1);
        static_cast<void>(wayland::WholeDesktop());
        static_cast<void>(wayland::FindPointer(&position));
        return;
    case 4:
        if (wayland::Seat() != nullptr) // else it says so on stderr
            Expect(wayland::WatchIdle(1000 + 1000 * static_cast<int>(script->Choice(2))));
        return;
    default:
        wayland::ReadEvents();
    }
}

} // namespace

// What the window system reports, in the place of the window's procedure.
void ReportKey(unsigned, unsigned long, bool, bool) {}
void ReportHeldKey(unsigned) {}
void ReportButton(PointerButton, int, int) {}
void ReportPointer(int, int) {}
void ReportActivation(bool) {}
void ReportSize(int width, int height) {
    Expect(width > 0 && height > 0);
}
void ReportVisibility(bool) {}
void ReportIdle(bool) {}
void ReportCloseRequest() {}
void ReportDestruction() {
    localDestroyWindow();
}

// There is no session bus.
bool wayland::PhotographByKwin(const std::string&, Photograph*, std::string* problem) {
    *problem = "none";
    return false;
}
bool wayland::PhotographByPortal(const Place&, const Place& output, int width, int height, Photograph*,
                                 std::string* problem) {
    Expect(output.width >= 0 && output.height >= 0 && width > 0 && height > 0);
    *problem = "none";
    return false;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    static const bool prepared = setenv("WAYLAND_DISPLAY", "made-up", 1) == 0 &&
                                 setenv("XKB_LOG_LEVEL", "critical", 1) == 0 &&
                                 wayland::Connection() != nullptr && wayland::FewPixels(true) != nullptr;
    static const wayland::Globals all = wayland::Offers();
    static const std::size_t least = CountObjects();
    Expect(prepared);
    Script script({bytes, size});

    // What the compositor offers, which of several shows this is, and on what layer.
    const unsigned offers = script.Byte();
    auto& globals = const_cast<wayland::Globals&>(wayland::Offers());
    globals.layers = (offers & 1) != 0 ? all.layers : nullptr;
    globals.imageCopies = (offers & 32) != 0 ? all.imageCopies : nullptr;
    globals.screencopy = (offers & 2) != 0 ? all.screencopy : nullptr;
    wayland::hasLooked = wayland::focused = wayland::reportedFocus = false;
    wayland::heldKeys.clear();
    wayland::wayX = wayland::wayY = wayland::pointerX = wayland::pointerY = 0;
    wayland::layer = (offers & 5) == 5 ? std::optional<std::uint32_t>(offers >> 6) : std::nullopt;
    const int shows = (offers & 8) != 0 ? 2 : 1;
    wayland::ChooseShow((offers & 16) != 0 ? shows - 1 : 0, shows);

    PlayCompositor(&script);
    while (!script.IsAtEnd()) {
        if (script.Peek() >= kFirstEvent)
            wayland::ReadEvents();
        else
            localAct(&script);
    }
    localDestroyWindow();
    wayland::UnwatchIdle();
    RemoveEverything();
    Expect(CountObjects() == least);
    PlayCompositor(nullptr);
    return 0;
}
