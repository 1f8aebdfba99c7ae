#include "film/contact_sheet.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

void ContactSheet::Add(const Picture& frame, double seconds) {
    const int height = std::max(1, frame.height * thumbWidth_ / std::max(1, frame.width));
    thumbs_.push_back({Scaled(frame, thumbWidth_, height), seconds});
}

bool ContactSheet::Write(const std::string& file, int columns, std::string* error) const {
    constexpr int kGap = 8;
    constexpr int kCaption = 22;
    const int count = static_cast<int>(thumbs_.size());
    if (columns <= 0)
        columns = std::max(1, static_cast<int>(std::ceil(std::sqrt(count))));
    const int rows = (count + columns - 1) / columns;
    int cellHeight = 0;
    for (const Thumb& thumb : thumbs_)
        cellHeight = std::max(cellHeight, thumb.picture.height + kCaption + kGap);
    const int cellWidth = thumbWidth_ + kGap;

    cairo_surface_t* sheet =
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, columns * cellWidth + kGap, rows * cellHeight + kGap);
    cairo_t* pen = cairo_create(sheet);
    cairo_set_source_rgb(pen, 0.06, 0.06, 0.09);
    cairo_paint(pen);
    cairo_select_font_face(pen, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(pen, 13);
    for (int i = 0; i < count; ++i) {
        Picture picture = thumbs_[static_cast<std::size_t>(i)].picture; // cairo wants the pixels writable
        const int x = kGap + i % columns * cellWidth;
        const int y = kGap + i / columns * cellHeight;
        cairo_surface_t* image = cairo_image_surface_create_for_data(
            reinterpret_cast<unsigned char*>(picture.pixels.data()), CAIRO_FORMAT_RGB24, picture.width,
            picture.height, picture.width * 4);
        cairo_set_source_surface(pen, image, x, y);
        cairo_paint(pen);
        cairo_surface_destroy(image);
        char caption[32];
        std::snprintf(caption, sizeof caption, "%.2f s", thumbs_[static_cast<std::size_t>(i)].seconds);
        cairo_set_source_rgb(pen, 0.78, 0.78, 0.82);
        cairo_move_to(pen, x + 2, y + picture.height + 16);
        cairo_show_text(pen, caption);
    }
    cairo_destroy(pen);
    const bool written = WritePng(file, sheet, error);
    cairo_surface_destroy(sheet);
    return written;
}

void ReleaseFonts() {
    cairo_debug_reset_static_data();
    FcFini();
}
