// A server without OpenGL: the saver covers the screen in black, says what is missing, and ends as ever.
#include "integration/saver_process.h"

namespace {

class NoOpenGL : public ShowFixture {
protected:
    NoOpenGL() : ShowFixture(320, 240, "GLX") {}
};

TEST_F(NoOpenGL, TheWholeScreenIsBlackUntilInputEndsIt) {
    const std::string reason = "no OpenGL, the screen stays black: ", package = "xserver-xorg-core";
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
        for (const std::string& text : {saver.Errors(), saver.Trace()}) {
            const std::string line = text.substr(std::min(text.find(reason), text.size()));
            EXPECT_NE(line.substr(0, line.find('\n')).find(package), std::string::npos) << text;
        }
    }
}

} // namespace
