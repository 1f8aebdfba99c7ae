// A picture file as the saver gets it from the codec, on either system.
#pragma once

#include "image/canvas.h"

#include <cstdint>
#include <string>

// Its sides, 4 bytes each, and its pixels; empty when it does not load.
inline std::string Decoded(const std::string& file) {
    FXCanvas canvas;
    canvas.powerOfTwo = false;
    canvas.detectTrans = false;
    if (!canvas.CreateFromPict(file.c_str()))
        return "";
    const std::int32_t sides[] = {canvas.usedWidth, canvas.usedHeight};
    const auto* pixels = reinterpret_cast<const char*>(canvas.pixels);
    return std::string(reinterpret_cast<const char*>(sides), sizeof sides) +
           std::string(pixels, pixels + std::ptrdiff_t{4} * canvas.width * canvas.height);
}
