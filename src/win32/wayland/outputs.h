// The outputs: the monitors as the compositor has them.
#pragma once

#include "win32/window_system.h"

#include <wayland-client.h>

#include <cstdint>
#include <string>

struct zxdg_output_v1;

namespace wayland {

struct Output {
    std::uint32_t global = 0; // its number among what the compositor offers
    wl_output* id = nullptr;
    zxdg_output_v1* layout = nullptr;
    std::string name;                  // as in "DP-1"; "": not told
    int modeWidth = 0, modeHeight = 0; // as the monitor has them, not turned; 0: not told, or off
    int transform = WL_OUTPUT_TRANSFORM_NORMAL;
    int scale = 1;
    Place corner; // by the output itself; no size
    Place desk;   // by the compositor's layout; no size: not told

    // What the user sees, in pixels: the mode, turned.
    int Width() const;
    int Height() const;
    // Where it lies among the others, in the compositor's coordinates.
    Place Logical() const;
};

// Whether the output's rows are the monitor's columns.
bool IsTurned(int transform);

// For the registry's events: takes what is about outputs.
void OnOutputGlobal(wl_registry* registry, std::uint32_t global, const char* interface,
                    std::uint32_t version);
void RemoveOutput(std::uint32_t global);

} // namespace wayland
