// Modules loaded at run time.
#include "win32/win32.h"

#include <algorithm>
#include <cstdio>
#include <dlfcn.h>
#include <iterator>
#include <string_view>

namespace {

struct Alias {
    std::string_view name; // as the product asks for it
    const char* library;   // as the system has it
};

constexpr Alias kAliases[] = {
    {"DevIL", "libIL.so.1"},
    {"ilu", "libILU.so.1"},
};

} // namespace

HMODULE LoadLibraryA(const char* name) {
    char usual[MAX_PATH];
    std::snprintf(usual, sizeof usual, "lib%s.so", name);
    const auto* const alias = std::ranges::find(kAliases, name, &Alias::name);
    const char* const library = alias != std::end(kAliases) ? alias->library : usual;
    return static_cast<HMODULE>(dlopen(library, RTLD_NOW | RTLD_LOCAL));
}

FARPROC GetProcAddress(HMODULE module, const char* name) {
    return reinterpret_cast<FARPROC>(dlsym(module, name));
}

BOOL FreeLibrary(HMODULE module) {
    return module != nullptr && dlclose(module) == 0 ? TRUE : FALSE;
}
