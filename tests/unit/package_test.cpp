#include "package/package.h"
#include "package/scramble.h"
#include "unit/package_bytes.h"

#include <tuple>

namespace {

std::string Scrambled(std::string body) {
    fxScramble(reinterpret_cast<unsigned char*>(body.data()), body.size());
    return body;
}

// Ids 5, 2 and 9 with the bytes "abc", "" and "de".
const std::string kBody =
    Table({5, 2, 9}) + Table({0, 3, 3}) + Table({3, 0, 2}) + Table({-1, 0x42A, 0x425}) + "abcde";

TEST(Scramble, TransposesTheLargestSquareAndKeepsTheRest) {
    EXPECT_EQ(Scrambled("0123456789"), "0361472589");
    EXPECT_EQ(Scrambled(""), "");
    for (const std::size_t side : {1, 15, 16, 17, 100, 1023, 1040}) {
        std::string body(side * side + side, '\0');
        for (std::size_t i = 0; i < body.size(); ++i)
            body[i] = static_cast<char>(i * 2654435761u >> 13);
        std::string turned = body;
        for (std::size_t i = 0; i < side * side; ++i)
            turned[i % side * side + i / side] = body[i];
        EXPECT_TRUE(Scrambled(body) == turned) << side;
    }
}

TEST(Package, LoadsPlainAndScrambled) {
    const TempFolder folder;
    for (const std::string& file : {Header("pck01") + kBody, Header("pck01s") + Scrambled(kBody)}) {
        FXPackage package;
        ASSERT_TRUE(package.Load(folder.Write("p", file).c_str()));
        EXPECT_STREQ(package.problem.text, "");
        EXPECT_EQ(Entry(package, 5) + Entry(package, 2) + Entry(package, 9) + Entry(package, 3), "abcdenone");
        EXPECT_EQ(package.GetDataType(2), kPng);
        EXPECT_EQ(package.GetDataType(3), kRaw);
        EXPECT_EQ(package.firstId, 10);
        FXPackageData* cursor = package.GetDataPtr(9);
        cursor->ReadBool();
        EXPECT_EQ(package.GetDataPtr(9), cursor);
        EXPECT_EQ(cursor->left, 2) << "rewound";
    }
}

TEST(Package, IsEmptyWithoutAPackageAndSaysWhy) {
    const TempFolder folder;
    FXPackage package;
    const std::pair<std::string, std::string> bad[] = {
        {folder.File("missing"), "cannot be opened: No such file or directory"},
        {folder.File(""), "cannot be read: Is a directory"},
        {folder.Write("1", ""), "is empty"},
        {folder.Write("2", Header("pck02") + kBody), "is not a Tamblor package"},
        {folder.Write("3", Ints({INT_MAX}) + "pck01"), "is not a Tamblor package"},
        {folder.Write("4", Ints({-5}) + "pck01" + kBody), "is not a Tamblor package"},
        {folder.Write("5", Header("pck01")), "cannot be read: too large, or no memory"}};
    // A hole, no disk: beyond what an int counts.
    std::filesystem::resize_file(std::rbegin(bad)->first, (1ull << 31) + 9);
    for (const auto& [file, problem] : bad) {
        ASSERT_TRUE(package.Load(folder.Write("good", Header("pck01") + kBody).c_str()));
        EXPECT_FALSE(package.Load(file.c_str())) << file;
        EXPECT_EQ(package.problem.text, problem);
        EXPECT_EQ(Entry(package, 5), "none");
        EXPECT_EQ(package.GetDataType(2), -1);
    }
    for (const std::string& nothing : {Ints({0, 0, 0, 0}), std::string()}) {
        EXPECT_TRUE(package.Load(folder.Write("none", Header("pck01") + nothing).c_str()));
        EXPECT_STREQ(package.problem.text, "has no entries");
        EXPECT_EQ(package.firstId, 0);
    }
}

TEST(Package, WrongTablesReadNothingOutside) {
    const TempFolder folder;
    const std::string ones = Table({1});
    const char* const kCut = "is damaged or ends too early: some of its entries are missing";
    const std::tuple<std::string, std::string, const char*> cases[] = {
        {ones + Table({0}) + Table({4}) + ones, "", kCut}, // beyond the end
        {ones + Table({-1}) + Table({2}) + ones, "", kCut},
        {ones + Table({3}) + Table({-1}) + ones, "", kCut},
        {ones + Table({INT_MAX}) + Table({INT_MAX}) + ones, "", kCut},
        {ones + Table({INT_MIN}) + Table({INT_MIN}) + ones, "", kCut},
        {ones + Table({1}) + Table({2}) + Ints({0}), "bc", ""}, // no type
        {ones + Table({1}) + Table({2, 3, 4}) + ones, "bc", ""},
        {Table({1, 2, 3}) + Table({1}) + Table({2}) + ones, "bc", kCut},
        {Ints({-1, 1}), "none", "has no entries"},
        {Table({2, 1}) + Table({1}) + Table({2, 1}), "a", kCut}, // what a table lacks is 0: here the offset
        {Table({2, 1}) + Table({1, 1}) + Table({2}), "", kCut},  // the size
    };
    FXPackage package;
    for (const auto& [tables, entry, problem] : cases) {
        EXPECT_TRUE(package.Load(folder.Write("p", Header("pck01") + tables + "abc").c_str()));
        EXPECT_EQ(Entry(package, 1), entry) << testing::PrintToString(tables);
        EXPECT_STREQ(package.problem.text, problem) << testing::PrintToString(tables);
    }
    // Ids alone, and a count that ends with the file: entries of value 0, without a byte.
    ASSERT_TRUE(package.Load(folder.Write("p", Header("pck01") + Ints({3, 7})).c_str()));
    EXPECT_EQ(Entry(package, 7) + Entry(package, 0), "");
    EXPECT_EQ(package.GetDataType(7), 0);
}

TEST(Package, NumbersNamesBehindItsLargestId) {
    const TempFolder folder;
    const std::pair<std::vector<std::int32_t>, int> kCases[] = {
        {{-7, -5, -6}, -4}, {{3, INT_MAX}, INT_MAX}, {{INT_MIN}, INT_MIN + 1}};
    for (const auto& [ids, first] : kCases) {
        FXPackage package;
        ASSERT_TRUE(package.Load(folder.Write("p", Header("pck01") + Table(ids)).c_str()));
        EXPECT_EQ(package.firstId, first);
    }
}

} // namespace
