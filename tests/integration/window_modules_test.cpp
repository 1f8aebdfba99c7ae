// The window systems are modules: a machine that lacks the libraries of one is told so, and the program
// itself needs none of them.
#include "integration/compositor.h"
#include "integration/installed_program.h"
#include "integration/saver_process.h"

namespace {

namespace fs = std::filesystem;

class WindowModules : public ShowFixture {
protected:
    void SetUp() override {
        ShowFixture::SetUp();
        InstallProgram(saver.data.Path());
        saver.program = saver.data.File("bin/tamblor");
    }
    std::string Module(const std::string& name) const {
        return ModulesOf(saver.data.Path()) / ("tamblor-" + name + ".so");
    }
    // As on a machine without that library of the module: it needs another of a name as long.
    void TakeAway(const std::string& library, const std::string& module) const {
        std::string bytes = saver.data.Read(Module(module));
        const std::size_t at = bytes.find(library);
        ASSERT_NE(at, std::string::npos) << library;
        saver.data.Write(Module(module), bytes.replace(at, 3, "not"));
    }
};

TEST_F(WindowModules, AloneNeedTheirLibraries) {
    saver.environment["LD_TRACE_LOADED_OBJECTS"] = "1";
    EXPECT_EQ(saver.Run({}), 0);
    const std::string libraries = saver.Output();
    EXPECT_NE(libraries.find("libOpenGL"), std::string::npos) << libraries;
    for (const char* name : {"libX", "libxcb", "libGL.", "libGLX", "libEGL", "libwayland"})
        EXPECT_EQ(libraries.find(name), std::string::npos) << name << " in\n" << libraries;
}

TEST_F(WindowModules, ThatCannotBeLoadedAreNamedWithTheReason) {
    const struct {
        std::function<void()> damage;
        std::string reason;
    } cases[] = {
        {[this] { TakeAway("libXrandr.so.2", "x11"); }, "notXrandr.so.2: cannot open"},
        {[this] { fs::copy_file(PLATFORM_SPY, Module("x11"), fs::copy_options::overwrite_existing); },
         "undefined symbol"},
        {[this] { fs::resize_file(Module("x11"), 10); }, Module("x11") + ": file too short"},
        {[this] { fs::remove(Module("x11")); }, Module("x11") + ": cannot open"},
    };
    saver.environment["XSCREENSAVER_WINDOW"] = std::to_string(display.ShowWindow({0, 0, 80, 60}, 0xFFFFFF));
    for (const auto& [damage, reason] : cases) {
        damage();
        const std::string said = "tamblor: no window system x11: ";
        // As where no display can be opened.
        for (const auto& [words, status] :
             {std::pair("/s", 0), std::pair("--watch", 1), std::pair("--root", 1)}) {
            EXPECT_EQ(saver.Run({words}), status) << words;
            EXPECT_NE(saver.Errors().find(said), std::string::npos) << words << ": " << saver.Errors();
            EXPECT_NE(saver.Errors().find(reason), std::string::npos) << words << ": " << saver.Errors();
        }
        EXPECT_EQ(saver.Run({"--where"}), 1);
        const std::string text = saver.Output();
        EXPECT_NE(text.find("PROBLEM: none can be reached (tried: wayland, x11)\n"), std::string::npos)
            << text;
        EXPECT_NE(text.find(" x11: "), std::string::npos) << text;
        EXPECT_NE(text.find(reason), std::string::npos) << text;
        EXPECT_EQ(saver.Run({"--version"}), 0);
    }
}

TEST_F(WindowModules, LeaveTheShowToTheOthers) {
    const TempFolder kept;
    fs::copy(Module("wayland"), kept.Path());
    TakeAway("libwayland-client.so.0", "wayland");
    EXPECT_EQ(saver.Run({"--where"}), 0) << saver.Output();
    EXPECT_NE(saver.Output().find("not wayland: notwayland-client.so.0: cannot open"), std::string::npos)
        << saver.Output();
    Start();
    ExpectAKeyEndsIt();
    EXPECT_EQ(saver.Errors(), "");

    fs::copy(kept.File("tamblor-wayland.so"), Module("wayland"), fs::copy_options::overwrite_existing);
    TakeAway("libX11.so.6", "x11");
    Compositor compositor({{}}, "xwayland disable");
    ASSERT_TRUE(compositor.ready) << compositor.server.folder.Read("errors");
    compositor.server.Offer(&saver.environment);
    saver.Start({"/s"});
    EXPECT_TRUE(
        saver.SeeFrames([&] { return Difference(compositor.Photograph(), compositor.Desktop()) > 0; }));
    compositor.PressKey(KEY_SPACE);
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
