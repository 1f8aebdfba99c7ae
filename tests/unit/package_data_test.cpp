#include "package/package_data.h"
#include "unit/temp_folder.h"

#include <numeric>
#include <tuple>

namespace {

// A cursor over a block of exactly these bytes, so that a sanitizer sees one read too far.
struct Block {
    explicit Block(const std::string& bytes) : memory(bytes.begin(), bytes.end()) {
        cursor.InitData(memory.data(), static_cast<int>(memory.size()));
    }
    std::vector<unsigned char> memory;
    FXPackageData cursor;
};

TEST(PackageData, ReadsValuesInOrder) {
    Block block("\1\2" + Ints({-2, 0x3FC00000, 0, 0x3FF80000, 1, 2, 3, 0x40000000}));
    EXPECT_TRUE(block.cursor.ReadBool());
    EXPECT_FALSE(block.cursor.ReadBool()) << "only 1 is true";
    EXPECT_EQ(block.cursor.ReadInt(), -2);
    EXPECT_EQ(block.cursor.ReadFloat(), 1.5f);
    EXPECT_EQ(block.cursor.ReadDouble(), 1.5);
    float four[4];
    block.cursor.ReadFloat4(four);
    EXPECT_EQ(four[3], 2.0f);
    EXPECT_EQ(block.cursor.left, 0);
}

TEST(PackageData, AReadThatDoesNotFitConsumesNothing) {
    Block block("\1\1\1");
    float four[4] = {1, 2, 3, 4};
    char copy[8] = "before";
    EXPECT_EQ(block.cursor.ReadInt(), 0);
    EXPECT_EQ(block.cursor.ReadDouble(), 0.0);
    block.cursor.WriteInt(7);
    block.cursor.ReadFloat4(four);
    EXPECT_EQ(four[3], 4.0f);
    for (const int n : {4, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(block.cursor.ReadCopyBlc(copy, n), nullptr) << n;
    EXPECT_STREQ(copy, "before");
    EXPECT_EQ(block.cursor.ReadBlc(3), block.memory.data());
    EXPECT_FALSE(block.cursor.ReadBool());
    block.cursor.InitData(block.memory.data(), -5);
    EXPECT_FALSE(block.cursor.ReadBool());
}

TEST(PackageData, StringsStayInsideTheBlockAndTheirCapacity) {
    const std::string tooLong(2000, 'x');
    const std::tuple<std::string, std::string, int> cases[] = {
        {Ints({2}) + "abc", "ab", 1},
        {Ints({0}) + "abc", "", 3},
        {Ints({-7}) + "abc", "", 3},
        {Ints({INT_MAX}) + "abc", "abc", 0},
        {"abc", "", 3},
        {Ints({2000}) + tooLong + "a", tooLong.substr(0, 1023), 1},
    };
    for (const auto& [bytes, text, left] : cases) {
        Block block(bytes);
        FXStr s("old");
        block.cursor.ReadString(&s);
        EXPECT_EQ(s.text, text);
        EXPECT_EQ(s.len, static_cast<int>(text.size()));
        EXPECT_EQ(block.cursor.left, left) << text;
    }
}

TEST(PackageData, CountedReadsEndWithDefaultsUpToABoundOfTheirOwn) {
    constexpr int kSure = FXPackageData::kSureCount;
    const std::string large(4 * kSure, '\0');
    // bytes, then the count and the sum of the elements, and what is left
    const std::tuple<std::string, int, int, int> cases[] = {
        {Ints({2, 5, 6, 7}), 2, 11, 4},
        {Ints({3, 5, 6}), 3, 11, 0},
        {Ints({2, 5}) + "abc", 2, 5, 3},
        {Ints({INT_MAX, 5}), kSure, 5, 0},
        {Ints({kSure + 2, 5}) + large, kSure + 1, 5, 0}, // beyond it, what the bytes hold
        {Ints({-1, 5}), 0, 0, 4},
    };
    for (const auto& [bytes, count, sum, left] : cases) {
        Block block(bytes);
        FXArray<int> ints;
        ints.Push(9);
        block.cursor.ReadArray(&ints);
        EXPECT_EQ(ints.count, count);
        EXPECT_EQ(std::accumulate(ints.begin(), ints.end(), 0), sum);
        EXPECT_EQ(block.cursor.left, left);
        block.cursor.Reseek();
        FXFloatArray floats;
        block.cursor.ReadFloatArray(&floats);
        EXPECT_EQ(floats.count, count);
    }
    Block strings(Ints({INT_MAX, 1}) + "a");
    FXStrArray a;
    strings.cursor.ReadStringArray(&a);
    ASSERT_EQ(a.count, kSure);
    EXPECT_STREQ(a.Get(0), "a");
}

} // namespace
