#include "fakes/fake_desktop.h"
#include "fakes/fake_win32.h"
#include "image/desktop_shot.h"

#include <gtest/gtest.h>

namespace {

class Desktop : public testing::Test {
protected:
    // A desktop of w x h pixels of which (x, y) is blue x, green y, red 0x30; rows `padding` bytes apart.
    void Show(int w, int h, int padding) {
        fakeDesktop = {};
        fakeWin32.screenWidth = w;
        fakeWin32.screenHeight = h;
        const int pitch = 4 * w + padding;
        bytes_.assign(static_cast<std::size_t>(pitch * (h - 1) + 4 * w), 0); // the last row ends the block
        for (int i = 0; i < w * h; ++i) {
            unsigned char* pixel = &bytes_[static_cast<std::size_t>(i / w * pitch + 4 * (i % w))];
            pixel[0] = static_cast<unsigned char>(i % w);
            pixel[1] = static_cast<unsigned char>(i / w);
            pixel[2] = 0x30;
        }
        fakeDesktop.pixels = {bytes_.data(), pitch, w, h};
    }

    std::vector<unsigned char> bytes_;
};

TEST_F(Desktop, IsPhotographedWhateverThePitchAndTheScreensSizeWithABlackMargin) {
    for (const auto& [padding, screen] : {std::pair{0, 200}, {12, 200}, {0, 100}, {0, 250}}) {
        Show(200, 150, padding);
        fakeWin32.screenWidth = screen;
        FXScrShot shot;
        ASSERT_TRUE(shot.Update());
        EXPECT_TRUE(shot.GetWidth() == screen && shot.opaque);
        for (unsigned i = 0; i < static_cast<unsigned>(shot.width) * 150; ++i) {
            const unsigned x = i % static_cast<unsigned>(shot.width),
                           y = i / static_cast<unsigned>(shot.width);
            const bool black = x >= 200 || x >= static_cast<unsigned>(screen);
            ASSERT_EQ(shot.pixels[i], black ? 0xFF000000u : 0xFF000030u | y << 8 | x << 16) << x << "," << y;
        }
        EXPECT_EQ(fakeDesktop.calls, "copy " + std::to_string(screen) + "x150, lock, unlock");
    }
}

TEST_F(Desktop, ThatCannotBeHadLeavesNoCopyBehind) {
    constexpr std::uint32_t kOld = 0x01020304u, kBlack = 0xFF000000u;
    const std::tuple<const char*, void (*)(), std::uint32_t> kCases[] = {
        // the canvas's first pixel then
        {"no screen", [] { fakeWin32.screenWidth = 0; }, kOld},
        {"no copy", [] { fakeDesktop.copyFails = true; }, kOld},
        {"no lock", [] { fakeDesktop.lockFails = true; }, kBlack}};
    for (const auto& [what, prepare, pixel] : kCases) {
        Show(64, 48, 0);
        FXScrShot shot;
        ASSERT_TRUE(shot.Realloc(2, 1));
        static_cast<FXPixmap&>(shot).Clear(kOld);
        prepare();
        EXPECT_FALSE(shot.Update()) << what;
        EXPECT_FALSE(fakeDesktop.held) << what;
        EXPECT_EQ(shot.pixels[0], pixel) << what;
    }
}

} // namespace
