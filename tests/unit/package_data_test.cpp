#include "package/package_data.h"
#include "unit/temp_folder.h"

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
    EXPECT_EQ(block.cursor.ReadFloat() + block.cursor.ReadDouble(), 3.0);
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
    EXPECT_EQ(block.cursor.ReadFloat() + block.cursor.ReadDouble(), 0.0);
    block.cursor.WriteInt(7);
    block.cursor.ReadFloat4(four);
    EXPECT_EQ(four[3], 4.0f);
    for (const int n : {4, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(block.cursor.ReadBlc(n), nullptr) << n;
        EXPECT_EQ(block.cursor.ReadCopyBlc(copy, n), nullptr) << n;
    }
    EXPECT_STREQ(copy, "before");
    EXPECT_EQ(block.cursor.ReadBlc(3), block.memory.data());
    EXPECT_FALSE(block.cursor.ReadBool());
    FXPackageData empty;
    EXPECT_EQ(empty.ReadBlc(0), nullptr);
    empty.InitData(block.memory.data(), -5);
    EXPECT_FALSE(empty.ReadBool());
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

// The elements that are there, and zeros up to `count`.
std::vector<int> Filled(std::vector<int> elements, int count) {
    elements.resize(static_cast<std::size_t>(count));
    return elements;
}

TEST(PackageData, CountedReadsEndWithDefaultsUpToABoundOfTheirOwn) {
    constexpr int kSure = FXPackageData::kSureCount;
    const std::string large(4 * kSure, '\0');
    const std::tuple<std::string, std::vector<int>, int> cases[] = {
        {Ints({2, 5, 6, 7}), {5, 6}, 4},
        {Ints({3, 5, 6}), {5, 6, 0}, 0},
        {Ints({2, 5}) + "abc", {5, 0}, 3},
        {Ints({kSure, 5}), Filled({5}, kSure), 0},
        {Ints({kSure + 1, 5}), Filled({5}, kSure), 0},
        {Ints({INT_MAX, 5}), Filled({5}, kSure), 0},
        {Ints({kSure + 2, 5}) + large, Filled({5}, kSure + 1), 0}, // beyond it, what the bytes hold
        {Ints({kSure + 1, 5}) + large, Filled({5}, kSure + 1), 0},
        {Ints({-1, 5}), {}, 4},
    };
    for (const auto& [bytes, values, left] : cases) {
        Block block(bytes);
        FXArray<int> ints;
        ints.Push(9);
        block.cursor.ReadArray(&ints);
        EXPECT_TRUE(std::vector<int>(ints.begin(), ints.end()) == values) << ints.count;
        EXPECT_EQ(block.cursor.left, left);
        block.cursor.Reseek();
        FXFloatArray floats;
        block.cursor.ReadFloatArray(&floats);
        EXPECT_EQ(floats.count, static_cast<int>(values.size()));
    }
    Block strings(Ints({INT_MAX, 1}) + "a");
    FXStrArray a;
    strings.cursor.ReadStringArray(&a);
    ASSERT_EQ(a.count, kSure);
    EXPECT_EQ(std::string(a.Get(0)) + a.Get(kSure - 1), "a");
}

} // namespace
