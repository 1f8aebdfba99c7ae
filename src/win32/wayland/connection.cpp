// The connection to the compositor, what it offers, and the reading of its events.
#include "win32/wayland/wayland.h"

#include "ext-idle-notify-v1-client-protocol.h"
#include "image-copy-capture-client-protocol.h"
#include "kde-idle-client-protocol.h"
#include "viewporter-client-protocol.h"
#include "wlr-layer-shell-client-protocol.h"
#include "wlr-screencopy-client-protocol.h"
#include "xdg-shell-client-protocol.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <poll.h>
#include <string_view>
#include <type_traits>
#include <unistd.h>

namespace wayland {

namespace {

using Clock = std::chrono::steady_clock; // not the show's, which may stand still
using std::chrono::milliseconds;

wl_display* display = nullptr;
Globals globals;
std::string hindrance; // why there is no connection

// Compositors end programs that do not answer.
constexpr xdg_wm_base_listener kToplevelsListener = {
    .ping = [](void*, xdg_wm_base* toplevels, std::uint32_t serial) { xdg_wm_base_pong(toplevels, serial); }};

void OnGlobal(void*, wl_registry* registry, std::uint32_t name, const char* interface,
              std::uint32_t version) {
    const auto take = [&](const wl_interface& wanted, std::uint32_t most, auto*& to) {
        if (to == nullptr && std::string_view(interface) == wanted.name)
            to = static_cast<std::remove_reference_t<decltype(to)>>(
                wl_registry_bind(registry, name, &wanted, std::min(version, most)));
    };
    take(wl_compositor_interface, 4, globals.compositor);
    take(wl_shm_interface, 1, globals.shm);
    take(wp_viewporter_interface, 1, globals.viewporter);
    take(xdg_wm_base_interface, 1, globals.toplevels);
    take(zwlr_layer_shell_v1_interface, 4, globals.layers);
    take(ext_output_image_capture_source_manager_v1_interface, 1, globals.imageSources);
    take(ext_image_copy_capture_manager_v1_interface, 1, globals.imageCopies);
    take(zwlr_screencopy_manager_v1_interface, 3, globals.screencopy);
    take(ext_idle_notifier_v1_interface, 1, globals.idle);
    take(org_kde_kwin_idle_interface, 1, globals.kdeIdle);
    if (std::string_view(interface) == wl_seat_interface.name)
        AddSeat(registry, name, version);
    OnOutputGlobal(registry, name, interface, version);
}

constexpr wl_registry_listener kRegistryListener = {
    .global = OnGlobal, .global_remove = [](void*, wl_registry*, std::uint32_t name) {
        RemoveSeat(name);
        RemoveOutput(name);
    }};

// What the window cannot be without; null: nothing.
const char* MissingInterface() {
    if (globals.compositor == nullptr)
        return wl_compositor_interface.name;
    if (globals.shm == nullptr)
        return wl_shm_interface.name;
    if (globals.viewporter == nullptr)
        return wp_viewporter_interface.name;
    return globals.layers == nullptr && globals.toplevels == nullptr ? xdg_wm_base_interface.name : nullptr;
}

// libwayland would try a socket of its own choice where none is named: another session's.
wl_display* Connect() {
    const char* named = std::getenv("WAYLAND_DISPLAY");
    const bool handed = std::getenv("WAYLAND_SOCKET") != nullptr; // an open connection
    if ((named == nullptr || *named == '\0') && !handed) {
        hindrance = "WAYLAND_DISPLAY is not set";
        return nullptr;
    }
    display = wl_display_connect(nullptr);
    if (display == nullptr) {
        hindrance = handed ? "WAYLAND_SOCKET is no connection"
                           : "no compositor answers at WAYLAND_DISPLAY=" + std::string(named);
        return nullptr;
    }
    wl_registry_add_listener(wl_display_get_registry(display), &kRegistryListener, nullptr);
    CatchUp(); // what there is,
    CatchUp(); // and what that says of itself
    if (const char* missing = MissingInterface()) {
        hindrance = std::string("the compositor has no ") + missing;
        wl_display_disconnect(display);
        return display = nullptr;
    }
    if (globals.toplevels != nullptr)
        xdg_wm_base_add_listener(globals.toplevels, &kToplevelsListener, nullptr);
    return display;
}

// Sends what is waiting, and takes in what has come for any thread's queue, after waiting for it or for
// `wake`. The other thread may read at the same time: whoever is last does it for both.
void Read(int wake, int wait) {
    if (wl_display_prepare_read(display) != 0)
        return; // there is something to handle already
    const bool full = wl_display_flush(display) < 0 && errno == EAGAIN;
    const short wanted = static_cast<short>(full ? POLLIN | POLLOUT : POLLIN);
    pollfd sources[] = {{wl_display_get_fd(display), wanted, 0}, {wake, POLLIN, 0}};
    poll(sources, 2, wait);
    if ((sources[0].revents & ~POLLOUT) == 0)
        wl_display_cancel_read(display);
    else if (wl_display_read_events(display) < 0)
        EndWithConnection();
}

int HandleEvents() {
    const int count = wl_display_dispatch_pending(display);
    if (count < 0)
        EndWithConnection();
    return count;
}

} // namespace

wl_display* Connection() {
    static wl_display* const connection = Connect();
    return connection;
}

const Globals& Offers() {
    return globals;
}

std::string FindHindrance() {
    Connection();
    return hindrance;
}

// The user has logged out, or the compositor died: there is nothing left to show, and no thread that tries to
// tidy up would get a reply. A request that the compositor did not understand is another matter; the library
// has said on stderr which.
void EndWithConnection() {
    _exit(display != nullptr && wl_display_get_error(display) == EPROTO ? 1 : 0);
}

bool AwaitReply(const std::function<bool()>& isSo, milliseconds limit) {
    const auto end = Clock::now() + limit;
    while (!isSo()) {
        const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
        if (left <= milliseconds(0))
            return false;
        Read(-1, static_cast<int>(left.count()));
        HandleEvents();
    }
    return true;
}

void CatchUp() {
    if (wl_display_roundtrip(display) < 0)
        EndWithConnection();
}

int ReadEvents() {
    Read(-1, 0);
    const int count = HandleEvents();
    FollowSurroundings();
    FollowFocus();
    return count > 0 ? 0 : -1;
}

void WaitForEvents(int wake, int milliseconds) {
    Read(wake, milliseconds);
}

} // namespace wayland
