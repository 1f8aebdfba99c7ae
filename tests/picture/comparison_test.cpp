// The comparison itself: what it lets pass and what it does not.
#include "picture/comparison.h"

#include <gtest/gtest.h>

namespace {

// Dim stars and a bright disc, as the show has them; change(x, y, pixel) gives every pixel.
template <class Change> Picture Sky(Change change) {
    Picture sky{160, 96, {}};
    for (int y = 0; y < sky.height; ++y)
        for (int x = 0; x < sky.width; ++x) {
            const bool disc = (x - 40) * (x - 40) + (y - 60) * (y - 60) < 900;
            const auto star = static_cast<std::uint32_t>((x * 7 + y * 13) % 16) * 0x010101u;
            sky.pixels.push_back(change(x, y, disc ? 0xFFE0A040u : 0xFF101828u + star));
        }
    return sky;
}

TEST(Comparison, LetsRoundingPassAndNothingThatIsSeen) {
    const Picture sky = Sky([](int, int, std::uint32_t p) { return p; });
    const auto expect = [&](const char* what, bool alike, auto change) {
        EXPECT_EQ(Alike(Sky(change), sky), alike) << what;
    };
    expect("every other pixel one off", true,
           [](int x, int, std::uint32_t p) { return x % 2 != 0 ? p + 0x010101u : p; });
    expect("a few pixels of an edge", true,
           [](int x, int y, std::uint32_t p) { return x % 16 == 0 && y % 16 == 0 ? p ^ 0x00808080u : p; });
    expect("red and blue exchanged", false,
           [](int, int, std::uint32_t p) { return (p & 0xFF00FF00u) | (p & 255u) << 16 | (p >> 16 & 255u); });
    expect("a small thing missing", false, [](int x, int y, std::uint32_t p) {
        return x >= 36 && x < 48 && y >= 52 && y < 64 ? 0xFF101828u : p;
    });
    expect("a faint veil missing", false, [](int, int, std::uint32_t p) { return p + 0x020202u; });
}

} // namespace
