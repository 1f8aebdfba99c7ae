// What the saver finds around it: full disks, folders that go, no /proc, no home, no memory, another
// language, and packages that are damaged in all ways.
#include "integration/failing_saver.h"
#include "integration/installed_program.h"
#include "unit/mutated_package.h"

#include <sys/resource.h>

namespace {

namespace fs = std::filesystem;

class FailingSurroundings : public testing::Test {
protected:
    FailingSurroundings() : display(320, 240) {}
    void SetUp() override { ASSERT_NE(display.connection, nullptr); }

    // By a shell, with a line of its before it.
    void StartAfter(const std::string& line, const std::string& words = "/s") {
        saver.environment["DISPLAY"] = display.Name();
        saver.SetClock(0);
        saver.Program::Start({"/bin/sh", "-c", line + "; exec '" + program_ + "' " + words},
                             saver.environment, "/", saver.data.File("stderr"));
    }
    // It draws the desktop's burning, and a key ends it.
    void ExpectAShow() {
        ASSERT_TRUE(saver.WaitUntilShown(display) && saver.Draws()) << saver.Errors();
        EXPECT_TRUE(saver.SeeFrames(display)) << saver.Errors();
        ExpectAKeyEndsIt();
    }
    void ExpectAKeyEndsIt() {
        display.PressKey(XK_space);
        EXPECT_EQ(saver.WaitForExit(), 0) << saver.EndSignal() << saver.Errors();
    }

    VirtualDisplay display;
    FailingSaver saver;
    std::string program_ = TAMBLOR_EXE;
};

TEST_F(FailingSurroundings, AFullDiskCostsTheTraceAlone) {
    fs::create_symlink("/dev/full", saver.data.File("tamb.log"));
    saver.Start(display, {"/s"});
    ExpectAShow();
    EXPECT_EQ(saver.Errors(), "");
    fs::remove(saver.data.File("tamb.log"));
    for (const char* limit : {"ulimit -f 0", "ulimit -f 1"}) { // blocks of 512 bytes
        SCOPED_TRACE(limit);
        StartAfter(limit);
        ExpectAShow();
        EXPECT_LE(saver.Trace().size(), 512u);
    }
    StartAfter("exec 2>/dev/full");
    ExpectAShow();
    EXPECT_NE(saver.Trace().find("unload devil"), std::string::npos);
}

TEST_F(FailingSurroundings, TheFolderOfTheTraceMayGo) {
    const TempFolder data;
    fs::copy_file(TAMBLOR_DATA_DIR "/tamb.dat", data.File("tamb.dat"));
    saver.environment["TAMBLOR_DATA"] = data.Path();
    saver.Start(display, {"/s"});
    ASSERT_TRUE(saver.WaitUntilShown(display) && saver.Draws());
    fs::remove_all(data.Path());
    ASSERT_TRUE(saver.Draws(3));
    EXPECT_TRUE(saver.SeeFrames(display));
    ExpectAKeyEndsIt();
    EXPECT_EQ(saver.Errors(), "");
    EXPECT_FALSE(fs::exists(data.Path()));
}

TEST_F(FailingSurroundings, WithoutWhatIsUsuallyThereTheShowIsTheSame) {
    const struct {
        const char* what;
        Environment environment;
        std::vector<const char*> without;
    } cases[] = {
        {"no /proc", {{"TAMBLOR_NO_PROC", "1"}}, {}},
        {"no home", {}, {"HOME", "XDG_CONFIG_HOME", "PATH"}},
        {"nowhere to write",
         {{"HOME", "/proc"}, {"TAMBLOR_DATA", "/proc"}, {"XDG_CONFIG_HOME", "/proc"}},
         {}},
        {"a home that is a file", {{"HOME", "/dev/null"}, {"XDG_CONFIG_HOME", "/dev/null/x"}}, {}},
    };
    const Environment before = saver.environment;
    for (const auto& [what, environment, without] : cases) {
        SCOPED_TRACE(what);
        saver.environment = before;
        for (const auto& [name, value] : environment)
            saver.environment[name] = value;
        for (const char* name : without)
            saver.environment.erase(name);
        saver.Start(display, {"/s"});
        ExpectAShow();
        EXPECT_EQ(saver.Errors().find("Sanitizer"), std::string::npos) << saver.Errors();
    }
}

TEST_F(FailingSurroundings, WithoutProcAnInstalledProgramFindsItsModulesAndItsShow) {
    const TempFolder prefix;
    InstallProgram(prefix.Path());
    fs::create_directories(prefix.File("share/tamblor"));
    fs::copy_file(TAMBLOR_DATA_DIR "/tamb.dat", prefix.File("share/tamblor/tamb.dat"));
    program_ = prefix.File("bin/tamblor");
    saver.environment["TAMBLOR_NO_PROC"] = "1";
    saver.environment.erase("TAMBLOR_DATA");
    StartAfter(":");
    ExpectAShow();
    EXPECT_EQ(saver.Errors(), "");
}

TEST_F(FailingSurroundings, ALanguageWithCommasInNumbersChangesNothing) {
    Program maker;
    maker.Start({"/usr/bin/localedef", "-i", "de_DE", "-f", "UTF-8", saver.data.File("de_DE.UTF-8")},
                {{"PATH", "/usr/bin:/bin"}}, "/", saver.data.File("localedef"));
    ASSERT_EQ(maker.WaitForExit(), 0) << saver.data.Read("localedef") << "(package locales)";
    saver.environment["LOCPATH"] = saver.data.Path();
    saver.environment["LC_ALL"] = "de_DE.UTF-8";
    saver.Configure("max_fps = 30\nsamples = 0\n");
    saver.Start(display, {"/s"});
    ExpectAShow();
    EXPECT_NE(saver.Trace().find("[1000.000] loading ok"), std::string::npos) << saver.Trace();
    // A driver's or a toolkit's library may set it for the whole process.
    saver.environment["TAMBLOR_LANGUAGE"] = "1";
    saver.Start(display, {"/s"});
    ExpectAShow();
    EXPECT_NE(saver.Trace().find("[1000,000] loading ok"), std::string::npos)
        << "it was set: " << saver.Trace();
    EXPECT_EQ(saver.Errors(), "");
}

// Each block of memory that the saver's own code asks for during its start: it ends, and says why, or shows
// what there is.
TEST_F(FailingSurroundings, WithoutMemoryItSaysSoOrGoesOn) {
    const int step = Times(41, 1);
    int ended = 0, shown = 0;
    for (int block = 0; shown < 3 && block < 2000; block += step) {
        SCOPED_TRACE(testing::Message() << "block " << block);
        saver.environment["TAMBLOR_NO_MEMORY"] = std::to_string(block);
        saver.Start(display, {"/s"});
        EXPECT_TRUE(Eventually([&] { return !saver.Running() || saver.Shown() > 0; }));
        if (saver.Running()) {
            ++shown;
            ExpectAKeyEndsIt();
        } else {
            ++ended;
            EXPECT_TRUE(saver.WaitForExit() == 1 && saver.Errors() == "tamblor: there is no memory\n")
                << saver.EndSignal() << saver.Errors();
        }
        saver.ForgetFrames();
        EXPECT_TRUE(Eventually([this] { return display.VisibleWindows().empty(); }));
        if (HasFailure())
            return;
    }
    EXPECT_GT(ended, 0) << "none was refused";
}

TEST_F(FailingSurroundings, DamagedPackagesAreShownToo) {
    const std::vector<TestEntry> entries = EntriesOf(TAMBLOR_DATA_DIR "/tamb.dat");
    fs::remove(saver.data.File("tamb.dat")); // it was a link
    const int count = Times(8, 200);
    for (int number = 1; number <= count; ++number) {
        SCOPED_TRACE(testing::Message() << "mutation " << number);
        saver.data.Write("tamb.dat", Mutation(static_cast<unsigned>(number)).Of(entries));
        saver.Start(display, {"/s"});
        ASSERT_TRUE(saver.WaitUntilShown(display) && saver.Draws()) << saver.Errors();
        for (const std::uint32_t ms : kInEachStage) {
            saver.SetClock(ms);
            ASSERT_TRUE(saver.Draws(2)) << saver.Errors();
        }
        ExpectAKeyEndsIt();
        EXPECT_EQ(saver.Errors().find("Sanitizer"), std::string::npos) << saver.Errors();
    }
}

} // namespace
