// The window systems are modules: who lacks the libraries of one is told so, and the program needs none.
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
         Module("x11") + ": undefined symbol"},
        {[this] { fs::remove(Module("x11")); }, Module("x11") + ": cannot open"},
    };
    saver.environment["XSCREENSAVER_WINDOW"] = std::to_string(display.ShowWindow({0, 0, 80, 60}, 0xFFFFFF));
    for (const auto& [damage, reason] : cases) {
        damage();
        const std::string said = "tamblor: no window system x11: " + reason;
        // As where no display can be opened.
        for (const auto& [words, status] :
             {std::pair("/s", 0), std::pair("--watch", 1), std::pair("--root", 1)}) {
            EXPECT_EQ(saver.Run({words}), status) << words;
            EXPECT_NE(saver.Errors().find(said), std::string::npos) << words << ": " << saver.Errors();
        }
        EXPECT_EQ(saver.Run({"--where"}), 1);
        const std::string text = saver.Output();
        EXPECT_NE(text.find(reason), std::string::npos) << text;
        EXPECT_EQ(saver.Run({"--version"}), 0);
    }
}

TEST_F(WindowModules, LeaveTheShowToTheOthers) {
    TakeAway("libwayland-client.so.0", "wayland");
    EXPECT_EQ(saver.Run({"--where"}), 0) << saver.Output();
    EXPECT_NE(saver.Output().find("not wayland: notwayland-client.so.0: cannot open"), std::string::npos)
        << saver.Output();
    Start();
    ExpectAKeyEndsIt();
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
