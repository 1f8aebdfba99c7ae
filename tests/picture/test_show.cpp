#include "picture/test_show.h"

#include <cstdlib>

namespace {

// Four colours, darker to the right and down, with a line every twenty pixels: turned, mirrored or stretched
// it is another picture.
Picture TestDesktop(int width, int height) {
    Picture picture{width, height, std::vector<std::uint32_t>(static_cast<std::size_t>(width) * height)};
    const std::uint32_t corners[2][2] = {{0xF04030, 0x30C050}, {0x4060F0, 0xE0D040}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint32_t colour = corners[2 * y / height][2 * x / width];
            const bool line = x % 20 == 0 || y % 20 == 0;
            const auto light = static_cast<std::uint32_t>(255 - 100 * x / width - 100 * y / height);
            std::uint32_t pixel = 0xFF000000u;
            for (const int shift : {0, 8, 16})
                pixel |= (line ? 0xE8u : (colour >> shift & 255u) * light / 255u) << shift;
            picture.pixels[static_cast<std::size_t>(y) * width + x] = pixel;
        }
    return picture;
}

} // namespace

ShowDriver::Settings TestShow() {
    setenv("LP_NUM_THREADS", "0", 1); // Mesa draws on our thread, and takes the same memory every time
    ShowDriver::Settings settings;
    settings.width = 320;
    settings.height = 180;
    settings.step = kTestStep;
    settings.dataFolder = TAMBLOR_DATA_DIR;
    settings.desktop = TestDesktop(settings.width, settings.height);
    return settings;
}
