// Several monitors, which change under the show or have one each, and the preview, whose size changes. The
// clock stands at the first frame: the photograph of the primary monitor, stretched over the window.
#include "integration/saver_process.h"

namespace {

constexpr Area kScreen = {0, 0, 640, 480};
constexpr Area kLeft = {0, 0, 320, 400};
constexpr Area kRight = {320, 0, 320, 480};

class Monitors : public ShowFixture {
protected:
    Monitors() : ShowFixture(kScreen.width, kScreen.height) {}

    // A screen's area comes to show what was photographed from another one.
    void ExpectThePhotograph(const Area& area, const Area& photographed, const char* when) const {
        EXPECT_TRUE(Eventually([&] {
            return ShowsStretched(display.Photograph(display.Root(), area), photographed, kScreen.width,
                                  kScreen.height);
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
        const auto isSame = [&](int x, int y) {
            return ChannelDistance(before.At(x, y), after.At(2 * x, 2 * y)) < 30;
        };
        return isSame(30, 90) && isSame(90, 60) && isSame(20, 30);
    }));
    ExpectAPreviewIgnoresInput();
    display.DestroyWindow(parent);
    EXPECT_EQ(saver.WaitForExit(), 0) << "it goes with its parent";
    EXPECT_EQ(saver.Errors(), "");
}

// With --monitors all.
class EachMonitor : public ShowFixture {
protected:
    static constexpr Area kLeft = {0, 0, 320, 480};
    static constexpr Area kRight = {320, 0, 320, 400};

    EachMonitor() : ShowFixture(kScreen.width, kScreen.height) {
        display.SetMonitor("left", kLeft, true);
        display.SetMonitor("right", kRight, false);
    }
    void StartOnAll() {
        saver.Start({"--monitors", "all"});
        ASSERT_TRUE(Eventually([&] { return HasWindow(kLeft) && HasWindow(kRight); }));
        ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
    }
    bool HasWindow(const Area& area) const { return display.WindowOfSize(area.width, area.height) != None; }
    void ExpectNothingIsLeft(const std::vector<pid_t>& shows) {
        EXPECT_EQ(shows.size(), 2u);
        EXPECT_TRUE(Eventually(
            [&] { return std::ranges::none_of(shows, [](pid_t show) { return kill(show, 0) == 0; }); }));
        EXPECT_TRUE(display.VisibleWindows().empty());
    }
};

TEST_F(EachMonitor, HasAShowOfItsOwnDesktopAndATraceAndAKeyEndsAll) {
    StartOnAll();
    const std::vector<pid_t> shows = saver.Children(); // the first monitor's first
    ASSERT_TRUE(saver.SeeFrames(display, 160, 240));
    saver.SetClock(0);
    for (const auto& [x, y] : {std::pair{10, 470}, {319, 0}, {320, 0}, {500, 300}, {639, 399}})
        EXPECT_TRUE(display.WaitForPixel(x, y, display.DesktopPixel(x, y), 3)) << x << "," << y;
    saver.SetClock(3000);
    for (const auto& [x, y] : {std::pair{160, 240}, {480, 200}}) // the middles burn first
        EXPECT_TRUE(display.WaitForPixel(x, y, display.DesktopPixel(x, y), 12, true)) << x;
    ExpectNoFight();
    EXPECT_EQ(display.Focus(), Window{PointerRoot}) << "only the first one wants the input, and has it";
    ExpectAKeyEndsIt();
    ExpectNothingIsLeft(shows);
    for (const char* trace : {"tamb.log", "tamb-2.log"})
        EXPECT_TRUE(saver.data.Read(trace).ends_with("unload devil\n")) << trace;
    EXPECT_EQ(saver.Errors(), "");
}

TEST_F(EachMonitor, ThatShowsAPartOfAnotherHasNoShow) {
    display.SetMonitor("mirror", {0, 0, 320, 240}, false);
    StartOnAll();
    EXPECT_EQ(saver.Children().size(), 2u);
    EXPECT_TRUE(display.WaitForPixel(160, 120, display.DesktopPixel(160, 120), 3)) << "black lies below";
    ExpectAKeyEndsIt();
}

TEST_F(EachMonitor, EndsWithTheOthers) {
    constexpr int kOfAll = -1;
    const struct {
        int which, signal, status; // -2: a signal ended it
    } cases[] = {{kOfAll, SIGTERM, 0}, {kOfAll, SIGKILL, -2}, {0, SIGKILL, 137}, {1, SIGABRT, 134}};
    for (const auto& c : cases) {
        StartOnAll();
        const std::vector<pid_t> shows = saver.Children();
        ASSERT_EQ(shows.size(), 2u);
        if (c.which == kOfAll)
            saver.Signal(c.signal);
        else
            kill(shows[static_cast<std::size_t>(c.which)], c.signal);
        EXPECT_EQ(saver.WaitForExit(), c.status);
        ExpectNothingIsLeft(shows);
    }
}

TEST_F(EachMonitor, IsFollowedWhenItGoesAndComesAndOneWithoutAShowIsBlack) {
    StartOnAll();
    ASSERT_TRUE(saver.SeeFrames(display, 160, 200));
    display.DeleteMonitor("right");
    EXPECT_TRUE(Eventually([&] { return !HasWindow(kRight); }));
    EXPECT_TRUE(HasWindow(kLeft));
    display.SetMonitor("right", kRight, false);
    EXPECT_TRUE(Eventually([&] { return HasWindow(kRight); }));
    display.SetMonitor("third", {320, 400, 320, 80}, false);
    EXPECT_TRUE(display.WaitForBlack({320, 400, 320, 80}));
    EXPECT_TRUE(HasWindow(kRight)) << "the first show does not cover the second";
    ExpectAKeyEndsIt();
}

TEST_F(EachMonitor, IsWhatTheWatcherStartsWhenItIsTold) {
    saver.environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=/no/such/bus"; // not the machine's
    saver.Start({"--watch=0.02", "--monitors=all"});
    EXPECT_TRUE(Eventually([&] { return !saver.data.Read("tamb-2.log").empty(); })) << saver.Errors();
    EXPECT_EQ(saver.End(SIGTERM), 0);
    EXPECT_TRUE(display.VisibleWindows().empty());
}

} // namespace
