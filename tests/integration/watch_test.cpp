// The watcher: what starts the show by itself, what holds it back, and that it costs nothing meanwhile.
#include "integration/private_bus.h"
#include "integration/saver_process.h"

#include <X11/extensions/scrnsaver.h>
#include <X11/extensions/sync.h>

#include <chrono>

namespace fs = std::filesystem;

namespace {

constexpr int kIdleMs = 1200; // 0.02 minutes

class Watch : public ShowFixture {
protected:
    Watch() { saver.environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=/no/such/bus"; } // not the machine's
    void Offer(const PrivateBus& bus) {
        for (const char* which : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
            saver.environment[which] = bus.Address();
    }
    void StartWatcher(const std::vector<std::string>& words = {"--watch=0.02"}) {
        Touch();
        saver.Start(words);
    }
    void Touch() const { display.PressKey(XK_Shift_L); }
    static void Sleep(int milliseconds) { usleep(static_cast<useconds_t>(milliseconds) * 1000); }
    bool NothingIsShown() const { return display.VisibleWindows().empty(); }
    bool WaitUntilGone() const {
        return Eventually([this] { return NothingIsShown(); });
    }
    void ExpectAShow() {
        ASSERT_NE(display.WaitForWindow(), Window{0}) << saver.Errors();
        ASSERT_TRUE(display.WaitUntilInputIsGrabbed());
    }
    // For a part of the time that has to pass from there until a show comes, if this machine is fast enough.
    void ExpectNoShowYet(int part) {
        const auto from = std::chrono::steady_clock::now();
        Sleep(part);
        const bool nothing = NothingIsShown();
        const auto passed = std::chrono::steady_clock::now() - from;
        EXPECT_TRUE(nothing || passed >= std::chrono::milliseconds(kIdleMs));
    }
    // Time for a show to come that is held back: too little of it misses a fault, and never fails.
    void ExpectNoShow() {
        Sleep(2 * kIdleMs + 600);
        EXPECT_TRUE(NothingIsShown());
        EXPECT_TRUE(saver.Running()) << saver.Errors();
    }
    void EndWatcher() {
        EXPECT_EQ(saver.End(SIGTERM), 0) << saver.Errors();
        EXPECT_TRUE(WaitUntilGone());
    }
    std::string Switches() const { // how often it has been woken
        std::ifstream status("/proc/" + std::to_string(saver.Id()) + "/status");
        std::string line;
        while (std::getline(status, line) && !line.starts_with("voluntary_ctxt_switches")) {
        }
        return line;
    }
};

TEST_F(Watch, TheShowComesWithIdlenessAndTheWatcherGoesOnAfterIt) {
    StartWatcher();
    for (const bool byKey : {true, false}) {
        Sleep(kIdleMs / 2);
        Touch(); // begins anew
        ExpectNoShowYet(kIdleMs * 3 / 4);
        ExpectAShow();
        if (byKey)
            display.PressKey(XK_space);
        else
            kill(saver.Children().at(0), SIGKILL);
        EXPECT_TRUE(WaitUntilGone());
    }
    ExpectNoShow(); // it was killed, and nobody has touched anything
    Touch();
    ExpectAShow();
    EndWatcher(); // and the show
    EXPECT_EQ(saver.Errors(), "");
}

TEST_F(Watch, WhoIsIdleAlreadyGetsItAtOnceAndItEndsWithTheWatcherAndTheServer) {
    Sleep(kIdleMs + 300);
    saver.Start({"--watch=0.02"});
    ExpectAShow();
    saver.Kill();
    EXPECT_TRUE(WaitUntilGone());
    StartWatcher();
    ExpectAShow();
    const pid_t show = saver.Children().at(0);
    display.Kill();
    EXPECT_EQ(saver.WaitForExit(), 0);
    EXPECT_TRUE(Eventually([show] { return kill(show, 0) != 0; }));
}

TEST_F(Watch, WaitingWakesNobodyAndASecondWatcherIsRefused) {
    PrivateBus bus;
    FakeLogin login(bus);
    Offer(bus);
    Touch();
    saver.Start({"--watch"});
    const BusClient other = bus.Connect();
    ASSERT_TRUE(Eventually([&] { return Inhibit(other.get()) != 0; })); // it serves
    Sleep(300);
    const std::string before = Switches();
    Sleep(2000);
    EXPECT_EQ(Switches(), before);
    SaverProcess second;
    second.environment["DISPLAY"] = display.Name();
    EXPECT_EQ(second.Run({"--watch=1"}), 1);
    EXPECT_EQ(second.Errors(), "tamblor: already watching this session\n");
    EndWatcher();
}

// The minutes come from the command line, the configuration, or nowhere; what is asked for is too long to
// wait for, so the server is asked for the alarm.
TEST_F(Watch, TheMinutesAreConfigured) {
    int major = SYNC_MAJOR_VERSION, minor = SYNC_MINOR_VERSION;
    XSyncInitialize(display.connection, &major, &minor);
    const auto hasAlarm = [this](int milliseconds) {
        XSyncAlarmAttributes alarm = {};
        for (XID id = 0; id < 16 * 32; ++id) // of 15 clients, as the server numbers what they make
            if (XSyncQueryAlarm(display.connection, id / 32 * 0x200000 + id % 32, &alarm) != 0 &&
                XSyncValueLow32(alarm.trigger.wait_value) == static_cast<unsigned>(milliseconds))
                return true;
        return false;
    };
    const struct {
        const char* settings;
        const char* word;
        int milliseconds;
    } cases[] = {
        {"idle = 7\n", "--watch", 420000}, {"idle = 7\n", "--watch=2.5", 150000}, {"", "--watch", 300000}};
    for (const auto& c : cases) {
        saver.Configure(c.settings);
        saver.Start({c.word});
        EXPECT_TRUE(Eventually([&] { return hasAlarm(c.milliseconds); })) << c.milliseconds;
        EXPECT_EQ(saver.Errors(), "");
        EndWatcher();
    }
}

TEST_F(Watch, ProgramsOnTheSessionBusHoldItBack) {
    PrivateBus bus;
    Offer(bus);
    const BusClient before = bus.Connect(); // another saver, which goes away
    ASSERT_GE(sd_bus_request_name(before.get(), "org.freedesktop.ScreenSaver", 0), 0);
    StartWatcher();
    Sleep(500);
    ASSERT_GE(sd_bus_release_name(before.get(), "org.freedesktop.ScreenSaver"), 0);
    const BusClient stays = bus.Connect();
    BusClient leaves = bus.Connect();
    std::uint32_t cookie = 0;
    ASSERT_TRUE(Eventually([&] { return (cookie = Inhibit(stays.get())) != 0; }));
    ASSERT_NE(Inhibit(leaves.get(), "/ScreenSaver"), 0u);
    EXPECT_FALSE(UnInhibit(leaves.get(), cookie)); // another one's
    Touch();
    ExpectNoShow();
    EXPECT_TRUE(UnInhibit(stays.get(), cookie));
    EXPECT_FALSE(UnInhibit(stays.get(), cookie));
    ExpectNoShow();
    leaves.reset();
    ExpectNoShowYet(kIdleMs * 3 / 4); // counted from there
    ExpectAShow();
    display.PressKey(XK_space);
    EXPECT_TRUE(WaitUntilGone());
    ASSERT_NE(Inhibit(stays.get()), 0u);
    bus.Kill(); // nobody can ask any more
    ExpectAShow();
    EndWatcher();
}

TEST_F(Watch, XScreenSaverSuspendHoldsItBackAndWhoHoldsTheKeyboard) {
    XSetScreenSaver(display.connection, 0, 0, DefaultBlanking, DefaultExposures); // whatever that says
    XScreenSaverSuspend(display.connection, True);
    StartWatcher();
    ExpectNoShow();
    ASSERT_EQ(display.GrabInput(), std::pair(GrabSuccess, GrabSuccess));
    XScreenSaverSuspend(display.connection, False);
    display.Sync();
    ExpectNoShow();
    display.ReleaseInput();
    ExpectAShow(); // asked again
    EndWatcher();
}

TEST_F(Watch, TheLoginManagerHoldsItBackAndLocks) {
    PrivateBus bus;
    FakeLogin login(bus);
    Offer(bus);
    saver.environment["XDG_SESSION_ID"] = "of another day";
    login.blocks = "sleep:idle";
    StartWatcher({"--watch=0.02", "--lock"});
    ExpectNoShow();
    login.locked = true;
    login.blocks = "sleep:idleness";
    EXPECT_TRUE(Eventually([&] { return login.asked > 0; }));
    ExpectNoShow();
    login.locked = false;
    ExpectAShow();
    EXPECT_EQ(login.locks, 0);
    display.PressKey(XK_space);
    EXPECT_TRUE(Eventually([&] { return login.locks == 1; }));
    EndWatcher();
    EXPECT_EQ(login.locks, 1);

    Start({"--lock"}); // the show itself
    ExpectAKeyEndsIt();
    EXPECT_EQ(login.locks, 2);
    bus.Kill();
    Start({"/s", "--lock"});
    ExpectAKeyEndsIt();
    EXPECT_EQ(saver.Errors(), "tamblor: the session cannot be locked: no login manager knows it\n");
}

TEST_F(Watch, AutostartWritesAndRemovesTheEntry) {
    const std::string entry = saver.data.File("config/autostart/tamblor.desktop"), exe = TAMBLOR_EXE;
    const auto text = [&] { return saver.data.Read("config/autostart/tamblor.desktop"); };
    EXPECT_EQ(saver.Run({"--monitors=all", "--lock", "--autostart", "on"}), 0) << saver.Errors();
    EXPECT_TRUE(text().starts_with("[Desktop Entry]\nType=Application\n")) << text();
    EXPECT_NE(text().find("\nExec=\"" + exe + "\" --watch --lock --monitors=all\nTryExec=" + exe + "\n"),
              std::string::npos)
        << text();
    EXPECT_EQ(std::distance(fs::directory_iterator(fs::path(entry).parent_path()), {}), 1);
    for (int twice = 0; twice < 2; ++twice) {
        EXPECT_EQ(saver.Run({"--autostart=off"}), 0);
        EXPECT_FALSE(fs::exists(entry));
    }
    // A program whose path means something to who reads the entry.
    const std::string odd = saver.data.File("a $b%c\"d\\e");
    fs::copy_file(exe, odd);
    saver.program = odd;
    EXPECT_EQ(saver.Run({"--autostart=on"}), 0) << saver.Errors();
    EXPECT_NE(text().find("/a \\\\$b%%c\\\\\"d\\\\\\\\e\" --watch\nTryExec="), std::string::npos) << text();
    EXPECT_NE(text().find("/a $b%c\"d\\\\e\n"), std::string::npos) << text();

    saver.environment["XDG_CONFIG_HOME"] = "/proc";
    EXPECT_EQ(saver.Run({"--autostart=on"}), 1);
    EXPECT_NE(saver.Errors().find("tamblor: /proc/autostart: "), std::string::npos) << saver.Errors();
}

TEST_F(Watch, WrongWordsAreNamed) {
    const char* both = "--autostart and --watch do not go together; tamblor.conf knows idle = MINUTES";
    const std::pair<std::vector<std::string>, std::string> lines[] = {
        {{"--watch", "3"}, "unexpected word 3"},
        {{"--watch=0"}, "--watch takes a number of minutes from 0.01 to 1440, not '0'"},
        {{"--watch=2x"}, "--watch takes a number of minutes from 0.01 to 1440, not '2x'"},
        {{"--watch=3", "--autostart=on"}, both},
        {{"--autostart", "on", "--watch"}, both},
        {{"--autostart"}, "--autostart needs a value, on|off"},
        {{"--autostart=yes"}, "--autostart takes on or off, not 'yes'"},
        {{"--lock", "/p", "12", "s"}, "--lock goes with the show, --watch or --autostart on"},
        {{"--lock", "--autostart=off"}, "--lock goes with the show, --watch or --autostart on"},
        {{"--monitors", "both"}, "--monitors is all or primary, not 'both'"},
        {{"--monitors=all", "/p", "12"}, "--monitors is for the show"},
        {{"--window-id", "nonsense"}, "--window-id needs the number of a window, as in 0x1c00007"},
    };
    for (const auto& [words, problem] : lines) {
        EXPECT_EQ(saver.Run(words), 2) << problem;
        EXPECT_EQ(saver.Errors(), "tamblor: " + problem + "; tamblor --help lists what there is\n");
    }
}

} // namespace
