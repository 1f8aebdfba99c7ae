#include "picture/comparison.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace {

constexpr int kTile = 16;

// Mesa's two software renderers, which round each in their own way, differ by 0.5 and 3.8; the faintest layer
// missing makes 5.9 of its worst tile.
constexpr double kMeanAllowed = 0.8;
constexpr double kTileAllowed = 4.5;

// Differences of a channel, 0 to 255.
struct Difference {
    int sum = 0, channels = 0;

    double Mean() const { return static_cast<double>(sum) / channels; }
};

// Of the whole picture, and of its worst tile.
std::pair<double, double> Compare(const Picture& a, const Picture& b) {
    Difference all;
    std::map<std::pair<int, int>, Difference> tiles;
    for (int i = 0; i < a.width * a.height; ++i)
        for (const int shift : {0, 8, 16}) {
            const auto channel = [&](const Picture& p) {
                return static_cast<int>(p.pixels[static_cast<std::size_t>(i)] >> shift & 255u);
            };
            for (Difference* of : {&all, &tiles[{i % a.width / kTile, i / a.width / kTile}]}) {
                of->sum += std::abs(channel(a) - channel(b));
                ++of->channels;
            }
        }
    double worst = 0;
    for (const auto& [place, tile] : tiles)
        worst = std::max(worst, tile.Mean());
    return {all.Mean(), worst};
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

bool Alike(const Picture& actual, const Picture& expected) {
    const auto [mean, worst] = Compare(actual, expected);
    return mean <= kMeanAllowed && worst <= kTileAllowed;
}

std::string DiffersFrom(const Picture& expected, const std::string& name, const Picture& actual) {
    std::string differs = name + " has another size";
    if (actual.width == expected.width && actual.height == expected.height) {
        if (Alike(actual, expected))
            return {};
        const auto [mean, worst] = Compare(actual, expected);
        differs = name + " is off by " + std::to_string(mean) + ", and by " + std::to_string(worst) +
                  " where it is worst";
    }
    return differs + Stored("actual", name, actual) + Stored("expected", name, expected);
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
