// The Windows saver as it lies with a user: what its install.cmd leaves, and the little pane of the settings
// panel, which is in a process of its own (pane.cpp).
#include "integration/saver_process.h"
#include "windows/under_wine.h"

namespace {

// Where the pane is on the screen, and how large.
constexpr Area kPane = {100, 80, 152, 112};

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
    const std::string value = files.Read("value");
    EXPECT_NE(value.find("    " + SaverName(home.string()) + "\r\n"), std::string::npos) << value;
}

class PreviewInPane : public ShowFixture {
protected:
    PreviewInPane() : ShowFixture(400, 300) {}

    // The line of a file that the panel writes; empty when it does not come.
    std::string WaitForLine(const char* name) const {
        std::string text;
        Eventually([&] { return (text = files.Read(name)).ends_with('\n'); });
        return text.substr(0, text.find_first_of("\r\n"));
    }

    // Wine 8 draws a window within a window into an X window outside of the screen, and does not copy that
    // into the pane, whichever program draws it: so the picture is looked at there.
    bool StillIsDrawn() const {
        return Eventually([this] {
            const Window drawn = display.WindowOfSize(kPane.width, kPane.height);
            const ScreenPicture still = display.Photograph(drawn, {0, 0, kPane.width, kPane.height});
            // The sun of the still stands at the lower left, space at the upper right of it.
            return drawn != 0 && ChannelDistance(still.At(30, 90), 0xC86414) < 90 &&
                   ChannelDistance(still.At(30, 90), still.At(90, 60)) > 60;
        });
    }

    TempFolder files;
};

TEST_F(PreviewInPane, ShowsTheStillAndGoesWithThePanelAndEndsQuietlyWithoutIt) {
    WineProgram panel(display.Name(), files.Path().string(), {WindowsBuild("tests/pane.exe")});
    const std::string number = WaitForLine("number");
    ASSERT_NE(number, "");
    ASSERT_TRUE(display.WaitForPixel(kPane.x + 5, kPane.y + 5, 0x000000, 0)) << "the pane is black";
    saver.Start(display, {"/p", number});
    EXPECT_EQ(WaitForLine("child"), "WindowsScreenSaverClass 0,0 152,112");
    EXPECT_TRUE(StillIsDrawn());
    ExpectAPreviewIgnoresInput();
    files.Write("end", "");
    EXPECT_EQ(panel.WaitForExit(), 0);
    EXPECT_EQ(saver.WaitForExit(), 0) << "it goes with its parent";
    saver.Start(display, {"/p" + number});
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_TRUE(display.VisibleWindows().empty());
}

} // namespace
