// Modules loaded at run time.
#include "win32/win32.h"

#include <dlfcn.h>
#include <string>
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
    std::string library = std::string("lib") + name + ".so";
    for (const Alias& alias : kAliases)
        if (alias.name == name)
            library = alias.library;
    return static_cast<HMODULE>(dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL));
}

FARPROC GetProcAddress(HMODULE module, const char* name) {
    return reinterpret_cast<FARPROC>(dlsym(module, name));
}

BOOL FreeLibrary(HMODULE module) {
    return module != nullptr && dlclose(module) == 0 ? TRUE : FALSE;
}
