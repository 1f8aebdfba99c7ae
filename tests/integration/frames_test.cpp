// How often the show draws, and when it does not.
#include "integration/gl_spy.h"
#include "integration/saver_process.h"

#include <chrono>
#include <fstream>

namespace {

class Frames : public ShowFixture {
protected:
    Frames() {
        saver.environment["TAMBLOR_SPY"] = saver.data.Write("spy", std::string(sizeof(GlSpy), '\0'));
        saver.environment["LD_PRELOAD"] = GL_SPY;
        saver.environment["ASAN_OPTIONS"] += ":verify_asan_link_order=0";
        const int file = open(saver.environment["TAMBLOR_SPY"].c_str(), O_RDWR);
        spy = static_cast<GlSpy*>(mmap(nullptr, sizeof(GlSpy), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0));
        close(file);
    }
    ~Frames() override {
        saver.Kill();
        munmap(spy, sizeof(GlSpy));
    }

    void Configure(const std::string& settings) const {
        std::filesystem::create_directories(saver.data.File("config/tamblor"));
        saver.data.Write("config/tamblor/tamblor.conf", settings);
    }
    std::uint32_t Shown() const { return std::atomic_ref(spy->frames); }
    bool Draws() const {
        return Eventually([this, before = Shown()] { return Shown() > before; });
    }
    // No frame comes for a while, once the one that was being drawn is there.
    bool StopsDrawing() const {
        std::uint32_t before = 0;
        return Eventually([&] {
            before = Shown();
            usleep(1000000); // a busy machine may take most of that for a frame
            return Shown() == before;
        });
    }
    // The frames in a second of the machine's own clock.
    double Rate() const {
        const auto start = std::chrono::steady_clock::now();
        const std::uint32_t before = Shown();
        usleep(1000000);
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        return (Shown() - before) / passed.count();
    }
    // What the process has used of the processors so far, in hundredths of a second.
    long Used() const {
        std::ifstream file("/proc/" + std::to_string(saver.Id()) + "/stat");
        std::string word;
        long used = 0, each = 0;
        for (int i = 1; i <= 15 && file >> word; ++i)
            if (i >= 14 && (each = std::stol(word)) > 0)
                used += each;
        return used;
    }

    GlSpy* spy = nullptr;
};

TEST_F(Frames, AreNotShownMoreOftenThanTheUserWants) {
    saver.environment.erase("TAMBLOR_CLOCK"); // a clock that is turned asks for every frame
    Configure("max_fps = 5\n");
    Start();
    ASSERT_TRUE(Draws());
    EXPECT_LE(Rate(), 6.5);
    ExpectAKeyEndsIt();
    Configure("max_fps = 1\n");
    auto best = std::chrono::steady_clock::duration::max(); // of several: the machine may be busy
    for (int i = 0; i < 5 && best > std::chrono::milliseconds(600); ++i) {
        Start();
        ASSERT_TRUE(Draws());
        usleep(100000); // asleep until the next frame
        const auto start = std::chrono::steady_clock::now();
        ExpectAKeyEndsIt();
        best = std::min(best, std::chrono::steady_clock::now() - start);
    }
    EXPECT_LT(best, std::chrono::milliseconds(600)) << "it is woken";
}

TEST_F(Frames, WaitForTheMonitorByWhateverTheDriverHas) {
    const std::pair<const char*, const char*> drivers[] = {
        {"GLX_SGI_swap_control GLX_MESA_swap_control GLX_EXT_swap_control_tear GLX_EXT_swap_control", "EXT"},
        {"GLX_EXT_swap_control_tear GLX_SGI_swap_control GLX_MESA_swap_control", "MESA"},
        {"GLX_SGI_swap_control", "SGI"},
        {"GLX_EXT_swap_control_tear", ""},
    };
    for (const auto& [extensions, function] : drivers) {
        *spy = {};
        std::strcpy(spy->extensions, extensions);
        Start();
        ASSERT_TRUE(Draws());
        EXPECT_STREQ(spy->intervalBy, function);
        EXPECT_EQ(spy->interval, *function != '\0' ? 1 : 0);
        ExpectAKeyEndsIt();
    }
}

TEST_F(Frames, AreMultisampledWhereACardDrawsOrTheUserWantsIt) {
    const struct {
        const char* settings;
        const char* extensions; // "GLX_none": the renderer has a name only
        int accelerated;
        int samples;
    } cases[] = {
        {"", "GLX_MESA_query_renderer", 1, 4},
        {"", "GLX_MESA_query_renderer", 0, 0},
        {"", "GLX_none", 1, 4},
        {"", "GLX_none", 0, 0},
        {"samples = 4", "", 0, 4},
        {"samples = 0", "GLX_MESA_query_renderer", 1, 0},
    };
    for (const auto& c : cases) {
        *spy = {};
        std::strcpy(spy->extensions, c.extensions);
        spy->accelerated = c.accelerated;
        Configure(c.settings);
        Start();
        ASSERT_TRUE(Draws());
        EXPECT_EQ(spy->samples, c.samples) << &c - cases;
        ExpectAKeyEndsIt();
    }
}

TEST_F(Frames, AreNotDrawnWhileTheMonitorIsOff) {
    Start();
    ASSERT_TRUE(Draws());
    for (const int level : {1, 3}) {
        std::atomic_ref(spy->powerLevel).store(level);
        ASSERT_TRUE(StopsDrawing());
        const long before = Used();
        usleep(1500000);
        EXPECT_LE(Used() - before, 2) << "it sleeps";
        std::atomic_ref(spy->powerLevel).store(0);
        EXPECT_TRUE(Draws());
    }
    for (const bool byKey : {true, false}) {
        std::atomic_ref(spy->powerLevel).store(3);
        ASSERT_TRUE(StopsDrawing());
        if (byKey)
            display.PressKey(XK_space);
        else
            saver.Signal(SIGTERM);
        EXPECT_EQ(saver.WaitForExit(), 0);
        EXPECT_TRUE(saver.Trace().ends_with("unload devil\n")) << saver.Trace();
        std::atomic_ref(spy->powerLevel).store(0);
        if (byKey)
            Start();
    }
}

TEST_F(Frames, AreNotDrawnInAPaneThatNobodySees) {
    spy->powerLevel = -1; // a server without the extension
    const Window pane = display.ShowWindow({20, 20, 160, 120});
    saver.Start(display, {"/p", std::to_string(pane)});
    ASSERT_TRUE(Eventually([&] { return Shown() > 0; }));
    XUnmapWindow(display.connection, pane);
    display.Sync();
    EXPECT_TRUE(StopsDrawing());
    XMapWindow(display.connection, pane);
    display.Sync();
    EXPECT_TRUE(Draws());
    const Window cover = display.ShowWindow({0, 0, 320, 240});
    EXPECT_TRUE(StopsDrawing());
    display.DestroyWindow(cover);
    EXPECT_TRUE(Draws());
    XUnmapWindow(display.connection, pane);
    display.Sync();
    EXPECT_TRUE(StopsDrawing());
    display.DestroyWindow(pane);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

} // namespace
