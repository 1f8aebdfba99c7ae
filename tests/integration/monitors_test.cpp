// Several monitors, and monitors and windows that change their size under the show. The clock stands at the
// first frame, which is the photograph of the primary monitor stretched over the window.
#include "integration/show_fixture.h"

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr int kHalf = kWidth / 2;

struct Area {
    int x, y, width, height;
};

class Monitors : public ShowFixture {
protected:
    Monitors() : ShowFixture(kWidth, kHeight) {}

    void Set(const char* name, const Area& area, bool primary) {
        display.SetMonitor(name, area.x, area.y, area.width, area.height, primary);
    }
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
            for (int i = 0; i < kPoints * kPoints; ++i) {
                const auto [x, y] = at(area, i);
                const auto [fromX, fromY] = at(photographed, i);
                if (ChannelDistance(picture.At(x, y), display.DesktopPixel(fromX, fromY)) > kTolerance)
                    return false;
            }
            return true;
        })) << when;
    }
    void ExpectBlack(const Area& area, const char* when) const {
        EXPECT_TRUE(display.WaitForPixel(area.x, area.y, 0, 0)) << when;
        EXPECT_EQ(display.Photograph().CountLit(area.x, area.y, area.width, area.height), 0) << when;
    }
};

TEST_F(Monitors, TheShowIsOnThePrimaryOneAndTheOthersAreBlack) {
    const Area left = {0, 0, kHalf, 400};
    const Area right = {kHalf, 0, kHalf, kHeight};
    Set("left", left, false);
    Set("right", right, true);
    Start();
    EXPECT_TRUE(display.WaitForHiddenCursor()) << "it is on the left monitor";
    EXPECT_TRUE(saver.SeeFrames(display, kHalf + kHalf / 2, kHeight / 2));
    ExpectBlack(left, "at the start");
    saver.SetClock(SaverProcess::kStartMs);
    // Exact: a photograph of another place would be off.
    for (const auto& [x, y] : {std::pair{kHalf, 0}, {kWidth - 1, kHeight - 1}, {500, 300}})
        EXPECT_TRUE(display.WaitForPixel(x, y, display.DesktopPixel(x, y), 3)) << x << "," << y;

    Set("left", left, true);
    ExpectThePhotograph(left, right, "another monitor is the primary one");
    ExpectBlack(right, "another monitor is the primary one");

    Set("third", {0, 400, kHalf, 80}, false);
    ExpectBlack({0, 400, kHalf, 80}, "a monitor came");

    for (const char* name : {"left", "right", "third"})
        display.DeleteMonitor(name);
    ExpectThePhotograph({0, 0, kWidth, kHeight}, right, "one monitor is left");
    EXPECT_EQ(display.VisibleWindows().size(), 1u) << "no black window stays";
    EXPECT_TRUE(display.CursorIsHidden());
    ExpectAKeyEndsIt();
    EXPECT_TRUE(display.VisibleWindows().empty());
}

TEST_F(Monitors, TheShowFollowsAScreenThatGrowsAndShrinks) {
    const Area small = {0, 0, 400, 300};
    const Area large = {0, 0, kWidth, kHeight};
    display.SetScreenSize(small.width, small.height);
    Start();
    for (const Area& area : {large, small, large}) {
        display.SetScreenSize(area.width, area.height);
        EXPECT_TRUE(Eventually([&] { return display.WindowOfSize(area.width, area.height) != 0; }));
    }
    ExpectThePhotograph(large, small, "the screen grew");
    ExpectAKeyEndsIt();
}

TEST_F(Monitors, AMoveOnABlackMonitorCounts) {
    Set("left", {0, 0, kHalf, kHeight}, true);
    Set("right", {kHalf, 0, kHalf, kHeight}, false);
    Start();
    ASSERT_TRUE(saver.SeeFrames(display));
    saver.SetClock(SaverProcess::kStartMs + 4001);
    display.MovePointer(kWidth - 10, 10);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

TEST_F(Monitors, APreviewFollowsItsParent) {
    constexpr Area kBefore = {100, 80, 152, 112};
    const unsigned long parent = display.ShowWindow(kBefore.x, kBefore.y, kBefore.width, kBefore.height);
    saver.Start(&display, {"/p", std::to_string(parent)});
    EXPECT_TRUE(display.WaitForPixel(kBefore.x + 30, kBefore.y + 90, 0x000000, 40, true));
    const ScreenPicture before = display.Photograph();
    display.ResizeWindow(parent, 2 * kBefore.width, 2 * kBefore.height);
    EXPECT_TRUE(Eventually([&] { // until it is the same still at twice the size
        const ScreenPicture after = display.Photograph();
        int sum = 0;
        for (int y = 0; y < kBefore.height; ++y)
            for (int x = 0; x < kBefore.width; ++x)
                sum += ChannelDistance(before.At(kBefore.x + x, kBefore.y + y),
                                       after.At(kBefore.x + 2 * x, kBefore.y + 2 * y));
        return sum <= 12 * kBefore.width * kBefore.height;
    }));
    EXPECT_TRUE(saver.Running());
}

} // namespace
