#include "raster.h"

#include "noise.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>

namespace {

Rgba Mixed(const Rgba& a, const Rgba& b, float t) {
    return {a.colour * (1 - t) + b.colour * t, a.alpha * (1 - t) + b.alpha * t};
}

unsigned char Dithered(float value, int x, int y, unsigned channel) {
    const float scaled = std::clamp(value, 0.0f, 1.0f) * 255;
    const float threshold = HashUnit(static_cast<unsigned>(x), static_cast<unsigned>(y), channel, 0xD17ED);
    return static_cast<unsigned char>(std::min(scaled + threshold, 255.0f));
}

// Rows of RGBA on their way through libpng, which reports an error by jumping back here.
bool WriteRows(std::FILE* file, const unsigned char* rgba, int width, int height, bool withAlpha) {
    png_structp png = png_create_write_struct(
        PNG_LIBPNG_VER_STRING, nullptr, [](png_structp p, png_const_charp) { png_longjmp(p, 1); },
        [](png_structp, png_const_charp) {});
    if (png == nullptr)
        return false;
    png_infop info = png_create_info_struct(png);
    if (info == nullptr || setjmp(png_jmpbuf(png)) != 0) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 withAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    if (!withAlpha)
        png_set_filler(png, 0, PNG_FILLER_AFTER);
    for (int y = 0; y < height; ++y)
        png_write_row(png, rgba + static_cast<std::size_t>(y) * width * 4);
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

} // namespace

Raster::Raster(int width, int height)
    : width_(width), height_(height), pixels_(static_cast<std::size_t>(width) * height) {}

Rgba Raster::Sample(float x, float y) const {
    const float fx = std::clamp(x - 0.5f, 0.0f, static_cast<float>(width_ - 1));
    const float fy = std::clamp(y - 0.5f, 0.0f, static_cast<float>(height_ - 1));
    const int x0 = static_cast<int>(fx);
    const int y0 = static_cast<int>(fy);
    const int x1 = std::min(x0 + 1, width_ - 1);
    const int y1 = std::min(y0 + 1, height_ - 1);
    const float tx = fx - static_cast<float>(x0);
    const float ty = fy - static_cast<float>(y0);
    return Mixed(Mixed(At(x0, y0), At(x1, y0), tx), Mixed(At(x0, y1), At(x1, y1), tx), ty);
}

Raster Raster::Shrunk(int width, int height) const {
    Raster small(width, height);
    for (int y = 0; y < height; ++y) {
        const int top = y * height_ / height;
        const int bottom = std::max(top + 1, (y + 1) * height_ / height);
        for (int x = 0; x < width; ++x) {
            const int left = x * width_ / width;
            const int right = std::max(left + 1, (x + 1) * width_ / width);
            Rgb light;
            float alpha = 0;
            for (int sy = top; sy < bottom; ++sy) {
                for (int sx = left; sx < right; ++sx) {
                    light += At(sx, sy).colour * At(sx, sy).alpha;
                    alpha += At(sx, sy).alpha;
                }
            }
            const Rgb colour = alpha > 0 ? light * (1 / alpha) : At(left, top).colour;
            small.At(x, y) = {colour, alpha / static_cast<float>((bottom - top) * (right - left))};
        }
    }
    return small;
}

std::vector<unsigned char> Raster::Bytes() const {
    std::vector<unsigned char> bytes;
    bytes.reserve(pixels_.size() * 4);
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x) {
            const Rgba& pixel = At(x, y);
            bytes.push_back(Dithered(pixel.colour.r, x, y, 0));
            bytes.push_back(Dithered(pixel.colour.g, x, y, 1));
            bytes.push_back(Dithered(pixel.colour.b, x, y, 2));
            bytes.push_back(Dithered(pixel.alpha, x, y, 3));
        }
    }
    return bytes;
}

std::string Raster::WritePng(const std::string& file) const {
    const bool opaque =
        std::all_of(pixels_.begin(), pixels_.end(), [](const Rgba& p) { return p.alpha >= 1; });
    const std::vector<unsigned char> bytes = Bytes();
    errno = 0;
    std::FILE* out = std::fopen(file.c_str(), "wb");
    bool well = out != nullptr && WriteRows(out, bytes.data(), width_, height_, !opaque);
    int reason = errno;
    if (out != nullptr && std::fclose(out) != 0 && well) {
        well = false;
        reason = errno;
    }
    if (well)
        return {};
    if (out != nullptr)
        std::remove(file.c_str());
    return file + ": cannot be written: " + (reason != 0 ? std::strerror(reason) : "out of memory");
}
