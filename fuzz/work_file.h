// What the fuzz targets share: a file to work on, a word for what must hold, and a limit for loading.
#pragma once

#include "base/memory.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

inline void Expect(bool good) {
    if (!good)
        std::abort();
}

// While this lives, most inputs find no memory for the 65536 elements that a malformed count is given: making
// them would take most of the fuzzing time.
class FewElements {
public:
    explicit FewElements(std::size_t inputSize) { fxSetAllocLimit(inputSize % 32 == 0 ? 0 : 1 << 16); }
    ~FewElements() { fxSetAllocLimit(0); }
    FewElements(const FewElements&) = delete;
    FewElements& operator=(const FewElements&) = delete;
};

// Models are written through lists that grow by a million numbers, which takes as long as all the rest of a
// hundred inputs. So it is done with few.
inline bool IsOneThatIsWritten(std::size_t inputSize) {
    return inputSize % 32 == 1;
}

// A folder of this process alone, removed at its end.
inline const std::string& WorkFolder() {
    static const std::string name =
        (std::filesystem::temp_directory_path() / ("tamblor-fuzz-" + std::to_string(getpid()))).string();
    static const struct Folder {
        Folder() { std::filesystem::create_directory(name); }
        ~Folder() { std::filesystem::remove_all(name); }
    } folder;
    return name;
}

// A file in there.
inline const std::string& WorkFile() {
    static const std::string name = WorkFolder() + "/file";
    return name;
}

inline std::string_view AsText(const unsigned char* bytes, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes), size};
}

inline void WriteFile(const std::string& name, std::string_view bytes) {
    std::ofstream(name, std::ios::binary) << bytes;
}

inline std::string ReadFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
