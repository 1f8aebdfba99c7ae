// What the fuzz targets share: a file to work on, a word for what must hold, and a limit for loading.
#pragma once

#include "base/memory.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

inline void Expect(bool good) {
    if (!good)
        std::abort();
}

// While this lives, seven inputs of eight find no memory for the 65536 elements that a malformed count is
// given: making them would take most of the fuzzing time.
class FewElements {
public:
    explicit FewElements(std::size_t inputSize) { fxSetAllocLimit(inputSize % 8 == 0 ? 0 : 1 << 16); }
    ~FewElements() { fxSetAllocLimit(0); }
    FewElements(const FewElements&) = delete;
    FewElements& operator=(const FewElements&) = delete;
};

// A file of this process alone, removed at its end.
inline const std::string& WorkFile() {
    static const std::string name =
        (std::filesystem::temp_directory_path() / ("tamblor-fuzz-" + std::to_string(getpid()))).string();
    static const struct Remover {
        ~Remover() { std::filesystem::remove(name); }
    } remover;
    return name;
}
