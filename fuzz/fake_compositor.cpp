#include "fake_compositor.h"

#include "work_file.h"

#include "image-copy-capture-client-protocol.h"
#include "wlr-layer-shell-client-protocol.h"
#include "wlr-screencopy-client-protocol.h"
#include "xdg-output-unstable-v1-client-protocol.h"
#include "xdg-shell-client-protocol.h"

#include <wayland-client.h>

#include <sys/eventfd.h>
#include <sys/mman.h>

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

struct wl_proxy {
    const wl_interface* interface;
    std::uint32_t version;
    const void* listener = nullptr;
    void* data = nullptr;
    bool told = false;       // of a frame: its buffer was described
    std::int64_t memory = 0; // of a pool: bytes
};

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

Script* script = nullptr;
std::vector<std::unique_ptr<wl_proxy>> objects;
std::vector<std::uint32_t> announced; // outputs and seats, by their numbers
wl_proxy* registry = nullptr;
Clock::time_point now;

// Before the real clock began: nothing waits for it.
constexpr Clock::time_point kBeginning{-std::chrono::hours(24 * 365)};

constexpr const wl_interface* kAlways[] = {&wl_compositor_interface,
                                           &wl_shm_interface,
                                           &xdg_wm_base_interface,
                                           &zwlr_layer_shell_v1_interface,
                                           &zwlr_screencopy_manager_v1_interface,
                                           &ext_output_image_capture_source_manager_v1_interface,
                                           &ext_image_copy_capture_manager_v1_interface,
                                           &zxdg_output_manager_v1_interface};

bool localIsThere(const wl_proxy* proxy) {
    return std::ranges::any_of(objects, [&](const auto& each) { return each.get() == proxy; });
}

wl_proxy* localFind(const wl_interface& interface, std::size_t skipped = 0) {
    for (const auto& each : objects)
        if (each->interface == &interface && skipped-- == 0)
            return each.get();
    return nullptr;
}

template <class Listener> const Listener& localListener(const wl_proxy* proxy) {
    return *static_cast<const Listener*>(proxy->listener);
}

template <class Object> Object* localAs(wl_proxy* proxy) {
    return reinterpret_cast<Object*>(proxy);
}

void localAnnounce(std::uint32_t number, const char* interface, std::uint32_t version) {
    localListener<wl_registry_listener>(registry).global(registry->data, localAs<wl_registry>(registry),
                                                         number, interface, version);
}

// Each event of an object that has a listener; what it says is the script's.
void localTellOutput(wl_proxy* to) {
    const auto& listener = localListener<wl_output_listener>(to);
    auto* output = localAs<wl_output>(to);
    const std::size_t event = script->Choice(5);
    const std::int32_t a = script->Number();
    const std::int32_t b = script->Number();
    if (event == 0)
        listener.geometry(to->data, output, a, b, 0, 0, 0, "maker", "model",
                          static_cast<std::int32_t>(script->Choice(9)));
    else if (event == 1)
        listener.mode(to->data, output, script->Byte(), a, b, 60000);
    else if (event == 2 && to->version >= WL_OUTPUT_SCALE_SINCE_VERSION)
        listener.scale(to->data, output, a);
    else if (event == 3 && to->version >= WL_OUTPUT_NAME_SINCE_VERSION)
        listener.name(to->data, output, ("OUT-" + std::to_string(a)).c_str());
    else if (to->version >= WL_OUTPUT_DONE_SINCE_VERSION)
        listener.done(to->data, output);
}

void localTellLayout(wl_proxy* to) {
    const auto& listener = localListener<zxdg_output_v1_listener>(to);
    auto* layout = localAs<zxdg_output_v1>(to);
    const std::size_t event = script->Choice(2);
    const std::int32_t a = script->Number();
    const std::int32_t b = script->Number();
    (event == 0 ? listener.logical_position : listener.logical_size)(to->data, layout, a, b);
}

void localTellSurface(wl_proxy* to) {
    const auto& listener = localListener<wl_surface_listener>(to);
    wl_proxy* output = localFind(wl_output_interface, script->Choice(4));
    if (output != nullptr)
        (script->Byte() % 2 == 0 ? listener.enter : listener.leave)(to->data, localAs<wl_surface>(to),
                                                                    localAs<wl_output>(output));
}

void localTellLayer(wl_proxy* to) {
    const auto& listener = localListener<zwlr_layer_surface_v1_listener>(to);
    auto* layer = localAs<zwlr_layer_surface_v1>(to);
    if (script->Byte() % 8 == 7)
        return listener.closed(to->data, layer);
    const auto width = static_cast<std::uint32_t>(script->Number());
    listener.configure(to->data, layer, 1, width, static_cast<std::uint32_t>(script->Number()));
}

void localTellToplevel(wl_proxy* to) {
    const auto& listener = localListener<xdg_toplevel_listener>(to);
    auto* toplevel = localAs<xdg_toplevel>(to);
    wl_array states = {};
    if (script->Byte() % 8 == 7)
        return listener.close(to->data, toplevel);
    const std::int32_t width = script->Number();
    listener.configure(to->data, toplevel, width, script->Number(), &states);
}

void localTellShell(wl_proxy* to) {
    localListener<xdg_surface_listener>(to).configure(to->data, localAs<xdg_surface>(to), 1);
}

constexpr std::uint32_t kFormats[] = {WL_SHM_FORMAT_XRGB8888, WL_SHM_FORMAT_ABGR2101010, WL_SHM_FORMAT_C8};

void localTellFrame(wl_proxy* to) {
    const auto& listener = localListener<zwlr_screencopy_frame_v1_listener>(to);
    auto* frame = localAs<zwlr_screencopy_frame_v1>(to);
    switch (script->Choice(6)) {
    case 0:
        return listener.failed(to->data, frame);
    case 1:
        return listener.flags(to->data, frame, script->Byte());
    case 2:
        return listener.ready(to->data, frame, 0, 0, 0);
    case 3:
        if (to->version >= ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
            listener.buffer_done(to->data, frame);
        return;
    default: {
        const std::uint32_t format = kFormats[script->Choice(std::size(kFormats))];
        const auto width = static_cast<std::uint32_t>(script->Number());
        const auto height = static_cast<std::uint32_t>(script->Number());
        const bool tight = script->Byte() % 2 == 0;
        listener.buffer(to->data, frame, format, width, height,
                        tight ? width * 4 : static_cast<std::uint32_t>(script->Number()));
    }
    }
}

void localTellSession(wl_proxy* to) {
    const auto& listener = localListener<ext_image_copy_capture_session_v1_listener>(to);
    auto* session = localAs<ext_image_copy_capture_session_v1>(to);
    const std::size_t event = script->Choice(4);
    const auto a = static_cast<std::uint32_t>(script->Number());
    if (event == 0)
        listener.buffer_size(to->data, session, a, static_cast<std::uint32_t>(script->Number()));
    else if (event == 1)
        listener.shm_format(to->data, session, kFormats[a % std::size(kFormats)]);
    else if (event == 2)
        listener.stopped(to->data, session);
    else
        listener.done(to->data, session);
}

void localTellCapture(wl_proxy* to) {
    const auto& listener = localListener<ext_image_copy_capture_frame_v1_listener>(to);
    auto* frame = localAs<ext_image_copy_capture_frame_v1>(to);
    const std::size_t event = script->Choice(3);
    if (event == 0)
        listener.transform(to->data, frame, static_cast<std::uint32_t>(script->Number()));
    else if (event == 1)
        listener.failed(to->data, frame, 0);
    else
        listener.ready(to->data, frame);
}

void localTellCallback(wl_proxy* to) {
    localListener<wl_callback_listener>(to).done(to->data, localAs<wl_callback>(to), 0);
}

void localTellSeat(wl_proxy* to) {
    localListener<wl_seat_listener>(to).capabilities(to->data, localAs<wl_seat>(to), script->Byte());
}

// The script's next bytes, in a file that may be shorter than it is said to be.
void localHandKeymap(wl_proxy* to) {
    std::string text;
    for (std::size_t length = script->Choice(64); length > 0; --length)
        text += static_cast<char>(script->Byte());
    const int file = memfd_create("keymap", MFD_CLOEXEC);
    Expect(write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()));
    const auto claimed = script->Byte() % 4 == 0 ? script->Number() : static_cast<std::int32_t>(text.size());
    localListener<wl_keyboard_listener>(to).keymap(to->data, localAs<wl_keyboard>(to), script->Byte() % 4,
                                                   file, static_cast<std::uint32_t>(claimed));
}

void localTellKeyboard(wl_proxy* to) {
    const auto& listener = localListener<wl_keyboard_listener>(to);
    auto* keyboard = localAs<wl_keyboard>(to);
    auto* surface = localAs<wl_surface>(localFind(wl_surface_interface, script->Choice(2)));
    const std::size_t event = script->Choice(8);
    std::uint32_t down[] = {static_cast<std::uint32_t>(script->Number()),
                            static_cast<std::uint32_t>(script->Number())};
    wl_array keys = {script->Choice(3) * sizeof down[0], sizeof down, down};
    if (event == 0)
        localHandKeymap(to);
    else if (event == 1 && surface != nullptr)
        listener.enter(to->data, keyboard, 1, surface, &keys);
    else if (event == 2 && surface != nullptr)
        listener.leave(to->data, keyboard, 1, surface);
    else if (event == 3)
        listener.modifiers(to->data, keyboard, 1, down[0], down[1], 0, 0);
    else
        listener.key(to->data, keyboard, 1, 0, down[0], script->Byte() % 3);
}

void localTellPointer(wl_proxy* to) {
    const auto& listener = localListener<wl_pointer_listener>(to);
    auto* pointer = localAs<wl_pointer>(to);
    auto* surface = localAs<wl_surface>(localFind(wl_surface_interface));
    const std::size_t event = script->Choice(3);
    const std::int32_t x = script->Number();
    const std::int32_t y = script->Number();
    if (event == 0 && surface != nullptr)
        listener.enter(to->data, pointer, 1, surface, x, y);
    else if (event == 1)
        listener.button(to->data, pointer, 1, 0, 0x110 + script->Byte() % 4, script->Byte() % 2);
    else
        listener.motion(to->data, pointer, 0, x, y);
}

void localTellTouch(wl_proxy* to) {
    const std::int32_t x = script->Number();
    const std::int32_t y = script->Number();
    if (wl_proxy* surface = localFind(wl_surface_interface))
        localListener<wl_touch_listener>(to).down(to->data, localAs<wl_touch>(to), 1, 0,
                                                  localAs<wl_surface>(surface), 0, x, y);
}

struct Teller {
    const wl_interface* interface;
    void (*tell)(wl_proxy*);
};
constexpr Teller kTellers[] = {{&wl_output_interface, localTellOutput},
                               {&zxdg_output_v1_interface, localTellLayout},
                               {&wl_surface_interface, localTellSurface},
                               {&zwlr_layer_surface_v1_interface, localTellLayer},
                               {&xdg_toplevel_interface, localTellToplevel},
                               {&xdg_surface_interface, localTellShell},
                               {&zwlr_screencopy_frame_v1_interface, localTellFrame},
                               {&ext_image_copy_capture_session_v1_interface, localTellSession},
                               {&ext_image_copy_capture_frame_v1_interface, localTellCapture},
                               {&wl_callback_interface, localTellCallback},
                               {&wl_seat_interface, localTellSeat},
                               {&wl_keyboard_interface, localTellKeyboard},
                               {&wl_pointer_interface, localTellPointer},
                               {&wl_touch_interface, localTellTouch}};

// Tells one of the objects that listen something.
void localTellOne() {
    std::vector<std::pair<const Teller*, wl_proxy*>> all;
    for (const auto& each : objects) {
        const auto* teller = std::ranges::find(kTellers, each->interface, &Teller::interface);
        if (teller != std::end(kTellers) && each->listener != nullptr)
            all.emplace_back(teller, each.get());
    }
    if (all.empty())
        return;
    const auto [teller, to] = all[script->Choice(all.size())];
    teller->tell(to);
}

// The registry tells of an output or a seat, or that one is gone. Numbers may come twice.
void localTellRegistry() {
    const std::size_t event = script->Choice(8);
    const std::uint32_t number = 100 + script->Byte() % 8;
    if (event < 4)
        localAnnounce(number, wl_output_interface.name, static_cast<std::uint32_t>(script->Choice(5)) + 1);
    else if (event == 4)
        localAnnounce(number, wl_seat_interface.name, static_cast<std::uint32_t>(script->Choice(9)) + 1);
    else
        return localListener<wl_registry_listener>(registry).global_remove(
            registry->data, localAs<wl_registry>(registry), number);
    announced.push_back(number);
}

// As compositors mostly do it: surfaces get the place they ask for, and pictures come.
void localAnswerAll() {
    std::vector<wl_proxy*> all;
    for (const auto& each : objects)
        all.push_back(each.get());
    for (wl_proxy* to : all) {
        if (!localIsThere(to) || to->listener == nullptr)
            continue;
        if (to->interface == &zwlr_layer_surface_v1_interface) {
            localListener<zwlr_layer_surface_v1_listener>(to).configure(
                to->data, localAs<zwlr_layer_surface_v1>(to), 1, 640, 480);
        } else if (to->interface == &xdg_surface_interface) {
            localTellShell(to);
        } else if (to->interface == &wl_callback_interface) {
            localTellCallback(to);
        } else if (to->interface == &zwlr_screencopy_frame_v1_interface) {
            const auto& listener = localListener<zwlr_screencopy_frame_v1_listener>(to);
            auto* frame = localAs<zwlr_screencopy_frame_v1>(to);
            if (std::exchange(to->told, true))
                listener.ready(to->data, frame, 0, 0, 0);
            else
                listener.buffer(to->data, frame, WL_SHM_FORMAT_XRGB8888, 64, 48, 64 * 4);
            if (localIsThere(to) && to->version >= ZWLR_SCREENCOPY_FRAME_V1_BUFFER_DONE_SINCE_VERSION)
                listener.buffer_done(to->data, frame);
        } else if (to->interface == &ext_image_copy_capture_session_v1_interface) {
            const auto& listener = localListener<ext_image_copy_capture_session_v1_listener>(to);
            auto* session = localAs<ext_image_copy_capture_session_v1>(to);
            listener.buffer_size(to->data, session, 64, 48);
            listener.shm_format(to->data, session, WL_SHM_FORMAT_XRGB8888);
            listener.done(to->data, session);
        } else if (to->interface == &ext_image_copy_capture_frame_v1_interface) {
            localListener<ext_image_copy_capture_frame_v1_listener>(to).ready(
                to->data, localAs<ext_image_copy_capture_frame_v1>(to));
        }
    }
}

void localPlayEvent() {
    switch (script->Byte() % 4) {
    case 0:
        return localTellRegistry();
    case 1:
        return localAnswerAll();
    default:
        return localTellOne();
    }
}

// How many came.
int localPlayEvents() {
    int count = 0;
    while (script != nullptr && script->Peek() >= kFirstEvent && count < 3) {
        localPlayEvent();
        ++count;
    }
    return count;
}

wl_proxy* localAdd(const wl_interface* interface, std::uint32_t version) {
    objects.push_back(std::make_unique<wl_proxy>(wl_proxy{interface, version}));
    return objects.back().get();
}

// One argument of a request. Gives numbers, 0 for others.
std::int64_t localCheckArgument(char type, bool mayBeNull, va_list* arguments) {
    switch (type) {
    case 'i':
    case 'u':
    case 'f':
    case 'h':
        return va_arg(*arguments, int);
    case 's':
    case 'a':
        Expect(va_arg(*arguments, const void*) != nullptr || mayBeNull);
        return 0;
    default: {
        const auto* object = va_arg(*arguments, const wl_proxy*);
        Expect(type == 'n' || (object == nullptr ? mayBeNull : localIsThere(object)));
        return 0;
    }
    }
}

// What would make the compositor end the connection.
void localCheckRequest(const wl_proxy* to, const char* request, const std::vector<std::int64_t>& numbers) {
    const std::string name = std::string(to->interface->name) + "." + request;
    if (name == "wl_shm.create_pool")
        Expect(numbers[2] > 0);
    if (name == "wp_viewport.set_destination")
        Expect(numbers[0] > 0 && numbers[1] > 0);
    if (name == "wl_shm_pool.create_buffer")
        Expect(numbers[1] >= 0 && numbers[2] > 0 && numbers[3] > 0 && numbers[4] >= numbers[2] * 4 &&
               numbers[1] + numbers[4] * numbers[3] <= to->memory);
}

} // namespace

void PlayCompositor(Script* played) {
    script = played;
    now = kBeginning;
}

std::size_t CountObjects() {
    return objects.size();
}

void RemoveEverything() {
    for (const std::uint32_t number : announced)
        localListener<wl_registry_listener>(registry).global_remove(registry->data,
                                                                    localAs<wl_registry>(registry), number);
    announced.clear();
}

// The saver's clock, by the name that the linker gives it (--wrap). It runs on whenever it is looked at.
Clock::time_point TimeHere() __asm__("__wrap__ZNSt6chrono3_V212steady_clock3nowEv");
Clock::time_point TimeHere() {
    return now += milliseconds(1);
}

// The client library's.
extern "C" {

wl_display* wl_display_connect(const char*) {
    return localAs<wl_display>(localAdd(&wl_display_interface, 1));
}

void wl_display_disconnect(wl_display*) {
    std::abort();
}

int wl_display_get_fd(wl_display*) {
    static const int always = eventfd(1, EFD_CLOEXEC); // there is something to be read
    return always;
}

int wl_display_get_error(wl_display*) {
    return 0;
}

int wl_display_flush(wl_display*) {
    return 0;
}

int wl_display_prepare_read(wl_display*) {
    return 0;
}

void wl_display_cancel_read(wl_display*) {}

int wl_display_read_events(wl_display*) {
    if (script == nullptr || script->Peek() < kFirstEvent)
        now += milliseconds(200);
    return 0;
}

int wl_display_dispatch_pending(wl_display*) {
    return localPlayEvents();
}

int wl_display_roundtrip(wl_display*) {
    static bool begun = false;
    if (std::exchange(begun, true))
        return localPlayEvents();
    std::uint32_t number = 0;
    for (const wl_interface* each : kAlways)
        localAnnounce(++number, each->name, static_cast<std::uint32_t>(each->version));
    localAnnounce(++number, "wp_viewporter", 1);
    localAnnounce(++number, "ext_idle_notifier_v1", 1);
    return 0;
}

std::uint32_t wl_proxy_get_version(wl_proxy* proxy) {
    return proxy->version;
}

int wl_proxy_add_listener(wl_proxy* proxy, void (**listener)(), void* data) {
    Expect(proxy->listener == nullptr);
    proxy->listener = listener;
    proxy->data = data;
    return 0;
}

void wl_proxy_destroy(wl_proxy* proxy) {
    const auto at = std::ranges::find_if(objects, [&](const auto& each) { return each.get() == proxy; });
    Expect(at != objects.end());
    objects.erase(at);
}

wl_proxy* wl_proxy_marshal_flags(wl_proxy* to, std::uint32_t opcode, const wl_interface* interface,
                                 std::uint32_t version, std::uint32_t flags, ...) {
    Expect(localIsThere(to) && opcode < static_cast<std::uint32_t>(to->interface->method_count));
    const wl_message& request = to->interface->methods[opcode];
    std::vector<std::int64_t> numbers;
    va_list arguments;
    va_start(arguments, flags);
    bool mayBeNull = false;
    for (const char* type = request.signature; *type != '\0'; ++type) {
        if (*type >= '0' && *type <= '9')
            Expect(to->version >= static_cast<std::uint32_t>(*type - '0'));
        else if (*type != '?')
            numbers.push_back(localCheckArgument(*type, mayBeNull, &arguments));
        mayBeNull = *type == '?';
    }
    va_end(arguments);
    localCheckRequest(to, request.name, numbers);
    wl_proxy* made = interface != nullptr ? localAdd(interface, version) : nullptr;
    if (interface == &wl_shm_pool_interface)
        made->memory = numbers[2];
    if (interface == &wl_registry_interface)
        registry = made;
    if ((flags & WL_MARSHAL_FLAG_DESTROY) != 0)
        wl_proxy_destroy(to);
    return made;
}

} // extern "C"
