#include "base/memory.h"
#include "fakes/fake_desktop.h"
#include "fakes/fake_win32.h"
#include "image/desktop_shot.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

class Desktop : public testing::Test {
protected:
    Desktop() {
        ResetFakeWin32();
        fakeDesktop = {};
    }

    // A desktop of w x h pixels of which (x, y) is blue x, green y, red 0x30; rows `padding` bytes apart.
    void Show(int w, int h, int padding) {
        fakeWin32.screenWidth = w;
        fakeWin32.screenHeight = h;
        const int pitch = 4 * w + padding;
        bytes_.assign(static_cast<std::size_t>(pitch) * static_cast<std::size_t>(h - 1) +
                          4 * static_cast<std::size_t>(w), // the last row ends the block
                      0xEE);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                unsigned char* pixel = &bytes_[static_cast<std::size_t>(y * pitch + 4 * x)];
                pixel[0] = static_cast<unsigned char>(x);
                pixel[1] = static_cast<unsigned char>(y);
                pixel[2] = 0x30;
                pixel[3] = 0;
            }
        fakeDesktop.pixels = {bytes_.data(), pitch, w, h};
    }

    std::vector<unsigned char> bytes_;
};

TEST_F(Desktop, IsPhotographedWhateverThePitchWithABlackMargin) {
    for (const int padding : {0, 12}) {
        fakeDesktop.calls.clear();
        Show(1280, 1024, padding);
        {
            FXScrShot shot;
            ASSERT_TRUE(shot.Update());
            EXPECT_TRUE(shot.width == 2048 && shot.height == 1024 && shot.GetWidth() == 1280 &&
                        shot.GetHeight() == 1024);
            EXPECT_TRUE(shot.opaque);
            for (int y = 0; y < 1024; ++y)
                for (int x = 0; x < 2048; ++x) {
                    const auto blue = static_cast<unsigned>(x & 255), green = static_cast<unsigned>(y & 255);
                    const unsigned expected = x < 1280 ? 0xFF000030u | green << 8 | blue << 16 : 0xFF000000u;
                    ASSERT_EQ(shot.pixels[y * 2048 + x], expected) << x << "," << y;
                }
            EXPECT_FALSE(fakeDesktop.held);
        }
        EXPECT_EQ(fakeDesktop.calls, "copy 1280x1024, lock, unlock, release");
    }
}

TEST_F(Desktop, ThatCannotBeHadLeavesNoCopyBehind) {
    constexpr std::uint32_t kOld = 0x01020304u, kBlack = 0xFF000000u;
    const struct {
        const char* what;
        void (*prepare)();
        int width; // of the canvas afterwards
        std::uint32_t pixel;
    } kCases[] = {
        {"no screen", [] { fakeWin32.screenWidth = 0; }, 2, kOld},
        {"no height", [] { fakeWin32.screenHeight = -1; }, 2, kOld},
        {"copy", [] { fakeDesktop.copyFails = true; }, 2, kOld},
        {"lock", [] { fakeDesktop.lockFails = true; }, 64, kBlack},
        {"memory", [] { fxSetAllocLimit(1000); }, 0, 0},
        {"too large", [] { fakeWin32.screenWidth = 40000; }, 0, 0},
    };
    for (const auto& c : kCases) {
        fakeDesktop = {};
        Show(64, 48, 0);
        FXScrShot shot;
        ASSERT_TRUE(shot.Realloc(2, 1));
        static_cast<FXPixmap&>(shot).Clear(kOld);
        c.prepare();
        EXPECT_FALSE(shot.Update()) << c.what;
        fxSetAllocLimit(0);
        EXPECT_FALSE(fakeDesktop.held) << c.what;
        EXPECT_EQ(shot.GetWidth(), c.width) << c.what;
        EXPECT_TRUE(c.width == 0 ? shot.pixels == nullptr : shot.pixels[0] == c.pixel) << c.what;
    }
}

TEST_F(Desktop, SmallerThanTheScreenSaysStaysBlackBeyond) {
    Show(20, 10, 0);
    fakeWin32.screenWidth = 30;
    fakeWin32.screenHeight = 16;
    FXScrShot shot;
    ASSERT_TRUE(shot.Update());
    EXPECT_EQ(shot.GetWidth(), 30);
    EXPECT_EQ(shot.pixels[9 * 32 + 19], 0xFF130930u);
    EXPECT_EQ(shot.pixels[9 * 32 + 20], 0xFF000000u);
    EXPECT_EQ(shot.pixels[10 * 32], 0xFF000000u);
    Show(20, 10, 0);
    fakeWin32.screenWidth = 8;
    fakeWin32.screenHeight = 4;
    ASSERT_TRUE(shot.Update()) << "larger";
    EXPECT_EQ(shot.pixels[3 * 8 + 7], 0xFF070330u);
}

} // namespace
