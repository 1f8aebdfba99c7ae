// Broken packages, machines that lack something: the show goes on with what there is, or ends quietly.
#include "integration/saver_process.h"
#include "unit/test_package.h"

namespace fs = std::filesystem;

namespace {

const std::string kHomeTrace = ".local/state/tamblor/tamb.log"; // the home folder is the data folder
const std::string kUnopened = "tamb.dat cannot be opened: No such file or directory";

// Files are in the data folder.
struct Case {
    const char* what;
    Environment environment;     // "" takes a variable away
    std::string missing, folder; // the one is taken away, the other made a folder
    std::string words;           // $/ stands for the data folder, @/ for the current one
    std::string trace = "tamb.log";
    std::string file = "", bytes = ""; // a file to write
};

class BadInput : public ShowFixture {
protected:
    // The show runs, and a key ends it. The words are all that it said, and in the trace they are an error.
    void ExpectAShow(const Case& c) {
        const testing::ScopedTrace which(__FILE__, __LINE__, c.what);
        const TempFolder current;
        SaverProcess one;
        const auto whole = [&](std::string text) {
            for (const auto& [mark, folder] : {std::pair{"$/", &one.data}, {"@/", &current}})
                if (const std::size_t at = text.find(mark); at != std::string::npos)
                    text.replace(at, 2, SaverName(folder->File("")));
            return text;
        };
        for (const auto& [name, value] : c.environment) {
            one.environment[name] = whole(value);
            if (value.empty())
                one.environment.erase(name);
        }
        if (!c.missing.empty())
            fs::remove(one.data.File(c.missing));
        fs::create_directories(one.data.File(c.folder));
        if (!c.file.empty()) {
            fs::create_directories(fs::path(one.data.File(c.file)).parent_path());
            one.data.Write(c.file, whole(c.bytes));
        }
        one.folder = current.Path();
        const fs::path traces = fs::path(one.data.File(c.trace)).parent_path();
        const bool old = fs::exists(traces);
        if (old)
            one.data.Write(c.trace, "#ERROR: of another day\n");

        one.environment["DISPLAY"] = display.Name();
        one.Start({"/s"});
        ASSERT_TRUE(one.WaitUntilShown(display) && one.SeeFrames(display));
        display.PressKey(XK_space);
        EXPECT_EQ(one.WaitForExit(), 0);
        const std::string words = whole(c.words), log = one.data.Read(c.trace);
        EXPECT_EQ(one.Errors(), words.empty() ? "" : "tamblor: " + words + "\n");
        EXPECT_NE(log.find("loading ok"), std::string::npos) << log;
        EXPECT_EQ(log.find("#ERROR: ") != std::string::npos, !words.empty()) << log;
        EXPECT_NE(log.find("] " + words.substr(0, words.find('\n'))), std::string::npos) << log;
        EXPECT_TRUE(fs::is_empty(current.Path()));
        EXPECT_TRUE(old || fs::status(traces).permissions() == fs::perms::owner_all);
    }
};

TEST_F(BadInput, AnyPackageWillDo) {
    const std::string damaged =
        "package $/tamb.dat is damaged or ends too early: some of its entries are missing";
    const auto package = [&](const char* what, const std::string& words, const std::string& bytes) {
        ExpectAShow({what, {}, "tamb.dat", "", words, "tamb.log", "tamb.dat", bytes});
    };
    package("text", "package $/tamb.dat is not a Tamblor package", "This was never meant to be a package.");
    package("counts near 2^31", damaged, Header("pck01") + Ints({INT_MAX, 18, INT_MAX, INT_MAX}));
}

TEST_F(BadInput, WhatIsMissingIsNamedAndNothingIsWrittenElsewhere) {
    const std::string none =
        "data folder /no/such/folder: there is no such folder\ntamblor: package @/" + kUnopened;
    const std::string conf = "config/tamblor/tamblor.conf";
    const std::string mistake =
        "configuration: $/" + conf + ":1: path must be a whole path, beginning with / or ~/";
    const std::string folder = "package $/tamb.dat cannot be read: Is a directory";
    const Case cases[] = {
        {"no package", {}, "tamb.dat", "", "package $/" + kUnopened},
        {"a folder for a package", {}, "tamb.dat", "tamb.dat", folder},
        {"no data folder", {{"TAMBLOR_DATA", "/no/such/folder"}}, "", "", none, kHomeTrace},
        {"not to be written", {{"TAMBLOR_DATA", "/proc"}}, "", "", "package /proc/" + kUnopened, kHomeTrace},
        {"a folder for a trace", {{"XDG_STATE_HOME", "state"}}, "", "tamb.log", "", kHomeTrace},
        {"no home", {{"HOME", ""}, {"XDG_CONFIG_HOME", ""}, {"PATH", ""}}, "", "", ""},
        {"a file for a home", {{"HOME", "/dev/null"}, {"XDG_CONFIG_HOME", "/dev/null/x"}}, "", "", ""},
        {"a state folder", {{"XDG_STATE_HOME", "$/my"}}, "", "tamb.log", "", "my/tamblor/tamb.log"},
        {"settings", {{"TAMBLOR_DATA", ""}}, "", "", "", "tamb.log", conf, "# mine\npath = $/\n"},
        {"bad settings", {}, "", "", mistake, "tamb.log", conf, "path = relative/folder\n\x01garbage\n"},
    };
    for (const Case& c : cases)
        ExpectAShow(c);
}

TEST_F(BadInput, WithoutAServerItSaysSo) {
    display.Kill();
    EXPECT_EQ(saver.Run({"/s"}), 0);
    EXPECT_NE(saver.Errors().find("display"), std::string::npos);
}

} // namespace
