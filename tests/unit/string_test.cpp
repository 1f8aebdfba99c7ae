#include "base/file_handle.h"
#include "base/long_str.h"
#include "base/path_text.h"
#include "base/str.h"
#include "unit/temp_folder.h"

#include <functional>
#include <tuple>

namespace {

TEST(Str, IsEditedInPlaceUpTo1023Characters) {
    const std::string full(1023, 'x'), longer(2000, 'x');
    const std::tuple<std::string, std::function<void(FXStr&)>, std::string> cases[] = {
        {"old", [](FXStr& s) { s.Set(nullptr), s.RemoveLast(); }, ""},
        {"ab", [](FXStr& s) { s.AppendChar('c'), s.AppendChar('\0'), s.Append(nullptr); }, "abc"},
        {"pj", [](FXStr& s) { s.InsertChar('g'), s.RemoveLast(), s.Append(s.text); }, "gpgp"},
        {"  ab\t", [](FXStr& s) { s.TrimSpaces(); }, "ab"},
        {" \t\r\n", [](FXStr& s) { s.TrimSpaces(); }, ""},
        {"aB1\xE4", [](FXStr& s) { s.ToUpper(); }, "AB1\xE4"},
        {"a.b.c", [](FXStr& s) { s.ExchangeChars('.', '_'); }, "a_b_c"},
        {"", [&](FXStr& s) { s.Set(longer.c_str()); }, full},
        {"", [&](FXStr& s) { s.Format("%d%s", 72, longer.c_str()); }, "72" + full.substr(2)},
        {full, [](FXStr& s) { s.Append("y"), s.AppendChar('y'), s.InsertChar('y'); }, full},
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

TEST(Str, RecordsWithWrongLengthsStayInside) {
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

TEST(PathText, MakesPathsOfPaths) {
    using Make = const char* (*)(const char*, const char*);
    const std::string most(257, 'x');
    const std::tuple<Make, const char*, const char*, std::string> cases[] = {
        {fxCombinePaths, "/a", "b/c.png", "/a/b/c.png"},
        {fxCombinePaths, "C:\\a", "..\\..\\..\\b", "C:\\b"},
        {fxCombinePaths, "C:\\a", "D:\\b/.\\c", "D:\\b\\c"},
        {fxCombinePaths, "C:\\a", "\\\\b", "C:\\b"},
        {fxCombinePaths, "\\\\server\\a", "../b", "\\\\server\\b"},
        {fxCombinePaths, "a", "../../../b", "../../b"},
        {fxCombinePaths, "/", "..", "/"},
        {fxCombinePaths, nullptr, "b/c", "b/c"},
        {fxCombinePaths, "/a", nullptr, "/a/"},
        {fxCombinePaths, "/a", most.c_str(), ""}, // 260 characters
        {fxCombinePaths, "a", most.c_str(), "a\\" + most},
        {fxChangeExt, "a.b/c.png", ".jpg", "a.b/c.jpg"},
        {fxChangeExt, "a.b/c", "jpg", "a.b/c.jpg"},
        {fxChangeExt, "a/c.tar.gz", nullptr, "a/c.tar"},
        {fxChangeExt, "a/.c", "d", "a/.c.d"},
        {fxAppenfFname, "a.b\\c.png", "_1", "a.b\\c_1.png"},
        {fxAppenfFname, "a.b\\c", "_1", "a.b\\c_1"},
    };
    for (const auto& [make, path, other, made] : cases)
        EXPECT_EQ(make(path, other), made) << (path ? path : "null");
    EXPECT_STREQ(fxChangeExt(fxAppenfFname(fxCombinePaths("/a", "b.png"), "_1"), "tga"), "/a/b_1.tga");
}

TEST(LongStr, HoldsAnyTextAndKeepsItsBlock) {
    const std::string longer(5000, 'x');
    FXLongStr s;
    EXPECT_TRUE(s.Compare(nullptr) && s.Compare("") && s.iCompare(nullptr) && !s.iCompare(""));
    s.Append(longer.c_str());
    s.Append(" \t");
    s.TrimSpaces();
    EXPECT_EQ(s.text, longer);
    const char* block = s.text;
    const std::pair<const char*, std::string> cases[] = {
        {"  aB c\t", "ab c"}, {" \n", ""}, {"X\xC4", "x\xC4"}, {nullptr, ""}};
    for (const auto& [text, to] : cases) {
        s.Set(text);
        s.TrimSpaces();
        s.ToLower();
        EXPECT_TRUE(s.text == to && s.len == static_cast<int>(to.size())) << to;
        EXPECT_EQ(s.text, block) << "it fits";
    }
    s.Set("Ab");
    s.Append(s.text);
    s.Set(s.text + 1);
    EXPECT_TRUE(s.Compare("bAb") && !s.Compare("bab") && !s.Compare("bA") && !s.Compare("bAbb"));
    EXPECT_TRUE(s.iCompare("BaB") && !s.iCompare("BaBB") && !s.iCompare(nullptr) && !s.iCompare(""));
    s.ClearBuf();
    EXPECT_TRUE(s.text == nullptr && s.capacity == 0);
}

TEST(LongStr, GoesToWideTextAndBack) {
    FXLongStrW wide;
    wide.RemoveLast();
    wide.Set(FXConvertW(" Wide").text);
    for (const wchar_t c : {L's', L'\0', L'!'})
        wide.AppendChar(c);
    wide.RemoveLast();
    wide.TrimSpaces();
    wide.ToLower();
    EXPECT_STREQ(FXConvertC(wide.text).text, "wides");
    for (const char* text : {"", static_cast<const char*>(nullptr), "\xFF\xFE"})
        EXPECT_EQ(FXConvertW(text).text, nullptr);
    EXPECT_EQ(FXConvertC(nullptr).text, nullptr);
}

} // namespace
