#include "fakes/fake_desktop.h"
#include "fakes/fake_win32.h"
#include "image/desktop_shot.h"

#include <gtest/gtest.h>

#include <tuple>
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
        fakeDesktop = {};
        fakeWin32.screenWidth = w;
        fakeWin32.screenHeight = h;
        const int pitch = 4 * w + padding;
        bytes_.assign(static_cast<std::size_t>(pitch * (h - 1) + 4 * w), 0); // the last row ends the block
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                unsigned char* pixel = &bytes_[static_cast<std::size_t>(y * pitch + 4 * x)];
                pixel[0] = static_cast<unsigned char>(x);
                pixel[1] = static_cast<unsigned char>(y);
                pixel[2] = 0x30;
            }
        fakeDesktop.pixels = {bytes_.data(), pitch, w, h};
    }

    std::vector<unsigned char> bytes_;
};

TEST_F(Desktop, IsPhotographedWhateverThePitchWithABlackMargin) {
    for (const int padding : {0, 12}) {
        Show(1280, 1024, padding);
        {
            FXScrShot shot;
            ASSERT_TRUE(shot.Update());
            EXPECT_TRUE(shot.width == 2048 && shot.height == 1024 && shot.GetWidth() == 1280 && shot.opaque);
            for (unsigned i = 0; i < 2048 * 1024; ++i) {
                const unsigned x = i % 2048, y = i / 2048;
                const unsigned expected =
                    x < 1280 ? 0xFF000030u | (y & 255) << 8 | (x & 255) << 16 : 0xFF000000u;
                ASSERT_EQ(shot.pixels[i], expected) << x << "," << y;
            }
            EXPECT_FALSE(fakeDesktop.held);
        }
        EXPECT_EQ(fakeDesktop.calls, "copy 1280x1024, lock, unlock, release");
    }
}

TEST_F(Desktop, ThatCannotBeHadLeavesNoCopyBehind) {
    constexpr std::uint32_t kOld = 0x01020304u, kBlack = 0xFF000000u;
    const std::tuple<const char*, void (*)(), int, std::uint32_t> kCases[] = {
        // the canvas's width and pixels then
        {"no screen", [] { fakeWin32.screenWidth = 0; }, 2, kOld},
        {"no height", [] { fakeWin32.screenHeight = -1; }, 2, kOld},
        {"no copy", [] { fakeDesktop.copyFails = true; }, 2, kOld},
        {"no lock", [] { fakeDesktop.lockFails = true; }, 64, kBlack}};
    for (const auto& [what, prepare, width, pixel] : kCases) {
        Show(64, 48, 0);
        FXScrShot shot;
        ASSERT_TRUE(shot.Realloc(2, 1));
        static_cast<FXPixmap&>(shot).Clear(kOld);
        prepare();
        EXPECT_FALSE(shot.Update()) << what;
        EXPECT_FALSE(fakeDesktop.held) << what;
        EXPECT_TRUE(shot.GetWidth() == width && shot.pixels[0] == pixel) << what;
    }
}

TEST_F(Desktop, OfAnotherSizeThanTheScreenIsCutOrStaysBlackBeyond) {
    FXScrShot shot;
    for (const int screen : {30, 8}) {
        Show(20, 10, 0);
        fakeWin32.screenWidth = screen;
        fakeWin32.screenHeight = screen / 2;
        ASSERT_TRUE(shot.Update());
        EXPECT_EQ(shot.GetWidth(), screen);
        EXPECT_EQ(shot.pixels[3 * shot.width + 7], 0xFF070330u);
        EXPECT_TRUE(screen == 8 || shot.pixels[9 * 32 + 20] == 0xFF000000u);
    }
}

} // namespace
