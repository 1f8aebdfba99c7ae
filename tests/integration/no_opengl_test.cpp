// A machine without OpenGL: the saver covers the screen in black, says what is missing, and ends as ever.
#include "integration/saver_process.h"

namespace {

// With true, the server knows nothing of OpenGL, else there is no driver.
class NoOpenGL : public ShowFixture, public testing::WithParamInterface<bool> {
protected:
    NoOpenGL() : ShowFixture(320, 240, GetParam() ? "GLX" : nullptr) {
        if (!GetParam())
            saver.environment["LIBGL_DRIVERS_PATH"] = "/no/such/folder";
    }

    // In one line; the driver's loader may add its own.
    static void ExpectReason(const std::string& text) {
        const std::size_t at = text.find("no OpenGL, the screen stays black: ");
        ASSERT_NE(at, std::string::npos) << text;
        const char* package = GetParam() ? "xserver-xorg-core" : "libgl1-mesa-dri"; // what is missing
        EXPECT_NE(text.substr(at, text.find('\n', at) - at).find(package), std::string::npos) << text;
    }
};

TEST_P(NoOpenGL, TheWholeScreenIsBlackUntilInputEndsIt) {
    for (const bool byKey : {true, false}) {
        saver.Start(display, {"/s"});
        EXPECT_TRUE(display.WaitForBlack({0, 0, 320, 240}));
        EXPECT_TRUE(display.WaitForHiddenCursor());
        saver.SetClock(4000);
        display.MovePointer(20, 20);
        ExpectItGoesOn();
        saver.SetClock(byKey ? 4000 : 4001);
        byKey ? display.PressKey(XK_space) : display.MovePointer(30, 40);
        EXPECT_EQ(saver.WaitForExit(), 0);
        ExpectReason(saver.Errors());
        ExpectReason(saver.Trace().substr(std::min(saver.Trace().find("#ERROR: "), saver.Trace().size())));
    }
}

TEST_P(NoOpenGL, ThePreviewIsBlackUntilItsWindowGoes) {
    const Window parent = display.ShowWindow({100, 80, 152, 112}, 0xFFFFFF);
    saver.Start(display, {"/p", std::to_string(parent)});
    EXPECT_TRUE(display.WaitForBlack({100, 80, 152, 112}));
    EXPECT_TRUE(saver.Running());
    display.DestroyWindow(parent);
    EXPECT_EQ(saver.WaitForExit(), 0);
    ExpectReason(saver.Errors());
    EXPECT_EQ(saver.Trace(), "");
}

INSTANTIATE_TEST_SUITE_P(OfTwoKinds, NoOpenGL, testing::Values(true, false));

} // namespace
