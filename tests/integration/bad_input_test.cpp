// Broken packages, machines that lack something: the show goes on with what there is, or ends quietly.
#include "integration/saver_process.h"
#include "package/package.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

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

    VirtualDisplay display{kWidth, kHeight};
};

TEST_F(BadInput, AnyPackageWillDo) {
    const std::string header = Int(5) + "pck01";
    const std::map<std::string, std::string> packages = {
        {"an empty file", ""},
        {"a wrong header", Int(5) + "zip01" + Int(0)},
        {"a header alone", header},
        {"a header that never ends", Int(0x7FFFFFFF) + "pck01"},
        {"counts near 2^31", header + Int(0x7FFFFFFF) + Int(18) + Int(0x7FFFFFFF) + Int(0x7FFFFFFF)},
        {"negative counts", header + Int(-1) + Int(-2) + Int(-3) + Int(-4)},
        {"an entry beyond the file", header + Int(1) + Int(18) + Int(1) + Int(0x7FFFFFF0) + Int(1) +
                                         Int(0x7FFFFFF0) + Int(1) + Int(1066)},
        {"a negative entry", header + Int(1) + Int(18) + Int(1) + Int(-40) + Int(1) + Int(400) + Int(1) +
                                 Int(1066) + std::string(64, 'x')},
        {"a picture that is none", header + Int(1) + Int(18) + Int(1) + Int(0) + Int(1) + Int(64) + Int(1) +
                                       Int(1066) + std::string(64, 'x')},
    };
    for (const auto& [what, bytes] : packages) {
        SaverProcess saver;
        std::filesystem::remove(saver.Data() / "tamb.dat");
        saver.Data().Write("tamb.dat", bytes);
        ExpectAShow(saver, what);
    }
}

TEST_F(BadInput, NoPackageNoFolderNoTrace) {
    {
        SaverProcess saver;
        std::filesystem::remove(saver.Data() / "tamb.dat");
        ExpectAShow(saver, "no package");
    }
    for (const char* folder : {"/proc", "/no/such/folder"}) { // nothing can be written here
        SaverProcess saver;
        saver.environment["TAMBLOR_DATA"] = folder;
        ExpectAShow(saver, folder);
        EXPECT_EQ(saver.Data().Read("tamb.log"), "");
    }
}

TEST_F(BadInput, ABadConfigurationFileIsReportedInTheTrace) {
    SaverProcess saver;
    std::filesystem::create_directories(saver.Data() / "config/tamblor");
    saver.Data().Write("config/tamblor/tamblor.conf", "path = relative/folder\n\x01garbage\n");
    ExpectAShow(saver, "a bad configuration file");
    const std::string log = saver.Data().Read("tamb.log");
    EXPECT_NE(log.find("#ERROR: "), std::string::npos) << log;
    EXPECT_NE(log.find("tamblor.conf:1"), std::string::npos) << log;
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
