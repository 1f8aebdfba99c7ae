// The little pane of the settings panel, in a process of its own (pane.cpp).
#include "integration/preview_input.h"
#include "windows/under_wine.h"

#include <memory>

namespace {

// Where the pane is on the screen, and how large.
constexpr int kLeft = 100;
constexpr int kTop = 80;
constexpr int kWidth = 152;
constexpr int kHeight = 112;

class PreviewInPane : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(display.Ok());
        panel = std::make_unique<WineProgram>(display.Name(), files.Path().string(),
                                              std::vector<std::string>{WindowsBuild("tests/pane.exe")});
        number = WaitForLine("number");
        ASSERT_NE(number, "");
        ASSERT_TRUE(display.WaitForPixel(kLeft + 5, kTop + 5, 0x000000, 0)) << "the pane is black";
    }

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
            const unsigned long drawn = display.WindowOfSize(kWidth, kHeight);
            // The sun of the still stands at the lower left, space at the upper right of it.
            return drawn != 0 && ChannelDistance(display.PixelIn(drawn, 30, 90), 0xC86414) < 90 &&
                   ChannelDistance(display.PixelIn(drawn, 30, 90), display.PixelIn(drawn, 90, 60)) > 60;
        });
    }

    VirtualDisplay display{400, 300};
    TempFolder files;
    std::string number;
    std::unique_ptr<WineProgram> panel;
};

TEST_F(PreviewInPane, ShowsTheStillAndGoesWithThePanel) {
    SaverProcess saver;
    saver.Start(&display, {"/p", number});
    EXPECT_EQ(WaitForLine("child"), "WindowsScreenSaverClass 0,0 152,112");
    EXPECT_TRUE(StillIsDrawn());
    ExpectInputIsIgnored(saver, display);
    files.Write("end", "");
    EXPECT_EQ(panel->WaitForExit(), 0);
    EXPECT_EQ(saver.WaitForExit(), 0) << "it goes with its parent";
}

TEST_F(PreviewInPane, APaneThatIsGoneEndsItQuietly) {
    files.Write("end", "");
    ASSERT_EQ(panel->WaitForExit(), 0);
    SaverProcess saver;
    saver.Start(&display, {"/p" + number});
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_TRUE(display.VisibleWindows().empty());
}

} // namespace
