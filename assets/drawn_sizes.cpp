#include "drawn_sizes.h"

#include <cmath>
#include <numbers>

namespace {

int localNearestPower(float texels) {
    return 1 << std::lround(std::log2(texels));
}

} // namespace

Size TexelsFor(const Drawn& drawn, const Screen& screen) {
    return {localNearestPower(static_cast<float>(screen.width) * drawn.across * drawn.texels),
            localNearestPower(static_cast<float>(screen.height) * drawn.down * drawn.texels)};
}

int PiecesOfCircle(float radius) {
    constexpr float kOff = 1.0f / 3;
    const float pieces = std::numbers::pi_v<float> / std::acos(1 - kOff / radius);
    return 4 * static_cast<int>(std::ceil(pieces / 4));
}
