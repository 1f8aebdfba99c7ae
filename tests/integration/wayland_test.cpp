// The show on Wayland: where it lies, what it shows, what ends it, and what it does without.
#include "integration/compositor.h"
#include "integration/spied_saver.h"

#include <chrono>

namespace {

using Outputs = std::vector<Compositor::Output>;

class Wayland : public WaylandShowOf<SpiedSaver> {
protected:
    using WaylandShowOf::WaylandShowOf;

    bool SeeFrames(int output = 0) {
        return saver.SeeFrames([&] { return Changed(output) > 0; });
    }
    // How many pixels are not the desktop's.
    std::size_t Changed(int output = 0) const {
        return Difference(compositor.Photograph(output), compositor.Desktop(output));
    }
    void Start(const std::vector<std::string>& words = {"/s"}, int output = 0) {
        ASSERT_TRUE(compositor.WaitForDesktops());
        saver.Start(words);
        ASSERT_TRUE(TakesTheKeyboard()) << saver.Errors();
        ASSERT_TRUE(SeeFrames(output));
    }
    // Turned back to the start, the clock makes every frame the first one.
    void ExpectTheDesktop(int output = 0) {
        saver.SetClock(0);
        EXPECT_TRUE(Eventually([&] { return Changed(output) == 0; })) << Changed(output) << " pixels differ";
    }
};

TEST_F(Wayland, TheShowLiesOverEverythingAndItsFirstFrameIsTheDesktopPixelForPixel) {
    Start();
    ExpectTheDesktop();
    compositor.MovePointerBy(50, 50);
    EXPECT_EQ(Changed(), 0u) << "no cursor is shown, but the photographed one";
    ExpectAKeyEndsIt(KEY_LEFTSHIFT);
    EXPECT_TRUE(compositor.typed.empty());
    EXPECT_TRUE(Eventually([this] { return Changed() > 0; })) << "there it is";
    EXPECT_TRUE(compositor.WaitForDesktops());
    EXPECT_TRUE(saver.Trace().ends_with("unload devil\n")) << saver.Trace();
    EXPECT_EQ(saver.Errors(), "");
}

TEST_F(Wayland, AnyKeyEndsItAndNoneIsTypedBelow) {
    compositor.TurnKey(KEY_A, true); // with which it is started
    Start();
    compositor.TurnKey(KEY_A, false);
    saver.ExpectItGoesOn();
    ExpectAKeyEndsIt(KEY_A);
    EXPECT_EQ(compositor.typed, std::vector<std::uint32_t>{KEY_A}) << "the first one alone";
}

TEST_F(Wayland, TheMouseEndsIt) {
    for (const bool byButton : {true, false}) {
        Start();
        saver.SetClock(4001);
        byButton ? compositor.ClickButton(BTN_RIGHT) : compositor.MovePointerBy(20, 20);
        EXPECT_EQ(saver.WaitForExit(), 0);
        EXPECT_TRUE(compositor.WaitForFocus());
    }
}

TEST_F(Wayland, TheShowFollowsItsOutput) {
    Start();
    saver.SetClock(0);
    for (const Compositor::Output& now : Outputs{{400, 300},
                                                 {640, 480, "scale 2"},
                                                 {480, 360, "scale 1.5"},
                                                 {240, 320, "scale 1 transform 90"}}) {
        ASSERT_TRUE(compositor.ChangeOutput(0, now));
        EXPECT_TRUE(Eventually([&] {
            const ScreenPicture picture = compositor.Photograph();
            return picture.width == now.width && ShowsStretched(picture, {0, 0, 320, 240}, 320, 240);
        })) << now.width
            << " " << now.settings;
    }
    ExpectAKeyEndsIt();
}

TEST_F(Wayland, ItEndsAtOnceAndDrawsNothingWhileNobodySeesIt) {
    using Clock = std::chrono::steady_clock;
    saver.environment["TAMBLOR_LACKS"] = "zwlr_layer_shell_v1"; // on another workspace there are no frames
    Start();
    ASSERT_TRUE(compositor.Command("workspace 9"));
    usleep(500000);
    EXPECT_TRUE(saver.Sleeps());
    ASSERT_TRUE(compositor.Command("workspace 1"));
    ExpectTheDesktop();
    ExpectAKeyEndsIt();
    for (const std::string unseen : {"workspace 9", ""}) {
        auto best = Clock::duration::max(); // of several: the machine may be busy
        for (int i = 0; i < 3 && best > std::chrono::milliseconds(300); ++i) {
            Start();
            if (!unseen.empty())
                ASSERT_TRUE(compositor.Command(unseen));
            else // on the overlay layer there is always a frame, until the compositor says nothing at all
                compositor.server.program.Signal(SIGSTOP);
            usleep(500000); // it waits for a frame now
            const auto start = Clock::now();
            EXPECT_EQ(saver.End(SIGTERM), 0);
            best = std::min(best, Clock::now() - start);
            compositor.server.program.Signal(SIGCONT);
            ASSERT_TRUE(compositor.Command("workspace 1") && compositor.WaitForFocus());
        }
        EXPECT_LT(best, std::chrono::milliseconds(300)) << unseen;
        saver.environment.erase("TAMBLOR_LACKS");
    }
}

TEST_F(Wayland, IdlenessStartsTheShowAndAKeyEndsItAndTheCompositorsEndEndsTheWatcher) {
    compositor.PressKey(KEY_LEFTSHIFT);
    saver.Start({"--watch=0.02"});
    for (int twice = 0; twice < 2; ++twice) {
        ASSERT_TRUE(TakesTheKeyboard()) << saver.Errors();
        compositor.PressKey(KEY_SPACE);
        EXPECT_TRUE(compositor.WaitForFocus());
    }
    EXPECT_EQ(compositor.typed, std::vector<std::uint32_t>{KEY_LEFTSHIFT});
    compositor.server.program.Kill();
    EXPECT_EQ(saver.WaitForExit(), 0) << saver.Errors();
}

TEST_F(Wayland, OnTheBackgroundItLeavesTheKeyboardAlone) {
    ASSERT_TRUE(
        compositor.Command("fullscreen disable, floating enable, resize set 60 60, move position 250 10"));
    ASSERT_TRUE(Eventually([this] { return Changed() > 0; }));
    usleep(200000); // until the window has its place
    const ScreenPicture before = compositor.Photograph();
    saver.Start({"--layer", "background"});
    ASSERT_TRUE(saver.SeeFrames([&] { return Difference(compositor.Photograph(), before) > 20; }))
        << saver.Errors();
    EXPECT_TRUE(compositor.focused);
    compositor.PressKey(KEY_SPACE);
    saver.SetClock(5000);
    for (const int by : {-400, 100, 20}) // where the pointer comes in is no move
        compositor.MovePointerBy(by, by);
    saver.ExpectItGoesOn();
    EXPECT_EQ(compositor.typed, std::vector<std::uint32_t>{KEY_SPACE});
    EXPECT_EQ(saver.End(SIGTERM), 0);
}

class TwoOutputs : public Wayland {
protected:
    TwoOutputs() : Wayland({{}, {480, 360, "scale 1.5"}}) {}
};

TEST_F(TwoOutputs, TheShowIsOnTheOneWithTheFocusInItsOwnPixelsAndTheOtherIsBlack) {
    for (const Compositor::Output& second :
         Outputs{{480, 360, "scale 1.5"}, {640, 480, "scale 2"}, {240, 320, "scale 1 transform 90"}})
        for (const int shown : {0, 1}) {
            ASSERT_TRUE(compositor.ChangeOutput(1, second) && compositor.WaitForDesktops());
            ASSERT_TRUE(compositor.Command("focus output HEADLESS-" + std::to_string(shown + 1)));
            Start({"/s"}, shown);
            EXPECT_TRUE(compositor.WaitForBlack(1 - shown)) << second.settings << shown;
            ExpectTheDesktop(shown);
            ExpectAKeyEndsIt();
            EXPECT_TRUE(compositor.WaitForDesktops());
        }
}

TEST_F(TwoOutputs, EachHasAShowOfItsOwnDesktop) {
    Start({"--monitors", "all"});
    ASSERT_TRUE(SeeFrames(1));
    for (const int output : {0, 1})
        ExpectTheDesktop(output);
    ExpectAKeyEndsIt();
    EXPECT_TRUE(compositor.WaitForDesktops());
}

class WithXwayland : public Wayland {
protected:
    WithXwayland() : Wayland({{}}, "xwayland enable") {}
};

TEST_F(WithXwayland, NoShowStartsThroughIt) {
    const TempFolder& folder = compositor.server.folder;
    folder.Write("script",
                 "cd $XDG_RUNTIME_DIR\nenv -u WAYLAND_DISPLAY " TAMBLOR_EXE " /s 2>said\necho $? >status\n");
    ASSERT_TRUE(compositor.Command("exec sh " + folder.File("script"))); // as a user's program
    EXPECT_TRUE(Eventually([&] { return folder.Read("status") == "1\n"; }));
    EXPECT_NE(folder.Read("said").find("Xwayland"), std::string::npos) << folder.Read("said");
    EXPECT_TRUE(compositor.focused);
}

// A compositor that has neither layers nor copies of its outputs, which are windows on X11.
class Weston : public ShowFixture {
protected:
    Weston() : ShowFixture(3 * 320, 240) {
        const std::string config = server.folder.Write(
            "config", "[shell]\nbackground-image=\nbackground-color=0xff204060\npanel-position=none\n");
        server.Start({WESTON_EXE, "--backend=x11-backend.so", "--use-pixman", "--width=320", "--height=240",
                      "--output-count=3", "--idle-time=0", "--socket=wayland-1", "--config=" + config},
                     {{"DISPLAY", display.Name()}});
        server.Offer(&saver.environment);
        saver.environment.erase("DISPLAY");
    }
    static Area Place(int output) { return {output * 320, 0, 320, 240}; }
    ScreenPicture Seen(int output) const { return display.Photograph(display.Root(), Place(output)); }
    void Unplug(int output) {
        const std::size_t before = display.VisibleWindows().size();
        XEvent event = {};
        event.xclient.type = ClientMessage;
        event.xclient.window = windows[static_cast<std::size_t>(output)];
        event.xclient.message_type = XInternAtom(display.connection, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] =
            static_cast<long>(XInternAtom(display.connection, "WM_DELETE_WINDOW", False));
        XSendEvent(display.connection, event.xclient.window, False, NoEventMask, &event);
        display.Sync();
        EXPECT_TRUE(Eventually([&] { return display.VisibleWindows().size() < before; }));
    }
    bool SeeFrames(int output) const {
        return saver.SeeFrames([&, before = Seen(output)] { return Difference(Seen(output), before) > 500; });
    }

    WaylandServer server;
    std::vector<Window> windows;
};

TEST_F(Weston, TheShowCoversAllAndStaysWhileItCanAndThenGoesToAnother) {
    ASSERT_TRUE(server.Listens()) << server.folder.Read("errors");
    ASSERT_TRUE(Eventually([&] {
        windows = display.VisibleWindows();
        return windows.size() == 3;
    }));
    for (int i = 0; i < 3; ++i)
        XMoveWindow(display.connection, windows[static_cast<std::size_t>(i)], Place(i).x, 0);
    saver.Start({"/s"});
    std::vector<int> black;
    ASSERT_TRUE(Eventually([&] {
        black.clear();
        for (int i = 0; i < 3; ++i)
            if (Seen(i).IsBlack())
                black.push_back(i);
        return black.size() == 2;
    })) << black.size();
    const int shown = 3 - black[0] - black[1];
    EXPECT_TRUE(SeeFrames(shown));
    Unplug(black[0]);
    EXPECT_TRUE(SeeFrames(shown));
    Unplug(shown);
    EXPECT_TRUE(SeeFrames(black[1]));
    EXPECT_EQ(saver.End(SIGTERM), 0);
    EXPECT_NE(saver.Trace().find("(desktop capture)"), std::string::npos) << saver.Trace();
    EXPECT_EQ(saver.Errors(), "");
}

} // namespace
