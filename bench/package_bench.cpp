// Loading a package against reading the same file into memory.
#include "package/package.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace fs = std::filesystem;

namespace {

// A package of about the given size, with a hundred entries of bytes that do not repeat.
std::string localMakePackage(int megabytes, int flags) {
    const fs::path folder = fs::temp_directory_path();
    const fs::path part = folder / "tamblor-bench-entry";
    std::string bytes(static_cast<std::size_t>(megabytes) * 10486, '\0');
    unsigned state = 1;
    for (char& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(state >> 24);
    }
    std::ofstream(part, std::ios::binary) << bytes;
    FXPackage package;
    for (int id = 0; id < 100; ++id)
        package.AddDataFile(id, part.string().c_str());
    const std::string file = (folder / ("tamblor-bench-package-" + std::to_string(flags))).string();
    package.Save(file.c_str(), flags);
    fs::remove(part);
    return file;
}

void localMeasured(benchmark::State& state, int flags, bool load) {
    const std::string file = localMakePackage(static_cast<int>(state.range(0)), flags);
    const std::size_t size = fs::file_size(file);
    for (auto _ : state) {
        if (load) {
            FXPackage package;
            package.Load(file.c_str());
            benchmark::DoNotOptimize(package.dataBlock);
        } else {
            std::unique_ptr<char[]> bytes(new char[size]);
            std::FILE* in = std::fopen(file.c_str(), "rb");
            benchmark::DoNotOptimize(std::fread(bytes.get(), 1, size, in));
            std::fclose(in);
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
    fs::remove(file);
}

void localPlainRead(benchmark::State& state) {
    localMeasured(state, 0, false);
}
void localLoadPlainPackage(benchmark::State& state) {
    localMeasured(state, 0, true);
}
void localLoadScrambledPackage(benchmark::State& state) {
    localMeasured(state, 1, true);
}
BENCHMARK(localPlainRead)->Name("PlainRead")->Arg(4)->Arg(24);
BENCHMARK(localLoadPlainPackage)->Name("LoadPlainPackage")->Arg(4)->Arg(24);
BENCHMARK(localLoadScrambledPackage)->Name("LoadScrambledPackage")->Arg(4)->Arg(24);

} // namespace
