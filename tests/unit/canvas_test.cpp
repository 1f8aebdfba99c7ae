#include "image/canvas.h"
#include "image/colors.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>
#include <utility>

namespace {

TEST(Pixmap, RoundsItsStorageUpAndUsesABlockAgain) {
    const std::tuple<int, int, bool, int, int, bool> kSteps[] = {
        // used, a power of two; stored, in the same block
        {300, 200, false, 300, 200, false}, {1024, 768, true, 1024, 1024, false},
        {800, 600, true, 1024, 1024, true}, {0, 0, true, 1, 1, true},
        {1025, 1, true, 2048, 1, true},     {1025, 1025, true, 2048, 2048, false}};
    FXPixmap pixmap;
    for (const auto& [w, h, powerOfTwo, width, height, sameBlock] : kSteps) {
        const std::uint32_t* before = pixmap.pixels;
        pixmap.powerOfTwo = powerOfTwo;
        ASSERT_TRUE(pixmap.Realloc(w, h)) << w;
        EXPECT_TRUE(pixmap.width == width && pixmap.height == height) << w;
        EXPECT_TRUE(pixmap.usedWidth == w && pixmap.usedHeight == h) << w;
        EXPECT_TRUE(pixmap.pixels == before || !sameBlock) << w;
        pixmap.Clear(7); // all of the block is there
        EXPECT_EQ(pixmap.pixels[width * height - 1], 7u);
    }
    for (const auto& [w, h] : {std::pair{-1, 5}, {5, -1}, {32769, 1}, {1, 32769}, {32768, 32768}}) {
        EXPECT_FALSE(pixmap.Realloc(w, h)) << w << " x " << h;
        EXPECT_EQ(pixmap.width + pixmap.height + pixmap.usedWidth + pixmap.usedHeight + pixmap.capacity, 0);
        EXPECT_TRUE(pixmap.Realloc(32, 32)) << "usable again";
    }
}

TEST(Colors, AreCutToBytes) {
    for (const auto& [color, bytes] : {std::pair{std::array{0.999f, 0.25f, 0.5f, 0.125f}, 0x1F7F3FFEu},
                                       {std::array{2.0f, 0.0f, 0.0f, 0.0f}, 0x1FEu}}) // spills
        EXPECT_EQ(fxColToInt1(color.data()), bytes);
}

} // namespace
