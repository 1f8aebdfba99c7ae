// The show in the window of a screen saver daemon, which is the test here; and in the daemons' list.
#include "integration/saver_process.h"

#include <chrono>
#include <sys/stat.h>

namespace {

class DaemonWindow : public ShowFixture {
protected:
    static constexpr Area kArea = {80, 40, 160, 120};
    static constexpr int kX = kArea.x + 130,
                         kY = kArea.y + 30; // where nothing of the show stands at its start

    void SetUp() override {
        ShowFixture::SetUp();
        host = display.ShowWindow(kArea);
        AllowDesktop();
    }

    void AllowDesktop(const std::string& answer = "True") {
        saver.data.Write(".xscreensaver", "timeout:\t0:10:00\ngrabDesktopImages:\t" + answer + "\n");
    }
    void StartIn(const std::string& variable, const std::vector<std::string>& words = {"--root"}) {
        saver.environment["XSCREENSAVER_WINDOW"] = variable;
        saver.Start(words);
    }
    // A picture as a daemon leaves it, which differs at every pixel.
    static std::uint32_t ShotPixel(int x, int y) {
        return static_cast<std::uint32_t>(220 - x) << 16 | static_cast<std::uint32_t>(60 + y) << 8 | 30u;
    }
    Pixmap Shot(int scale = 1) const {
        ScreenPicture picture{kArea.width * scale, {}};
        for (int y = 0; y < kArea.height * scale; ++y)
            for (int x = 0; x < kArea.width * scale; ++x)
                picture.pixels.push_back(ShotPixel(x / scale, y / scale));
        return display.MakePixmap(picture);
    }
    void NameShot(XID value, Atom type = XA_PIXMAP) const {
        display.Name(host, "_SCREENSAVER_SCREENSHOT", value, type);
    }
    void NameWallpaper() const { display.NameWallpaper(200, 140); } // smaller than the screen
    // The screenshot, or the wallpaper there.
    std::uint32_t PixelOf(bool shot, int x, int y) const {
        return shot ? ShotPixel(x, y) : display.DesktopPixel((kArea.x + x) % 200, (kArea.y + y) % 140);
    }
    bool Shows(bool shot) const {
        const auto showsAt = [&](int x, int y) {
            return display.WaitForPixel(kArea.x + x, kArea.y + y, PixelOf(shot, x, y), 3);
        };
        return showsAt(130, 30) && showsAt(20, 10);
    }
    // Until the middle burns, which OpenGL alone draws.
    bool Burns(bool shot) const {
        return saver.SeeFrames([&] {
            const std::uint32_t now = display.PixelAt(kArea.x + 80, kArea.y + 60);
            return ChannelDistance(now, PixelOf(shot, 80, 60)) > 40;
        });
    }
    void ExpectASignalEndsIt(int number = SIGTERM) {
        EXPECT_EQ(saver.End(number), -2) << saver.Errors();
        EXPECT_EQ(saver.EndSignal(), number);
    }

    Window host = 0;
};

TEST_F(DaemonWindow, IsTheOnlyThingThatItTouches) {
    NameShot(Shot());
    const Window focused = display.ShowWindow({0, 0, 40, 40}, 0x00FF00); // the daemon's dialog lies above
    const Window dialog = display.ShowWindow({kArea.x + 40, kArea.y + 90, 200, 60}, 0xFFFF00);
    display.TakeFocus(focused);
    display.MovePointer(kX, kY);
    StartIn(Hexadecimal(host));
    ASSERT_TRUE(Shows(true)) << saver.Errors();
    EXPECT_EQ(display.GrabInput(), std::pair(GrabSuccess, GrabSuccess));
    display.ReleaseInput();
    EXPECT_FALSE(display.CursorIsHidden());
    EXPECT_EQ(display.Focus(), focused);
    EXPECT_EQ(display.VisibleWindows(), (std::vector{host, focused, dialog}));
    XSelectInput(display.connection, host, KeyPressMask | ButtonPressMask | PointerMotionMask);
    display.TakeFocus(host);
    saver.SetClock(60000);
    display.MovePointer(kX + 5, kY + 5);
    display.ClickButton(1);
    display.PressKey(XK_space);
    saver.ExpectItGoesOn();
    for (const int type : {MotionNotify, ButtonPress, KeyPress}) {
        XEvent event;
        EXPECT_TRUE(XCheckTypedWindowEvent(display.connection, host, type, &event))
            << "the daemon's: " << type;
    }
    EXPECT_EQ(display.PixelAt(kArea.x + 60, kArea.y + 100), 0xFFFF00u);
    ExpectASignalEndsIt();
}

TEST_F(DaemonWindow, IsNamedInManyWaysAndItsScreenshotIsBurntWhereTheUserAllowsItElseTheWallpaperThere) {
    NameShot(Shot());
    NameWallpaper();
    const std::string hex = Hexadecimal(host), decimal = std::to_string(host), other = "0x1";
    const struct {
        std::string variable;
        std::vector<std::string> words;
        const char* answer;
        bool allowed;
    } cases[] = {
        {hex, {"--root"}, "False", false},
        {decimal, {"-root"}, "true", true},
        {other, {"--root", "--window-id", hex}, "on", true},
        {"a-token", {"--window-id=" + decimal}, "", false},
        {hex, {}, "True", true},
    };
    for (const auto& [variable, words, answer, allowed] : cases) {
        AllowDesktop(answer);
        StartIn(variable, words);
        ASSERT_TRUE(Shows(allowed)) << variable << answer << saver.Errors();
        EXPECT_TRUE(Burns(allowed) && Shows(allowed)) << answer;
        ExpectASignalEndsIt();
        display.WaitForPixel(kX, kY, 0, 0);
    }
    std::filesystem::remove(saver.data.File(".xscreensaver"));
    StartIn(Hexadecimal(host));
    const std::string file = "/etc/X11/app-defaults/XScreenSaver", line = "^[*]grabDesktopImages:.*True";
    EXPECT_TRUE(Shows(RunProgram({"/bin/grep", "-q", line, file}, {}) == 0)) << "the system's answer";
}

TEST_F(DaemonWindow, InAPaneOnAnotherMonitorShowsTheScreenshotOfTheWindowAroundAndHasATraceOfItsOwn) {
    NameShot(Shot(2)); // of another size
    display.SetMonitor("left", {0, 0, 60, 240}, true);
    display.SetMonitor("right", {60, 0, 260, 240}, false);
    const Window pane = XCreateSimpleWindow(display.connection, host, 40, 20, 80, 60, 0, 0, 0);
    XMapWindow(display.connection, pane);
    StartIn("", {"--root", "--window-id", Hexadecimal(pane)});
    EXPECT_TRUE(display.WaitForPixel(kArea.x + 40 + 60, kArea.y + 20 + 15, ShotPixel(120, 30), 4));
    EXPECT_TRUE(display.WaitForPixel(kArea.x + 40 + 10, kArea.y + 20 + 5, ShotPixel(20, 10), 4));
    EXPECT_TRUE(Eventually(
        [this] { return saver.data.Read("tamb-2.log").find("OpenGL info") != std::string::npos; }));
    EXPECT_EQ(saver.Trace(), "");
    ExpectASignalEndsIt();
}

TEST_F(DaemonWindow, WithoutAUsableScreenshotTheWallpaperIsBurntAndThenAPictureOfItsOwn) {
    const Pixmap bitmap = XCreatePixmap(display.connection, display.Root(), 160, 120, 1), shot = Shot();
    NameWallpaper();
    for (const XID value : {XID{None}, XID{0x1FFFFF77}, host, bitmap, shot}) {
        NameShot(value, value == shot ? XA_CARDINAL : XA_PIXMAP);
        StartIn(Hexadecimal(host));
        EXPECT_TRUE(Shows(false)) << value << saver.Errors();
        ExpectASignalEndsIt();
    }
    display.Name(display.Root(), "_XROOTPMAP_ID", bitmap);
    StartIn(Hexadecimal(host));
    // Sky above land.
    EXPECT_TRUE(display.WaitForPixel(kX, kArea.y + 34, 0x4985A7, 12)) << saver.Errors();
    EXPECT_TRUE(display.WaitForPixel(kX, kArea.y + 110, 0x2F6975, 12));
    EXPECT_NE(saver.Trace().find("#ERROR: "), std::string::npos);
    ExpectASignalEndsIt();
}

TEST_F(DaemonWindow, WhileTheShowIsBuiltThePictureIsThereAndASignalEndsIt) {
    NameShot(Shot());
    NameWallpaper();
    std::filesystem::remove(saver.data.File("tamb.dat"));
    ASSERT_EQ(mkfifo(saver.data.File("tamb.dat").c_str(), 0600), 0); // it waits for its package for ever
    for (const bool allowed : {true, false}) {
        AllowDesktop(allowed ? "True" : "False");
        StartIn(Hexadecimal(host));
        EXPECT_TRUE(Shows(allowed));
        ExpectASignalEndsIt();
    }
}

TEST_F(DaemonWindow, AskedToEndAtAnyMomentItEndsByThatSignal) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        for (const unsigned ms : {20u, 60u, 150u, 300u, 600u, 1200u}) {
            StartIn(Hexadecimal(host));
            usleep(ms * 1000);
            const auto asked = std::chrono::steady_clock::now();
            ExpectASignalEndsIt(number);
            EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(5)) << ms;
        }
}

TEST_F(DaemonWindow, DestroyedAtAnyMomentItEndsWithoutACrash) {
    for (const unsigned ms : {0u, 40u, 90u, 100u, 105u, 110u, 120u, 400u, 1300u}) {
        StartIn(Hexadecimal(host));
        saver.SetClock(100);
        usleep(ms * 1000);
        display.DestroyWindow(host);
        const int status = saver.WaitForExit();
        EXPECT_TRUE(status == 0 || status == 1) << ms << " ms: " << status << saver.Errors();
        host = display.ShowWindow(kArea);
    }
}

TEST_F(DaemonWindow, ThatIsNoneIsRefused) {
    const Window inputOnly =
        XCreateWindow(display.connection, display.Root(), 0, 0, 10, 10, 0, 0, InputOnly, nullptr, 0, nullptr);
    display.Sync();
    for (const std::string variable : {"", "0", "0x", "0x12 ", " 12", "-5", "12a", "0x123456789", "token"}) {
        StartIn(variable);
        EXPECT_EQ(saver.WaitForExit(), 1);
        EXPECT_NE(saver.Errors().find("--root needs the number"), std::string::npos) << variable;
    }
    for (const Window window : {Window{0x1FFFFF77}, inputOnly, display.Root()}) {
        StartIn(Hexadecimal(window));
        EXPECT_EQ(saver.WaitForExit(), 1);
        EXPECT_NE(saver.Errors().find("that a show can lie in"), std::string::npos) << saver.Errors();
    }
    StartIn(Hexadecimal(host), {"/c"});
    EXPECT_EQ(saver.WaitForExit(), 0) << "the classic words ask for something else";
    EXPECT_EQ(display.VisibleWindows(host).size(), 0u);
}

class SaverList : public testing::Test {
protected:
    const std::string ours = "  GL: \"Tamblor\"  tamblor --root \\n\\\n";

    int Run(const char* word) { return saver.Run({word}); }
    std::string File() const { return home.Read(".xscreensaver"); }

    SaverProcess saver;
    const TempFolder& home = saver.data;
};

TEST_F(SaverList, GetsOneLineAtItsEndAndLosesItAgainAndIsMadeWhereItIsMissing) {
    const std::string head = "# preferences\ntimeout:\t0:05:00\nselected:\t1\n",
                      tail = "pointerHysteresis:\t10\n";
    struct {
        std::string list, with;
    } const cases[] = {
        // As the daemon writes it.
        {"programs:\t\\\n-\t\t\t\tmaze --root \\n\\\n  GL: \t\t\tgears --root \\n\\\n\n\n",
         "programs:\t\\\n-\t\t\t\tmaze --root \\n\\\n  GL: \t\t\tgears --root \\n\\\n" + ours + "\n\n"},
        // By hand: no empty line at the end, or all in one.
        {"programs: maze --root \\n\\\n   gears --root\n",
         "programs: maze --root \\n\\\n   gears --root\\n\\\n" + ours + "\n"},
        {"programs: maze --root\n", "programs: maze --root\\n\\\n" + ours + "\n"},
        {"programs:\n", "programs: \\\n" + ours + "\n"},
        {"programs: \\\n\n", "programs: \\\n" + ours + "\n"},
    };
    const std::string made = "programs: \\\n" + ours + "\n";
    ASSERT_EQ(Run("--register"), 0) << saver.Errors();
    EXPECT_EQ(File(), made) << "there was no file";
    home.Write(".xscreensaver", "mode: off"); // without an end of the line
    ASSERT_EQ(Run("--register"), 0) << saver.Errors();
    EXPECT_EQ(File(), "mode: off\n" + made) << "there was no list";
    for (const auto& [list, with] : cases) {
        home.Write(".xscreensaver", head + list + tail);
        std::string without = with;
        without.erase(without.find(ours), ours.size());
        for (const auto& [word, text] : {std::pair{"--register", with}, {"--unregister", without}})
            for (int twice = 0; twice < 2; ++twice) {
                ASSERT_EQ(Run(word), 0) << saver.Errors();
                EXPECT_EQ(File(), head + text + tail);
            }
    }
}

TEST_F(SaverList, KnowsTamblorInAnyFormAndLeavesWhatOnlyResemblesIt) {
    const std::string others = "programs: \\\n  xtamblor \\n\\\n  \"tamblor\"  maze --root \\n\\\n";
    for (const std::string line :
         {"- GL: \"Fire\"  tamblor --root --root", "/usr/bin/tamblor --root", "  \"T\" tamblor"}) {
        home.Write(".xscreensaver", others + line + "\\n\nmode: one\n");
        ASSERT_EQ(Run("--register"), 0);
        EXPECT_EQ(File(), others + line + "\\n\nmode: one\n") << "listed already";
        ASSERT_EQ(Run("--unregister"), 0);
        EXPECT_EQ(File(), others.substr(0, others.size() - 2) + "\nmode: one\n");
    }
}

TEST_F(SaverList, StaysAsItWasWhenItCannotBeChanged) {
    namespace fs = std::filesystem;
    const std::string before = "programs: maze\n";
    home.Write(".xscreensaver", before);
    fs::permissions(home.File(".xscreensaver"), fs::perms::owner_read);
    EXPECT_EQ(Run("--register"), 1);
    EXPECT_EQ(saver.Errors(), "tamblor: " + home.File(".xscreensaver") + ": is read-only\n");
    EXPECT_EQ(File(), before);
    for (const std::string nowhere : {"", "relative"}) {
        saver.environment["HOME"] = nowhere;
        EXPECT_EQ(Run("--register"), 1);
        EXPECT_EQ(saver.Errors(), "tamblor: there is no home folder: HOME is not set\n");
    }
    saver.environment["HOME"] = home.File("not/there");
    EXPECT_EQ(Run("--register"), 1);
    EXPECT_NE(saver.Errors().find("cannot be written"), std::string::npos) << saver.Errors();
    saver.environment["HOME"] = home.Path();

    // A link stays one, and permissions stay what they were.
    fs::remove(home.File(".xscreensaver"));
    home.Write("real", before);
    fs::permissions(home.File("real"), fs::perms(0600));
    fs::create_symlink("real", home.File(".xscreensaver"));
    ASSERT_EQ(Run("--register"), 0) << saver.Errors();
    EXPECT_TRUE(fs::is_symlink(home.File(".xscreensaver")));
    EXPECT_EQ(fs::status(home.File("real")).permissions(), fs::perms(0600));
    EXPECT_NE(home.Read("real"), before);
}

} // namespace
