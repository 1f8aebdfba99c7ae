#include "raster.h"

#include "base/whole_file.h"

#include <png.h>
// libjpeg's header leaves it to its user to name FILE and size_t first.
#include <cstdio>

#include <jpeglib.h>

#include <algorithm>
#include <csetjmp>
#include <functional>
#include <thread>

namespace {

Rgba localMixed(const Rgba& a, const Rgba& b, float t) {
    return {a.colour * (1 - t) + b.colour * t, a.alpha * (1 - t) + b.alpha * t};
}

// Ordered dithering after Bayer, in squares of 8 pixels, apart for each channel. It hides bands as well as
// noise does, and packs better.
unsigned char localDithered(float value, int x, int y, unsigned channel) {
    const unsigned column = static_cast<unsigned>(x) + 3 * channel;
    const unsigned row = static_cast<unsigned>(y) + 5 * channel;
    unsigned rank = 0;
    for (unsigned bit = 0; bit < 3; ++bit) {
        const unsigned right = column >> bit & 1;
        const unsigned down = row >> bit & 1;
        rank = rank << 2 | (right ^ down) << 1 | down;
    }
    const float threshold = (static_cast<float>(rank) + 0.5f) / 64;
    return static_cast<unsigned char>(std::min(std::clamp(value, 0.0f, 1.0f) * 255 + threshold, 255.0f));
}

// Rows of RGBA on their way through libpng, which reports an error by jumping back here.
bool localWriteRows(std::FILE* file, const unsigned char* rgba, int width, int height, bool withAlpha) {
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

struct JpegTrouble {
    jpeg_error_mgr manager;
    std::jmp_buf wayOut;
};

// The same through libjpeg, which reports an error in the same way. Colours keep their full resolution.
bool localWriteJpegRows(std::FILE* file, const unsigned char* rgba, int width, int height, int quality) {
    jpeg_compress_struct jpeg;
    JpegTrouble trouble;
    jpeg.err = jpeg_std_error(&trouble.manager);
    trouble.manager.error_exit = [](j_common_ptr j) {
        std::longjmp(reinterpret_cast<JpegTrouble*>(j->err)->wayOut, 1);
    };
    if (setjmp(trouble.wayOut) != 0) {
        jpeg_destroy_compress(&jpeg);
        return false;
    }
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, quality, TRUE);
    jpeg.optimize_coding = TRUE;
    jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < jpeg.image_height) {
        const std::size_t from = static_cast<std::size_t>(jpeg.next_scanline) * jpeg.image_width * 4;
        JSAMPROW row = const_cast<JSAMPROW>(rgba + from);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
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
    return localMixed(localMixed(At(x0, y0), At(x1, y0), tx), localMixed(At(x0, y1), At(x1, y1), tx), ty);
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
            bytes.push_back(localDithered(pixel.colour.r, x, y, 0));
            bytes.push_back(localDithered(pixel.colour.g, x, y, 1));
            bytes.push_back(localDithered(pixel.colour.b, x, y, 2));
            bytes.push_back(localDithered(pixel.alpha, x, y, 3));
        }
    }
    return bytes;
}

std::string Raster::WritePng(const std::string& file) const {
    const bool opaque =
        std::all_of(pixels_.begin(), pixels_.end(), [](const Rgba& p) { return p.alpha >= 1; });
    const std::vector<unsigned char> bytes = Bytes();
    std::string trouble;
    fxReplaceFile(
        file, [&](std::FILE* out) { return localWriteRows(out, bytes.data(), width_, height_, !opaque); },
        &trouble);
    return trouble;
}

std::string Raster::WriteJpeg(const std::string& file, int quality) const {
    const std::vector<unsigned char> bytes = Bytes();
    std::string trouble;
    fxReplaceFile(
        file, [&](std::FILE* out) { return localWriteJpegRows(out, bytes.data(), width_, height_, quality); },
        &trouble);
    return trouble;
}

void ForEachRow(int rows, const std::function<void(int)>& work) {
    const int hands = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    std::vector<std::jthread> others;
    for (int first = 1; first < hands; ++first)
        others.emplace_back([=, &work] {
            for (int row = first; row < rows; row += hands)
                work(row);
        });
    for (int row = 0; row < rows; row += hands)
        work(row);
}
