#include "win32/wayland/shared_picture.h"

#include "win32/wayland/outputs.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace wayland {

namespace {

// Where the topmost eight bits of each colour begin in a pixel, a number of 32 bits with its lowest byte
// first.
struct Layout {
    std::uint32_t format;
    int red, green, blue;
};

constexpr Layout kLayouts[] = {
    {WL_SHM_FORMAT_XRGB8888, 16, 8, 0},     {WL_SHM_FORMAT_ARGB8888, 16, 8, 0},
    {WL_SHM_FORMAT_XBGR8888, 0, 8, 16},     {WL_SHM_FORMAT_ABGR8888, 0, 8, 16},
    {WL_SHM_FORMAT_RGBX8888, 24, 16, 8},    {WL_SHM_FORMAT_RGBA8888, 24, 16, 8},
    {WL_SHM_FORMAT_BGRX8888, 8, 16, 24},    {WL_SHM_FORMAT_BGRA8888, 8, 16, 24},
    {WL_SHM_FORMAT_XRGB2101010, 22, 12, 2}, {WL_SHM_FORMAT_ARGB2101010, 22, 12, 2},
    {WL_SHM_FORMAT_XBGR2101010, 2, 12, 22}, {WL_SHM_FORMAT_ABGR2101010, 2, 12, 22},
};

const Layout* FindLayout(std::uint32_t format) {
    const auto* found = std::ranges::find(kLayouts, format, &Layout::format);
    return found != std::end(kLayouts) ? found : nullptr;
}

// The way through the picture's bytes that follows the user's rows.
struct Walk {
    std::ptrdiff_t start, right, down; // bytes
};

// The transform is what the compositor does to upright pictures, so that they stand upright on a monitor
// that is turned.
Walk FindWalk(const SharedPicture& picture) {
    const std::ptrdiff_t pixel = 4;
    const std::ptrdiff_t row = picture.upsideDown ? -picture.stride : picture.stride;
    const std::ptrdiff_t lastPixel = (picture.width - 1) * pixel;
    const std::ptrdiff_t lastRow = (picture.height - 1) * row;
    const std::ptrdiff_t first =
        picture.upsideDown ? static_cast<std::ptrdiff_t>(picture.height - 1) * picture.stride : 0;
    switch (picture.transform) {
    case WL_OUTPUT_TRANSFORM_90:
        return {first + lastRow, -row, pixel};
    case WL_OUTPUT_TRANSFORM_180:
        return {first + lastRow + lastPixel, -pixel, -row};
    case WL_OUTPUT_TRANSFORM_270:
        return {first + lastPixel, row, -pixel};
    case WL_OUTPUT_TRANSFORM_FLIPPED:
        return {first + lastPixel, -pixel, row};
    case WL_OUTPUT_TRANSFORM_FLIPPED_90:
        return {first, row, pixel};
    case WL_OUTPUT_TRANSFORM_FLIPPED_180:
        return {first + lastRow, pixel, -row};
    case WL_OUTPUT_TRANSFORM_FLIPPED_270:
        return {first + lastRow + lastPixel, -row, -pixel};
    default:
        return {first, pixel, row};
    }
}

} // namespace

bool IsKnownFormat(std::uint32_t format) {
    return FindLayout(format) != nullptr;
}

Photograph ToPhotograph(const SharedPicture& picture, int width, int height) {
    const Layout layout = *FindLayout(picture.format);
    const Walk walk = FindWalk(picture);
    const bool turned = IsTurned(picture.transform);
    Photograph result;
    result.width = std::min(width, turned ? picture.height : picture.width);
    result.height = std::min(height, turned ? picture.width : picture.height);
    result.pixels.resize(static_cast<std::size_t>(result.width) * static_cast<std::size_t>(result.height) *
                         4);
    unsigned char* to = result.pixels.data();
    for (int y = 0; y < result.height; ++y) {
        const unsigned char* from = picture.bytes + walk.start + y * walk.down;
        for (int x = 0; x < result.width; ++x, from += walk.right, to += 4) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, from, sizeof pixel);
            to[0] = static_cast<unsigned char>(pixel >> layout.blue);
            to[1] = static_cast<unsigned char>(pixel >> layout.green);
            to[2] = static_cast<unsigned char>(pixel >> layout.red);
        }
    }
    return result;
}

} // namespace wayland
