#include "win32/windowing/pixel_format.h"

const GlConfig* ChooseConfig(std::span<const GlConfig> configs, int depthBits, int stencilBits) {
    struct Depths {
        int depth, stencil;
    };
    // Drivers have no 16 bits of stencil, some have none at all.
    const Depths ladder[] = {{depthBits, stencilBits}, {depthBits, 8}, {depthBits, 0}, {1, 0}};
    for (const Depths& wanted : ladder) {
        const GlConfig* any = nullptr;
        for (const GlConfig& config : configs) {
            if (config.depthBits < wanted.depth || config.stencilBits < wanted.stencil)
                continue;
            if (config.likeScreen)
                return &config;
            if (any == nullptr)
                any = &config;
        }
        if (any != nullptr)
            return any;
    }
    return nullptr;
}
