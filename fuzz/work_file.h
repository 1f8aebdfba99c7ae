// What the fuzz targets share: a file to work on, and a word for what must hold.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

inline void Expect(bool good) {
    if (!good)
        std::abort();
}

// A file of this process alone, removed at its end.
inline const std::string& WorkFile() {
    static const std::string name =
        (std::filesystem::temp_directory_path() / ("tamblor-fuzz-" + std::to_string(getpid()))).string();
    static const struct Remover {
        ~Remover() { std::filesystem::remove(name); }
    } remover;
    return name;
}
