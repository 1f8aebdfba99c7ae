// The real executable, started with a command line, an environment of its own and a clock that the test
// turns; and a show on a display of its own.
#pragma once

#include "integration/shared_file.h"
#include "integration/virtual_display.h"

#include <atomic>

// How the saver under test is started, chosen when the tests are linked: the executable of this system, or
// the one for Windows under Wine. The program and what comes before the saver's own arguments; `data` is the
// folder in which the saver is to find its package, what is needed besides is put into the environment.
std::vector<std::string> SaverCommand(const TempFolder& data, Environment* environment);
// The name by which the saver knows a file, which it says where something is wrong with that.
std::string SaverName(const std::string& file);
// It draws once it has read its clock more often; -1 on this system, where its first frame is due at once.
extern const int kReadsBeforeFrames;

class SaverProcess : public Program {
public:
    static constexpr std::uint32_t kStartMs = 1000000;

    // The data folder holds the built package unless the test puts something else there before Start.
    SaverProcess() {
        std::filesystem::create_symlink(TAMBLOR_DATA_DIR "/tamb.dat", data.File("tamb.dat"));
        environment["HOME"] = environment["TAMBLOR_DATA"] = data.Path();
        environment["PATH"] = "/usr/bin:/bin";
        environment["XDG_CONFIG_HOME"] = data.File("config");
        environment["LIBGL_ALWAYS_SOFTWARE"] = "1";
        // Drivers keep memory until the process ends; our own leaks are the unit tests' business.
        environment["ASAN_OPTIONS"] = "detect_leaks=0";
        // The saver reads its clock from this file instead of the system.
        environment["TAMBLOR_CLOCK"] = data.Write("clock", std::string(sizeof(Clock), '\0'));
        clock_ = MapShared<Clock>(environment["TAMBLOR_CLOCK"].c_str());
    }
    ~SaverProcess() { Kill(); } // before its folder goes

    std::string Trace() const { return Text("tamb.log"); }
    std::string Errors() const { return Text("stderr"); } // everything that it wrote to that stream
    std::string Output() const { return Text("stdout"); } // likewise

    void Start(const std::vector<std::string>& arguments) {
        SetClock(0);
        clock_->reads = 0;
        std::vector<std::string> words = SaverCommand(data, &environment);
        if (!program.empty())
            words = {program};
        words.insert(words.end(), arguments.begin(), arguments.end());
        Program::Start(words, environment, folder, data.File("stderr"), data.File("stdout"));
    }
    // As WaitForExit.
    int Run(const std::vector<std::string>& arguments) {
        Start(arguments);
        return WaitForExit();
    }
    // The user's tamblor.conf; gives its path.
    std::string Configure(const std::string& settings) const {
        std::filesystem::create_directories(data.File("config/tamblor"));
        return data.Write("config/tamblor/tamblor.conf", settings);
    }
    // The time on the saver's clock, in ms since Start: it stands still until the test moves it.
    void SetClock(std::uint32_t ms) const { clock_->tick = kStartMs + ms; }
    // Waits until the saver's window is on the display and drawn. False when that does not come.
    bool WaitUntilShown(const VirtualDisplay& display) const {
        return display.WaitForWindow() != 0 && Eventually([this] { return Draws(); });
    }
    bool Draws() const { return clock_->reads > kReadsBeforeFrames; }
    // Lets the clock run from its start until the desktop at that place begins to fade: frames are drawn, and
    // their first stage lasts a second more at least. False when that does not happen.
    bool SeeFrames(const VirtualDisplay& display, int x = 160, int y = 120) const {
        return SeeFrames(
            [&] { return ChannelDistance(display.PixelAt(x, y), display.DesktopPixel(x, y)) > 12; });
    }
    template <class Question> bool SeeFrames(const Question& fades) const {
        constexpr std::uint32_t kStep = 40; // a slow machine may take longer for a frame, and miss some
        constexpr std::uint32_t kMost = 20000;
        for (std::uint32_t ms = 0; ms < kMost; ms += kStep) {
            SetClock(ms);
            usleep(kStep * 1000);
            if (fades())
                return true;
        }
        return false;
    }

    // It uses nearly nothing of the processors for a while.
    bool Sleeps() const {
        constexpr long kSecond = 1000000000, kMost = kSecond * 3 / 100;
        clockid_t used = 0;
        timespec before = {}, after = {};
        clock_getcpuclockid(Id(), &used);
        clock_gettime(used, &before);
        usleep(1500000);
        clock_gettime(used, &after);
        return (after.tv_sec - before.tv_sec) * kSecond + after.tv_nsec - before.tv_nsec < kMost;
    }
    // Time for a wrong close to happen: too little of it misses a fault, and never fails.
    void ExpectItGoesOn() {
        usleep(300000);
        EXPECT_TRUE(Running()) << Errors();
    }

    const TempFolder data;
    Environment environment;
    std::string program;      // in place of the one that was built
    std::string folder = "/"; // in which it starts

private:
    struct Clock {
        std::atomic<std::uint32_t> tick;
        std::atomic<std::int32_t> reads; // counted by a saver that can
    };
    std::string Text(const char* file) const {
        std::string text = data.Read(file);
        std::erase(text, '\r'); // of programs for Windows
        return text;
    }

    Clock* clock_ = nullptr;
};

// A saver, plain or of another kind, and a display.
template <class Saver> class ShowOf : public testing::Test {
protected:
    explicit ShowOf(int width = 320, int height = 240) : display(width, height) {
        saver.environment["DISPLAY"] = display.Name();
    }
    void SetUp() override { ASSERT_NE(display.connection, nullptr); }

    void Start(const std::vector<std::string>& words = {"/s"}) {
        saver.Start(words);
        ASSERT_TRUE(saver.WaitUntilShown(display)) << saver.Errors();
    }
    void ExpectAKeyEndsIt(KeySym key = XK_space) {
        display.PressKey(key);
        EXPECT_EQ(saver.WaitForExit(), 0) << saver.Errors();
    }
    // No window of its own lies there any more, and whoever had the input and the focus can have them.
    void ExpectTheDesktop(const std::vector<Window>& windows, Window focus) {
        const auto granted = std::pair{GrabSuccess, GrabSuccess};
        EXPECT_TRUE(Eventually([&] { return display.VisibleWindows() == windows; }));
        EXPECT_TRUE(Eventually([&] { return display.GrabInput() == granted; }));
        display.ReleaseInput();
        EXPECT_FALSE(display.CursorIsHidden());
        EXPECT_TRUE(Eventually([&] { return display.Focus() == focus; }));
    }
    // Shows and black windows do not raise themselves above each other again and again.
    void ExpectNoFight() {
        XSelectInput(display.connection, display.Root(), SubstructureNotifyMask);
        XSync(display.connection, True);
        usleep(1200000);
        EXPECT_EQ(XPending(display.connection), 0);
    }
    // The pointer passes over a preview and clicks, long after all grace: it goes on, and writes nothing.
    void ExpectAPreviewIgnoresInput() {
        EXPECT_FALSE(display.CursorIsHidden());
        EXPECT_EQ(saver.Trace(), "");
        saver.SetClock(60000);
        display.MovePointer(150, 120);
        display.ClickButton(1);
        saver.ExpectItGoesOn();
    }

    VirtualDisplay display;
    Saver saver;
};
using ShowFixture = ShowOf<SaverProcess>;
