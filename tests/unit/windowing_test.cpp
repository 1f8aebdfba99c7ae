// The Win32 functions for windows, messages and OpenGL, above a window system that the test scripts.
#include "win32/windowing/pixel_format.h"
#include "win32/windowing/windowing.h"

#include "unit/temp_folder.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace {

const HWND kWindow = reinterpret_cast<HWND>(UINT_PTR{7});

struct Script {
    std::string calls;  // of the window system
    LRESULT answer = 0; // to WM_CREATE
    bool hasOpenGl = false;
    std::vector<UINT> messages; // that the window's procedure has seen
    void (*events)() = [] {};   // what ReadEvents reports
};
Script script;

void Note(const std::string& call) {
    script.calls += call + " ";
}

// OpenGL that offers nothing.
struct FakeSurface final : GlSurface {
    bool ListConfigs(std::vector<GlConfig>*) override { return false; }
    bool DrawsInSoftware() override { return true; }
    bool Create(const GlConfig&) override { return false; }
    std::unique_ptr<GlContext> CreateContext() override { return nullptr; }
    bool MakeCurrent(GlContext*) override { return false; }
    bool Swap() override { return false; }
};

// What no test here asks for is left out.
template <bool kOpens> WindowSystem Fake() {
    WindowSystem fake = {};
    fake.name = kOpens ? "fake" : "closed";
    fake.Open = [] { return kOpens; };
    fake.CreateWindow = [](const WindowRequest&) {
        ReportSize(300, 200); // which changes while it is made
        return kWindow;
    };
    fake.ShowWindow = [] { Note("show"); };
    fake.DestroyWindow = [] { Note("destroy"); };
    fake.HideCursor = [] { Note("hide"); };
    fake.ShowBlack = [] { Note("black"); };
    fake.ReadEvents = [] {
        script.events();
        return 40;
    };
    fake.WaitForEvents = [](int, int milliseconds) { Note("wait" + std::to_string(milliseconds)); };
    fake.OpenGl = []() -> std::unique_ptr<GlSurface> {
        return script.hasOpenGl ? std::make_unique<FakeSurface>() : nullptr;
    };
    return fake;
}
const WindowSystem kClosed = Fake<false>(), kOpen = Fake<true>();
const WindowSystem* const kSystems[] = {&kClosed, &kOpen, &kClosed}; // the first that opens is in use

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM, LPARAM) {
    EXPECT_EQ(window, kWindow);
    script.messages.push_back(message);
    if (message == WM_DESTROY)
        PostQuitMessage(3);
    return message == WM_CREATE ? script.answer : 0;
}

class Windowing : public testing::Test {
protected:
    Windowing() {
        script = {};
        OfferWindowSystems(kSystems);
        WNDCLASSA windowClass = {};
        windowClass.lpfnWndProc = Procedure;
        windowClass.lpszClassName = "class";
        RegisterClassA(&windowClass);
    }
    ~Windowing() override {
        DestroyWindow(kWindow);
        Run(1); // an end that is left in the queue
    }
    static HWND Create(const char* name = "class") {
        return CreateWindowExA(0, name, "title", WS_POPUP | WS_VISIBLE, 0, 0, 640, 480, nullptr, nullptr,
                               nullptr, nullptr);
    }
    // Handles messages until the window has seen so many, or the queue ends.
    std::vector<UINT> Run(std::size_t count) {
        script.messages.clear();
        while (script.messages.size() < count && (got_ = GetMessageA(&message_, nullptr, 0, 0)) > 0)
            DispatchMessageA(&message_);
        return script.messages;
    }

    MSG message_ = {};
    BOOL got_ = -1;
};

using Messages = std::vector<UINT>;

TEST_F(Windowing, OneWindowLivesFromWmCreateToWmDestroy) {
    EXPECT_STREQ(UsedWindowSystem().name, "fake");
    EXPECT_EQ(Create("another class"), nullptr);
    script.answer = -1;
    EXPECT_EQ(Create(), nullptr);
    EXPECT_EQ(script.calls, "destroy ") << "never shown";
    script.answer = 0;
    ASSERT_EQ(Create(), kWindow);
    EXPECT_EQ(Create(), nullptr) << "a second one";
    EXPECT_TRUE(ShowWindow(kWindow, SW_SHOW)) << "it was shown before";
    SetCursor(nullptr);
    EXPECT_EQ(Run(1), Messages{WM_SIZE}) << "from while it was made";
    script.events = [] {
        ReportPointer(1, 1); // which the window does not live to see
        ReportDestruction();
    };
    EXPECT_EQ(Run(1), Messages{WM_DESTROY});
    EXPECT_EQ(got_, FALSE);
    EXPECT_EQ(script.calls, "destroy show hide destroy wait40 ");
    EXPECT_FALSE(PostMessageA(kWindow, WM_CLOSE, 0, 0));
}

TEST_F(Windowing, ReportsBecomeMessages) {
    ASSERT_EQ(Create(), kWindow);
    script.events = [] {
        constexpr unsigned long kLetter = 0x61;
        ReportHeldKey(36);
        for (const bool pressed : {true, false, true}) // a repeat, its end, and a press for us
            ReportKey(36, kLetter, false, pressed);
        ReportKey(38, kLetter, true, true);
        for (const unsigned long keysym : {0xFFE9ul, 0xFFEAul, 0xFFC7ul}) // both Alt keys, F10
            ReportKey(64, keysym, false, false);
        ReportButton(PointerButton::Middle, 1, 2);
        ReportButton(PointerButton::Right, 1, 2);
        ReportPointer(-1, 2);
        ReportActivation(false);
        script.events = [] { RequestEnd(); }; // as a signal does
    };
    EXPECT_EQ(Run(11), (Messages{WM_SIZE, WM_KEYDOWN, WM_SYSKEYDOWN, WM_SYSKEYUP, WM_SYSKEYUP, WM_SYSKEYUP,
                                 WM_MBUTTONDOWN, WM_RBUTTONDOWN, WM_MOUSEMOVE, WM_ACTIVATEAPP, WM_ACTIVATE}));
    EXPECT_EQ(Run(1), Messages{WM_DESTROY});
    EXPECT_EQ(script.calls, "show wait0 wait40 destroy ") << "it waits for nothing while messages are left";
    EXPECT_TRUE(got_ == FALSE && message_.wParam == 3) << "the end, with its code";
    Run(1);
    EXPECT_EQ(got_, -1) << "nothing could ever come";
}

TEST_F(Windowing, WithoutOpenGlTheWindowIsBlackAndWhoWaitsForItIsTold) {
    ASSERT_EQ(Create(), kWindow);
    const PIXELFORMATDESCRIPTOR wanted = {};
    for (const bool hasOpenGl : {false, true}) {
        script.hasOpenGl = hasOpenGl;
        script.calls = "";
        CallWhenOpenGlIsThere([] { Note("told"); });
        const HDC dc = GetDC(kWindow);
        EXPECT_EQ(ChoosePixelFormat(dc, &wanted), 0);
        EXPECT_EQ(GetLastError(), hasOpenGl ? ERROR_NOT_SUPPORTED : ERROR_INVALID_WINDOW_HANDLE);
        EXPECT_EQ(script.calls, "black told ");
        ReleaseDC(kWindow, dc);
    }
}

// The seconds that so many frames take at least: the first is due at once.
double SecondsFor(int frames) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < frames; ++i)
        framePace.Await();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST_F(Windowing, FramesAreApartOnlyWhereTheUsersSettingsHoldAndTheClockIsNotTurned) {
    const TempFolder folder;
    const std::string name = "tamblor/tamblor.conf";
    setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
    unsetenv("TAMBLOR_CLOCK");
    const auto secondsForSix = [&](const std::string& settings) {
        folder.Write(name, settings);
        EXPECT_EQ(Create(), kWindow);
        const double seconds = SecondsFor(6);
        DestroyWindow(kWindow);
        Run(1);
        return seconds;
    };
    const double kClose = 0.002; // how near a frame may come
    EXPECT_LT(secondsForSix("max_fps = 2"), 1) << "none hold";
    HonourSettings();
    EXPECT_GE(secondsForSix("max_fps = 20"), 5 / 20.0 - kClose);
    EXPECT_GE(secondsForSix(""), 5 / 60.0 - kClose);
    EXPECT_LT(secondsForSix("max_fps = 0"), 5 / 60.0);
    // The end does not wait until a frame is due.
    folder.Write(name, "max_fps = 1");
    EXPECT_EQ(Create(), kWindow);
    std::thread end([] {
        usleep(50000);
        DestroyWindow(kWindow);
    });
    EXPECT_LT(SecondsFor(1), 0.8);
    end.join();
    Run(1);
    setenv("TAMBLOR_CLOCK", folder.File(name).c_str(), 1);
    EXPECT_LT(secondsForSix("max_fps = 2"), 1);
    unsetenv("TAMBLOR_CLOCK");
}

TEST_F(Windowing, NoFrameIsDueWhileNobodySeesTheWindowAndTheEndWakesTheLoop) {
    ASSERT_EQ(Create(), kWindow);
    for (const bool byEnd : {false, true}) {
        std::atomic<int> frames = 0;
        ReportVisibility(false);
        std::thread loop([&] {
            for (; frames < 3; ++frames)
                framePace.Await();
        });
        usleep(50000);
        EXPECT_EQ(frames, 0);
        byEnd ? static_cast<void>(DestroyWindow(kWindow)) : ReportVisibility(true);
        loop.join();
    }
}

TEST(Battery, IsInUseWhenItDischargesAndNothingElseGivesPower) {
    using Files = std::vector<std::pair<std::string, std::string>>;
    const std::pair<const char*, std::string> kBattery = {"B/type", "Battery"},
                                              kInUse = {"B/status", "Discharging"};
    const std::pair<Files, bool> cases[] = {
        {{{"AC/type", "Mains"}, {"AC/online", "0"}}, false},
        {{{"AC/type", "Mains"}, {"AC/online", "0"}, kBattery, kInUse}, true},
        {{{"U/type", "USB"}, {"U/online", "1"}, kBattery, kInUse}, false},
        {{kBattery, {"B/status", "Full"}}, false},
        {{kBattery, kInUse, {"B/scope", "Device"}}, false}, // a mouse's
    };
    for (const auto& [files, inUse] : cases) {
        const TempFolder folder;
        for (const auto& [file, text] : files)
            folder.Write(file, text + "\n");
        EXPECT_EQ(IsOnBattery(folder.Path().c_str()), inUse) << testing::PrintToString(files);
    }
    EXPECT_FALSE(IsOnBattery("/none"));
}

TEST(PixelFormat, TheNearestConfigurationIsTaken) {
    const GlConfig kDeep = {nullptr, 24, 0}, kFlat = {nullptr, 1, 8}, kFull = {nullptr, 24, 8},
                   kSeeThrough = {nullptr, 32, 16, 4, false}, kTwo = {nullptr, 24, 8, 2},
                   kFour = {nullptr, 24, 8, 4}, kEight = {nullptr, 24, 8, 8};
    const struct {
        std::vector<GlConfig> configs;
        int depth, stencil, samples;
        int chosen; // -1: none
    } cases[] = {
        {{kSeeThrough, kFull, kFull}, 16, 8, 0, 1}, // the screen's colours first, then the order
        {{kSeeThrough, kFull}, 16, 8, 4, 1},
        {{kDeep, kFull, kSeeThrough}, 16, 16, 0, 2},
        {{kFlat, kDeep, kFull}, 16, 16, 0, 2}, // 8 bits of stencil if not 16
        {{kFlat, kDeep}, 16, 16, 0, 1},        // none if not 8
        {{kEight, kFour, kFull, kFull, kTwo}, 16, 8, 0, 2},
        {{kFull, kTwo, kFour, kFour, kEight}, 16, 8, 4, 2}, // as many as are wanted, the first of them
        {{kFull, kTwo, kEight}, 16, 8, 6, 1},               // fewer if not
        {{kEight, kFour}, 16, 8, 2, 1},                     // and the fewest if there are none
        {{}, 16, 16, 0, -1},
    };
    for (const auto& c : cases) {
        const GlConfig* chosen = ChooseConfig(c.configs, c.depth, c.stencil, c.samples);
        EXPECT_EQ(chosen != nullptr ? chosen - c.configs.data() : -1, c.chosen) << &c - cases;
    }
}

} // namespace
