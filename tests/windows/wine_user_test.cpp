// The Windows saver as it lies with a user: what its install.cmd leaves, the little pane of another process
// (pane.cpp), several monitors, and a desktop that cannot be photographed.
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
    saver.Start({"/p", number});
    EXPECT_EQ(WaitForLine("child"), "WindowsScreenSaverClass 0,0 152,112");
    EXPECT_TRUE(StillIsDrawn());
    ExpectAPreviewIgnoresInput();
    files.Write("end", "");
    EXPECT_EQ(panel.WaitForExit(), 0);
    EXPECT_EQ(saver.WaitForExit(), 0) << "it goes with its parent";
    saver.Start({"/p" + number});
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_TRUE(display.VisibleWindows().empty());
}

class WineMonitors : public ShowFixture {
protected:
    WineMonitors() : ShowFixture(640, 480) {}
    void SetUp() override {
        ShowFixture::SetUp();
        Tell({"add", "/d", "N", "/f"});
    }
    void TearDown() override { Tell({"delete", "/f"}); }
    // Wine takes the monitors that a test can make when it does not ask for video cards.
    void Tell(std::vector<std::string> words) const {
        words.insert(words.begin(), "reg");
        words.insert(words.begin() + 2, {"HKCU\\Software\\Wine\\X11 Driver", "/v", "UseXRandR"});
        EXPECT_EQ(WineProgram("", "/", words).WaitForExit(), 0);
        WaitForWine(WindowsBuild("wine-prefix"));
    }
};

TEST_F(WineMonitors, TheShowIsOnThePrimaryOneAndTheOthersAreBlack) {
    constexpr Area kPrimary = {0, 0, 320, 400}, kOther = {320, 0, 320, 480};
    display.SetMonitor("primary", kPrimary, true);
    display.SetMonitor("other", kOther, false);
    display.MovePointer(500, 200);
    Start();
    EXPECT_TRUE(display.WaitForBlack(kOther));
    EXPECT_TRUE(display.WaitForHiddenCursor()) << "on the other monitor";
    EXPECT_TRUE(saver.SeeFrames(display));
    saver.SetClock(4001);
    display.MovePointer(520, 220);
    EXPECT_EQ(saver.WaitForExit(), 0) << "what the mouse does there counts";
    EXPECT_TRUE(display.VisibleWindows().empty());
}

TEST_F(WineMonitors, ADesktopThatComesOutBlackIsAPictureOfThePackage) {
    const Window black = display.ShowWindow({0, 0, display.width, display.height});
    Start();
    display.DestroyWindow(black);
    EXPECT_TRUE(saver.SeeFrames([&] { return display.PixelAt(320, 240) != 0; }));
    EXPECT_NE(saver.Trace().find("the desktop is black"), std::string::npos) << saver.Trace();
    ExpectAKeyEndsIt();
}

} // namespace
