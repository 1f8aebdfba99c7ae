// The comparison itself: what it lets pass and what it does not.
#include "picture/comparison.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

// Dim stars and a bright disc, as the show has them.
Picture Sky() {
    Picture sky{160, 96, std::vector<std::uint32_t>(160 * 96)};
    for (int y = 0; y < sky.height; ++y)
        for (int x = 0; x < sky.width; ++x) {
            const bool disc = (x - 40) * (x - 40) + (y - 60) * (y - 60) < 900;
            sky.pixels[static_cast<std::size_t>(y) * 160 + x] =
                disc ? 0xFFE0A040u
                     : 0xFF101828u + static_cast<std::uint32_t>((x * 7 + y * 13) % 16) * 0x010101u;
        }
    return sky;
}

Picture Changed(const std::function<std::uint32_t(int x, int y, std::uint32_t pixel)>& change) {
    Picture picture = Sky();
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            std::uint32_t& pixel = picture.pixels[static_cast<std::size_t>(y) * 160 + x];
            pixel = change(x, y, pixel);
        }
    return picture;
}

} // namespace

TEST(Comparison, LetsRoundingPassAndNothingThatIsSeen) {
    const Picture sky = Sky();
    const struct {
        const char* what;
        Picture picture;
        bool alike;
    } cases[] = {
        {"the same", sky, true},
        {"every other pixel one off",
         Changed([](int x, int, std::uint32_t p) { return x % 2 ? p + 0x010101u : p; }), true},
        {"a few pixels of an edge", Changed([](int x, int y, std::uint32_t p) {
             return x % 16 == 0 && y % 16 == 0 ? p ^ 0x00808080u : p;
         }),
         true},
        {"red and blue exchanged", Changed([](int, int, std::uint32_t p) {
             return (p & 0xFF00FF00u) | (p & 255u) << 16 | (p >> 16 & 255u);
         }),
         false},
        {"a small thing missing", Changed([](int x, int y, std::uint32_t p) {
             return x >= 36 && x < 48 && y >= 52 && y < 64 ? 0xFF101828u : p;
         }),
         false},
        {"a faint veil missing", Changed([](int, int, std::uint32_t p) { return p + 0x020202u; }), false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Alike(Compare(c.picture, sky)), c.alike) << c.what;
}

TEST(Comparison, NamesTheWorstTile) {
    const Picture picture =
        Changed([](int x, int y, std::uint32_t p) { return x >= 128 && x < 144 && y >= 80 ? ~p : p; });
    const Difference difference = Compare(picture, Sky());
    EXPECT_EQ(difference.tileX, 128);
    EXPECT_EQ(difference.tileY, 80);
    EXPECT_GT(difference.worstTile, 100);
}
