// Wayland that fails: OpenGL at each of its steps, the compositor at each moment, the output in the middle of
// a frame, and the saver's process itself.
#include "integration/compositor.h"
#include "integration/failing_saver.h"

namespace {

class FailingWayland : public testing::Test {
protected:
    FailingWayland() : compositor({{}}, "xwayland disable") { compositor.server.Offer(&saver.environment); }
    void SetUp() override { ASSERT_TRUE(compositor.ready) << compositor.server.folder.Read("errors"); }

    bool TakesTheKeyboard() {
        return Eventually(
                   [this] { return (compositor.Pump() && !compositor.focused) || !saver.Running(); }) &&
               saver.Running();
    }
    void ExpectAKeyEndsIt() {
        compositor.PressKey(KEY_SPACE);
        EXPECT_EQ(saver.WaitForExit(), 0) << saver.Errors();
        EXPECT_TRUE(compositor.WaitForFocus());
    }

    Compositor compositor;
    FailingSaver saver;
};

TEST_F(FailingWayland, WhateverStepOfOpenGlFailsTheScreenIsCoveredAndClosesAsEver) {
    const struct {
        const char* fails;
        bool isBlack;
    } cases[] = {
        {"eglGetPlatformDisplay 0", true},
        {"eglInitialize 0", true},
        {"eglBindAPI 0", true},
        {"eglChooseConfig 0", true},
        {"eglChooseConfig 1", true},
        {"wl_egl_window_create 0", true},
        {"eglCreatePlatformWindowSurface 0", true},
        {"eglCreateContext 0", true},
        {"eglMakeCurrent 0", true},
        {"eglMakeCurrent 1", false},
        {"eglMakeCurrent 5", false},
        {"eglSwapBuffers 0", false},
        {"eglSwapBuffers 3", false},
        {"eglGetProcAddress 0", false},
        {"glGetString 0", false},
    };
    for (const auto& [fails, isBlack] : cases) {
        SCOPED_TRACE(fails);
        ASSERT_TRUE(compositor.WaitForDesktops() && compositor.WaitForFocus());
        saver.environment["TAMBLOR_FAILS"] = fails;
        saver.Start({"/s"});
        ASSERT_TRUE(TakesTheKeyboard()) << saver.Errors();
        if (isBlack) {
            EXPECT_TRUE(compositor.WaitForBlack(0));
        } else {
            EXPECT_TRUE(saver.Draws());
        }
        EXPECT_EQ(saver.Errors().find("no OpenGL, the screen stays black: ") != std::string::npos, isBlack)
            << saver.Errors();
        ExpectAKeyEndsIt();
    }
}

TEST_F(FailingWayland, ChangesInTheMiddleOfAFrameAreFollowed) {
    saver.Start({"/s"});
    ASSERT_TRUE(TakesTheKeyboard() && saver.Draws()) << saver.Errors();
    for (const Hold::Place place : {Hold::BeforeClearing, Hold::BeforeShowing})
        for (const char* change : {"mode --custom 90x70@60Hz", "mode --custom 640x480@60Hz", "scale 2",
                                   "disable", "enable", "scale 1", "transform 90", "transform normal"}) {
            SCOPED_TRACE(testing::Message() << change << " at " << place);
            const bool isOff = std::strcmp(change, "enable") == 0; // no frame comes meanwhile
            ASSERT_TRUE(isOff || saver.HoldFrame(place)) << saver.Errors();
            ASSERT_TRUE(compositor.Command(std::string("output HEADLESS-1 ") + change));
            usleep(100000); // for its other thread
            saver.GoOn();
            usleep(100000);
            ASSERT_TRUE(saver.Running()) << saver.Errors();
            if (std::strcmp(change, "disable") != 0) {
                ASSERT_TRUE(saver.Draws(3)) << saver.Errors();
            }
        }
    ExpectAKeyEndsIt();
}

TEST_F(FailingWayland, EndedAtAnyMomentTheSaverLeavesTheDesktopAsItWas) {
    Moments moments(16);
    for (const int number : {SIGTERM, SIGKILL})
        for (int i = 0; i < Times(2, 25); ++i) {
            const unsigned moment = moments.Next();
            SCOPED_TRACE(testing::Message() << "signal " << number << " after " << moment << " ms");
            saver.Start({"/s"});
            usleep(moment * 1000);
            saver.Signal(number);
            const int status = saver.WaitForExit();
            EXPECT_TRUE(status == 0 || (status == -2 && saver.EndSignal() == number))
                << status << saver.Errors();
            EXPECT_TRUE(compositor.WaitForFocus() && compositor.WaitForDesktops());
            const std::size_t before = compositor.typed.size();
            compositor.PressKey(KEY_A);
            EXPECT_TRUE(
                Eventually([&] { return compositor.Pump() && compositor.typed.size() == before + 1; }));
        }
    saver.Start({"/s"});
    ASSERT_TRUE(TakesTheKeyboard() && saver.Draws());
    ExpectAKeyEndsIt();
}

TEST(DyingCompositor, EndsTheSaverQuietly) {
    Moments moments(17);
    FailingSaver saver;
    const int count = Times(2, 50), inStages = Times(2, static_cast<int>(std::size(kInEachStage)));
    for (int i = 0; i < count + inStages; ++i) {
        Compositor dying({{}}, "xwayland disable");
        ASSERT_TRUE(dying.ready);
        dying.server.Offer(&saver.environment);
        saver.Start({"/s"});
        if (i < count) {
            usleep(moments.Next() * 1000);
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
