// tamblor --where: it says what the show would use, and nothing is touched.
#include "integration/installed_program.h"
#include "integration/saver_process.h"

namespace fs = std::filesystem;

namespace {

class Where : public ShowFixture {
protected:
    Where(int width = 320, int height = 240) : ShowFixture(width, height) {}
    // Its exit status; what it printed is in `text`.
    int Ask(SaverProcess& one) {
        const int status = one.Run({"--where"});
        text = one.Output();
        return status;
    }
    void ExpectLine(const std::string& subject, const std::string& words) {
        const std::string start = subject + std::string(16 - subject.size(), ' ');
        EXPECT_NE(text.find(start + words), std::string::npos) << start << words << "\nis not in\n" << text;
    }

    std::string text;
};

TEST_F(Where, AWholeShowIsNamedPieceByPieceAndNothingIsShownOrWritten) {
    XSelectInput(display.connection, display.Root(), SubstructureNotifyMask);
    display.Sync();
    EXPECT_EQ(Ask(saver), 0) << text << saver.Errors();
    ExpectLine("package", saver.data.File("tamb.dat") + " (");
    ExpectLine("", "named by TAMBLOR_DATA\n");
    ExpectLine("configuration", saver.data.File("config/tamblor/tamblor.conf") + " (not there)\n");
    ExpectLine("log", saver.data.File("tamb.log") + "\n");
    ExpectLine("window system", "x11, DISPLAY=" + display.Name() + "\n");
    EXPECT_NE(text.find("primary monitor 320 x 240 pixels"), std::string::npos) << text;
    ExpectLine("renderer", "llvmpipe");
    ExpectLine("picture codec", "DevIL");
    EXPECT_EQ(text.find("PROBLEM"), std::string::npos) << text;
    XEvent event = {};
    display.Sync();
    EXPECT_FALSE(XCheckTypedEvent(display.connection, MapNotify, &event)); // no window was shown
    EXPECT_FALSE(fs::exists(saver.data.File("tamb.log")));

    fs::create_directories(saver.data.File("tamb.log"));
    const std::string settings = saver.Configure("path = " + saver.data.File(""));
    saver.environment["TAMBLOR_DATA"] = "";
    EXPECT_EQ(Ask(saver), 0) << text;
    ExpectLine("", "named by " + settings + "\n");
    ExpectLine("configuration", settings + " (read)\n");
    ExpectLine("log", saver.data.File(".local/state/tamblor/tamb.log") + "\n");
    EXPECT_FALSE(fs::exists(saver.data.File(".local"))); // asking makes nothing
}

TEST_F(Where, WhatIsMissingIsSaidWithStatus1) {
    fs::remove(saver.data.File("tamb.dat"));
    saver.Configure("paht = /");
    saver.environment["LIBGL_DRIVERS_PATH"] = "/no/such/folder";
    EXPECT_EQ(Ask(saver), 1);
    ExpectLine("package", "PROBLEM: " + saver.data.File("tamb.dat") + ": No such file or directory\n");
    ExpectLine("configuration",
               "PROBLEM: " + saver.data.File("config/tamblor/tamblor.conf:1: unknown setting"));
    ExpectLine("renderer", "PROBLEM: no OpenGL, the screen would stay black: ");
    EXPECT_NE(text.find("libgl1-mesa-dri"), std::string::npos) << text;

    SaverProcess without; // a display: all else is there
    EXPECT_EQ(Ask(without), 1);
    ExpectLine("window system", "PROBLEM: none can be reached (tried: wayland, x11)\n");
    ExpectLine("", "wayland: WAYLAND_DISPLAY is not set\n");
    ExpectLine("", "x11: cannot open display (DISPLAY is not set)\n");
}

// Of two installed shows it takes the one for the primary monitor.
class WhereInstalled : public Where {
protected:
    WhereInstalled() : Where(3840, 2160) {
        saver.environment.erase("TAMBLOR_DATA");
        saver.program = saver.data.File("bin/tamblor");
        InstallProgram(saver.data.Path());
        for (const std::string show : {"share/tamblor", "share/tamblor-4k"}) {
            fs::create_directories(saver.data.File(show));
            fs::create_symlink(TAMBLOR_DATA_DIR "/tamb.dat", saver.data.File(show + "/tamb.dat"));
        }
    }
    void ExpectTaken(const std::string& show) {
        EXPECT_EQ(Ask(saver), 0) << text;
        ExpectLine("package", saver.data.File("share/" + show + "/tamb.dat") + " (");
    }
};

TEST_F(WhereInstalled, TheLargeShowIsTakenWhereThePrimaryMonitorIsWide) {
    ExpectTaken("tamblor-4k");
    display.SetMonitor("wide", {0, 0, 2561, 1080}, true);
    ExpectTaken("tamblor-4k");
    display.SetMonitor("wide", {0, 0, 2560, 1440}, true); // what the default show is made for
    ExpectTaken("tamblor");
    display.DeleteMonitor("wide");
    fs::remove_all(saver.data.File("share/tamblor-4k"));
    ExpectTaken("tamblor");
}

} // namespace
