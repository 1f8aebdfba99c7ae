#include "pictures/stars.h"

#include "noise.h"
#include "pictures/colour.h"

#include <algorithm>
#include <cmath>

namespace {

// From cool to hot: most stars are near white, the ends are rare.
constexpr Stop kTemperatures[] = {
    {0.0f, Hex(0xFFB070)},  {0.25f, Hex(0xFFD9B0)}, {0.5f, Hex(0xFFF6EE)},
    {0.75f, Hex(0xD4E2FF)}, {1.0f, Hex(0xA4C4FF)},
};

// Where it shows, in units that are a 1152nd of the sky's height, so that a star keeps its size on the
// screen.
constexpr float kUnits = 1152;

struct Star {
    float x, y;
    float brightness; // 1 is the brightest
    Rgb colour;
};

class StarPainter {
public:
    StarPainter(Raster* sky, float aspect)
        : sky_(sky), unitsAcross_(aspect * kUnits / static_cast<float>(sky->Width())),
          unitsDown_(kUnits / static_cast<float>(sky->Height())) {}

    float ClearAt(const Star& star) const {
        return sky_->At(static_cast<int>(star.x / unitsAcross_), static_cast<int>(star.y / unitsDown_)).alpha;
    }

    // The small disc every star has; brighter ones are a little wider.
    void AddDisc(const Star& star) {
        const float apparent = std::pow(star.brightness, 0.4f);
        const float width = std::max(0.42f + 1.0f * apparent, 0.8f * unitsDown_);
        const float peak = std::min(1.9f, 0.06f + 3.2f * apparent);
        AddLight(star, width * 3.5f, [=](float dx, float dy) {
            return peak * std::exp(-(dx * dx + dy * dy) / (2 * width * width));
        });
    }

    void AddHaze(const Star& star) {
        const float reach = 14 + 60 * star.brightness;
        Star haze = star;
        haze.colour = Mix(star.colour, Hex(0x5F7BFF), 0.35f);
        AddLight(haze, reach, [=](float dx, float dy) {
            const float r = std::sqrt(dx * dx + dy * dy);
            const float fade = Clamp01(1 - r / reach);
            return 0.34f * std::sqrt(star.brightness) * fade * fade * 6 / (6 + r);
        });
    }

    // The four spikes that a telescope draws on a bright star.
    void AddCross(const Star& star) {
        const float reach = 16 + 44 * star.brightness;
        AddLight(star, reach, [=](float dx, float dy) {
            const auto arm = [reach](float along, float across) {
                const float fade = Clamp01(1 - std::fabs(along) / reach);
                return fade * fade * fade * std::exp(-across * across / 0.7f);
            };
            return 0.75f * (arm(dx, dy) + arm(dy, dx));
        });
    }

private:
    // Light added round a star within `reach`, by what `lightAt` gives for the offset from its centre.
    template <class Function> void AddLight(const Star& star, float reach, Function lightAt) {
        const int left = std::max(0, static_cast<int>((star.x - reach) / unitsAcross_));
        const int right = std::min(sky_->Width() - 1, static_cast<int>((star.x + reach) / unitsAcross_));
        const int top = std::max(0, static_cast<int>((star.y - reach) / unitsDown_));
        const int bottom = std::min(sky_->Height() - 1, static_cast<int>((star.y + reach) / unitsDown_));
        for (int y = top; y <= bottom; ++y)
            for (int x = left; x <= right; ++x)
                sky_->At(x, y).colour +=
                    star.colour * lightAt((static_cast<float>(x) + 0.5f) * unitsAcross_ - star.x,
                                          (static_cast<float>(y) + 0.5f) * unitsDown_ - star.y);
    }

    Raster* sky_;
    float unitsAcross_; // of a pixel
    float unitsDown_;
};

} // namespace

void AddStars(Raster* sky, float aspect) {
    constexpr int kStars = 20000;
    constexpr int kHazy = 70;
    constexpr int kCrossed = 7;
    Random random(77);
    StarPainter painter(sky, aspect);
    for (int i = 0; i < kStars; ++i) {
        Star star;
        star.x = random.Range(0, aspect * kUnits);
        star.y = random.Range(0, kUnits);
        // The i-th brightest of n stars is about (1/i)^0.85 as bright as the first: the law of a real sky.
        star.brightness = std::pow(1.0f / static_cast<float>(i + 1), 0.85f);
        const float heat = Clamp01(0.5f + (random.Unit() - 0.5f) * (random.Unit() + 0.35f) * 1.5f);
        const float seen = random.Unit();
        star.colour = Ramp(kTemperatures, heat);
        if (i >= kHazy) {
            // Stars gather in drifts, and dust dims what shines through it.
            const float drift =
                0.5f + 0.9f * Fbm({star.x / kUnits * 2.1f, star.y / kUnits * 2.1f, 4.5f}, 3, 77);
            if (seen > drift + 0.25f)
                continue;
            star.colour = star.colour * painter.ClearAt(star);
        }
        painter.AddDisc(star);
        if (i < kHazy)
            painter.AddHaze(star);
        if (i < kCrossed)
            painter.AddCross(star);
    }
}
