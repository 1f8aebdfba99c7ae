// Which window system is in use.
#include "win32/window_system.h"

namespace {

std::span<const WindowSystem* const> offered;
const WindowSystem* used = nullptr;

} // namespace

void OfferWindowSystems(std::span<const WindowSystem* const> systems) {
    offered = systems;
    used = nullptr;
}

const WindowSystem& UsedWindowSystem() {
    if (used != nullptr)
        return *used;
    used = offered.front();
    for (const WindowSystem* system : offered) {
        used = system;
        if (system->Open())
            break;
    }
    return *used;
}
