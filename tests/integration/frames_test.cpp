// How the show's frames are drawn, and when they are not.
#include "integration/spied_saver.h"

namespace {

class Frames : public ShowOf<SpiedSaver> {
protected:
    PlatformSpy* spy = saver.spy;

    // No frame comes for a while, once the one that was being drawn is there.
    bool StopsDrawing() const {
        std::uint32_t before = 0;
        return Eventually([&] {
            before = spy->frames;
            usleep(1000000); // a busy machine may take most of that for a frame
            return spy->frames == before;
        });
    }
};

TEST_F(Frames, WaitForTheMonitorByWhateverThereIsAndAreMultisampledWhereACardDrawsOrTheUserWantsIt) {
    const struct {
        const char* settings;
        const char* extensions; // without that for renderers, they have a name only
        int accelerated;
        int samples;
        const char* function;
    } cases[] = {
        {"", "GLX_SGI_swap_control GLX_MESA_swap_control GLX_EXT_swap_control_tear GLX_EXT_swap_control", 1,
         4, "EXT"},
        {"", "GLX_EXT_swap_control_tear GLX_SGI_swap_control GLX_MESA_swap_control", 0, 0, "MESA"},
        {"", "GLX_MESA_query_renderer GLX_SGI_swap_control", 1, 4, "SGI"},
        {"", "GLX_MESA_query_renderer GLX_EXT_swap_control_tear", 0, 0, ""},
        {"samples = 4", "GLX_EXT_swap_control", 0, 4, "EXT"},
        {"samples = 0", "GLX_MESA_query_renderer", 1, 0, ""},
    };
    for (const auto& c : cases) {
        new (spy) PlatformSpy();
        std::strcpy(spy->extensions, c.extensions);
        spy->accelerated = c.accelerated;
        saver.Configure(c.settings);
        Start();
        ASSERT_TRUE(saver.Draws());
        EXPECT_EQ(spy->samples, c.samples) << &c - cases;
        EXPECT_STREQ(spy->intervalBy, c.function) << &c - cases;
        EXPECT_EQ(spy->interval, *c.function != '\0' ? 1 : 0) << &c - cases;
        ExpectAKeyEndsIt();
    }
}

TEST_F(Frames, AreNotDrawnWhileTheMonitorIsOff) {
    Start();
    ASSERT_TRUE(saver.Draws());
    for (const int level : {1, 3}) {
        spy->powerLevel = level;
        ASSERT_TRUE(StopsDrawing());
        EXPECT_TRUE(saver.Sleeps());
        spy->powerLevel = 0;
        EXPECT_TRUE(saver.Draws());
    }
    spy->powerLevel = 3;
    ASSERT_TRUE(StopsDrawing());
    ExpectAKeyEndsIt();
}

TEST_F(Frames, AreNotDrawnInAPaneThatNobodySees) {
    spy->powerLevel = -1; // a server without the extension
    const Window pane = display.ShowWindow({20, 20, 160, 120});
    saver.Start({"/p", std::to_string(pane)});
    ASSERT_TRUE(saver.Draws());
    XUnmapWindow(display.connection, pane);
    display.Sync();
    EXPECT_TRUE(StopsDrawing());
    XMapWindow(display.connection, pane);
    display.Sync();
    EXPECT_TRUE(saver.Draws());
    const Window cover = display.ShowWindow({0, 0, 320, 240});
    EXPECT_TRUE(StopsDrawing());
    display.DestroyWindow(cover);
    EXPECT_TRUE(saver.Draws());
    display.DestroyWindow(pane);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

} // namespace
