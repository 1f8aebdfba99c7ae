// The program in a folder of its own, with the modules of its window systems as they were built.
#pragma once

#include <filesystem>

// The folder with the modules of the program in that one.
inline std::filesystem::path ModulesOf(const std::filesystem::path& prefix) {
    return (prefix / "bin" / TAMBLOR_MODULES).lexically_normal();
}

inline void InstallProgram(const std::filesystem::path& prefix) {
    namespace fs = std::filesystem;
    const fs::path program = TAMBLOR_EXE;
    fs::create_directories(prefix / "bin");
    fs::copy_file(program, prefix / "bin/tamblor");
    fs::create_directories(ModulesOf(prefix));
    fs::copy(ModulesOf(program.parent_path().parent_path()), ModulesOf(prefix));
}
