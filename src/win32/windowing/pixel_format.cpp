#include "win32/windowing/pixel_format.h"

#include <tuple>

namespace {

// Which of two is nearer to what is wanted: more than the wanted samples cost time for nothing.
bool IsBetter(const GlConfig& a, const GlConfig& b, int samples) {
    const auto rank = [samples](const GlConfig& config) {
        const bool tooMany = config.samples > samples;
        return std::tuple(config.likeScreen, !tooMany, tooMany ? -config.samples : config.samples);
    };
    return rank(a) > rank(b);
}

} // namespace

const GlConfig* ChooseConfig(std::span<const GlConfig> configs, int depthBits, int stencilBits, int samples) {
    struct Depths {
        int depth, stencil;
    };
    // Drivers have no 16 bits of stencil, some have none at all.
    const Depths ladder[] = {{depthBits, stencilBits}, {depthBits, 8}, {depthBits, 0}, {1, 0}};
    for (const Depths& wanted : ladder) {
        const GlConfig* best = nullptr;
        for (const GlConfig& config : configs)
            if (config.depthBits >= wanted.depth && config.stencilBits >= wanted.stencil &&
                (best == nullptr || IsBetter(config, *best, samples)))
                best = &config;
        if (best != nullptr)
            return best;
    }
    return nullptr;
}
