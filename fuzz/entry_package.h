// A package of one entry, as fuzz targets load it.
#pragma once

#include "work_file.h"

#include <cstdint>
#include <fstream>
#include <span>

constexpr int kEntry = 7; // its number

// Writes the package into WorkFile.
inline void WritePackage(std::span<const unsigned char> bytes, int type) {
    const auto ints = [](std::initializer_list<std::int32_t> values) {
        return std::string(reinterpret_cast<const char*>(values.begin()), 4 * values.size());
    };
    std::ofstream file(WorkFile(), std::ios::binary);
    file << ints({5}) << "pck01"
         << ints({1, kEntry, 1, 0, 1, static_cast<std::int32_t>(bytes.size()), 1, type});
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}
