#include "win32/windowing/window_modules.h"

#include "win32/posix/program_file.h"

#include <cstdio>
#include <dlfcn.h>
#include <filesystem>
#include <iterator>
#include <utility>

namespace fs = std::filesystem;

namespace {

struct Kind {
    const char* name;
    const char* table; // the symbol of the module
};

// The preferred one first.
constexpr Kind kKinds[] = {{"wayland", "kWayland"}, {"x11", "kX11"}};

std::string problems[std::size(kKinds)]; // of those that cannot be loaded

void SayProblem(std::size_t index) {
    std::fprintf(stderr, "tamblor: no window system %s: %s\n", kKinds[index].name, problems[index].c_str());
}

// For any function: it does nothing, and gives null, false, no place or zero.
struct Failing {
    template <class Result, class... Arguments> using Function = Result (*)(Arguments...);
    template <class Result, class... Arguments> constexpr operator Function<Result, Arguments...>() const {
        return [](Arguments...) { return Result(); };
    }
};
constexpr Failing kFailing;

template <std::size_t kIndex>
constexpr WindowSystem kMissing = {
    .name = kKinds[kIndex].name,
    .Open = kFailing,
    .FindHindrance = [] { return problems[kIndex]; },
    .EnterWindow =
        [](HWND, bool) {
            SayProblem(kIndex);
            return 0;
        },
    .EnterLayer = kFailing,
    .CountShows = [] { return 1; },
    .ChooseShow = kFailing,
    .FindScreen = kFailing,
    .FindPointer = kFailing,
    .PhotographDesktop = kFailing,
    .CreateWindow = [](const WindowRequest&) -> HWND {
        SayProblem(kIndex);
        return nullptr;
    },
    .ShowWindow = kFailing,
    .DestroyWindow = kFailing,
    .FindWindow = kFailing,
    .SetParent = kFailing,
    .PlaceWindow = kFailing,
    .HideCursor = kFailing,
    .ShowBlack = kFailing,
    .ReadEvents = [] { return -1; },
    .WaitForEvents = kFailing,
    .WatchIdle =
        [](int) {
            SayProblem(kIndex);
            return false;
        },
    .UnwatchIdle = kFailing,
    .ShowIsUnwanted = kFailing,
    .OpenGl = kFailing,
    .FindGlFunction = kFailing,
};

// Beside the program or, where that cannot be found out, as it was installed: never in whatever folder it was
// started in.
fs::path Folder() {
    const fs::path program = ProgramFile();
    return program.empty() ? fs::path(TAMBLOR_INSTALLED_MODULES) : program.parent_path() / TAMBLOR_MODULES;
}

// Its libraries are global, as if the program itself were linked with them: a library that is preloaded to
// stand before their functions looks for the real ones there.
template <std::size_t kIndex> const WindowSystem* Load() {
    const fs::path file = Folder() / (std::string("tamblor-") + kKinds[kIndex].name + ".so");
    void* const module = dlopen(file.lexically_normal().c_str(), RTLD_NOW | RTLD_GLOBAL);
    const void* const table = module != nullptr ? dlsym(module, kKinds[kIndex].table) : nullptr;
    if (table != nullptr)
        return static_cast<const WindowSystem*>(table);
    problems[kIndex] = dlerror();
    return &kMissing<kIndex>;
}

template <std::size_t... kIndex>
std::vector<const WindowSystem*> LoadAll(std::index_sequence<kIndex...> /*each*/) {
    return {Load<kIndex>()...};
}

} // namespace

std::span<const WindowSystem* const> WindowModules() {
    static const auto modules = LoadAll(std::make_index_sequence<std::size(kKinds)>());
    return modules;
}
