// Which of two installed shows the saver takes, by the primary monitor. It writes its trace beside the
// package.
#include "integration/installed_program.h"
#include "integration/saver_process.h"

namespace {

namespace fs = std::filesystem;

class LargeScreen : public ShowFixture {
protected:
    LargeScreen() : ShowFixture(3840, 2160) {
        InstallProgram(prefix_);
        Install("tamblor");
        Install("tamblor-4k");
        saver.environment.erase("TAMBLOR_DATA");
    }
    void Install(const char* show) const {
        fs::create_directories(prefix_ / "share" / show);
        fs::create_symlink(TAMBLOR_DATA_DIR "/tamb.dat", prefix_ / "share" / show / "tamb.dat");
    }
    void ExpectTaken(const char* show, const char* when) {
        const fs::path trace = prefix_ / "share" / show / "tamb.log";
        saver.environment["DISPLAY"] = display.Name();
        saver.Program::Start({(prefix_ / "bin/tamblor").string(), "/s"}, saver.environment, "/",
                             saver.data.File("stderr"));
        EXPECT_TRUE(Eventually([&] { return fs::exists(trace); })) << when << ": " << saver.Errors();
        saver.Kill();
        fs::remove(trace);
    }

    const fs::path prefix_ = saver.data.Path();
};

TEST_F(LargeScreen, TheLargeShowIsTakenWhereItIsInstalledAndThePrimaryMonitorIsWide) {
    ExpectTaken("tamblor-4k", "the monitor is the whole screen");
    display.SetMonitor("wide", {0, 0, 2561, 1080}, true);
    ExpectTaken("tamblor-4k", "a little too wide");
    display.SetMonitor("wide", {0, 0, 2560, 1440}, true);
    ExpectTaken("tamblor", "just as wide as the default show is made for");
    display.DeleteMonitor("wide");
    fs::remove_all(prefix_ / "share/tamblor-4k");
    ExpectTaken("tamblor", "there is no other");
}

} // namespace
