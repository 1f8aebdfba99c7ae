// Loading a package against reading the same file into memory.
#include "inputs.h"
#include "package/package.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace fs = std::filesystem;

namespace {

void localMeasured(benchmark::State& state, int flags, bool load) {
    const std::string file = MakePackage(static_cast<int>(state.range(0)), flags);
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
