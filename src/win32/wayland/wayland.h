// What the files of this folder share. The window covers one output, and black surfaces the others. Each of
// them is on the overlay layer where the compositor has layers, and a fullscreen toplevel elsewhere.
//
// The main thread reads what comes from the compositor, and every object of ours is on its queue; the loop's
// thread only asks for frames and shows them (frames.h). Pixels are the output's own; surfaces are placed in
// the compositor's coordinates, and a viewport brings the one to the other.
#pragma once

#include "win32/wayland/outputs.h"
#include "win32/window_system.h"

#include <wayland-client.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

struct ext_idle_notifier_v1;
struct ext_image_copy_capture_manager_v1;
struct ext_output_image_capture_source_manager_v1;
struct org_kde_kwin_idle;
struct wp_viewport;
struct wp_viewporter;
struct xdg_wm_base;
struct zwlr_layer_shell_v1;
struct zwlr_screencopy_manager_v1;

namespace wayland {

// What the compositor offers; null: it has none of that.
struct Globals {
    wl_compositor* compositor = nullptr;
    wl_shm* shm = nullptr;
    wp_viewporter* viewporter = nullptr;
    xdg_wm_base* toplevels = nullptr;
    zwlr_layer_shell_v1* layers = nullptr;
    ext_output_image_capture_source_manager_v1* imageSources = nullptr; // what imageCopies takes outputs as
    ext_image_copy_capture_manager_v1* imageCopies = nullptr;
    zwlr_screencopy_manager_v1* screencopy = nullptr;
    ext_idle_notifier_v1* idle = nullptr;
    org_kde_kwin_idle* kdeIdle = nullptr;
};

// connection.cpp: the connection to the compositor, made at the first call. Null when there is none, or it
// lacks something that the window needs.
wl_display* Connection();
const Globals& Offers();
// Handles what has come and is still coming until this is so; false when it is not after so long.
bool AwaitReply(const std::function<bool()>& isSo, std::chrono::milliseconds limit);
// Handles everything that the compositor did before it saw this request.
void CatchUp();
// The compositor is gone, or has closed the connection.
[[noreturn]] void EndWithConnection();

// For the listeners' events that nobody here asks about.
inline constexpr auto kPassedOver = [](auto...) {};

// outputs.cpp
bool TakesInput(); // the show is the first one
// Those of this process: the show's, and behind it those to be covered. Empty: the show has none.
std::vector<const Output*> OwnOutputs();
// Just around all of them, in the compositor's coordinates.
Place WholeDesktop();
// Whether outputs have come, gone or changed since it was last called.
bool OutputsHaveChanged();

// layer.cpp: what --layer names; none: the show is above everything.
std::optional<std::uint32_t> NamedLayer();

// window.cpp
struct SaverWindow {
    bool exists = false;
    int width = 0, height = 0; // pixels
    double pixelsPerUnit = 1;  // of the surface's own coordinates
};
const SaverWindow& TheWindow();
wl_surface* WindowSurface();
// What has changed around the window since: outputs, sizes, the compositor's wishes.
void FollowSurroundings();

// input.cpp
void AddSeat(wl_registry* registry, std::uint32_t global, std::uint32_t version);
void RemoveSeat(std::uint32_t global);
wl_seat* Seat();    // null: there is none
void FollowFocus(); // reports it when it is gone, or back

// The functions of the window system's table (wayland.cpp), in the file that their subject has.
int CountShows();
void ChooseShow(int number, int count);
Place FindScreen();
bool FindPointer(POINT* position);
bool PhotographDesktop(int width, int height, Photograph* picture, std::string* problem);
HWND CreateWindow(const WindowRequest& request);
void ShowWindow();
void DestroyWindow();
bool FindWindow(HWND window, Place* place);
void ShowBlack();
int ReadEvents();
void WaitForEvents(int wake, int milliseconds);
bool WatchIdle(int milliseconds);
void UnwatchIdle();
std::unique_ptr<GlSurface> OpenGl();
PROC FindGlFunction(const char* name);
bool EnterLayer(const std::string& name);
std::string FindHindrance();

} // namespace wayland
