// Several monitors, and monitors and windows that change their size under the show, and the preview. The
// clock stands at the first frame, which is the photograph of the primary monitor stretched over the window.
#include "integration/saver_process.h"

#include <sstream>

namespace {

constexpr Area kScreen = {0, 0, 640, 480};
constexpr Area kLeft = {0, 0, 320, 400};
constexpr Area kRight = {320, 0, 320, 480};

class Monitors : public ShowFixture {
protected:
    Monitors() : ShowFixture(kScreen.width, kScreen.height) {}

    // A screen's area, by a grid of points, comes to show what was photographed from another one.
    void ExpectThePhotograph(const Area& area, const Area& photographed, const char* when) const {
        constexpr int kPoints = 16;
        constexpr int kTolerance = 45; // the desktop's fine pattern, which a stretch blurs
        const auto at = [](const Area& a, int point) {
            return std::pair{a.x + (2 * (point % kPoints) + 1) * a.width / (2 * kPoints),
                             a.y + (2 * (point / kPoints) + 1) * a.height / (2 * kPoints)};
        };
        EXPECT_TRUE(Eventually([&] {
            const ScreenPicture picture = display.Photograph();
            bool same = true;
            for (int i = 0; i < kPoints * kPoints; ++i) {
                const auto [x, y] = at(area, i);
                const auto [fromX, fromY] = at(photographed, i);
                same = same &&
                       ChannelDistance(picture.At(x, y), display.DesktopPixel(fromX, fromY)) <= kTolerance;
            }
            return same;
        })) << when;
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

TEST_F(Monitors, TheShowFollowsAScreenThatGrowsAndShrinks) {
    const Area small = {0, 0, 400, 300};
    display.SetScreenSize(small.width, small.height);
    Start();
    for (const Area& area : {kScreen, small, kScreen}) {
        display.SetScreenSize(area.width, area.height);
        EXPECT_TRUE(Eventually([&] { return display.WindowOfSize(area.width, area.height) != 0; }));
    }
    ExpectThePhotograph(kScreen, small, "the screen grew");
    ExpectAKeyEndsIt();
}

TEST_F(Monitors, APreviewLiesInItsParentAndFollowsIt) {
    constexpr Area kPane = {0, 0, 152, 112};
    const Window parent = display.ShowWindow({100, 80, kPane.width, kPane.height});
    std::ostringstream number; // as X tools write it
    number << std::hex << std::showbase << parent;
    saver.Start(display, {"/p", number.str()});
    // The parent is black, the still is not: its sun stands at the lower left.
    EXPECT_TRUE(display.WaitForPixel(130, 170, 0x000000, 40, true));
    EXPECT_EQ(display.VisibleWindows().size(), 1u) << "the saver has no window of its own on the screen";
    for (const auto& [x, y] : {std::pair{99, 100}, {252, 100}, {150, 79}, {150, 192}})
        EXPECT_LE(ChannelDistance(display.PixelAt(x, y), display.DesktopPixel(x, y)), 1) << x << "," << y;
    const ScreenPicture before = display.Photograph(parent, kPane);
    XResizeWindow(display.connection, parent, 2 * kPane.width, 2 * kPane.height);
    EXPECT_TRUE(Eventually([&] { // until it is the same still at twice the size
        const ScreenPicture after = display.Photograph(parent, {0, 0, 2 * kPane.width, 2 * kPane.height});
        int sum = 0;
        for (int i = 0; i < kPane.width * kPane.height; ++i)
            sum += ChannelDistance(before.pixels[static_cast<std::size_t>(i)],
                                   after.At(2 * (i % kPane.width), 2 * (i / kPane.width)));
        return sum <= 12 * kPane.width * kPane.height;
    }));
    ExpectAPreviewIgnoresInput();
    display.DestroyWindow(parent);
    EXPECT_EQ(saver.WaitForExit(), 0) << "it goes with its parent";
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
