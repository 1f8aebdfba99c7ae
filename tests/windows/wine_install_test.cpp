// The saver as it lies with a user: what its install.cmd leaves, and a machine without the codec's modules.
#include "integration/saver_process.h"
#include "windows/under_wine.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

namespace {

TEST(Install, NamesItsOwnFolderInTheRegistry) {
    const ScratchFolder files;
    const std::filesystem::path home = files / "with a blank";
    std::filesystem::create_directories(home);
    std::filesystem::copy(WindowsBuild("packaging/install.cmd"), home);
    EXPECT_EQ(WineProgram("", home.string(), {"cmd", "/c", "install.cmd", "/quiet"}).WaitForExit(), 0);
    // The line of a value ends with it.
    WineProgram("", files.Path().string(),
                {"cmd", "/c", "reg query HKCU\\Software\\OrinLab\\Screensavers\\Tamblor /v path > value"})
        .WaitForExit();
    EXPECT_NE(files.Read("value").find("    " + WindowsPath(home.string()) + "\n"), std::string::npos)
        << files.Read("value");
}

TEST(Codec, WithoutItsModulesTheShowIsUntexturedAndTheTraceSaysSo) {
    VirtualDisplay display(320, 240);
    ASSERT_TRUE(display.Ok());
    SaverProcess saver;
    saver.environment["WINEDLLPATH"] = "/nowhere";
    saver.Start(&display, {"/s"});
    ASSERT_TRUE(saver.WaitUntilShown(display));
    EXPECT_TRUE(saver.SeeFrames(display));
    display.PressKey(XK_space);
    EXPECT_EQ(saver.WaitForExit(), 0);
    const std::string log = saver.Data().Read("tamb.log");
    const std::size_t il = log.find("failed to load devil.dll\n");
    ASSERT_NE(il, std::string::npos) << log;
    EXPECT_NE(log.find("failed to load devil libraries\n", il), std::string::npos) << log;
}

} // namespace
