// Broken packages, machines that lack something: the show goes on with what there is, or ends quietly.
#include "integration/saver_command.h"
#include "integration/saver_process.h"
#include "package/package.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

#include <fstream>
#include <sstream>
#include <tuple>

namespace {

std::string Int(std::int32_t value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

constexpr int kWidth = 320;
constexpr int kHeight = 240;

class BadInput : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(display.Ok()); }

    // The show runs (the desktop fades as it should) and ends with a key.
    void ExpectAShow(SaverProcess& saver, const std::string& what) {
        saver.Start(&display, {"/s"});
        ASSERT_TRUE(saver.WaitUntilShown(display)) << what;
        EXPECT_TRUE(saver.SeeFrames(display)) << what;
        EXPECT_TRUE(saver.Running()) << what;
        display.PressKey(XK_space);
        EXPECT_EQ(saver.WaitForExit(), 0) << what;
    }

    static std::string Name(const SaverProcess& saver, const char* file) {
        return SaverName((saver.Data() / file).string());
    }

    // They are all that it said, and in the trace they are an error.
    static void ExpectWords(const SaverProcess& saver, const std::string& words,
                            const std::filesystem::path& trace) {
        std::ostringstream log;
        log << std::ifstream(trace).rdbuf();
        EXPECT_EQ(saver.Errors(), words.empty() ? "" : "tamblor: " + words + "\n");
        EXPECT_NE(log.str().find("loading ok"), std::string::npos) << trace;
        EXPECT_EQ(log.str().find("#ERROR: ") != std::string::npos, !words.empty()) << log.str();
        EXPECT_NE(log.str().find("] " + words.substr(0, words.find('\n'))), std::string::npos) << log.str();
    }

    VirtualDisplay display{kWidth, kHeight};
};

TEST_F(BadInput, AnyPackageWillDo) {
    const std::string header = Int(5) + "pck01";
    const std::string cut = " is damaged or ends too early: some of its entries are missing";
    const std::tuple<const char*, std::string, std::string> packages[] = {
        {"an empty file", "", " is empty"},
        {"a wrong header", Int(5) + "zip01" + Int(0), " is not a Tamblor package"},
        {"some text", "This was never meant to be a package.", " is not a Tamblor package"},
        {"a header alone", header, " has no entries"},
        {"a header that never ends", Int(0x7FFFFFFF) + "pck01", " is not a Tamblor package"},
        {"counts near 2^31", header + Int(0x7FFFFFFF) + Int(18) + Int(0x7FFFFFFF) + Int(0x7FFFFFFF), cut},
        {"negative counts", header + Int(-1) + Int(-2) + Int(-3) + Int(-4), " has no entries"},
        {"an entry beyond the file",
         header + Int(1) + Int(18) + Int(1) + Int(0x7FFFFFF0) + Int(1) + Int(0x7FFFFFF0) + Int(1) + Int(1066),
         cut},
        {"a negative entry",
         header + Int(1) + Int(18) + Int(1) + Int(-40) + Int(1) + Int(400) + Int(1) + Int(1066) +
             std::string(64, 'x'),
         cut},
        {"a picture that is none",
         header + Int(1) + Int(18) + Int(1) + Int(0) + Int(1) + Int(64) + Int(1) + Int(1066) +
             std::string(64, 'x'),
         ""},
    };
    for (const auto& [what, bytes, problem] : packages) {
        SaverProcess saver;
        std::filesystem::remove(saver.Data() / "tamb.dat");
        saver.Data().Write("tamb.dat", bytes);
        ExpectAShow(saver, what);
        ExpectWords(saver, problem.empty() ? "" : "package " + Name(saver, "tamb.dat") + problem,
                    saver.Data() / "tamb.log");
    }
}

TEST_F(BadInput, WhatIsMissingIsNamedAndNothingIsWrittenElsewhere) {
    const std::string home = ".local/state/tamblor/tamb.log"; // the home folder is the data folder
    struct Case {
        const char* what;
        std::map<std::string, std::string> environment;
        std::vector<const char*> missing, folders; // taken from the data folder, and made there
        std::string words;                         // $ stands for the data folder, @ for the current one
        std::string trace;
    };
    const Case cases[] = {
        {"no package",
         {},
         {"tamb.dat"},
         {},
         "package $/tamb.dat cannot be opened: No such file or directory",
         "tamb.log"},
        {"a folder for a package",
         {},
         {"tamb.dat"},
         {"tamb.dat"},
         "package $/tamb.dat cannot be read: Is a directory",
         "tamb.log"},
        {"no data folder",
         {{"TAMBLOR_DATA", "/no/such/folder"}},
         {},
         {},
         "data folder /no/such/folder: there is no such folder\n"
         "tamblor: package @/tamb.dat cannot be opened: No such file or directory",
         home},
        {"a data folder where nothing can be written",
         {{"TAMBLOR_DATA", "/proc"}},
         {},
         {},
         "package /proc/tamb.dat cannot be opened: No such file or directory",
         home},
        {"a trace that cannot be written", {}, {}, {"tamb.log"}, "", home},
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
        const ScratchFolder current;
        SaverProcess saver;
        const auto whole = [&](std::string text) {
            const std::size_t at = text.find_first_of("$@");
            return at == std::string::npos
                       ? text
                       : text.replace(at, 1, (text[at] == '$' ? saver.Data() : current).Path().string());
        };
        for (const auto& [name, value] : c.environment)
            saver.environment[name] = whole(value);
        for (const char* name : c.missing)
            std::filesystem::remove(saver.Data() / name);
        for (const char* name : c.folders)
            std::filesystem::create_directories(saver.Data() / name);
        saver.folder = current.Path();
        const std::filesystem::path trace = saver.Data() / c.trace.c_str();
        const bool old = c.trace == "tamb.log" || std::filesystem::exists(trace.parent_path());
        if (old)
            saver.Data().Write(c.trace.c_str(), "#ERROR: of another day\n");
        ExpectAShow(saver, c.what);
        ExpectWords(saver, whole(c.words), trace);
        EXPECT_TRUE(std::filesystem::is_empty(current.Path())) << c.what;
        const auto folder = std::filesystem::status(trace.parent_path()).permissions();
        EXPECT_TRUE(old || folder == std::filesystem::perms::owner_all) << c.what;
    }
}

TEST_F(BadInput, ABadConfigurationFileIsNamed) {
    SaverProcess saver;
    std::filesystem::create_directories(saver.Data() / "config/tamblor");
    saver.Data().Write("config/tamblor/tamblor.conf", "path = relative/folder\n\x01garbage\n");
    ExpectAShow(saver, "a bad configuration file");
    ExpectWords(saver,
                "configuration: " + Name(saver, "config/tamblor/tamblor.conf") +
                    ":1: path must be a whole path, beginning with / or ~/",
                saver.Data() / "tamb.log");
}

TEST_F(BadInput, TheConfigurationFileNamesTheDataFolder) {
    SaverProcess saver;
    saver.environment.erase("TAMBLOR_DATA");
    std::filesystem::create_directories(saver.Data() / "config/tamblor");
    saver.Data().Write("config/tamblor/tamblor.conf",
                       "# mine\npath = " + saver.Data().Path().string() + "\n");
    ExpectAShow(saver, "the configuration file");
    EXPECT_NE(saver.Data().Read("tamb.log").find("loading ok"), std::string::npos);
}

TEST_F(BadInput, OpenGLWithoutMultitextureShowsTheErrorPictureOverTheShow) {
    SaverProcess saver;
    saver.environment["MESA_EXTENSION_OVERRIDE"] = "-GL_ARB_multitexture";
    saver.Start(&display, {"/s"});
    ASSERT_TRUE(saver.WaitUntilShown(display));
    // At a standing clock all is desktop but for the picture at the top left.
    EXPECT_TRUE(display.WaitForPixel(40, 40, display.DesktopPixel(40, 40), 40, true));
    const ScreenPicture picture = display.Photograph();
    EXPECT_LE(ChannelDistance(picture.At(4, 4), display.DesktopPixel(4, 4)), 3);
    display.PressKey(XK_space);
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_EQ(saver.Data().Read("tamb.log").find("ARB_multitexture"), std::string::npos);
}

TEST_F(BadInput, WithoutADisplayItSaysSoAndEnds) {
    SaverProcess saver;
    saver.Start(nullptr, {"/s"});
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_NE(saver.Data().Read("stderr").find("display"), std::string::npos);
}

TEST_F(BadInput, TheServerGoingAwayEndsItCleanly) {
    SaverProcess saver;
    saver.Start(&display, {"/s"});
    ASSERT_TRUE(saver.WaitUntilShown(display));
    display.Kill();
    EXPECT_EQ(saver.WaitForExit(), 0);
}

} // namespace
