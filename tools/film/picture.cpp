#include "film/picture.h"

#include "base/whole_file.h"

#include <cairo.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>

namespace {

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;

// Cairo's ARGB32 has alpha multiplied in; all our pictures are opaque frames, so alpha is simply set.
Surface localToSurface(const Picture& picture) {
    Surface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, picture.width, picture.height));
    unsigned char* rows = cairo_image_surface_get_data(surface.get());
    if (rows == nullptr)
        return surface;
    const int stride = cairo_image_surface_get_stride(surface.get());
    for (int y = 0; y < picture.height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(rows + static_cast<std::ptrdiff_t>(y) * stride);
        const std::uint32_t* from = &picture.pixels[static_cast<std::size_t>(y) * picture.width];
        std::copy(from, from + picture.width, row);
    }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

Picture localFromSurface(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    Picture picture;
    picture.width = cairo_image_surface_get_width(surface);
    picture.height = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* rows = cairo_image_surface_get_data(surface);
    picture.pixels.resize(static_cast<std::size_t>(picture.width) * picture.height);
    for (int y = 0; y < picture.height; ++y) {
        const auto* row =
            reinterpret_cast<const std::uint32_t*>(rows + static_cast<std::ptrdiff_t>(y) * stride);
        for (int x = 0; x < picture.width; ++x)
            picture.pixels[static_cast<std::size_t>(y) * picture.width + x] = row[x] | 0xFF000000u;
    }
    return picture;
}

// Cairo takes what is no PNG for a lack of memory.
bool localIsPng(const std::string& file, std::string* error) {
    char start[8] = {};
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        *error = file + ": cannot be opened";
    else if (!stream.read(start, sizeof start) || std::memcmp(start, "\x89PNG\r\n\x1a\n", sizeof start) != 0)
        *error = file + ": is no PNG picture";
    else
        return true;
    return false;
}

Surface localPainted(cairo_surface_t* source, int width, int height) {
    Surface target(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
    cairo_t* pen = cairo_create(target.get());
    cairo_scale(pen, static_cast<double>(width) / cairo_image_surface_get_width(source),
                static_cast<double>(height) / cairo_image_surface_get_height(source));
    cairo_set_source_surface(pen, source, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(pen), CAIRO_FILTER_BEST);
    cairo_pattern_set_extend(cairo_get_source(pen), CAIRO_EXTEND_PAD);
    cairo_paint(pen);
    cairo_destroy(pen);
    return target;
}

} // namespace

bool ReadPng(const std::string& file, Picture* picture, std::string* error) {
    if (!localIsPng(file, error))
        return false;
    const Surface surface(cairo_image_surface_create_from_png(file.c_str()));
    const cairo_status_t status = cairo_surface_status(surface.get());
    if (status != CAIRO_STATUS_SUCCESS) {
        *error = file + ": cannot be read as a PNG picture: " + cairo_status_to_string(status);
        return false;
    }
    // Painting brings every PNG format to opaque 32-bit pixels.
    *picture = localFromSurface(localPainted(surface.get(), cairo_image_surface_get_width(surface.get()),
                                             cairo_image_surface_get_height(surface.get()))
                                    .get());
    return true;
}

bool WritePng(const std::string& file, const Picture& picture, std::string* error) {
    return WritePng(file, localToSurface(picture).get(), error);
}

bool WritePng(const std::string& file, cairo_surface_t* surface, std::string* error) {
    const cairo_write_func_t append = [](void* out, const unsigned char* bytes, unsigned size) {
        return std::fwrite(bytes, 1, size, static_cast<std::FILE*>(out)) == size ? CAIRO_STATUS_SUCCESS
                                                                                 : CAIRO_STATUS_WRITE_ERROR;
    };
    return fxReplaceFile(
        file,
        [&](std::FILE* out) {
            return cairo_surface_write_to_png_stream(surface, append, out) == CAIRO_STATUS_SUCCESS;
        },
        error);
}

Picture Scaled(const Picture& picture, int width, int height) {
    if (picture.Empty() || (picture.width == width && picture.height == height))
        return picture;
    return localFromSurface(localPainted(localToSurface(picture).get(), width, height).get());
}
