#include "pictures/stars.h"

#include "noise.h"
#include "pictures/colour.h"

#include <cmath>

namespace {

// From cool to hot: most stars are near white, the ends are rare.
constexpr Stop kTemperatures[] = {
    {0.0f, Hex(0xFFB070)},  {0.25f, Hex(0xFFD9B0)}, {0.5f, Hex(0xFFF6EE)},
    {0.75f, Hex(0xD4E2FF)}, {1.0f, Hex(0xA4C4FF)},
};

struct Star {
    float x, y;
    float brightness; // 1 is the brightest
    Rgb colour;
};

// Light added round a star within `reach` pixels, by what `lightAt` gives for the offset from its centre.
template <class Function> void AddLight(Raster* sky, const Star& star, float reach, Function lightAt) {
    const int left = std::max(0, static_cast<int>(star.x - reach));
    const int right = std::min(sky->Width() - 1, static_cast<int>(star.x + reach));
    const int top = std::max(0, static_cast<int>(star.y - reach));
    const int bottom = std::min(sky->Height() - 1, static_cast<int>(star.y + reach));
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            const float light =
                lightAt(static_cast<float>(x) + 0.5f - star.x, static_cast<float>(y) + 0.5f - star.y);
            sky->At(x, y).colour += star.colour * light;
        }
}

// The small disc every star has; brighter ones are a little wider.
void AddDisc(Raster* sky, const Star& star) {
    const float apparent = std::pow(star.brightness, 0.4f);
    const float width = 0.55f + 0.95f * apparent;
    const float peak = std::min(1.7f, 0.05f + 3.0f * apparent);
    AddLight(sky, star, width * 3.5f,
             [=](float dx, float dy) { return peak * std::exp(-(dx * dx + dy * dy) / (2 * width * width)); });
}

void AddHaze(Raster* sky, const Star& star) {
    const float reach = 14 + 60 * star.brightness;
    Star haze = star;
    haze.colour = Mix(star.colour, Hex(0x5F7BFF), 0.35f);
    AddLight(sky, haze, reach, [=](float dx, float dy) {
        const float r = std::sqrt(dx * dx + dy * dy);
        const float fade = Clamp01(1 - r / reach);
        return 0.34f * std::sqrt(star.brightness) * fade * fade * 6 / (6 + r);
    });
}

// The four spikes that a telescope draws on a bright star.
void AddCross(Raster* sky, const Star& star) {
    const float reach = 16 + 44 * star.brightness;
    AddLight(sky, star, reach, [=](float dx, float dy) {
        const auto arm = [reach](float along, float across) {
            const float fade = Clamp01(1 - std::fabs(along) / reach);
            return fade * fade * fade * std::exp(-across * across / 0.9f);
        };
        return 0.75f * (arm(dx, dy) + arm(dy, dx));
    });
}

} // namespace

void AddStars(Raster* sky) {
    constexpr int kStars = 12000;
    constexpr int kHazy = 70;
    constexpr int kCrossed = 7;
    Random random(77);
    const auto width = static_cast<float>(sky->Width());
    const auto height = static_cast<float>(sky->Height());
    for (int i = 0; i < kStars; ++i) {
        Star star;
        star.x = random.Range(0, width);
        star.y = random.Range(0, height);
        // The i-th brightest of n stars is about (1/i)^0.85 as bright as the first: the law of a real sky.
        star.brightness = std::pow(1.0f / static_cast<float>(i + 1), 0.85f);
        const float heat = Clamp01(0.5f + (random.Unit() - 0.5f) * (random.Unit() + 0.35f) * 1.5f);
        const float seen = random.Unit();
        const float clear = sky->At(static_cast<int>(star.x), static_cast<int>(star.y)).alpha;
        star.colour = Ramp(kTemperatures, heat);
        if (i >= kHazy) {
            // Stars gather in drifts, and dust dims what shines through it.
            const float drift =
                0.5f + 0.9f * Fbm({star.x / height * 2.1f, star.y / height * 2.1f, 4.5f}, 3, 77);
            if (seen > drift + 0.25f)
                continue;
            star.colour = star.colour * clear;
        }
        AddDisc(sky, star);
        if (i < kHazy)
            AddHaze(sky, star);
        if (i < kCrossed)
            AddCross(sky, star);
    }
}
