// The icons: a desktop with a hole burnt into it, and the sun behind. One file for the Windows saver, and
// pictures for the icon themes of Linux. And the picture of the installer for Windows.
#include "base/whole_file.h"
#include "noise.h"
#include "pictures/colour.h"
#include "pictures/pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr int kSizes[] = {16, 32, 48};

// Times as many pixels are drawn, then averaged.
int localFine(int size) {
    return size <= 48 ? 8 : 4;
}

constexpr Stop kSun[] = {
    {0.0f, Hex(0xB83404)}, {0.4f, Hex(0xFF8A1C)}, {0.75f, Hex(0xFFC44C)}, {1.0f, Hex(0xFFF4C8)}};
constexpr Stop kRim[] = {
    {0.0f, Hex(0xFFE9A0)}, {0.3f, Hex(0xFF8A1C)}, {0.65f, Hex(0x8A1C04)}, {1.0f, Hex(0x140804)}};

// Deep space with the sun in its lower left. x, y in -1..1, as everywhere here.
Rgb localBehind(float x, float y) {
    const float sun = std::hypot(x + 0.30f, y - 0.34f);
    if (sun < 0.52f) {
        const float granules = Fbm({x * 3.2f, y * 3.2f, 4.5f}, 3, 911);
        return Ramp(kSun, 0.62f + 0.5f * granules - 0.5f * Smooth(0.30f, 0.52f, sun));
    }
    return Hex(0x150B32) + Hex(0xFF8A2A) * (0.85f * Smooth(0.95f, 0.52f, sun));
}

Rgb localDesktop(float x, float y) {
    const float hills = 0.55f + 0.10f * std::sin(x * 2.4f + 0.6f);
    return y > hills ? Hex(0x1E5A62) : Mix(Hex(0x7FC0DA), Hex(0x2A6FA8), Clamp01(0.5f - 0.6f * y));
}

Rgba localIconAt(float x, float y) {
    constexpr float kEdge = 0.96f;
    constexpr float kCorner = 0.30f;
    const float past = std::hypot(std::max(std::fabs(x) - kEdge + kCorner, 0.0f),
                                  std::max(std::fabs(y) - kEdge + kCorner, 0.0f));
    if (past > kCorner)
        return {};
    constexpr float kRimWidth = 0.17f;
    const float hole = 0.66f + 0.16f * (Fbm({x * 1.9f, y * 1.9f, 1.5f}, 3, 907) - 0.5f);
    const float beyond = (std::hypot(x, y) - hole) / kRimWidth;
    if (beyond < 0)
        return {localBehind(x, y), 1};
    return {beyond < 1 ? Ramp(kRim, beyond) : Mix(Hex(0x140804), localDesktop(x, y), Smooth(1, 1.5f, beyond)),
            1};
}

} // namespace

Raster DrawIcon(int size) {
    const int drawn = size * localFine(size);
    Raster fine(drawn, drawn);
    const float half = static_cast<float>(fine.Width()) / 2;
    fine.Fill([half](float x, float y) { return localIconAt(x / half - 1, y / half - 1); });
    return fine.Shrunk(size, size);
}

namespace {

class LittleEndian {
public:
    void Put(std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            text += static_cast<char>(value >> 8 * i & 255u);
    }
    std::string text;
};

// A bitmap as icons hold it: 32 bits per pixel, rows upwards, and a mask that Windows without alpha would
// use.
std::string localIconBitmap(const Raster& picture) {
    const auto size = static_cast<std::uint32_t>(picture.Width());
    const std::vector<unsigned char> rgba = picture.Bytes();
    LittleEndian out;
    for (const std::uint32_t field : {40u, size, 2 * size, 1u | 32u << 16, 0u, 0u, 0u, 0u, 0u, 0u})
        out.Put(field, 4);
    std::string mask;
    for (std::uint32_t y = size; y-- > 0;) {
        std::string bits((size + 31) / 32 * 4, '\0');
        for (std::uint32_t x = 0; x < size; ++x) {
            const unsigned char* pixel = &rgba[(static_cast<std::size_t>(y) * size + x) * 4];
            for (const int part : {2, 1, 0, 3})
                out.Put(pixel[part], 1);
            if (pixel[3] < 128)
                bits[x / 8] = static_cast<char>(bits[x / 8] | 128 >> x % 8);
        }
        mask += bits;
    }
    return out.text + mask;
}

std::string localWrite(const std::string& file, const std::string& bytes) {
    std::string trouble;
    fxReplaceFile(
        file, [&](std::FILE* out) { return std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size(); },
        &trouble);
    return trouble;
}

} // namespace

std::string WriteIcons(const std::string& file, const Screen&) {
    constexpr auto kCount = static_cast<std::uint32_t>(std::size(kSizes));
    LittleEndian directory;
    directory.Put(1u << 16, 4);
    directory.Put(kCount, 2);
    std::string bitmaps;
    for (const int size : kSizes) {
        const std::string bitmap = localIconBitmap(DrawIcon(size));
        directory.Put(static_cast<std::uint32_t>(size | size << 8), 4);
        directory.Put(1u | 32u << 16, 4);
        directory.Put(static_cast<std::uint32_t>(bitmap.size()), 4);
        directory.Put(6 + 16 * kCount + static_cast<std::uint32_t>(bitmaps.size()), 4);
        bitmaps += bitmap;
    }
    return localWrite(file, directory.text + bitmaps);
}

std::string WriteSetupPicture(const std::string& file, const Screen&) {
    constexpr int kWidth = 164, kHeight = 314; // the place that the installer has for it
    constexpr int kLeft = 60;                  // of the still: the sun and the burning edge
    const std::vector<unsigned char> still = DrawPreview({kHeight * 4 / 3, kHeight}).Bytes();
    constexpr std::uint32_t kHeaders = 14 + 40, kPixels = kWidth * kHeight * 3; // whole rows of four bytes
    LittleEndian out;
    out.text = "BM";
    for (const std::uint32_t field : {kHeaders + kPixels, 0u, kHeaders, 40u, std::uint32_t{kWidth},
                                      std::uint32_t{kHeight}, 1u | 24u << 16, 0u, kPixels, 0u, 0u, 0u, 0u})
        out.Put(field, 4);
    for (int y = kHeight - 1; y >= 0; --y)
        for (int x = kLeft; x < kLeft + kWidth; ++x) {
            const int pixel = y * (kHeight * 4 / 3) + x;
            for (const int part : {2, 1, 0})
                out.Put(still[static_cast<std::size_t>(pixel) * 4 + static_cast<std::size_t>(part)], 1);
        }
    return localWrite(file, out.text);
}
