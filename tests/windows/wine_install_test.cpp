// The saver as it lies with a user: what its install.cmd leaves, and a machine without the codec's modules.
#include "integration/saver_process.h"
#include "windows/under_wine.h"

namespace {

TEST(Install, NamesItsOwnFolderInTheRegistry) {
    const TempFolder files;
    const std::filesystem::path home = files.Path() / "with a blank";
    std::filesystem::create_directories(home);
    std::filesystem::copy(WindowsBuild("packaging/install.cmd"), home);
    EXPECT_EQ(WineProgram("", home.string(), {"cmd", "/c", "install.cmd", "/quiet"}).WaitForExit(), 0);
    // The line of a value ends with it.
    WineProgram("", files.Path().string(),
                {"cmd", "/c", "reg query HKCU\\Software\\OrinLab\\Screensavers\\Tamblor /v path > value"})
        .WaitForExit();
    std::string value = files.Read("value");
    std::erase(value, '\r');
    EXPECT_NE(value.find("    " + WindowsPath(home.string()) + "\n"), std::string::npos) << value;
}

class Codec : public ShowFixture {
protected:
    Codec() : ShowFixture(320, 240) {}
};

TEST_F(Codec, WithoutItsModulesTheShowIsUntexturedAndTheTraceSaysSo) {
    saver.environment["WINEDLLPATH"] = "/nowhere";
    Start();
    EXPECT_TRUE(saver.SeeFrames(display));
    ExpectAKeyEndsIt();
    const std::string log = saver.Trace();
    const std::size_t il = log.find("failed to load devil.dll\n");
    ASSERT_NE(il, std::string::npos) << log;
    EXPECT_NE(log.find("failed to load devil libraries\n", il), std::string::npos) << log;
}

} // namespace
