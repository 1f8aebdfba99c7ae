#include "image/canvas.h"
#include "image/colors.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <tuple>
#include <vector>

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
}

TEST(Pixmap, IsEmptyAfterASizeThatCannotBe) {
    const std::pair<int, int> kSizes[] = {{-1, 5}, {5, -1}, {32769, 1}, {1, 32769}, {32768, 32768}};
    for (const auto& [w, h] : kSizes) {
        FXPixmap pixmap;
        ASSERT_TRUE(pixmap.Realloc(4, 4));
        EXPECT_FALSE(pixmap.Realloc(w, h)) << w << " x " << h;
        EXPECT_EQ(pixmap.width + pixmap.height + pixmap.usedWidth + pixmap.usedHeight + pixmap.capacity, 0);
        pixmap.Clear(1);
        EXPECT_TRUE(pixmap.Realloc(32, 32)) << "usable again";
    }
}

TEST(Canvas, CopiesTheUsedPixelsRowByRow) {
    FXCanvas from, to;
    from.powerOfTwo = false;
    ASSERT_TRUE(from.Realloc(3, 2));
    for (std::uint32_t i = 0; i < 6; ++i)
        from.pixels[i] = 0xFF000000u + i;
    ASSERT_TRUE(to.Copy(&from));
    EXPECT_TRUE(to.opaque && to.width == 4);
    for (std::uint32_t i = 0; i < 6; ++i)
        EXPECT_EQ(to.pixels[i / 3 * 4 + i % 3], 0xFF000000u + i);
    from.pixels[5] = 0xFE000000u;
    ASSERT_TRUE(to.Copy(&from));
    EXPECT_FALSE(to.opaque);
}

TEST(Canvas, IsReadAtAnyPlaceAndExtendsItsEdges) {
    FXCanvas canvas; // 3 x 2 pixels, red 1, 2, 3 over 4, 5, 6, in a storage of 4 x 4
    float color[4] = {7, 7, 7, 7};
    canvas.ExtendEdges();
    canvas.GetColor(0, 0, color);
    EXPECT_TRUE(fxColIsZero(color)) << "nothing there";
    ASSERT_TRUE(canvas.Realloc(4, 4) && canvas.Realloc(3, 2));
    canvas.height = 4;
    for (std::uint32_t i = 0; i < 6; ++i)
        canvas.pixels[i / 3 * 4 + i % 3] = i + 1;
    canvas.ExtendEdges();
    EXPECT_EQ(std::vector<std::uint32_t>(canvas.pixels, canvas.pixels + 16),
              (std::vector<std::uint32_t>{1, 2, 3, 3, 4, 5, 6, 6, 4, 5, 6, 6, 4, 5, 6, 6}));
    const std::tuple<float, float, long, long> kCases[] = {
        // red of GetColor and of GetBump
        {0.0f, 0.0f, 1, 4},   {0.34f, 0.5f, 5, 5}, {0.9f, 0.9f, 6, 3},
        {-5.0f, -0.1f, 1, 4}, {2e9f, -2e9f, 3, 6}, {std::nanf(""), std::nanf(""), 1, 1}};
    for (const auto& [u, v, red, bump] : kCases) {
        canvas.GetColor(u, v, color);
        EXPECT_EQ(std::lround(color[0] * 255), red) << u << " " << v;
        EXPECT_EQ(std::lround(canvas.GetBump(u, v) * 255), bump) << u << " " << v;
    }
}

TEST(Colors, AreCutToBytesAndComeBack) {
    const std::tuple<std::array<float, 4>, std::uint32_t, std::uint32_t> kCases[] = {
        {{1, 0, 0, 1}, 0xFF0000FF, 0xFFFF0000},
        {{0.999f, 0.25f, 0.5f, 0.125f}, 0x1F7F3FFE, 0x1FFE3F7F},
        {{2, 0, 0, 0}, 0x1FE, 0x1FE0000}, // spills
        {{std::nanf(""), 1e30f, -1e30f, 1}, 0xFF000000, 0xFF000000}};
    for (const auto& [color, int1, int0] : kCases)
        EXPECT_TRUE(fxColToInt1(color.data()) == int1 && fxColToInt(color.data()) == int0) << color[0];
    float color[4];
    fxColFromInt1(color, 0xFF336600);
    EXPECT_TRUE(color[0] == 0.0f && color[1] == 0.4f && color[2] == 0.2f && color[3] == 1.0f);
    fxColFromInt(color, 0xFF336600);
    EXPECT_TRUE(color[0] == 0.2f && color[1] == 0.4f && color[2] == 0.0f && color[3] == 1.0f);
    float wild[4] = {-0.5f, 1.5f, std::nanf(""), 0.5f};
    fxColCutRange(wild);
    EXPECT_TRUE(wild[0] == 0.0f && wild[1] == 1.0f && std::isnan(wild[2]) && wild[3] == 0.5f);
    fxColSetBlackT(wild);
    EXPECT_TRUE(fxColIsZero(wild));
    wild[3] = 1e-30f;
    EXPECT_FALSE(fxColIsZero(wild));
}

} // namespace
