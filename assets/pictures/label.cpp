#include "pictures/drawing.h"
#include "pictures/pictures.h"
#include "pictures/relief.h"

namespace {

constexpr int kWidth = 512;
constexpr int kHeight = 128;

// The lettering as a mask; only its alpha counts. It stands in the upper half: of the lower one, screens
// higher than wide show nothing.
Raster localLettering() {
    const Drawing page(kWidth, kHeight);
    page.Text(kWidth / 2.0 + 6, -8, "OrinLab",
              {.font = "DejaVu Serif Bold", .size = 76, .spacing = 13, .centred = true});
    return page.Result();
}

} // namespace

Raster DrawLabel(const Size& size) {
    const Raster letters = localLettering();
    Relief shape(kWidth, kHeight);
    Relief shade(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            shape.At(x, y) = letters.At(x, y).alpha * 9;
            shade.At(x, y) = letters.At(x, y).alpha;
        }
    shape.Soften(2);
    shade.Soften(3);

    Raster label(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const float cover = letters.At(x, y).alpha;
            const float fall = 0.12f * Smooth(100, 24, static_cast<float>(y));
            const Rgb metal = Gold(0.58f + fall + 0.46f * Shine(shape.Normal(x, y)));
            // A dark breath round the letters keeps them legible on bright gas.
            const float dark = Clamp01(shade.At(x, y) * 1.5f) * 0.75f;
            const float alpha = cover + dark * (1 - cover);
            const Rgb dusk = Hex(0x1A0E02);
            label.At(x, y) = {alpha > 0 ? Mix(dusk, metal, cover / alpha) : dusk, alpha};
        }
    return label.Shrunk(size.width, size.height);
}
