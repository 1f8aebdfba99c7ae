// The saver under the real screen saver daemons, as a user has it who installed both. They refuse to work for
// root, who therefore takes a user of the test's own, in a mount namespace: nothing outside is changed.
#include "integration/saver_process.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kUser = "1777"; // and group

class Daemons : public ShowFixture {
protected:
    Daemons() : ShowFixture(640, 240) {}
    void SetUp() override {
        ShowFixture::SetUp();
        fs::create_directories(Home("bin"));
        fs::create_symlink(TAMBLOR_EXE, Home("bin/tamblor"));
        saver.environment["PATH"] = Home("bin") + ":/usr/bin:/bin";
        saver.environment["XDG_RUNTIME_DIR"] = Home("run");
        saver.environment["XDG_STATE_HOME"] = Home("state");
        saver.environment["GSETTINGS_BACKEND"] = "keyfile";
        saver.SetClock(0); // every frame is the first one
        display.SetMonitor("left", {0, 0, 320, 240}, true);
        display.SetMonitor("right", {320, 0, 320, 240}, false);
        display.NameWallpaper(display.width, display.height);
    }
    void TearDown() override {
        daemon.End(SIGTERM);
        EXPECT_TRUE(Ended()) << "a show is left";
    }
    std::string Home(const std::string& file) const { return saver.data.File(file); }

    // Once: a shell that reads the script, or a daemon that looks for its user, may not find them empty.
    void PrepareUser() {
        const std::string& home = saver.data.Path().string();
        for (const char* file : {"passwd", "group", "shadow"})
            fs::copy_file(std::string("/etc/") + file, Home(file));
        std::ofstream(Home("passwd"), std::ios::app)
            << "user:x:" << kUser << ":" << kUser << ":User:" << home << ":/bin/sh\n";
        std::ofstream(Home("group"), std::ios::app) << "user:x:" << kUser << ":\n";
        std::ofstream(Home("shadow"), std::ios::app) << "user:$6$salt$none:19000:0:99999:7:::\n";
        fs::create_directories(Home("run"));
        fs::permissions(Home("run"), fs::perms::owner_all);
        saver.data.Write("as-user", "user=" + std::string(kUser) + R"(
set -e
for file in passwd group shadow; do mount --bind "$HOME/$file" /etc/$file; done
chown -R $user:$user "$HOME"
chown root:shadow "$HOME/shadow"
chmod 640 "$HOME/shadow"
[ ! -e "$HOME/share" ] || mount --bind "$HOME/bin" /usr/libexec/xscreensaver # for MATE, which looks nowhere else
exec setpriv --reuid=$user --regid=$user --clear-groups "$@"
)");
    }
    // The words, for an ordinary user who has Tamblor installed. False where that cannot be had.
    bool AsUser(std::vector<std::string>* words) {
        if (geteuid() != 0)
            return fs::exists("/usr/libexec/xscreensaver/tamblor");
        const std::string script = Home("as-user");
        if (!fs::exists(script))
            PrepareUser();
        words->insert(words->begin(), {"/usr/bin/unshare", "-m", "/bin/sh", script});
        return RunProgram({"/usr/bin/unshare", "-m", "/bin/sh", script, "/bin/true"}, saver.environment) == 0;
    }
    void StartDaemon(std::vector<std::string> words) {
        if (!fs::exists(words[0]))
            GTEST_SKIP() << words[0] << " is not installed";
        if (!AsUser(&words))
            GTEST_SKIP() << "there is no ordinary user with Tamblor in /usr/libexec/xscreensaver here";
        daemon.Start(words, saver.environment, "/", Home("daemon"));
    }
    int Run(std::vector<std::string> words) {
        EXPECT_TRUE(AsUser(&words));
        return RunProgram(words, saver.environment);
    }
    std::string Said() const { return saver.data.Read("daemon"); }
    // As xscreensaver says it of those that it ends while it runs on.
    int ShowsEnded() const {
        const std::string said = Said(), ended = "(tamblor) exited normally with SIGTERM";
        int count = 0;
        for (std::size_t at = 0; (at = said.find(ended, at)) != std::string::npos; ++at)
            ++count;
        return count;
    }

    // The shows, wherever they lie.
    std::vector<Window> Shows(Window within = None) const {
        std::vector<Window> shows;
        for (const Window window : display.VisibleWindows(within)) {
            XClassHint hint = {};
            XGetClassHint(display.connection, window, &hint);
            if (hint.res_name != nullptr && std::string(hint.res_name) == "tamblor")
                shows.push_back(window);
            XFree(hint.res_name);
            XFree(hint.res_class);
            const std::vector<Window> inner = Shows(window);
            shows.insert(shows.end(), inner.begin(), inner.end());
        }
        return shows;
    }
    bool Shown(std::size_t count) const {
        return Eventually([&] { return Shows().size() == count; });
    }
    bool Ended() const { return Shown(0); }
    void ExpectTheDesktop(std::initializer_list<int> columns) const {
        for (const int x : columns)
            for (const int y : {20, 200})
                EXPECT_TRUE(display.WaitForPixel(x, y, display.DesktopPixel(x, y), 3))
                    << x << " " << y << ": " << std::hex << display.PixelAt(x, y) << Said();
    }
    // Daemons ignore keys for a while after they have begun.
    template <class Question> bool KeysBring(Question question) const {
        return Eventually([&] {
            display.PressKey(XK_a);
            usleep(1000000);
            return question();
        });
    }
    // The shows all show the desktop, since the clock stands still; what lies above them stays there.
    void ExpectAKeyBringsADialogOnTop() {
        const auto isCovered = [this] {
            return ChannelDistance(display.PixelAt(160, 120), display.DesktopPixel(160, 120)) > 12;
        };
        ASSERT_TRUE(KeysBring(isCovered)) << Said();
        for (int i = 0; i < 10; ++i, usleep(100000))
            EXPECT_TRUE(isCovered());
    }

    Program daemon;
};

TEST_F(Daemons, XScreenSaverListsStartsAndEndsIt) {
    const std::string settings = "mode: one\nselected: 0\nsplash: False\nfade: False\nunfade: False\n"
                                 "timeout: 1:00:00\ngrabDesktopImages: True\nlock: ";
    const auto command = [this](const char* word) {
        return Eventually([&] { return Run({"/usr/bin/xscreensaver-command", word}) == 0; });
    };
    for (const bool lock : {false, true}) {
        saver.data.Write(".xscreensaver", settings + (lock ? "True\n" : "False\n"));
        ASSERT_EQ(saver.Run({"--register"}), 0);
        StartDaemon({"/usr/bin/xscreensaver", "--no-splash", "--verbose"});
        if (IsSkipped())
            return;
        ASSERT_TRUE(command("--activate"));
        ASSERT_TRUE(Shown(2)) << "one on each monitor" << Said();
        ExpectTheDesktop({10, 310, 330, 630});
        if (lock) {
            ExpectAKeyBringsADialogOnTop();
            daemon.Signal(SIGTERM);
        } else {
            EXPECT_TRUE(KeysBring([this] { return Shows().empty(); }));
            ASSERT_TRUE(command("--activate") && Shown(2));
            const int before = ShowsEnded(); // the next shows' windows may bear the same numbers
            ASSERT_TRUE(command("--cycle"));
            EXPECT_TRUE(Eventually([&] { return ShowsEnded() == before + 2; })) << Said();
            EXPECT_TRUE(Shown(2));
            ASSERT_TRUE(command("--deactivate"));
            EXPECT_TRUE(Ended());
            ASSERT_TRUE(command("--activate") && Shown(2) && command("--exit"));
        }
        EXPECT_NE(daemon.WaitForExit(), -1);
        EXPECT_TRUE(Ended());
        EXPECT_EQ(Said().find("exited abnormally"), std::string::npos) << Said();
    }
}

// On one monitor: MATE does not see those that have no output of their own.
TEST_F(Daemons, MateStartsItInItsWindowAndItEndsAtOnce) {
    if (!fs::exists("/usr/bin/mate-screensaver"))
        GTEST_SKIP() << "mate-screensaver is not installed";
    fs::create_directories(Home("config/glib-2.0/settings"));
    fs::create_directories(Home("share/applications/screensavers"));
    fs::copy_file(TAMBLOR_SOURCE "/packaging/linux/share/applications/screensavers/tamblor.desktop",
                  Home("share/applications/screensavers/tamblor.desktop"));
    saver.environment["XDG_DATA_HOME"] = Home("share");
    display.DeleteMonitor("right");
    display.SetMonitor("left", {0, 0, 640, 240}, true);
    const std::string session = saver.data.Write("session", R"(mate-screensaver --no-daemon --debug &
until [ -e "$HOME/exit" ]; do
    sleep 0.1
    if [ -e "$HOME/activate" ]; then
        until mate-screensaver-command --activate 2>/dev/null && sleep 0.5 &&
            mate-screensaver-command --query | grep -q "is active"; do sleep 0.2; done
        rm "$HOME/activate"
    elif [ -e "$HOME/deactivate" ]; then
        mate-screensaver-command --deactivate && rm "$HOME/deactivate"
    fi
done
rm "$HOME/exit"
mate-screensaver-command --exit
wait
)");
    for (const bool lock : {false, true}) {
        saver.data.Write("config/glib-2.0/settings/keyfile",
                         "[org/mate/screensaver]\nthemes=['screensavers-tamblor']\nmode='single'\n"
                         "idle-activation-enabled=false\nlock-enabled=" +
                             std::string(lock ? "true\n" : "false\n"));
        StartDaemon({"/usr/bin/dbus-run-session", "--", "/bin/sh", session});
        if (IsSkipped())
            return;
        saver.data.Write("activate", "");
        ASSERT_TRUE(Shown(1)) << Said();
        ExpectTheDesktop({10, 630});
        if (lock) {
            ExpectAKeyBringsADialogOnTop();
        } else {
            saver.data.Write("deactivate", "");
            EXPECT_TRUE(Ended()) << Said();
            saver.data.Write("activate", "");
            ASSERT_TRUE(Shown(1)) << Said();
            EXPECT_TRUE(KeysBring([this] { return Shows().empty(); })) << Said();
        }
        saver.data.Write("exit", "");
        EXPECT_NE(daemon.WaitForExit(), -1);
        EXPECT_TRUE(Ended());
    }
}

TEST_F(Daemons, XSecureLockShowsItBelowItsDialog) {
    saver.environment["XSECURELOCK_SAVER"] = Home("bin/tamblor");
    saver.environment["XSECURELOCK_NO_COMPOSITE"] = "1";
    StartDaemon({"/usr/bin/xsecurelock"});
    if (IsSkipped())
        return;
    ASSERT_TRUE(Shown(2)) << "one on each monitor" << Said();
    ExpectTheDesktop({10, 310, 330, 630});
    ExpectAKeyBringsADialogOnTop();
    EXPECT_NE(daemon.End(SIGTERM), -1);
    EXPECT_TRUE(Ended());
}

} // namespace
