#include "pictures/drawing.h"

#include "pictures/colour.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace {

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
    void operator()(PangoFontDescription* font) const { pango_font_description_free(font); }
    void operator()(PangoAttrList* list) const { pango_attr_list_unref(list); }
    void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};

// A row of Cairo's pixels: 0xAARRGGBB, alpha multiplied in.
std::uint32_t* localRow(cairo_surface_t* surface, int y) {
    unsigned char* rows = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    return reinterpret_cast<std::uint32_t*>(rows + static_cast<std::ptrdiff_t>(y) * stride);
}

Rgba localFromPremultiplied(std::uint32_t pixel) {
    const auto part = [pixel](int shift) { return static_cast<float>(pixel >> shift & 255); };
    const float alpha = part(24);
    if (alpha <= 0)
        return {};
    return {Rgb{part(16), part(8), part(0)} * (1 / alpha), alpha / 255};
}

// Colour creeps outwards by a pixel per round into what is fully transparent.
void localSpreadColour(Raster* picture, int rounds) {
    std::vector<bool> known(static_cast<std::size_t>(picture->Width()) * picture->Height());
    const auto index = [&](int x, int y) { return static_cast<std::size_t>(y) * picture->Width() + x; };
    for (int y = 0; y < picture->Height(); ++y)
        for (int x = 0; x < picture->Width(); ++x)
            known[index(x, y)] = picture->At(x, y).alpha > 0;
    for (int round = 0; round < rounds; ++round) {
        const std::vector<bool> before = known;
        for (int y = 1; y + 1 < picture->Height(); ++y) {
            for (int x = 1; x + 1 < picture->Width(); ++x) {
                if (before[index(x, y)])
                    continue;
                constexpr int kSides[4][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};
                for (const auto& [dx, dy] : kSides) {
                    if (!before[index(x + dx, y + dy)])
                        continue;
                    picture->At(x, y).colour = picture->At(x + dx, y + dy).colour;
                    known[index(x, y)] = true;
                    break;
                }
            }
        }
    }
}

} // namespace

void ReleaseFonts() {
    pango_cairo_font_map_set_default(nullptr);
    cairo_debug_reset_static_data();
    FcFini();
}

Drawing::Drawing(int width, int height)
    : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height)),
      pen_(cairo_create(surface_.get())) {}

Drawing::Drawing(const Raster& background) : Drawing(background.Width(), background.Height()) {
    if (cairo_surface_status(surface_.get()) != CAIRO_STATUS_SUCCESS)
        return;
    const std::vector<unsigned char> bytes = background.Bytes();
    for (int y = 0; y < background.Height(); ++y) {
        std::uint32_t* row = localRow(surface_.get(), y);
        const unsigned char* from = &bytes[static_cast<std::size_t>(y) * background.Width() * 4];
        for (int x = 0; x < background.Width(); ++x, from += 4)
            row[x] = 0xFF000000u | static_cast<std::uint32_t>(from[0] << 16 | from[1] << 8 | from[2]);
    }
    cairo_surface_mark_dirty(surface_.get());
}

void Drawing::Colour(Rgb colour, double alpha) const {
    cairo_set_source_rgba(pen_.get(), colour.r, colour.g, colour.b, alpha);
}

void Drawing::Outline(const Box& box, double corner) const {
    constexpr double kRight = 3.14159265358979 / 2;
    cairo_t* pen = pen_.get();
    cairo_new_path(pen);
    cairo_arc(pen, box.x + box.width - corner, box.y + corner, corner, -kRight, 0);
    cairo_arc(pen, box.x + box.width - corner, box.y + box.height - corner, corner, 0, kRight);
    cairo_arc(pen, box.x + corner, box.y + box.height - corner, corner, kRight, 2 * kRight);
    cairo_arc(pen, box.x + corner, box.y + corner, corner, 2 * kRight, 3 * kRight);
    cairo_close_path(pen);
}

void Drawing::Fill(const Box& box, double corner, Rgb colour, double alpha) const {
    Outline(box, corner);
    Colour(colour, alpha);
    cairo_fill(pen_.get());
}

void Drawing::Fill(const Box& box, double corner, Rgb top, Rgb bottom) const {
    cairo_pattern_t* blend = cairo_pattern_create_linear(0, box.y, 0, box.y + box.height);
    cairo_pattern_add_color_stop_rgb(blend, 0, top.r, top.g, top.b);
    cairo_pattern_add_color_stop_rgb(blend, 1, bottom.r, bottom.g, bottom.b);
    Outline(box, corner);
    cairo_set_source(pen_.get(), blend);
    cairo_fill(pen_.get());
    cairo_pattern_destroy(blend);
}

void Drawing::Shadow(const Box& box, double corner, double reach, double strength) const {
    constexpr int kLayers = 20;
    for (int i = 0; i < kLayers; ++i) {
        const double out = reach * (i + 1) / kLayers;
        const double share = 1 - static_cast<double>(i) / kLayers;
        Fill({box.x - out, box.y - out, box.width + 2 * out, box.height + 2 * out}, corner + out, {},
             2 * strength * share / kLayers);
    }
}

double Drawing::Text(double x, double y, const std::string& text, const TextStyle& style) const {
    const std::unique_ptr<PangoLayout, Unref> layout(pango_cairo_create_layout(pen_.get()));
    // Set here rather than by the machine's settings, so that text looks alike wherever it is drawn.
    const std::unique_ptr<cairo_font_options_t, Unref> options(cairo_font_options_create());
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_ON);
    pango_cairo_context_set_font_options(pango_layout_get_context(layout.get()), options.get());

    const std::unique_ptr<PangoFontDescription, Unref> font(pango_font_description_from_string(style.font));
    pango_font_description_set_absolute_size(font.get(), style.size * PANGO_SCALE);
    pango_layout_set_font_description(layout.get(), font.get());
    if (style.spacing > 0) {
        const std::unique_ptr<PangoAttrList, Unref> list(pango_attr_list_new());
        pango_attr_list_insert(list.get(),
                               pango_attr_letter_spacing_new(pango_units_from_double(style.spacing)));
        pango_layout_set_attributes(layout.get(), list.get());
    }
    if (style.width > 0)
        pango_layout_set_width(layout.get(), pango_units_from_double(style.width));
    pango_layout_set_line_spacing(layout.get(), static_cast<float>(style.leading));
    pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));

    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout.get(), &width, &height);
    Colour(style.colour);
    cairo_move_to(pen_.get(), style.centred ? std::floor(x - width / 2.0) : x, y);
    pango_cairo_show_layout(pen_.get(), layout.get());
    cairo_new_path(pen_.get());
    return height;
}

Raster Drawing::Result() const {
    cairo_surface_flush(surface_.get());
    Raster picture(cairo_image_surface_get_width(surface_.get()),
                   cairo_image_surface_get_height(surface_.get()));
    bool holes = false;
    for (int y = 0; y < picture.Height(); ++y) {
        const std::uint32_t* row = localRow(surface_.get(), y);
        for (int x = 0; x < picture.Width(); ++x) {
            picture.At(x, y) = localFromPremultiplied(row[x]);
            holes = holes || (row[x] >> 24) == 0;
        }
    }
    if (holes)
        localSpreadColour(&picture, 4);
    return picture;
}
