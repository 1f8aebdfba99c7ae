// A package of one entry, as fuzz targets load it, and maybe a second one that the first can name.
#pragma once

#include "package/package.h"
#include "work_file.h"

#include <cstdint>
#include <span>

constexpr int kEntry = 7;      // its number
constexpr int kOtherEntry = 8; // of raw bytes

// Writes the package into WorkFile.
inline void WritePackage(std::span<const unsigned char> bytes, int type,
                         std::span<const unsigned char> other = {}) {
    const auto ints = [](std::initializer_list<std::int32_t> values) {
        return std::string(reinterpret_cast<const char*>(values.begin()), 4 * values.size());
    };
    const auto size = static_cast<std::int32_t>(bytes.size());
    const auto otherSize = static_cast<std::int32_t>(other.size());
    std::ofstream file(WorkFile(), std::ios::binary);
    file << ints({5}) << "pck01"
         << ints({2, kEntry, kOtherEntry, 2, 0, size, 2, size, otherSize, 2, type, kRaw})
         << AsText(bytes.data(), bytes.size()) << AsText(other.data(), other.size());
}
