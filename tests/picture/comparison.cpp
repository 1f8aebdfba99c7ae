#include "picture/comparison.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr int kTile = 16;

// Mesa's two software renderers, which round each in their own way, differ by 0.5 and 3.8; the faintest layer
// missing makes 5.9 of its worst tile.
constexpr double kMeanAllowed = 0.8;
constexpr double kTileAllowed = 4.5;

int ChannelDifference(std::uint32_t a, std::uint32_t b, int shift) {
    return std::abs(static_cast<int>(a >> shift & 255u) - static_cast<int>(b >> shift & 255u));
}

int PixelDifference(std::uint32_t a, std::uint32_t b) {
    return ChannelDifference(a, b, 0) + ChannelDifference(a, b, 8) + ChannelDifference(a, b, 16);
}

std::string Size(const Picture& picture) {
    return std::to_string(picture.width) + "x" + std::to_string(picture.height);
}

std::string Rounded(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

// "<what>: <where it is>", or why it is not there.
std::string Stored(const char* what, const std::string& name, const Picture& picture) {
    std::error_code failed;
    const fs::path folder = fs::read_symlink("/proc/self/exe", failed).parent_path() / "pictures";
    fs::create_directories(folder, failed);
    const std::string file = (folder / (name + "-" + what + ".png")).string();
    std::string error;
    return std::string("\n  ") + what + ": " + (WritePng(file, picture, &error) ? file : error);
}

} // namespace

Difference Compare(const Picture& actual, const Picture& expected) {
    Difference difference = {};
    double all = 0;
    for (int top = 0; top < actual.height; top += kTile)
        for (int left = 0; left < actual.width; left += kTile) {
            const int right = std::min(left + kTile, actual.width);
            const int bottom = std::min(top + kTile, actual.height);
            int sum = 0;
            for (int y = top; y < bottom; ++y)
                for (int x = left; x < right; ++x) {
                    const std::size_t at = static_cast<std::size_t>(y) * actual.width + x;
                    sum += PixelDifference(actual.pixels[at], expected.pixels[at]);
                }
            const double mean = sum / (3.0 * (right - left) * (bottom - top));
            if (mean > difference.worstTile) {
                difference.worstTile = mean;
                difference.tileX = left;
                difference.tileY = top;
            }
            all += sum;
        }
    difference.mean = all / (3.0 * actual.width * actual.height);
    return difference;
}

bool Alike(const Difference& difference) {
    return difference.mean <= kMeanAllowed && difference.worstTile <= kTileAllowed;
}

Picture DifferencePicture(const Picture& actual, const Picture& expected) {
    constexpr int kBrighter = 8;
    Picture picture = actual;
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        std::uint32_t pixel = 0xFF000000u;
        for (const int shift : {0, 8, 16}) {
            const int difference = ChannelDifference(actual.pixels[i], expected.pixels[i], shift);
            pixel |= static_cast<std::uint32_t>(std::min(difference * kBrighter, 255)) << shift;
        }
        picture.pixels[i] = pixel;
    }
    return picture;
}

std::string DiffersFrom(const Picture& expected, const std::string& name, const Picture& actual) {
    if (actual.width != expected.width || actual.height != expected.height)
        return name + ": " + Size(actual) + " pixels, not " + Size(expected) + Stored("actual", name, actual);
    const Difference difference = Compare(actual, expected);
    if (Alike(difference))
        return {};
    return name + ": off by " + Rounded(difference.mean) + " (allowed " + Rounded(kMeanAllowed) + "), by " +
           Rounded(difference.worstTile) + " (allowed " + Rounded(kTileAllowed) + ") in the tile at " +
           std::to_string(difference.tileX) + "," + std::to_string(difference.tileY) +
           Stored("actual", name, actual) + Stored("expected", name, expected) +
           Stored("difference", name, DifferencePicture(actual, expected));
}

std::string DiffersFromReference(const std::string& name, const Picture& actual) {
    const std::string file = std::string(TAMBLOR_REFERENCES) + "/" + name + ".png";
    std::string error;
    if (UpdatingReferences())
        return WritePng(file, actual, &error) ? std::string() : error;
    Picture expected;
    if (!ReadPng(file, &expected, &error))
        return error + Stored("actual", name, actual);
    return DiffersFrom(expected, name, actual);
}

bool UpdatingReferences() {
    const char* wish = std::getenv("TAMBLOR_UPDATE_REFERENCES");
    return wish != nullptr && *wish != '\0' && std::string(wish) != "0";
}
