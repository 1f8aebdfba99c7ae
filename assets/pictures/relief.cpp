#include "pictures/relief.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr Stop kGoldScale[] = {
    {0.00f, Hex(0x1E0E03)}, {0.20f, Hex(0x5E3308)}, {0.42f, Hex(0xB0741A)}, {0.62f, Hex(0xE8AC3A)},
    {0.80f, Hex(0xFFD873)}, {0.92f, Hex(0xFFF0B8)}, {1.05f, Hex(0xFFFDF2)},
};
constexpr Stop kSteelScale[] = {
    {0.00f, Hex(0x0C1016)}, {0.25f, Hex(0x39424E)}, {0.50f, Hex(0x78838F)},
    {0.75f, Hex(0xB9C2CC)}, {1.00f, Hex(0xF8FBFF)},
};

} // namespace

Relief::Relief(int width, int height)
    : width_(width), height_(height), heights_(static_cast<std::size_t>(width) * height) {}

void Relief::SoftenLine(std::size_t first, std::size_t step, int count, int reach) {
    std::vector<float> line(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        line[static_cast<std::size_t>(i)] = heights_[first + static_cast<std::size_t>(i) * step];
    const auto at = [&](int i) { return line[static_cast<std::size_t>(std::clamp(i, 0, count - 1))]; };
    float sum = 0;
    for (int i = -reach; i <= reach; ++i)
        sum += at(i);
    for (int i = 0; i < count; ++i) {
        heights_[first + static_cast<std::size_t>(i) * step] = sum / static_cast<float>(2 * reach + 1);
        sum += at(i + reach + 1) - at(i - reach);
    }
}

void Relief::Soften(int reach) {
    const auto width = static_cast<std::size_t>(width_);
    for (int round = 0; round < 3; ++round) {
        for (int y = 0; y < height_; ++y)
            SoftenLine(static_cast<std::size_t>(y) * width, 1, width_, reach);
        for (int x = 0; x < width_; ++x)
            SoftenLine(static_cast<std::size_t>(x), width, height_, reach);
    }
}

Vec3 Relief::Normal(int x, int y) const {
    const int left = std::max(x - 1, 0);
    const int right = std::min(x + 1, width_ - 1);
    const int above = std::max(y - 1, 0);
    const int below = std::min(y + 1, height_ - 1);
    const float dx = (At(right, y) - At(left, y)) / static_cast<float>(right - left);
    const float dy = (At(x, below) - At(x, above)) / static_cast<float>(below - above);
    return Unit({-dx, dy, 1});
}

float Shine(Vec3 n) {
    const Vec3 mirrored = {2 * n.z * n.x, 2 * n.z * n.y, 2 * n.z * n.z - 1};
    constexpr Vec3 kLamp = {-0.46f, 0.62f, 0.635f};
    const float sky = Smooth(-0.85f, 0.95f, mirrored.y);
    const float lamp = Smooth(0.62f, 0.97f, Dot(mirrored, kLamp));
    const float floor = Smooth(-0.2f, -0.75f, mirrored.y);
    return Clamp01(0.30f + 0.46f * sky + 0.42f * lamp - 0.16f * floor);
}

Rgb Gold(float brightness) {
    return Ramp(kGoldScale, brightness);
}

Rgb Steel(float brightness) {
    return Ramp(kSteelScale, brightness);
}

float Brushed(float x, float y, std::uint32_t seed) {
    return 0.55f * GradientNoise({x * 0.012f, y * 0.90f, 0.5f}, seed) +
           0.45f * GradientNoise({x * 0.035f, y * 0.47f, 3.5f}, seed + 1) +
           0.40f * GradientNoise({x * 0.006f, y * 0.21f, 7.5f}, seed + 2);
}
