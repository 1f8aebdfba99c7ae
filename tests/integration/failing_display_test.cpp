// X11 that fails: OpenGL at each of its steps, the server at each moment, the window while it is drawn.
#include "integration/spied_saver.h"

namespace {

using FailingDisplay = ShowOf<SpiedSaver>;

constexpr const char* kBlack = "no OpenGL, the screen stays black: ";

TEST_F(FailingDisplay, WhateverStepOfOpenGlFailsTheScreenIsCoveredAndClosesAsEver) {
    // It is made current the second time while the scene is built, and then in the loop.
    const std::vector<std::string> shown = {"glXMakeCurrent 1",    "glXMakeCurrent 2",
                                            "glXMakeCurrent 9",    "glXQueryExtensionsString 0",
                                            "glXGetProcAddress 0", "glGetString 0"};
    const std::vector<std::string> black = {
        "glXChooseFBConfig 0",    "glXGetVisualFromFBConfig 0", "glXCreateNewContext 0", "glXMakeCurrent 0",
        "glXGetFBConfigAttrib 0", "XCreateColormap 0",          "glXQueryExtension 0"};
    // As a driver says that draws for a monitor, which the one here does not.
    std::strcpy(saver.spy->extensions, "GLX_EXT_swap_control GLX_MESA_query_renderer");
    bool byMouse = false;
    for (const bool isBlack : {false, true})
        for (const std::string& fails : isBlack ? black : shown) {
            SCOPED_TRACE(fails);
            saver.environment["TAMBLOR_FAILS"] = fails;
            Start();
            EXPECT_TRUE(display.WaitForHiddenCursor());
            EXPECT_TRUE(display.WaitUntilInputIsGrabbed());
            EXPECT_TRUE(isBlack ? display.WaitForBlack({0, 0, 320, 240}) : saver.Draws(3));
            EXPECT_EQ(saver.Errors().find(kBlack) != std::string::npos, isBlack) << saver.Errors();
            saver.SetClock(4001);
            byMouse = !byMouse;
            byMouse ? display.ClickButton(1) : display.PressKey(XK_space);
            EXPECT_EQ(saver.WaitForExit(), 0) << saver.Errors();
            EXPECT_TRUE(display.VisibleWindows().empty());
            EXPECT_FALSE(display.CursorIsHidden());
        }
    // Without GLX, the last of these, it says which package has it.
    for (const std::string& text : {saver.Errors(), saver.Trace()}) {
        const std::size_t at = text.find(kBlack), package = text.find("xserver-xorg-core", at);
        EXPECT_LT(package, text.find('\n', at)) << text;
    }
}

TEST_F(FailingDisplay, ItsEndEndsTheSaverQuietly) {
    std::mt19937 random(15);
    const int count = Times(8, 150); // half of them while the driver begins to ask the server
    for (int i = 0; i < count + static_cast<int>(std::size(kInEachStage)); ++i) {
        VirtualDisplay dying(320, 240);
        ASSERT_NE(dying.connection, nullptr);
        saver.environment["DISPLAY"] = dying.Name();
        saver.Start({"/s"});
        if (i < count) {
            usleep(AnyMoment(&random) * 1000);
        } else {
            ASSERT_TRUE(saver.Draws());
            saver.SetClock(kInEachStage[i - count]);
            ASSERT_TRUE(saver.Draws(2));
        }
        dying.Kill();
        EXPECT_EQ(saver.WaitForExit(), 0) << i << saver.Errors();
        EXPECT_EQ(saver.Errors().find("Sanitizer"), std::string::npos) << saver.Errors();
    }
}

TEST_F(FailingDisplay, ChangesInTheMiddleOfAFrameAreFollowed) {
    constexpr Area kPart = {100, 100, 200, 100}, kOther = {0, 0, 90, 100};
    display.SetMonitor("one", {0, 0, 320, 240}, true);
    Start();
    ASSERT_TRUE(saver.Draws());
    const Window own = display.VisibleWindows().back();
    const std::function<void()> changes[] = {
        [&] { XResizeWindow(display.connection, own, 90, 70); },
        [&] { XResizeWindow(display.connection, own, 320, 240); },
        [&] { XMoveResizeWindow(display.connection, own, -30, -20, 60, 50); },
        [&] { XUnmapWindow(display.connection, own); },
        [&] { XMapWindow(display.connection, own); },
        [&] { display.SetMonitor("one", kPart, true); },
        [&] { display.SetMonitor("two", kOther, true); },
        [&] { display.DeleteMonitor("two"); },
        [&] { display.DeleteMonitor("one"); },
    };
    for (const PlatformSpy::Place place : {PlatformSpy::BeforeClearing, PlatformSpy::BeforeShowing})
        for (const auto& change : changes) {
            SCOPED_TRACE(testing::Message() << &change - changes << " at " << place);
            ASSERT_TRUE(saver.HoldFrame(place)) << saver.Errors();
            change();
            display.Sync();
            usleep(100000); // for its other thread
            saver.GoOn();
            ASSERT_TRUE(saver.Draws(3)) << saver.Errors();
        }
    saver.SetClock(0);
    EXPECT_TRUE(display.WaitForPixel(160, 120, display.DesktopPixel(160, 120), 45))
        << "and all of it is shown";
    ExpectAKeyEndsIt();
}

} // namespace
