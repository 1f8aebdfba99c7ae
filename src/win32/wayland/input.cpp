// What the user touches: every key, button and move that comes to any surface of ours is the window's.
#include "win32/wayland/wayland.h"

#include <linux/input-event-codes.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <cmath>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace wayland {

namespace {

// Devices come and go; what a seat has is told anew each time.
struct SeatDevices {
    std::uint32_t global = 0;
    wl_seat* seat = nullptr; // null: there is none
    wl_keyboard* keyboard = nullptr;
    wl_pointer* pointer = nullptr;
    wl_touch* touch = nullptr;
};
SeatDevices devices;

xkb_context* keyContext = nullptr;
xkb_keymap* keymap = nullptr; // null: the compositor's has not been understood
xkb_state* keyState = nullptr;
std::vector<std::uint32_t> heldKeys; // those reported as such
bool focused = false;                // a surface of ours has the keyboard
bool reportedFocus = false;

// The pointer's way: where it appears on a surface is no move.
double pointerX = 0, pointerY = 0; // on the surface
double wayX = 0, wayY = 0;         // in all

void TakeKeymap(xkb_keymap* taken) {
    xkb_state_unref(keyState);
    xkb_keymap_unref(keymap);
    keymap = taken;
    keyState = taken != nullptr ? xkb_state_new(taken) : nullptr;
}

void OnKeymap(void*, wl_keyboard*, std::uint32_t format, int file, std::uint32_t size) {
    if (keyContext == nullptr)
        keyContext = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    struct stat facts = {};
    const bool isWhole = fstat(file, &facts) == 0 && facts.st_size >= static_cast<off_t>(size);
    void* text = isWhole ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0) : MAP_FAILED;
    close(file);
    if (text == MAP_FAILED)
        return TakeKeymap(nullptr);
    if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1 && keyContext != nullptr && size > 0) {
        const std::size_t length =
            std::find(static_cast<char*>(text), static_cast<char*>(text) + size, '\0') -
            static_cast<char*>(text);
        TakeKeymap(xkb_keymap_new_from_buffer(keyContext, static_cast<char*>(text), length,
                                              XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
    }
    munmap(text, size);
}

xkb_keysym_t PlainKeysym(std::uint32_t key) {
    constexpr std::uint32_t kEvdev = 8; // the keymap's numbers are X11's
    const xkb_keysym_t* symbols = nullptr;
    const int count =
        keymap != nullptr ? xkb_keymap_key_get_syms_by_level(keymap, key + kEvdev, 0, 0, &symbols) : 0;
    return count > 0 ? symbols[0] : XKB_KEY_NoSymbol;
}

bool AltIsHeld() {
    return keyState != nullptr &&
           xkb_state_mod_name_is_active(keyState, XKB_MOD_NAME_ALT, XKB_STATE_MODS_EFFECTIVE) > 0;
}

// The keys that are down already were pressed for another program.
void OnKeyboardEnter(void*, wl_keyboard*, std::uint32_t, wl_surface*, wl_array* keys) {
    const std::span<const std::uint32_t> down(static_cast<const std::uint32_t*>(keys->data),
                                              keys->size / sizeof(std::uint32_t));
    const auto isDown = [&](std::uint32_t key) { return std::ranges::find(down, key) != down.end(); };
    for (const std::uint32_t key : heldKeys)
        if (!isDown(key))
            ReportKey(key, XKB_KEY_NoSymbol, false, false); // released elsewhere meanwhile
    for (const std::uint32_t key : down)
        if (std::ranges::find(heldKeys, key) == heldKeys.end())
            ReportHeldKey(key);
    heldKeys.assign(down.begin(), down.end());
    focused = true;
}

void OnKey(void*, wl_keyboard*, std::uint32_t, std::uint32_t, std::uint32_t key, std::uint32_t state) {
    const bool pressed = state != WL_KEYBOARD_KEY_STATE_RELEASED;
    ReportKey(key, PlainKeysym(key), AltIsHeld(), pressed);
    if (!pressed)
        std::erase(heldKeys, key);
}

constexpr wl_keyboard_listener kKeyboardListener = {
    .keymap = OnKeymap,
    .enter = OnKeyboardEnter,
    .leave = [](void*, wl_keyboard*, std::uint32_t, wl_surface*) { focused = false; },
    .key = OnKey,
    .modifiers =
        [](void*, wl_keyboard*, std::uint32_t, std::uint32_t depressed, std::uint32_t latched,
           std::uint32_t locked, std::uint32_t group) {
            if (keyState != nullptr)
                xkb_state_update_mask(keyState, depressed, latched, locked, 0, 0, group);
        },
    .repeat_info = kPassedOver,
};

int InPixels(double units) {
    constexpr double kFarthest = 1 << 30; // the way of a pointer that goes on in one direction
    const double pixels = std::floor(units * TheWindow().pixelsPerUnit);
    return static_cast<int>(std::clamp(pixels, -kFarthest, kFarthest));
}

void OnMotion(void*, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
    const std::pair before(InPixels(wayX), InPixels(wayY));
    wayX += wl_fixed_to_double(x) - std::exchange(pointerX, wl_fixed_to_double(x));
    wayY += wl_fixed_to_double(y) - std::exchange(pointerY, wl_fixed_to_double(y));
    if (before != std::pair(InPixels(wayX), InPixels(wayY)))
        ReportPointer(InPixels(pointerX), InPixels(pointerY));
}

// The wheel and further buttons are no buttons here.
void OnButton(void*, wl_pointer*, std::uint32_t, std::uint32_t, std::uint32_t button, std::uint32_t state) {
    if (state != WL_POINTER_BUTTON_STATE_PRESSED)
        return;
    const auto report = [](PointerButton which) {
        ReportButton(which, InPixels(pointerX), InPixels(pointerY));
    };
    if (button == BTN_LEFT)
        report(PointerButton::Left);
    else if (button == BTN_MIDDLE)
        report(PointerButton::Middle);
    else if (button == BTN_RIGHT)
        report(PointerButton::Right);
}

// No cursor is shown over a surface unless it asks for one; until it says so, another program's may stay.
void OnPointerEnter(void*, wl_pointer* pointer, std::uint32_t serial, wl_surface*, wl_fixed_t x,
                    wl_fixed_t y) {
    wl_pointer_set_cursor(pointer, serial, nullptr, 0, 0);
    pointerX = wl_fixed_to_double(x);
    pointerY = wl_fixed_to_double(y);
}

constexpr wl_pointer_listener kPointerListener = {
    .enter = OnPointerEnter,
    .leave = kPassedOver,
    .motion = OnMotion,
    .button = OnButton,
    .axis = kPassedOver,
    .frame = kPassedOver,
    .axis_source = kPassedOver,
    .axis_stop = kPassedOver,
    .axis_discrete = kPassedOver,
    .axis_value120 = kPassedOver,
};

// A finger on the screen is a click.
constexpr wl_touch_listener kTouchListener = {
    .down =
        [](void*, wl_touch*, std::uint32_t, std::uint32_t, wl_surface*, std::int32_t, wl_fixed_t x,
           wl_fixed_t y) {
            ReportButton(PointerButton::Left, InPixels(wl_fixed_to_double(x)),
                         InPixels(wl_fixed_to_double(y)));
        },
    .up = kPassedOver,
    .motion = kPassedOver,
    .frame = kPassedOver,
    .cancel = kPassedOver,
    .shape = kPassedOver,
    .orientation = kPassedOver,
};

// Takes up a device that has come, and gives up one that has gone.
template <class Device, class Listener>
void Follow(bool there, Device** device, Device* (*get)(wl_seat*), void (*release)(Device*),
            int (*listen)(Device*, const Listener*, void*), const Listener& listener) {
    if (there == (*device != nullptr))
        return;
    if (there) {
        *device = get(devices.seat);
        listen(*device, &listener, nullptr);
    } else {
        release(std::exchange(*device, nullptr));
    }
}

// A keyboard that is unplugged takes the focus from nobody.
void FollowDevices(std::uint32_t capabilities) {
    if ((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) == 0)
        focused = reportedFocus;
    Follow((capabilities & WL_SEAT_CAPABILITY_KEYBOARD) != 0, &devices.keyboard, wl_seat_get_keyboard,
           wl_keyboard_release, wl_keyboard_add_listener, kKeyboardListener);
    Follow((capabilities & WL_SEAT_CAPABILITY_POINTER) != 0, &devices.pointer, wl_seat_get_pointer,
           wl_pointer_release, wl_pointer_add_listener, kPointerListener);
    Follow((capabilities & WL_SEAT_CAPABILITY_TOUCH) != 0, &devices.touch, wl_seat_get_touch,
           wl_touch_release, wl_touch_add_listener, kTouchListener);
}

constexpr wl_seat_listener kSeatListener = {
    .capabilities = [](void*, wl_seat*, std::uint32_t capabilities) { FollowDevices(capabilities); },
    .name = kPassedOver,
};

} // namespace

wl_seat* Seat() {
    return devices.seat;
}

// The first seat is the user's. Devices can be given up from the third version on, a seat from the fifth.
void AddSeat(wl_registry* registry, std::uint32_t global, std::uint32_t version) {
    constexpr std::uint32_t kVersion = 5;
    if (devices.seat != nullptr || version < kVersion)
        return;
    devices.global = global;
    devices.seat = static_cast<wl_seat*>(wl_registry_bind(registry, global, &wl_seat_interface, kVersion));
    wl_seat_add_listener(devices.seat, &kSeatListener, nullptr);
}

void RemoveSeat(std::uint32_t global) {
    if (devices.seat == nullptr || devices.global != global)
        return;
    FollowDevices(0);
    wl_seat_release(devices.seat);
    devices = {};
}

// It may go from one surface of ours to another.
void FollowFocus() {
    if (std::exchange(reportedFocus, focused) != focused)
        ReportActivation(focused);
}

// Only changes of it count.
bool FindPointer(POINT* position) {
    *position = {InPixels(wayX), InPixels(wayY)};
    return Connection() != nullptr;
}

} // namespace wayland
