#include "win32/wayland/sheet.h"

#include "win32/wayland/shared_memory.h"
#include "win32/wayland/wayland.h"

#include "viewporter-client-protocol.h"
#include "wlr-layer-shell-client-protocol.h"
#include "xdg-shell-client-protocol.h"

#include <utility>

namespace wayland {

// What the compositor says to a sheet.
struct SheetEvents {
    static Sheet* Of(void* data) { return static_cast<Sheet*>(data); }

    static void Resize(Sheet* sheet, int width, int height) {
        if (width <= 0 || height <= 0) {
            width = sheet->standbyWidth_;
            height = sheet->standbyHeight_;
        }
        sheet->changed_ = sheet->changed_ || width != sheet->width_ || height != sheet->height_;
        sheet->width_ = width;
        sheet->height_ = height;
    }

    static constexpr wl_surface_listener kSurface = {
        .enter = [](void* data, wl_surface*, wl_output* output) { Of(data)->entered_ = output; },
        .leave = kPassedOver,
    };
    static constexpr zwlr_layer_surface_v1_listener kLayer = {
        .configure =
            [](void* data, zwlr_layer_surface_v1* layer, std::uint32_t serial, std::uint32_t width,
               std::uint32_t height) {
                Resize(Of(data), static_cast<int>(width), static_cast<int>(height));
                zwlr_layer_surface_v1_ack_configure(layer, serial);
                Of(data)->placed_ = true;
            },
        .closed = [](void* data, zwlr_layer_surface_v1*) { Of(data)->takenAway_ = true; },
    };
    static constexpr xdg_surface_listener kShell = {
        .configure =
            [](void* data, xdg_surface* shell, std::uint32_t serial) {
                xdg_surface_ack_configure(shell, serial);
                Of(data)->placed_ = true;
            },
    };
    static constexpr xdg_toplevel_listener kToplevel = {
        .configure = [](void* data, xdg_toplevel*, std::int32_t width, std::int32_t height,
                        wl_array*) { Resize(Of(data), width, height); },
        .close = [](void* data, xdg_toplevel*) { Of(data)->closeAsked_ = true; },
        .configure_bounds = kPassedOver,
        .wm_capabilities = kPassedOver,
    };
};

Sheet::Sheet()
    : surface_(wl_compositor_create_surface(Offers().compositor)),
      viewport_(wp_viewporter_get_viewport(Offers().viewporter, surface_)) {
    wl_surface_add_listener(surface_, &SheetEvents::kSurface, this);
}

Sheet::~Sheet() {
    Leave();
    wp_viewport_destroy(viewport_);
    wl_surface_destroy(surface_);
    wl_display_flush(Connection());
}

void Sheet::TakeNoInput() {
    wl_region* nothing = wl_compositor_create_region(Offers().compositor);
    wl_surface_set_input_region(surface_, nothing);
    wl_region_destroy(nothing);
}

bool Sheet::AwaitPlace() {
    constexpr std::chrono::milliseconds kLimit{2000};
    wl_surface_commit(surface_);
    if (AwaitReply([this] { return placed_ || takenAway_; }, kLimit) && !takenAway_)
        return true;
    Leave();
    return false;
}

bool Sheet::LieOn(const Output& output, bool takesKeyboard, const char* title) {
    constexpr std::uint32_t kAllEdges =
        ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_BOTTOM |
        ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT | ZWLR_LAYER_SURFACE_V1_ANCHOR_RIGHT;
    standbyWidth_ = output.Logical().width;
    standbyHeight_ = output.Logical().height;
    if (Offers().layers != nullptr) {
        const std::uint32_t place = NamedLayer().value_or(ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY);
        layer_ =
            zwlr_layer_shell_v1_get_layer_surface(Offers().layers, surface_, output.id, place, "tamblor");
        zwlr_layer_surface_v1_add_listener(layer_, &SheetEvents::kLayer, this);
        zwlr_layer_surface_v1_set_anchor(layer_, kAllEdges);
        zwlr_layer_surface_v1_set_exclusive_zone(layer_, -1);
        if (NamedLayer())
            TakeNoInput();
        else if (takesKeyboard)
            zwlr_layer_surface_v1_set_keyboard_interactivity(
                layer_, ZWLR_LAYER_SURFACE_V1_KEYBOARD_INTERACTIVITY_EXCLUSIVE);
    } else {
        shell_ = xdg_wm_base_get_xdg_surface(Offers().toplevels, surface_);
        xdg_surface_add_listener(shell_, &SheetEvents::kShell, this);
        toplevel_ = xdg_surface_get_toplevel(shell_);
        xdg_toplevel_add_listener(toplevel_, &SheetEvents::kToplevel, this);
        xdg_toplevel_set_app_id(toplevel_, "org.orinlab.Tamblor");
        xdg_toplevel_set_title(toplevel_, title);
        xdg_toplevel_set_fullscreen(toplevel_, output.id);
    }
    return AwaitPlace();
}

bool Sheet::LieAnywhere() {
    layer_ = zwlr_layer_shell_v1_get_layer_surface(Offers().layers, surface_, nullptr,
                                                   ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "tamblor");
    zwlr_layer_surface_v1_add_listener(layer_, &SheetEvents::kLayer, this);
    zwlr_layer_surface_v1_set_anchor(layer_,
                                     ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP | ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
    zwlr_layer_surface_v1_set_size(layer_, 1, 1);
    TakeNoInput();
    if (!AwaitPlace())
        return false;
    Fill(Colour::None);
    return true;
}

// Compositors that stretch on the processor count in steps of a 65536th, and may look a little beyond what
// they were told to stretch: around it is more of the same.
void Sheet::Fill(Colour colour) {
    const wl_fixed_t quarter = wl_fixed_from_int(kFewPixels / 4);
    const wl_fixed_t half = wl_fixed_from_int(kFewPixels / 2);
    wl_surface_attach(surface_, FewPixels(colour == Colour::Black), 0, 0);
    if (colour == Colour::Black)
        wp_viewport_set_source(viewport_, quarter, quarter, half, half);
    wl_surface_damage(surface_, 0, 0, INT32_MAX, INT32_MAX);
    Fit();
    wl_surface_commit(surface_);
}

void Sheet::Fit() {
    if (width_ > 0 && height_ > 0)
        wp_viewport_set_destination(viewport_, width_, height_);
}

void Sheet::Leave() {
    if (layer_ != nullptr)
        zwlr_layer_surface_v1_destroy(layer_);
    if (toplevel_ != nullptr)
        xdg_toplevel_destroy(toplevel_);
    if (shell_ != nullptr)
        xdg_surface_destroy(shell_);
    layer_ = nullptr;
    toplevel_ = nullptr;
    shell_ = nullptr;
    placed_ = takenAway_ = closeAsked_ = false;
    entered_ = nullptr;
    wl_surface_attach(surface_, nullptr, 0, 0); // a place is only given to an empty surface
    wl_surface_commit(surface_);
}

bool Sheet::HasChanged() {
    return std::exchange(changed_, false);
}

bool Sheet::IsAskedToClose() {
    return std::exchange(closeAsked_, false);
}

} // namespace wayland
