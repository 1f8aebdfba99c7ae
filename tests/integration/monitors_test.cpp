// Several monitors, and monitors and windows that change their size under the show. The clock stands at the
// first frame, which is the photograph of the primary monitor stretched over the window.
#include "integration/other_program.h"
#include "integration/show_fixture.h"

#include <X11/keysym.h>

#include <unistd.h>

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

    // The share of a screen's area, by a grid of points, that shows what was photographed from another one.
    double ShareOfPhotograph(const Area& area, const Area& photographed) const {
        constexpr int kPoints = 16;
        constexpr int kTolerance = 45; // the desktop's fine pattern, which a stretch blurs
        const ScreenPicture picture = display.Photograph();
        int alike = 0;
        for (int i = 0; i < kPoints * kPoints; ++i) {
            const double u = (i % kPoints + 0.5) / kPoints;
            const double v = (i / kPoints + 0.5) / kPoints;
            const auto at = [&](const Area& a) {
                return std::pair{a.x + static_cast<int>(u * a.width), a.y + static_cast<int>(v * a.height)};
            };
            const auto [x, y] = at(area);
            const auto [fromX, fromY] = at(photographed);
            alike += ChannelDistance(picture.At(x, y), display.DesktopPixel(fromX, fromY)) <= kTolerance;
        }
        return static_cast<double>(alike) / (kPoints * kPoints);
    }
    void ExpectThePhotograph(const Area& area, const Area& photographed, const char* when) const {
        double share = 0;
        for (int waited = 0; waited < 20000 && share < 1; waited += 20) {
            share = ShareOfPhotograph(area, photographed);
            usleep(20000);
        }
        EXPECT_EQ(share, 1) << when;
    }
    void ExpectBlack(const Area& area, const char* when) const {
        EXPECT_TRUE(display.WaitForPixel(area.x, area.y, 0, 0)) << when;
        EXPECT_EQ(display.Photograph().CountLit(area.x, area.y, area.width, area.height), 0) << when;
    }

    OtherProgram system{display};
};

TEST_F(Monitors, TheShowIsOnThePrimaryOneAndTheOthersAreBlack) {
    const Area left = {0, 0, kHalf, 400};
    const Area right = {kHalf, 0, kHalf, kHeight};
    system.SetMonitor({"left", left.x, left.y, left.width, left.height, false});
    system.SetMonitor({"right", right.x, right.y, right.width, right.height, true});
    Start();
    EXPECT_TRUE(display.WaitForHiddenCursor()) << "it is on the left monitor";
    EXPECT_TRUE(saver.SeeFrames(display, kHalf + kHalf / 2, kHeight / 2));
    ExpectBlack(left, "at the start");
    saver.SetClock(SaverProcess::kStartMs);
    // Exact: a photograph of another place would be off.
    for (const auto& [x, y] : {std::pair{kHalf, 0}, {kWidth - 1, kHeight - 1}, {500, 300}})
        EXPECT_TRUE(display.WaitForPixel(x, y, display.DesktopPixel(x, y), 3)) << x << "," << y;

    system.SetMonitor({"left", left.x, left.y, left.width, left.height, true});
    ExpectThePhotograph(left, right, "another monitor is the primary one");
    ExpectBlack(right, "another monitor is the primary one");

    system.SetMonitor({"third", 0, 400, kHalf, 80, false});
    ExpectBlack({0, 400, kHalf, 80}, "a monitor came");

    for (const char* name : {"left", "right", "third"})
        system.DeleteMonitor(name);
    ExpectThePhotograph({0, 0, kWidth, kHeight}, right, "one monitor is left");
    EXPECT_EQ(display.VisibleWindows().size(), 1u) << "no black window stays";
    EXPECT_TRUE(display.CursorIsHidden());
    display.PressKey(XK_space);
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_TRUE(display.VisibleWindows().empty());
}

TEST_F(Monitors, TheShowFollowsAScreenThatGrowsAndShrinks) {
    const Area small = {0, 0, 400, 300};
    const Area large = {0, 0, kWidth, kHeight};
    system.SetScreenSize(small.width, small.height);
    Start();
    for (const Area& area : {large, small, large}) {
        system.SetScreenSize(area.width, area.height);
        unsigned long window = 0;
        for (int waited = 0; waited < 20000 && window == 0; waited += 20) {
            usleep(20000);
            window = display.WindowOfSize(area.width, area.height);
        }
        EXPECT_NE(window, 0u);
    }
    ExpectThePhotograph(large, small, "the screen grew");
    display.PressKey(XK_space);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

TEST_F(Monitors, AMoveOnABlackMonitorCounts) {
    system.SetMonitor({"left", 0, 0, kHalf, kHeight, true});
    system.SetMonitor({"right", kHalf, 0, kHalf, kHeight, false});
    Start();
    ASSERT_TRUE(saver.SeeFrames(display));
    saver.SetClock(SaverProcess::kStartMs + 4001);
    display.MovePointer(kWidth - 10, 10);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

TEST_F(Monitors, APreviewFollowsItsParent) {
    constexpr Area kBefore = {100, 80, 152, 112};
    const unsigned long parent = display.CreateParent(kBefore.x, kBefore.y, kBefore.width, kBefore.height);
    saver.Start(&display, {"/p", std::to_string(parent)});
    EXPECT_TRUE(display.WaitForPixel(kBefore.x + 30, kBefore.y + 90, 0x000000, 40, true));
    const ScreenPicture before = display.Photograph();
    system.ResizeWindow(parent, 2 * kBefore.width, 2 * kBefore.height);
    const auto difference = [&] { // to the same still at twice the size
        const ScreenPicture after = display.Photograph();
        int sum = 0;
        for (int y = 0; y < kBefore.height; ++y)
            for (int x = 0; x < kBefore.width; ++x)
                sum += ChannelDistance(before.At(kBefore.x + x, kBefore.y + y),
                                       after.At(kBefore.x + 2 * x, kBefore.y + 2 * y));
        return static_cast<double>(sum) / (kBefore.width * kBefore.height);
    };
    double least = 255;
    for (int waited = 0; waited < 20000 && least > 12; waited += 20) {
        usleep(20000);
        least = difference();
    }
    EXPECT_LE(least, 12);
    EXPECT_TRUE(saver.Running());
}

} // namespace
