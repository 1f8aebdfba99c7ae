// Packages byte by byte, the records and pictures in them, and what comes out of them.
#pragma once

#include "package/package.h"
#include "unit/temp_folder.h"

inline std::string Floats(const std::vector<float>& values) {
    return {reinterpret_cast<const char*>(values.data()), 4 * values.size()};
}
inline std::string Table(const std::vector<std::int32_t>& values) {
    return Ints({static_cast<std::int32_t>(values.size())}) + Ints(values);
}
inline std::string Header(const std::string& text) {
    return Ints({static_cast<std::int32_t>(text.size())}) + text;
}

// A cursor at the first byte; the text must outlive it.
inline FXPackageData CursorOf(const std::string& record) {
    FXPackageData data;
    data.InitData(record.data(), static_cast<int>(record.size()));
    return data;
}

// The bytes of an entry; "none" when there is no such entry.
inline std::string Entry(FXPackage& package, int id) {
    const FXPackageData* data = package.GetDataPtr(id);
    return data ? std::string(data->start, data->start + data->size) : "none";
}

struct TestEntry {
    int id;
    int type; // kRaw, kTga ...
    std::string bytes;
};

// The file of a package.
inline std::string PackageOf(const std::vector<TestEntry>& entries) {
    std::vector<std::int32_t> ids, offsets, sizes, types;
    std::string data;
    for (const TestEntry& entry : entries) {
        ids.push_back(entry.id);
        offsets.push_back(static_cast<std::int32_t>(data.size()));
        sizes.push_back(static_cast<std::int32_t>(entry.bytes.size()));
        types.push_back(entry.type);
        data += entry.bytes;
    }
    return Header("pck01") + Table(ids) + Table(offsets) + Table(sizes) + Table(types) + data;
}

inline void LoadTestPackage(FXPackage& package, const TempFolder& folder,
                            const std::vector<TestEntry>& entries) {
    ASSERT_TRUE(package.Load(folder.Write("test-package", PackageOf(entries)).c_str()));
}

// A TGA file of 32 bits per pixel, its top row first. Pixels as a canvas has them: 0xAABBGGRR.
inline std::string Tga(int w, int h, const std::vector<std::uint32_t>& pixels) {
    std::string file = std::string("\0\0\2\0\0\0\0\0\0\0\0\0", 12) + Ints({h << 16 | w}) + "\x20\x28";
    for (const std::uint32_t pixel : pixels)
        for (const int shift : {16, 8, 0, 24})
            file += static_cast<char>(pixel >> shift);
    return file;
}

// What a packed mesh begins with.
inline std::string MeshRecordHead(int vertices, int corners) {
    return Header("") + Floats({0, 0}) + Ints({0, 0, vertices, corners});
}

// A material of the greys 1, 2, 3 and 4, each with an alpha of half more; shininess 42.
inline std::string MaterialRecord(const std::string& name, const std::string& picture) {
    return Header(name) + Header(picture) +
           Floats({1, 1, 1, 1.5f, 2, 2, 2, 2.5f, 3, 3, 3, 3.5f, 4, 4, 4, 4.5f, 42});
}
