// Shapes and text on a picture, drawn by Cairo and Pango.
#pragma once

#include "raster.h"

#include <cairo.h>

#include <memory>
#include <string>

// Gives back what the font libraries keep for the whole program; after it, nothing more is drawn.
void ReleaseFonts();

struct TextStyle {
    const char* font = "DejaVu Sans"; // of fonts-dejavu-core: Sans, Sans Mono, Serif; with "Bold" if wanted
    double size = 13;                 // pixels
    Rgb colour = {};
    double width = 0;     // lines are broken here; 0: never
    double spacing = 0;   // more pixels between letters
    bool centred = false; // x is the middle of the text, not its left edge
    double leading = 1;   // distance of lines, in the font's own
};

struct Box {
    double x, y, width, height;
};

class Drawing {
public:
    // Wholly transparent.
    Drawing(int width, int height);
    // On a picture whose alpha does not count.
    explicit Drawing(const Raster& background);

    // For everything that has no operation here; stays owned by the drawing.
    cairo_t* Pen() const { return pen_.get(); }

    void Colour(Rgb colour, double alpha = 1) const;
    // The path of a box with round corners; the caller fills, clips or strokes it.
    void Outline(const Box& box, double corner) const;
    void Fill(const Box& box, double corner, Rgb colour, double alpha = 1) const;
    // Colours from the box's top to its bottom.
    void Fill(const Box& box, double corner, Rgb top, Rgb bottom) const;
    // A soft dark edge round a box, as of a window over a desktop.
    void Shadow(const Box& box, double corner, double reach, double strength) const;
    // y is the top of the first line. Returns the height of the text.
    double Text(double x, double y, const std::string& text, const TextStyle& style) const;

    // Where nothing was drawn, pixels take the colour of drawn neighbours, so that filtering brings no dark
    // edges.
    Raster Result() const;

private:
    struct Deleter {
        void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
        void operator()(cairo_t* pen) const { cairo_destroy(pen); }
    };
    std::unique_ptr<cairo_surface_t, Deleter> surface_;
    std::unique_ptr<cairo_t, Deleter> pen_;
};
