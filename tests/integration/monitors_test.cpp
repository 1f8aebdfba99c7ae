// Several monitors, which change under the show, and the preview, whose window changes its size. The clock
// stands at the first frame, which is the photograph of the primary monitor stretched over the window.
#include "integration/saver_process.h"

#include <array>

namespace {

constexpr Area kScreen = {0, 0, 640, 480};
constexpr Area kLeft = {0, 0, 320, 400};
constexpr Area kRight = {320, 0, 320, 480};

class Monitors : public ShowFixture {
protected:
    Monitors() : ShowFixture(kScreen.width, kScreen.height) {}

    // A screen's area comes to show what was photographed from another one.
    void ExpectThePhotograph(const Area& area, const Area& photographed, const char* when) const {
        constexpr int kTolerance = 45; // the desktop's fine pattern, which a stretch blurs
        for (const auto& [x, y] : {std::pair{5, 10}, {50, 50}, {95, 30}, {30, 95}}) // percent
            EXPECT_TRUE(
                display.WaitForPixel(area.x + area.width * x / 100, area.y + area.height * y / 100,
                                     display.DesktopPixel(photographed.x + photographed.width * x / 100,
                                                          photographed.y + photographed.height * y / 100),
                                     kTolerance))
                << when << ": " << x << ", " << y;
    }
};

TEST_F(Monitors, TheShowIsOnThePrimaryOneAndTheOthersAreBlack) {
    display.SetMonitor("left", kLeft, false);
    display.SetMonitor("right", kRight, true);
    Start();
    EXPECT_TRUE(display.WaitForHiddenCursor()) << "it is on the left monitor";
    EXPECT_TRUE(saver.SeeFrames(display, 480, 240));
    EXPECT_TRUE(display.WaitForBlack(kLeft)) << "at the start";
    saver.SetClock(0);
    // Exact: a photograph of another place would be off.
    for (const auto& [x, y] : {std::pair{320, 0}, {639, 479}, {500, 300}})
        EXPECT_TRUE(display.WaitForPixel(x, y, display.DesktopPixel(x, y), 3)) << x << "," << y;

    display.SetMonitor("left", kLeft, true);
    ExpectThePhotograph(kLeft, kRight, "another monitor is the primary one");
    EXPECT_TRUE(display.WaitForBlack(kRight)) << "another monitor is the primary one";
    display.SetMonitor("third", {0, 400, 320, 80}, false);
    EXPECT_TRUE(display.WaitForBlack({0, 400, 320, 80})) << "a monitor came";

    for (const char* name : {"left", "right", "third"})
        display.DeleteMonitor(name);
    ExpectThePhotograph(kScreen, kRight, "one monitor is left");
    EXPECT_EQ(display.VisibleWindows().size(), 1u) << "no black window stays";
    EXPECT_TRUE(display.CursorIsHidden());
    ExpectAKeyEndsIt();
    EXPECT_TRUE(display.VisibleWindows().empty());
}

TEST_F(Monitors, APreviewLiesInItsParentAndFollowsIt) {
    constexpr Area kPane = {0, 0, 152, 112};
    const Window parent = display.ShowWindow({100, 80, kPane.width, kPane.height});
    saver.Start({"/p", Hexadecimal(parent)});
    // The parent is black, the still is not: its sun stands at the lower left.
    EXPECT_TRUE(display.WaitForPixel(130, 170, 0x000000, 40, true));
    EXPECT_EQ(display.VisibleWindows().size(), 1u) << "the saver has no window of its own on the screen";
    for (const auto& [x, y] : {std::pair{99, 100}, {252, 100}, {150, 79}, {150, 192}})
        EXPECT_LE(ChannelDistance(display.PixelAt(x, y), display.DesktopPixel(x, y)), 1) << x << "," << y;
    const ScreenPicture before = display.Photograph(parent, kPane);
    XResizeWindow(display.connection, parent, 2 * kPane.width, 2 * kPane.height);
    EXPECT_TRUE(Eventually([&] { // until it is the same still at twice the size
        const ScreenPicture after = display.Photograph(parent, {0, 0, 2 * kPane.width, 2 * kPane.height});
        return std::ranges::all_of(std::array{std::pair{30, 90}, std::pair{90, 60}, std::pair{20, 30}},
                                   [&](const auto& at) {
                                       return ChannelDistance(before.At(at.first, at.second),
                                                              after.At(2 * at.first, 2 * at.second)) < 30;
                                   });
    }));
    ExpectAPreviewIgnoresInput();
    display.DestroyWindow(parent);
    EXPECT_EQ(saver.WaitForExit(), 0) << "it goes with its parent";
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
