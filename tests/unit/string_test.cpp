#include "base/file_handle.h"
#include "base/path_text.h"
#include "base/str.h"
#include "unit/temp_folder.h"

#include <functional>
#include <tuple>

namespace {

TEST(Str, EditsInPlace) {
    const std::tuple<std::string, std::function<void(FXStr&)>, std::string> cases[] = {
        {"old", [](FXStr& s) { s.Set(nullptr), s.RemoveLast(); }, ""},
        {"ab", [](FXStr& s) { s.AppendChar('c'), s.AppendChar('\0'), s.Append(nullptr); }, "abc"},
        {"pj", [](FXStr& s) { s.InsertChar('g'), s.RemoveLast(), s.Append(s.text); }, "gpgp"},
        {"  ab\t", [](FXStr& s) { s.TrimSpaces(); }, "ab"},
        {" \t\r\n", [](FXStr& s) { s.TrimSpaces(); }, ""},
        {"aB1\xE4", [](FXStr& s) { s.ToUpper(); }, "AB1\xE4"},
        {"a.b.c", [](FXStr& s) { s.ExchangeChars('.', '_'); }, "a_b_c"},
        {"", [](FXStr& s) { s.Set(std::string(2000, 'x').c_str()); }, std::string(1023, 'x')},
        {"", [](FXStr& s) { s.Format("%d%s", 72, std::string(2000, 'x').c_str()); },
         "72" + std::string(1021, 'x')},
        {std::string(1023, 'x'), [](FXStr& s) { s.Append("y"), s.AppendChar('y'), s.InsertChar('y'); },
         std::string(1023, 'x')},
    };
    for (const auto& [from, edit, to] : cases) {
        FXStr s(from.c_str());
        edit(s);
        EXPECT_EQ(s.text, to);
        EXPECT_EQ(s.len, static_cast<int>(to.size()));
    }
}

TEST(Str, Compares) {
    const std::tuple<const char*, const char*, bool, bool> cases[] = {
        {"", nullptr, true, true},    {"", "", true, false},       {"", "a", false, false},
        {"a", nullptr, false, false}, {"a", "", false, false},     {"Ab", "Ab", true, true},
        {"Ab", "aB", false, true},    {"ab", "abc", false, false}, {"abc", "ab", false, false},
    };
    for (const auto& [text, s, same, sameIgnoringCase] : cases) {
        EXPECT_EQ(FXStr(text).Compare(s), same) << text << "|" << (s ? s : "null");
        EXPECT_EQ(FXStr(text).iCompare(s), sameIgnoringCase) << text << "|" << (s ? s : "null");
    }
    EXPECT_TRUE(FXStr("pck01s").nCompare("pck01", 5));
    EXPECT_FALSE(FXStr("pck0").nCompare("pck01", 5));
}

TEST(Str, RecordsThatLieStayInside) {
    const TempFolder folder;
    const std::string tooLong(2000, 'x');
    // bytes, then the text, whether it loads, and what follows the record
    const std::tuple<std::string, std::string, bool, int> cases[] = {
        {Ints({2}) + "ab7", "ab", true, '7'},
        {Ints({0}) + "7", "", true, '7'},
        {Ints({2000}) + tooLong + "7", tooLong.substr(0, 1023), true, '7'},
        {Ints({5}) + "ab", "ab", false, EOF},
        {Ints({-1}) + "a", "", false, 'a'},
        {"\2", "", false, EOF},
    };
    for (const auto& [bytes, text, loaded, next] : cases) {
        const FXFile file = fxOpenFile(folder.Write("record", bytes).c_str(), "rb");
        FXStr s("old");
        EXPECT_EQ(s.Load(file.get()), loaded) << text;
        EXPECT_EQ(s.text, text);
        EXPECT_EQ(std::fgetc(file.get()), next);
    }
}

TEST(PathText, FindsNamesAndTheWayBetweenPaths) {
    EXPECT_STREQ(fxGetFilename("a\\b/c.png"), "c.png");
    const char* const cases[][3] = {
        {"/a/b/", "/a/b/c", "c"},    {"/a/b", "/a/c", "../c"}, {"C:\\a\\b", "C:\\a\\c\\d", "..\\c\\d"},
        {"C:\\a", "D:\\a", "D:\\a"}, {"/a/b", "/a/b", "../b"}, {"/a", "a/b", "a/b"},
    };
    for (const auto& [from, to, way] : cases)
        EXPECT_STREQ(fxBuildRelativePath(from, false, to, true), way);
    EXPECT_STREQ(fxBuildRelativePath("/a/b/x", true, "/a/b/c", true), "c");
}

} // namespace
