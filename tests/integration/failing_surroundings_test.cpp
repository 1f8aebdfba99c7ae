// What the saver finds around it: full disks, folders that go, no /proc, no memory, another language, and
// packages that are damaged in all ways.
#include "integration/installed_program.h"
#include "integration/spied_saver.h"
#include "unit/mutated_package.h"

namespace {

namespace fs = std::filesystem;

class FailingSurroundings : public ShowOf<SpiedSaver> {
protected:
    // It draws the desktop's burning, and a key ends it.
    void ExpectAShow(const std::vector<std::string>& words = {"/s"}) {
        Start(words);
        EXPECT_TRUE(saver.Draws() && saver.SeeFrames(display)) << saver.Errors();
        ExpectAKeyEndsIt();
    }
    // By a shell, which does something before.
    void ExpectAShowAfter(const std::string& line) {
        saver.program = "/bin/sh";
        ExpectAShow({"-c", line + "; exec " TAMBLOR_EXE " /s"});
    }
};

TEST_F(FailingSurroundings, AFullDiskCostsTheTraceAlone) {
    fs::create_symlink("/dev/full", saver.data.File("tamb.log"));
    ExpectAShow();
    EXPECT_EQ(saver.Errors(), "");
    fs::remove(saver.data.File("tamb.log"));
    for (const char* limit : {"ulimit -f 0", "ulimit -f 1"}) { // blocks of 512 bytes
        SCOPED_TRACE(limit);
        ExpectAShowAfter(limit);
        EXPECT_LE(saver.Trace().size(), 512u);
    }
    ExpectAShowAfter("exec 2>/dev/full");
    EXPECT_NE(saver.Trace().find("unload devil"), std::string::npos);
}

TEST_F(FailingSurroundings, TheFolderOfTheTraceMayGo) {
    const TempFolder data;
    fs::copy_file(TAMBLOR_DATA_DIR "/tamb.dat", data.File("tamb.dat"));
    saver.environment["TAMBLOR_DATA"] = data.Path();
    Start();
    ASSERT_TRUE(saver.Draws());
    fs::remove_all(data.Path());
    ASSERT_TRUE(saver.Draws(3));
    EXPECT_TRUE(saver.SeeFrames(display));
    ExpectAKeyEndsIt();
    EXPECT_EQ(saver.Errors(), "");
    EXPECT_FALSE(fs::exists(data.Path()));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which need /proc themselves
TEST_F(FailingSurroundings, WithoutProcAnInstalledProgramFindsItsModulesAndItsShow) {
    const std::string apart = geteuid() == 0 ? "-m" : "-rm";
    const std::string hide = "mount -t tmpfs none /proc && mount -t tmpfs none /sys && exec ";
    saver.program = "/usr/bin/unshare";
    if (saver.Run({apart, "/bin/sh", "-c", hide + "/bin/true"}) != 0)
        GTEST_SKIP() << "no mounts of one's own here: " << saver.Errors();
    const TempFolder prefix;
    InstallProgram(prefix.Path());
    fs::create_directories(prefix.File("share/tamblor"));
    fs::copy_file(TAMBLOR_DATA_DIR "/tamb.dat", prefix.File("share/tamblor/tamb.dat"));
    saver.environment.erase("TAMBLOR_DATA");
    ExpectAShow({apart, "/bin/sh", "-c", hide + prefix.File("bin/tamblor") + " /s"});
    EXPECT_EQ(saver.Errors(), "");
}
#endif

TEST_F(FailingSurroundings, ALanguageWithCommasInNumbersChangesNothing) {
    ASSERT_EQ(RunProgram({"/usr/bin/localedef", "-i", "de_DE", "-f", "UTF-8", saver.data.File("de_DE.UTF-8")},
                         {{"PATH", "/usr/bin:/bin"}}),
              0)
        << "is the package locales installed?";
    saver.environment["LOCPATH"] = saver.data.Path();
    saver.environment["LC_ALL"] = "de_DE.UTF-8";
    saver.Configure("max_fps = 30\nsamples = 0\n");
    ExpectAShow();
    EXPECT_NE(saver.Trace().find("[1000.000] loading ok"), std::string::npos) << saver.Trace();
    // A driver's or a toolkit's library may set it for the whole process.
    saver.environment["TAMBLOR_LANGUAGE"] = "1";
    ExpectAShow();
    EXPECT_NE(saver.Trace().find("[1000,000] loading ok"), std::string::npos)
        << "it was set: " << saver.Trace();
    EXPECT_EQ(saver.Errors(), "");
}

// Each block that the saver's own code asks for during its start: it ends, and says why, or there is a show.
TEST_F(FailingSurroundings, WithoutMemoryItSaysSoOrGoesOn) {
    const int step = Times(41, 1);
    int ended = 0, shown = 0;
    for (int block = 0; shown < 3 && block < 2000; block += step) {
        SCOPED_TRACE(testing::Message() << "block " << block);
        saver.environment["TAMBLOR_NO_MEMORY"] = std::to_string(block);
        saver.Start({"/s"});
        EXPECT_TRUE(Eventually([&] { return !saver.Running() || saver.spy->frames > 0; }));
        if (saver.Running()) {
            ++shown;
            ExpectAKeyEndsIt();
        } else {
            ++ended;
            EXPECT_TRUE(saver.WaitForExit() == 1 && saver.Errors() == "tamblor: there is no memory\n")
                << saver.EndSignal() << saver.Errors();
        }
        saver.spy->frames = 0;
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
        Start();
        for (const std::uint32_t ms : kInEachStage) {
            saver.SetClock(ms);
            ASSERT_TRUE(saver.Draws(2)) << saver.Errors();
        }
        ExpectAKeyEndsIt();
        EXPECT_EQ(saver.Errors().find("Sanitizer"), std::string::npos) << saver.Errors();
    }
}

} // namespace
