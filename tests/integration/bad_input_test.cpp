// Broken packages, machines that lack something: the show goes on with what there is, or ends quietly.
#include "integration/saver_command.h"
#include "integration/show_fixture.h"
#include "unit/package_bytes.h"

#include <tuple>

namespace fs = std::filesystem;

namespace {

class BadInput : public ShowFixture {
protected:
    BadInput() : ShowFixture(320, 240) {}

    // The show runs (the desktop fades as it should) and ends with a key.
    void ExpectAShow(SaverProcess& one, const std::string& what) {
        one.Start(&display, {"/s"});
        ASSERT_TRUE(one.WaitUntilShown(display)) << what;
        EXPECT_TRUE(one.SeeFrames(display)) << what;
        display.PressKey(XK_space);
        EXPECT_EQ(one.WaitForExit(), 0) << what;
    }
    // They are all that it said, and in the trace they are an error.
    static void ExpectWords(const SaverProcess& one, const std::string& words, const std::string& trace) {
        const std::string log = one.Data().Read(trace);
        EXPECT_EQ(one.Errors(), words.empty() ? "" : "tamblor: " + words + "\n");
        EXPECT_NE(log.find("loading ok"), std::string::npos) << trace;
        EXPECT_EQ(log.find("#ERROR: ") != std::string::npos, !words.empty()) << log;
        EXPECT_NE(log.find("] " + words.substr(0, words.find('\n'))), std::string::npos) << log;
    }
    static std::string Name(const SaverProcess& one, const char* file) {
        return SaverName(one.Data().File(file));
    }
};

TEST_F(BadInput, AnyPackageWillDo) {
    const std::string one = Header("pck01") + Table({18});
    const std::tuple<const char*, std::string, std::string> packages[] = {
        {"some text", "This was never meant to be a package.", " is not a Tamblor package"},
        {"counts near 2^31", Header("pck01") + Ints({INT_MAX, 18, INT_MAX, INT_MAX}),
         " is damaged or ends too early: some of its entries are missing"},
        {"a picture that is none", one + Table({0}) + Table({64}) + Table({kPng}) + std::string(64, 'x'), ""},
    };
    for (const auto& [what, bytes, problem] : packages) {
        SaverProcess other;
        fs::remove(other.Data().File("tamb.dat"));
        other.Data().Write("tamb.dat", bytes);
        ExpectAShow(other, what);
        ExpectWords(other, problem.empty() ? "" : "package " + Name(other, "tamb.dat") + problem, "tamb.log");
    }
}

TEST_F(BadInput, WhatIsMissingIsNamedAndNothingIsWrittenElsewhere) {
    const std::string home = ".local/state/tamblor/tamb.log"; // the home folder is the data folder
    struct Case {
        const char* what;
        Environment environment;
        std::vector<const char*> missing, folders; // taken from the data folder, and made there
        std::string words;                         // $ stands for the data folder, @ for the current one
        std::string trace;
    };
    const std::string unopened = "tamb.dat cannot be opened: No such file or directory";
    const char* const data = "tamb.dat";
    const Case cases[] = {
        {"no package", {}, {data}, {}, "package $/" + unopened, "tamb.log"},
        {"a folder for a package",
         {},
         {data},
         {data},
         "package $/tamb.dat cannot be read: Is a directory",
         "tamb.log"},
        {"no data folder",
         {{"TAMBLOR_DATA", "/no/such/folder"}},
         {},
         {},
         "data folder /no/such/folder: there is no such folder\ntamblor: package @/" + unopened,
         home},
        {"nothing can be written there",
         {{"TAMBLOR_DATA", "/proc"}},
         {},
         {},
         "package /proc/" + unopened,
         home},
        {"no trace can be written", {}, {}, {"tamb.log"}, "", home},
        {"a state folder of the user's",
         {{"XDG_STATE_HOME", "$/my/state"}},
         {},
         {"tamb.log"},
         "",
         "my/state/tamblor/tamb.log"},
        {"a state folder that is none",
         {{"XDG_STATE_HOME", "state"}},
         {},
         {"tamb.log", ".local/state/tamblor"},
         "",
         home},
    };
    for (const Case& c : cases) {
        const TempFolder current;
        SaverProcess one;
        const auto whole = [&](std::string text) {
            const std::size_t at = text.find_first_of("$@");
            return at == std::string::npos
                       ? text
                       : text.replace(at, 1, (text[at] == '$' ? one.Data() : current).Path().string());
        };
        for (const auto& [name, value] : c.environment)
            one.environment[name] = whole(value);
        for (const char* name : c.missing)
            fs::remove(one.Data().File(name));
        for (const char* name : c.folders)
            fs::create_directories(one.Data().File(name));
        one.folder = current.Path();
        const fs::path folder = fs::path(one.Data().File(c.trace)).parent_path();
        const bool old = fs::exists(folder);
        if (old)
            one.Data().Write(c.trace, "#ERROR: of another day\n");
        ExpectAShow(one, c.what);
        ExpectWords(one, whole(c.words), c.trace);
        EXPECT_TRUE(fs::is_empty(current.Path())) << c.what;
        EXPECT_TRUE(old || fs::status(folder).permissions() == fs::perms::owner_all) << c.what;
    }
}

TEST_F(BadInput, TheConfigurationFileNamesTheDataFolderAndAMistakeInItIsNamed) {
    for (const bool good : {true, false}) {
        SaverProcess one;
        if (good)
            one.environment.erase("TAMBLOR_DATA");
        fs::create_directories(one.Data().File("config/tamblor"));
        one.Data().Write("config/tamblor/tamblor.conf",
                         good ? "# mine\npath = " + one.Data().Path().string() + "\n"
                              : "path = relative/folder\n\x01garbage\n");
        ExpectAShow(one, good ? "good" : "bad");
        ExpectWords(one,
                    good ? ""
                         : "configuration: " + Name(one, "config/tamblor/tamblor.conf") +
                               ":1: path must be a whole path, beginning with / or ~/",
                    "tamb.log");
    }
}

TEST_F(BadInput, OpenGLWithoutMultitextureShowsTheErrorPictureOverTheShow) {
    saver.environment["MESA_EXTENSION_OVERRIDE"] = "-GL_ARB_multitexture";
    Start();
    // At a standing clock all is desktop but for the picture at the top left.
    EXPECT_TRUE(display.WaitForPixel(40, 40, display.DesktopPixel(40, 40), 40, true));
    EXPECT_LE(ChannelDistance(display.PixelAt(4, 4), display.DesktopPixel(4, 4)), 3);
    ExpectAKeyEndsIt();
    EXPECT_EQ(saver.Trace().find("ARB_multitexture"), std::string::npos);
}

TEST_F(BadInput, WithoutADisplayItSaysSoAndEnds) {
    saver.Start(nullptr, {"/s"});
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_NE(saver.Errors().find("display"), std::string::npos);
}

TEST_F(BadInput, TheServerGoingAwayEndsItCleanly) {
    Start();
    display.Kill();
    EXPECT_EQ(saver.WaitForExit(), 0);
}

} // namespace
