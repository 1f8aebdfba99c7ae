// Lists, strings, and paths.
#include "base/arrays.h"
#include "base/file_handle.h"
#include "base/path_text.h"
#include "base/str.h"
#include "base/str_array.h"
#include "unit/temp_folder.h"

#include <functional>
#include <tuple>

namespace {

TEST(Array, FillsWithZeroAndIgnoresPlacesOutside) {
    FXArray<int> a;
    for (const int v : {1, 2, 3, 4})
        a.Push(v);
    for (const int at : {3, 0, 2, -1})
        a.RemovePos(at);
    EXPECT_EQ(a.count, 2);
    ASSERT_TRUE(a.Realloc(6));
    EXPECT_EQ(std::vector<int>(a.items, a.items + 6), (std::vector{2, 3, 0, 0, 0, 0}));
    a.DestroyBuf();
    EXPECT_TRUE(a.Pop() == 0 && a.First() == 0 && a.Last() == 0);
    for (const auto& [n, power] : {std::pair{-3, 1}, {1, 1}, {1024, 1024}, {1025, 2048}})
        EXPECT_EQ(fxPower2(n), power);
}

TEST(StrArray, TakesAnEmptyStringForNone) {
    FXStrArray strings;
    std::string given;
    for (const char* s : {"a", "b", "", "b"})
        strings.Push((given = s).c_str());
    EXPECT_EQ(strings.items[2], nullptr) << "an empty string";
    EXPECT_TRUE(strings.Findpos(nullptr) == 2 && strings.Findpos("b") == 1 && strings.Findpos("B") == -1);
    strings.Change(2, "d");
    strings.Change(9, "e");
    strings.Pop();
    ASSERT_EQ(strings.count, 3);
    EXPECT_EQ(std::string(strings.Get(0)) + strings.Get(1) + strings.Get(2), "abd");
}

TEST(Str, IsEditedInPlaceUpTo1023Characters) {
    const std::string full(1023, 'x'), longer(2000, 'x');
    const std::tuple<std::string, std::function<void(FXStr&)>, std::string> cases[] = {
        {"old", [](FXStr& s) { s.Set(nullptr); }, ""},
        {"ab", [](FXStr& s) { s.AppendChar('c'), s.AppendChar('\0'), s.Append(s.text); }, "abcabc"},
        {"  ab\t", [](FXStr& s) { s.TrimSpaces(); }, "ab"},
        {" \t\r\n", [](FXStr& s) { s.TrimSpaces(); }, ""},
        {"a.B1\xE4", [](FXStr& s) { s.ToUpper(), s.ExchangeChars('.', '_'); }, "A_B1\xE4"},
        {"", [&](FXStr& s) { s.Set(longer.c_str()); }, full},
        {"", [&](FXStr& s) { s.Format("%d%s", 72, longer.c_str()); }, "72" + full.substr(2)},
        {full, [](FXStr& s) { s.Append("y"), s.AppendChar('y'); }, full},
    };
    for (const auto& [from, edit, to] : cases) {
        FXStr s(from.c_str());
        edit(s);
        EXPECT_EQ(s.text, to);
        EXPECT_EQ(s.len, static_cast<int>(to.size()));
    }
    const std::tuple<const char*, const char*, bool, bool> pairs[] = {
        {"", "", true, false},     {"a", nullptr, false, false}, {"Ab", "Ab", true, true},
        {"Ab", "aB", false, true}, {"ab", "abc", false, false},  {"abc", "ab", false, false}};
    for (const auto& [text, s, same, sameIgnoringCase] : pairs) {
        EXPECT_EQ(FXStr(text).Compare(s), same) << text;
        EXPECT_EQ(FXStr(text).iCompare(s), sameIgnoringCase) << text;
    }
}

TEST(Str, RecordsWithWrongLengthsStayInside) {
    const TempFolder folder;
    const std::string tooLong(2000, 'x');
    // bytes, then the text, whether it loads, and what follows the record
    const std::tuple<std::string, std::string, bool, int> cases[] = {
        {Ints({2000}) + tooLong + "7", tooLong.substr(0, 1023), true, '7'},
        {Ints({5}) + "ab", "ab", false, EOF},
    };
    for (const auto& [bytes, text, loaded, next] : cases) {
        const FXFile file = fxOpenFile(folder.Write("record", bytes).c_str(), "rb");
        FXStr s("old");
        EXPECT_EQ(s.Load(file.get()), loaded) << text;
        EXPECT_EQ(s.text, text);
        EXPECT_EQ(std::fgetc(file.get()), next);
    }
}

TEST(PathText, CombinesPaths) {
    EXPECT_STREQ(fxGetFilename("a\\b/c.png"), "c.png");
    const std::string most(257, 'x');
    const std::tuple<const char*, const char*, std::string> cases[] = {
        {"/a", "b/c.png", "/a/b/c.png"},
        {"C:\\a", "..\\..\\..\\b", "C:\\b"},
        {"\\\\server\\a", "../b", "\\\\server\\b"},
        {"/a", most.c_str(), ""}, // 260 characters
        {"a", most.c_str(), "a\\" + most},
    };
    for (const auto& [path, other, made] : cases)
        EXPECT_EQ(fxCombinePaths(path, other), made) << other;
}

} // namespace
