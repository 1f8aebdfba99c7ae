// A machine without OpenGL: the saver covers the screen in black, says what is missing, and ends as ever.
#include "integration/saver_process.h"

#include <gtest/gtest.h>

#include <X11/keysym.h>

#include <ostream>
#include <unistd.h>

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;

struct Lack {
    const char* extension; // that the server is without; null: it has all
    const char* drivers;   // where the client looks for its drivers; null: where they are
    const char* package;   // that brings what is missing
};

void PrintTo(const Lack& lack, std::ostream* to) {
    *to << lack.package;
}

class NoOpenGL : public testing::TestWithParam<Lack> {
protected:
    void SetUp() override {
        ASSERT_TRUE(display.Ok());
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

    VirtualDisplay display{kWidth, kHeight, GetParam().extension};
    SaverProcess saver;
};

TEST_P(NoOpenGL, TheWholeScreenIsBlackUntilAKey) {
    saver.Start(&display, {"/s"});
    ASSERT_TRUE(display.WaitForPixel(kWidth / 2, kHeight / 2, 0, 0));
    EXPECT_EQ(display.Photograph().CountLit(0, 0, kWidth, kHeight), 0);
    EXPECT_TRUE(display.WaitForHiddenCursor());
    saver.SetClock(SaverProcess::kStartMs + 4000);
    display.MovePointer(20, 20);
    usleep(300000); // time for a wrong close to happen
    EXPECT_TRUE(saver.Running());
    display.PressKey(XK_space);
    EXPECT_EQ(saver.WaitForExit(), 0);
    ExpectReason(saver.Errors());
    const std::string log = saver.Data().Read("tamb.log");
    ExpectReason(log.substr(std::min(log.find("#ERROR: "), log.size())));
}

TEST_P(NoOpenGL, TheMouseEndsItAfterItsTime) {
    saver.Start(&display, {"/s"});
    ASSERT_TRUE(display.WaitForPixel(kWidth / 2, kHeight / 2, 0, 0));
    saver.SetClock(SaverProcess::kStartMs + 4001);
    display.MovePointer(30, 40);
    EXPECT_EQ(saver.WaitForExit(), 0);
}

TEST_P(NoOpenGL, ThePreviewIsBlackUntilItsWindowGoes) {
    const unsigned long parent = display.CreateParent(100, 80, 152, 112, 0xFFFFFF);
    saver.Start(&display, {"/p", std::to_string(parent)});
    EXPECT_TRUE(display.WaitForPixel(150, 120, 0, 0));
    EXPECT_EQ(display.Photograph().CountLit(100, 80, 152, 112), 0);
    EXPECT_TRUE(saver.Running());
    display.DestroyParent(parent);
    EXPECT_EQ(saver.WaitForExit(), 0);
    ExpectReason(saver.Errors());
    EXPECT_EQ(saver.Data().Read("tamb.log"), "");
}

INSTANTIATE_TEST_SUITE_P(NoGlx, NoOpenGL, testing::Values(Lack{"GLX", nullptr, "xserver-xorg-core"}));
INSTANTIATE_TEST_SUITE_P(NoDriver, NoOpenGL,
                         testing::Values(Lack{nullptr, "/no/such/folder", "libgl1-mesa-dri"}));

} // namespace
