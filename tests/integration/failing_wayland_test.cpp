// Wayland that fails: OpenGL at each of its steps, the compositor at each moment, the output in the middle of
// a frame, and the saver's process itself.
#include "integration/compositor.h"
#include "integration/spied_saver.h"

namespace {

using FailingWayland = WaylandShowOf<SpiedSaver>;

TEST_F(FailingWayland, WhateverStepOfOpenGlFailsTheScreenIsCoveredAndClosesAsEver) {
    const std::vector<std::string> shown = {"eglMakeCurrent 1", "eglMakeCurrent 5",    "eglSwapBuffers 0",
                                            "eglSwapBuffers 3", "eglGetProcAddress 0", "glGetString 0"};
    const std::vector<std::string> black = {"eglGetPlatformDisplay 0",
                                            "eglInitialize 0",
                                            "eglBindAPI 0",
                                            "eglChooseConfig 0",
                                            "eglChooseConfig 1",
                                            "wl_egl_window_create 0",
                                            "eglCreatePlatformWindowSurface 0",
                                            "eglCreateContext 0",
                                            "eglMakeCurrent 0"};
    for (const bool isBlack : {false, true})
        for (const std::string& fails : isBlack ? black : shown) {
            SCOPED_TRACE(fails);
            ASSERT_TRUE(compositor.WaitForDesktops() && compositor.WaitForFocus());
            saver.environment["TAMBLOR_FAILS"] = fails;
            saver.Start({"/s"});
            ASSERT_TRUE(TakesTheKeyboard()) << saver.Errors();
            EXPECT_TRUE(isBlack ? compositor.WaitForBlack(0) : saver.Draws());
            EXPECT_EQ(saver.Errors().find("no OpenGL, the screen stays black: ") != std::string::npos,
                      isBlack)
                << saver.Errors();
            ExpectAKeyEndsIt();
        }
}

TEST_F(FailingWayland, ChangesInTheMiddleOfAFrameAreFollowed) {
    saver.Start({"/s"});
    ASSERT_TRUE(TakesTheKeyboard() && saver.Draws()) << saver.Errors();
    for (const PlatformSpy::Place place : {PlatformSpy::BeforeClearing, PlatformSpy::BeforeShowing})
        for (const char* change : {"mode --custom 90x70@60Hz", "mode --custom 640x480@60Hz", "scale 2",
                                   "scale 1", "transform 90", "transform normal"}) {
            SCOPED_TRACE(testing::Message() << change << " at " << place);
            ASSERT_TRUE(saver.HoldFrame(place)) << saver.Errors();
            ASSERT_TRUE(compositor.Command(std::string("output HEADLESS-1 ") + change));
            usleep(100000); // for its other thread
            saver.GoOn();
            ASSERT_TRUE(saver.Draws(3)) << saver.Errors();
        }
    ExpectAKeyEndsIt();
}

TEST_F(FailingWayland, EndedAtAnyMomentTheSaverLeavesTheDesktopAsItWas) {
    std::mt19937 random(16);
    for (const int number : {SIGTERM, SIGKILL})
        for (int i = 0; i < Times(2, 25); ++i) {
            const unsigned moment = AnyMoment(&random);
            SCOPED_TRACE(testing::Message() << "signal " << number << " after " << moment << " ms");
            saver.Start({"/s"});
            usleep(moment * 1000);
            const int status = saver.End(number);
            EXPECT_TRUE(status == 0 || (status == -2 && saver.EndSignal() == number))
                << status << saver.Errors();
            EXPECT_TRUE(compositor.WaitForFocus() && compositor.WaitForDesktops());
        }
    saver.Start({"/s"});
    ASSERT_TRUE(TakesTheKeyboard() && saver.Draws());
    ExpectAKeyEndsIt();
}

TEST(DyingCompositor, EndsTheSaverQuietly) {
    std::mt19937 random(17);
    SpiedSaver saver;
    const int count = Times(2, 50), inStages = Times(2, static_cast<int>(std::size(kInEachStage)));
    for (int i = 0; i < count + inStages; ++i) {
        Compositor dying({{}}, "xwayland disable");
        ASSERT_TRUE(dying.ready);
        dying.server.Offer(&saver.environment);
        saver.Start({"/s"});
        if (i < count) {
            usleep(AnyMoment(&random) * 1000);
        } else {
            ASSERT_TRUE(saver.Draws()) << saver.Errors();
            saver.SetClock(kInEachStage[2 * (i - count) % static_cast<int>(std::size(kInEachStage))]);
            ASSERT_TRUE(saver.Draws(2));
        }
        dying.server.program.Kill();
        EXPECT_EQ(saver.WaitForExit(), 0) << i << saver.Errors();
        EXPECT_EQ(saver.Errors().find("Sanitizer"), std::string::npos) << saver.Errors();
    }
}

} // namespace
