// A show on each monitor: --monitors all.
#include "integration/saver_process.h"

namespace {

constexpr Area kLeft = {0, 0, 320, 480};
constexpr Area kRight = {320, 0, 320, 400};

class EachMonitor : public ShowFixture {
protected:
    EachMonitor() : ShowFixture(640, 480) {
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
    ASSERT_TRUE(saver.SeeFrames(display, 160, 200));
    saver.SetClock(0);
    for (const auto& [x, y] : {std::pair{10, 470}, {319, 0}, {320, 0}, {500, 300}, {639, 399}})
        EXPECT_TRUE(display.WaitForPixel(x, y, display.DesktopPixel(x, y), 3)) << x << "," << y;
    saver.SetClock(3000);
    for (const int x : {160, 480})
        EXPECT_TRUE(display.WaitForPixel(x, 200, display.DesktopPixel(x, 200), 12, true)) << x;
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
    enum { OfAll = -1, First, Second };
    const struct {
        int which, signal, status; // -2: a signal ended it
    } cases[] = {{OfAll, SIGTERM, 0}, {OfAll, SIGKILL, -2}, {First, SIGKILL, 137}, {Second, SIGABRT, 134}};
    for (const auto& c : cases) {
        StartOnAll();
        const std::vector<pid_t> shows = saver.Children();
        ASSERT_EQ(shows.size(), 2u);
        if (c.which == OfAll)
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
