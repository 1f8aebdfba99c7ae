// A machine without OpenGL: the saver covers the screen in black, says what is missing, and ends as ever.
#include "integration/show_fixture.h"

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;

struct Lack {
    const char* extension; // that the server is without; null: it has all
    const char* drivers;   // where the client looks for its drivers; null: where they are
    const char* package;   // that brings what is missing
    bool byKey;            // what ends it
};

void PrintTo(const Lack& lack, std::ostream* to) {
    *to << lack.package;
}

class NoOpenGL : public ShowFixture, public testing::WithParamInterface<Lack> {
protected:
    NoOpenGL() : ShowFixture(kWidth, kHeight, GetParam().extension) {
        if (GetParam().drivers != nullptr)
            saver.environment["LIBGL_DRIVERS_PATH"] = GetParam().drivers;
    }

    // In one line; the driver's loader may add its own.
    void ExpectReason(const std::string& text) const {
        const std::size_t at = text.find("no OpenGL, the screen stays black: ");
        ASSERT_NE(at, std::string::npos) << text;
        EXPECT_NE(text.substr(at, text.find('\n', at) - at).find(GetParam().package), std::string::npos)
            << text;
    }
};

TEST_P(NoOpenGL, TheWholeScreenIsBlackUntilInputEndsIt) {
    saver.Start(&display, {"/s"});
    ASSERT_TRUE(display.WaitForPixel(kWidth / 2, kHeight / 2, 0, 0));
    EXPECT_EQ(display.Photograph().CountLit(0, 0, kWidth, kHeight), 0);
    EXPECT_TRUE(display.WaitForHiddenCursor());
    saver.SetClock(SaverProcess::kStartMs + 4000);
    display.MovePointer(20, 20);
    ExpectItGoesOn();
    if (GetParam().byKey) {
        display.PressKey(XK_space);
    } else {
        saver.SetClock(SaverProcess::kStartMs + 4001);
        display.MovePointer(30, 40);
    }
    EXPECT_EQ(saver.WaitForExit(), 0);
    ExpectReason(saver.Errors());
    ExpectReason(saver.Trace().substr(std::min(saver.Trace().find("#ERROR: "), saver.Trace().size())));
}

TEST_P(NoOpenGL, ThePreviewIsBlackUntilItsWindowGoes) {
    const unsigned long parent = display.ShowWindow(100, 80, 152, 112, 0xFFFFFF);
    saver.Start(&display, {"/p", std::to_string(parent)});
    EXPECT_TRUE(display.WaitForPixel(150, 120, 0, 0));
    EXPECT_EQ(display.Photograph().CountLit(100, 80, 152, 112), 0);
    EXPECT_TRUE(saver.Running());
    display.DestroyWindow(parent);
    EXPECT_EQ(saver.WaitForExit(), 0);
    ExpectReason(saver.Errors());
    EXPECT_EQ(saver.Trace(), "");
}

INSTANTIATE_TEST_SUITE_P(NoGlx, NoOpenGL, testing::Values(Lack{"GLX", nullptr, "xserver-xorg-core", true}));
INSTANTIATE_TEST_SUITE_P(NoDriver, NoOpenGL,
                         testing::Values(Lack{nullptr, "/no/such/folder", "libgl1-mesa-dri", false}));

} // namespace
