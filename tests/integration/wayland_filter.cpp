// Loaded into the saver before the library whose function this is: hides from it what TAMBLOR_LACKS names of
// the interfaces that the compositor has.
#include <wayland-client.h>

#include <cstdlib>
#include <dlfcn.h>
#include <string_view>

namespace {

struct Listener {
    const wl_registry_listener* real;
    void* data;
};

void OnGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
              std::uint32_t version) {
    const auto& listener = *static_cast<Listener*>(data);
    if (std::string_view(std::getenv("TAMBLOR_LACKS")).find(interface) == std::string_view::npos)
        listener.real->global(listener.data, registry, name, interface, version);
}

void OnGlobalRemove(void* data, wl_registry* registry, std::uint32_t name) {
    const auto& listener = *static_cast<Listener*>(data);
    listener.real->global_remove(listener.data, registry, name);
}

constexpr wl_registry_listener kFiltered = {OnGlobal, OnGlobalRemove};

} // namespace

extern "C" int wl_proxy_add_listener(wl_proxy* proxy, void (**implementation)(), void* data) {
    static auto* const real =
        reinterpret_cast<decltype(&wl_proxy_add_listener)>(dlsym(RTLD_NEXT, "wl_proxy_add_listener"));
    if (std::string_view(wl_proxy_get_class(proxy)) != "wl_registry")
        return real(proxy, implementation, data);
    // Needed for as long as the proxy is: the process's few registries.
    auto* listener = new Listener{reinterpret_cast<const wl_registry_listener*>(implementation), data};
    auto* filtered = reinterpret_cast<void (**)()>(const_cast<wl_registry_listener*>(&kFiltered));
    return real(proxy, filtered, listener);
}
