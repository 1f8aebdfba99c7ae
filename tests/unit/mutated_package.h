// Packages damaged as files are, and by who knows the format. A number always means the same damage.
#pragma once

#include "unit/test_package.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <utility>

inline std::vector<TestEntry> EntriesOf(const std::string& packageFile) {
    FXPackage package;
    EXPECT_TRUE(package.Load(packageFile.c_str()));
    std::vector<TestEntry> entries;
    for (int i = 0; i < package.ids.count; ++i) {
        const FXPackageData* data = package.cursors[i];
        entries.push_back(
            {package.ids[i], package.types[i], std::string(data->start, data->start + data->size)});
    }
    return entries;
}

class Mutation {
public:
    explicit Mutation(unsigned number) : random_(number) {}

    // The file of such a package, damaged.
    std::string Of(std::vector<TestEntry> entries) {
        for (std::size_t left = Pick(4); left > 0; --left)
            ChangeEntry(entries);
        std::string file = PackageOf(entries);
        ChangeFile(file, 16 * entries.size() + 25);
        return file;
    }

private:
    std::size_t Pick(std::size_t count) { return count > 0 ? random_() % count : 0; }
    template <class T> T& OneOf(std::vector<T>& all) { return all[Pick(all.size())]; }

    void FlipBits(std::string& bytes, std::size_t most) {
        for (std::size_t left = 1 + Pick(most); left > 0 && !bytes.empty(); --left)
            bytes[Pick(bytes.size())] ^= static_cast<char>(1 << Pick(8));
    }
    // Numbers that counts, offsets, sizes and coordinates are not expected to be.
    void PutEdge(std::string& bytes, std::size_t at) {
        constexpr std::uint32_t kEdges[] = {0,          1,          2,          0x7F,       0xFF,
                                            0xFFFF,     0x10000,    0x10001,    1 << 24,    0x3FFFFFFF,
                                            0x7FFFFFFF, 0x80000000, ~1u,        ~0u,        0x7F7FFFFF,
                                            0x7F800000, 0xFF800000, 0x7FC00000, 0x00000080, 0x3F800000};
        if (bytes.size() >= 4)
            std::memcpy(bytes.data() + std::min(at, bytes.size() - 4), &kEdges[Pick(std::size(kEdges))], 4);
    }
    void ChangeEntry(std::vector<TestEntry>& entries) {
        TestEntry& entry = OneOf(entries);
        std::string& bytes = entry.bytes;
        switch (Pick(9)) {
        case 0:
            return FlipBits(bytes, 8);
        case 1:
            return bytes.resize(Pick(bytes.size() + 1));
        case 2:
            return std::swap(bytes, OneOf(entries).bytes);
        case 3:
            return std::swap(entry.type, OneOf(entries).type);
        case 4: // where headers and counts are
        case 5:
            return PutEdge(bytes, Pick(80));
        case 6:
            return PutEdge(bytes, Pick(bytes.size()));
        case 7:
            entry.id = OneOf(entries).id;
            return;
        default: { // a piece is there twice, or not at all
            const std::size_t from = Pick(bytes.size()), size = Pick(bytes.size() - from);
            Pick(2) == 0 ? bytes.erase(from, size) : bytes.insert(from, std::string(bytes, from, size));
        }
        }
    }
    void ChangeFile(std::string& file, std::size_t tables) {
        const std::size_t way = Pick(8);
        if (way == 0)
            FlipBits(file, 16);
        else if (way == 1)
            file.resize(Pick(file.size()));
        else if (way == 2)
            PutEdge(file, Pick(tables));
    }

    std::mt19937 random_;
};
