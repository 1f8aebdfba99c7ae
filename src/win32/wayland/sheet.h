// A surface that covers an output as a whole, above everything else there or on the layer that --layer names.
#pragma once

#include "win32/window_system.h"

#include <wayland-client.h>

#include <cstdint>

struct wp_viewport;
struct xdg_surface;
struct xdg_toplevel;
struct zwlr_layer_surface_v1;

namespace wayland {

struct Output;

class Sheet {
public:
    Sheet();
    ~Sheet();
    Sheet(const Sheet&) = delete;
    Sheet& operator=(const Sheet&) = delete;

    // Asks for its place, and waits for it: it can be shown from then on. False when the compositor gives
    // none.
    bool LieOn(const Output& output, bool takesKeyboard, const char* title);
    // As small as can be, unseen, on an output that the compositor chooses; it knows which after a while.
    bool LieAnywhere();
    const wl_output* EnteredOutput() const { return entered_; } // null: not yet

    // Black, for good, or nothing at all, so that what lies below is seen.
    enum class Colour { Black, None };
    void Fill(Colour colour);
    // Stretches over its place what it shows from now on.
    void Fit();
    // Takes it off the screen. It may be shown again after.
    void Leave();

    // In the compositor's coordinates, as it was last told.
    int Width() const { return width_; }
    int Height() const { return height_; }
    // Another size since it was last asked.
    bool HasChanged();
    bool IsTakenAway() const { return takenAway_; }             // the compositor shows it no more
    bool IsAskedToClose();                                      // since it was last asked
    bool CanBeSeenThrough() const { return layer_ != nullptr; } // Fill(None) shows what is below
    wl_surface* Id() const { return surface_; }

private:
    bool AwaitPlace();
    void TakeNoInput();

    wl_surface* surface_;
    wp_viewport* viewport_;
    zwlr_layer_surface_v1* layer_ = nullptr;
    xdg_surface* shell_ = nullptr;
    xdg_toplevel* toplevel_ = nullptr;
    const wl_output* entered_ = nullptr;
    int width_ = 0, height_ = 0;
    int standbyWidth_ = 0, standbyHeight_ = 0; // where the compositor leaves it to the surface
    bool placed_ = false, changed_ = false, takenAway_ = false, closeAsked_ = false;

    friend struct SheetEvents;
};

} // namespace wayland
