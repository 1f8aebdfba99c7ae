// The show as the picture tests play it: small, over a desktop on which every corner is different.
#pragma once

#include "film/show_driver.h"

#include <cstdlib>

// Four colours, darker to the right and down, with a line every twenty pixels: turned, mirrored or stretched
// it is another picture.
inline Picture TestDesktop(int width, int height) {
    Picture picture{width, height, {}};
    const std::uint32_t corners[2][2] = {{0xF04030, 0x30C050}, {0x4060F0, 0xE0D040}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint32_t colour = corners[2 * y / height][2 * x / width];
            const bool line = x % 20 == 0 || y % 20 == 0;
            const auto light = static_cast<std::uint32_t>(255 - 100 * x / width - 100 * y / height);
            std::uint32_t pixel = 0xFF000000u;
            for (const int shift : {0, 8, 16})
                pixel |= (line ? 0xE8u : (colour >> shift & 255u) * light / 255u) << shift;
            picture.pixels.push_back(pixel);
        }
    return picture;
}

inline ShowDriver::Settings TestShow() {
    setenv("LP_NUM_THREADS", "0", 1); // Mesa draws on our thread, and takes the same memory every time
    ShowDriver::Settings settings;
    settings.width = 320;
    settings.height = 180;
    settings.step = 0.1; // seconds
    settings.dataFolder = TAMBLOR_DATA_DIR;
    settings.desktop = TestDesktop(settings.width, settings.height);
    return settings;
}
