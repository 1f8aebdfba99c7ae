// Packages of a few entries, and the records and pictures in them.
#pragma once

#include "unit/package_bytes.h"

struct TestEntry {
    int id;
    int type; // kRaw, kTga ...
    std::string bytes;
};

inline void LoadTestPackage(FXPackage& package, const TempFolder& folder,
                            const std::vector<TestEntry>& entries) {
    std::vector<std::int32_t> ids, offsets, sizes, types;
    std::string data;
    for (const TestEntry& entry : entries) {
        ids.push_back(entry.id);
        offsets.push_back(static_cast<std::int32_t>(data.size()));
        sizes.push_back(static_cast<std::int32_t>(entry.bytes.size()));
        types.push_back(entry.type);
        data += entry.bytes;
    }
    const std::string file =
        Header("pck01") + Table(ids) + Table(offsets) + Table(sizes) + Table(types) + data;
    ASSERT_TRUE(package.Load(folder.Write("test-package", file).c_str()));
}

inline std::string Floats(const std::vector<float>& values) {
    return {reinterpret_cast<const char*>(values.data()), 4 * values.size()};
}

// A TGA file of 32 bits per pixel, its top row first. Pixels as a canvas has them: 0xAABBGGRR.
inline std::string Tga(int w, int h, const std::vector<std::uint32_t>& pixels) {
    std::string file(18, '\0');
    file[2] = 2; // true colour
    file[12] = static_cast<char>(w);
    file[13] = static_cast<char>(w >> 8);
    file[14] = static_cast<char>(h);
    file[15] = static_cast<char>(h >> 8);
    file[16] = 32;
    file[17] = 0x28; // eight bits of alpha, from the top
    for (const std::uint32_t pixel : pixels)
        for (const int shift : {16, 8, 0, 24})
            file += static_cast<char>(pixel >> shift);
    return file;
}

// A material of the greys 1, 2, 3 and 4, each with an alpha of half more; shininess 42.
inline std::string MaterialRecord(const std::string& name, const std::string& picture) {
    return Header(name) + Header(picture) +
           Floats({1, 1, 1, 1.5f, 2, 2, 2, 2.5f, 3, 3, 3, 3.5f, 4, 4, 4, 4.5f, 42});
}
