// --layer: the show as a part of the desktop, or of the program that locks the screen.
#include "win32/wayland/wayland.h"

#include <algorithm>
#include <iterator>

namespace wayland {

namespace {

std::optional<std::uint32_t> layer;

} // namespace

std::optional<std::uint32_t> NamedLayer() {
    return layer;
}

bool EnterLayer(const std::string& name) {
    constexpr const char* kNames[] = {"background", "bottom", "top", "overlay"}; // as they are numbered
    const auto* found = std::ranges::find(kNames, name);
    if (found == std::end(kNames) || Connection() == nullptr || Offers().layers == nullptr)
        return false;
    layer = static_cast<std::uint32_t>(found - kNames);
    return true;
}

} // namespace wayland
