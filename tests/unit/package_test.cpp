// The package: its values, its file, and making one.
#include "package/package.h"
#include "package/scramble.h"
#include "unit/test_package.h"

#include <tuple>

namespace fs = std::filesystem;

namespace {

TEST(PackageData, ReadsWhatFitsAndConsumesNothingElse) {
    const std::string values = "\1\2" + Ints({-2, 0x3FC00000, 0, 0x3FF80000}), few = "\1\1\1";
    FXPackageData all = CursorOf(values), tooFew = CursorOf(few);
    EXPECT_TRUE(all.ReadBool() && !all.ReadBool()) << "only 1 is true";
    EXPECT_TRUE(all.ReadInt() == -2 && all.ReadFloat() == 1.5f && all.ReadDouble() == 1.5 && all.left == 0);
    char copy[8] = "before";
    EXPECT_TRUE(tooFew.ReadInt() == 0 && tooFew.ReadDouble() == 0);
    tooFew.WriteInt(7);
    for (const int n : {4, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(tooFew.ReadCopyBlc(copy, n), nullptr) << n;
    EXPECT_STREQ(copy, "before");
    EXPECT_EQ(tooFew.ReadBlc(3), tooFew.start);
    EXPECT_FALSE(tooFew.ReadBool());
}

TEST(PackageData, StringsStayInsideTheBlockAndTheirCapacity) {
    const std::string tooLong(2000, 'x');
    const std::tuple<std::string, std::string, int> cases[] = {
        {Ints({2}) + "abc", "ab", 1},
        {Ints({-7}) + "abc", "", 3},
        {Ints({INT_MAX}) + "abc", "abc", 0},
        {"abc", "", 3},
        {Ints({2000}) + tooLong + "a", tooLong.substr(0, 1023), 1},
    };
    for (const auto& [bytes, text, left] : cases) {
        FXPackageData cursor = CursorOf(bytes);
        FXStr s("old");
        cursor.ReadString(&s);
        EXPECT_EQ(s.text, text);
        EXPECT_EQ(s.len, static_cast<int>(text.size()));
        EXPECT_EQ(cursor.left, left) << text;
    }
}

TEST(PackageData, CountedReadsEndWithDefaultsUpToABoundOfTheirOwn) {
    for (const auto& [stored, count] : {std::pair{-1, 0}, {2, 2}, {INT_MAX, FXPackageData::kSureCount}}) {
        const std::string bytes = Ints({stored, 5});
        FXArray<int> ints;
        CursorOf(bytes).ReadArray(&ints);
        EXPECT_EQ(ints.count, count);
        EXPECT_TRUE(count == 0 || (ints[0] == 5 && ints.Last() == 0));
    }
}

std::string Scrambled(std::string body) {
    fxScramble(reinterpret_cast<unsigned char*>(body.data()), body.size());
    return body;
}

// Ids 5, 2 and 9 with the bytes "abc", "" and "de".
const std::string kBody =
    Table({5, 2, 9}) + Table({0, 3, 3}) + Table({3, 0, 2}) + Table({-1, 0x42A, 0x425}) + "abcde";

TEST(Scramble, TransposesTheLargestSquareAndKeepsTheRest) {
    EXPECT_EQ(Scrambled("0123456789"), "0361472589");
    for (const std::size_t side : {0, 1, 15, 16, 17, 1023, 1040}) {
        std::string body(side * side + side % 2 * side, '\0'); // of the even ones nothing is left over
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
    for (const std::string& file : {Header("pck01") + kBody, Header("pck01s") + Scrambled(kBody),
                                    Header("pck01-s") + Scrambled(kBody)}) {
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
        {folder.Write("1", ""), "is empty"},
        {folder.Write("2", Header("pck02") + kBody), "is not a Tamblor package"},
        {folder.Write("4", Ints({-5}) + "pck01" + kBody), "is not a Tamblor package"},
        {folder.Write("5", Header("pck01")), "cannot be read: too large, or no memory"}};
    // A hole, no disk: beyond what an int counts.
    fs::resize_file(std::rbegin(bad)->first, (1ull << 31) + 9);
    for (const auto& [file, problem] : bad) {
        ASSERT_TRUE(package.Load(folder.Write("good", Header("pck01") + kBody).c_str()));
        EXPECT_FALSE(package.Load(file.c_str())) << file;
        EXPECT_EQ(package.problem.text, problem);
        EXPECT_EQ(Entry(package, 5), "none");
        EXPECT_EQ(package.GetDataType(2), -1);
    }
}

TEST(Package, WrongTablesReadNothingOutside) {
    const TempFolder folder;
    const std::string ones = Table({1});
    const char* const kCut = "is damaged or ends too early: some of its entries are missing";
    const std::tuple<std::string, std::string, const char*> cases[] = {
        {"", "none", "has no entries"},
        {ones + Table({0}) + Table({4}) + ones, "", kCut}, // beyond the end
        {ones + Table({-1}) + Table({2}) + ones, "", kCut},
        {ones + Table({INT_MAX}) + Table({INT_MAX}) + ones, "", kCut},
        {ones + Table({1}) + Table({2}) + Ints({0}), "bc", ""},  // no type
        {Table({2, 1}) + Table({1}) + Table({2, 1}), "a", kCut}, // what a table lacks is 0: here the offset
        {Table({2, 1}) + Table({1, 1}) + Table({2}), "", kCut},  // the size
    };
    FXPackage package;
    for (const auto& [tables, entry, problem] : cases) {
        const std::string file = Header("pck01").append(tables).append(tables.empty() ? "" : "abc");
        EXPECT_TRUE(package.Load(folder.Write("p", file).c_str()));
        EXPECT_EQ(Entry(package, 1), entry) << testing::PrintToString(tables);
        EXPECT_STREQ(package.problem.text, problem) << testing::PrintToString(tables);
    }
    ASSERT_TRUE(package.Load(folder.Write("p", Header("pck01") + Table({3, INT_MAX})).c_str()));
    EXPECT_EQ(package.firstId, INT_MAX);
}

TEST(PackageBuild, AppendsAndWritesTheFormatToTheByte) {
    const TempFolder folder;
    FXPackage first;
    first.AddDataFile(7, folder.Write("raw", "abc").c_str());
    ASSERT_TRUE(first.Save(folder.File("p").c_str(), 0));
    EXPECT_EQ(folder.Read("p"), Header("pck01") + Table({7}) + Table({0}) + Table({3}) + Table({-1}) + "abc");
    EXPECT_FALSE(fs::exists(folder.File("p.new")));

    FXPackage more;
    ASSERT_TRUE(more.Load(folder.File("p").c_str()));
    const std::pair<const char*, int> kFiles[] = {
        {"b.JPG", kJpeg}, {"a.b.png", kPng}, {"m.jpeg", kRaw}, {"m.png.", kRaw}};
    for (int i = 0; const auto& file : kFiles)
        more.AddDataFile(++i, folder.Write(file.first, file.first).c_str());
    ASSERT_TRUE(more.Save(folder.File("p").c_str(), FXPackage::kScrambled));
    EXPECT_TRUE(more.pendingIds.IsEmpty() && more.pendingFiles.IsEmpty());
    FXPackage back;
    ASSERT_TRUE(back.Load(folder.File("p").c_str()));
    for (FXPackage* package : {&more, &back}) {
        EXPECT_EQ(Entry(*package, 7), "abc");
        for (int i = 0; const auto& [name, type] : kFiles) {
            EXPECT_EQ(Entry(*package, ++i), name);
            EXPECT_EQ(package->GetDataType(i), type) << name;
        }
    }
    EXPECT_EQ(folder.Read("p").substr(0, 10), Header("pck01s"));
    for (const auto& [name, expected] : {std::pair{"xxpng", kPng}, {"png", kRaw}}) {
        int size = -1, type = 0;
        EXPECT_FALSE(FXPackage::CheckFile(name, &size, &type)) << "there is no such file";
        EXPECT_TRUE(type == expected && size == 0) << name;
    }
}

TEST(PackageBuild, NamesBecomeIdsOnceAndAHeader) {
    const TempFolder folder;
    const std::string file = folder.File("sun (core)-1.png");
    FXPackage package;
    package.firstId = 40;
    FXStr name(file.c_str()), again(file.c_str()), empty;
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(package.BuildId("other"), 40);
    for (FXStr* given : {&name, &again, &empty})
        package.AddDataFile1(given);
    EXPECT_EQ(std::string(name.text) + again.text, "4141");
    EXPECT_EQ(package.pendingIds.count, 1);
    EXPECT_TRUE(package.SaveNamesCpp(folder.File("names.h").c_str()));
    EXPECT_EQ(folder.Read("names.h"), "#define FXNAME_OTHER  40\n#define FXNAME_SUN__CORE__1_PNG  41\n");
    package.firstId = INT_MAX;
    EXPECT_EQ(package.FindId(file.c_str()), -1) << "no id is left for it";
}

} // namespace
