#include "pictures/colour.h"
#include "pictures/drawing.h"
#include "pictures/pictures.h"

namespace {

void localDrawWarningSign(const Drawing& page, double x, double y, double size) {
    cairo_t* pen = page.Pen();
    cairo_set_line_join(pen, CAIRO_LINE_JOIN_ROUND);
    cairo_move_to(pen, x, y - size * 0.55);
    cairo_line_to(pen, x + size * 0.62, y + size * 0.5);
    cairo_line_to(pen, x - size * 0.62, y + size * 0.5);
    cairo_close_path(pen);
    page.Colour(Hex(0xFFB224));
    cairo_fill_preserve(pen);
    cairo_set_line_width(pen, size * 0.16);
    cairo_stroke(pen);

    page.Colour(Hex(0x2A1A00));
    cairo_set_line_cap(pen, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_width(pen, size * 0.13);
    cairo_move_to(pen, x, y - size * 0.2);
    cairo_line_to(pen, x, y + size * 0.14);
    cairo_move_to(pen, x, y + size * 0.38);
    cairo_line_to(pen, x, y + size * 0.381);
    cairo_stroke(pen);
}

} // namespace

Raster DrawErrorNotice() {
    constexpr int kWidth = 560;
    constexpr int kHeight = 150;
    const Drawing page(kWidth, kHeight);
    constexpr Box kPanel = {1.5, 1.5, kWidth - 3.0, kHeight - 3.0};
    page.Fill(kPanel, 14, Hex(0x1B1E27), 0.94);
    page.Outline(kPanel, 14);
    page.Colour(Hex(0xFFB224), 0.85);
    cairo_set_line_width(page.Pen(), 1.5);
    cairo_stroke(page.Pen());
    localDrawWarningSign(page, 62, kHeight / 2.0 - 2, 58);

    TextStyle title = {.font = "DejaVu Sans Bold", .size = 18, .colour = Hex(0xFFD27A)};
    page.Text(122, 22, "The graphics driver is missing", title);
    TextStyle body = {.size = 13.5, .colour = Hex(0xE8EAF0), .width = 418};
    page.Text(122, 53,
              "This computer's OpenGL cannot lay two pictures over one another "
              "(multitexture), so the show may look wrong.\n"
              "Please install the driver made for your graphics card, and start "
              "the screen saver again.",
              body);
    return page.Result();
}
