// How pixels lie in picture files, and rows of them made plain.
#pragma once

#include "codec/picture.h"

#include <cstdint>

// Four bytes for each entry: red, green, blue, alpha.
struct CodecPalette {
    CodecPalette() = default;
    // That many greys from black to white.
    explicit CodecPalette(int greys);

    unsigned char colours[256][4] = {}; // transparent black where the file has no entry
};

struct PixelLayout {
    enum class Kind {
        Palette, // numbers of entries, 1, 2, 4 or 8 bits each, the first in the highest bits
        Bytes,   // a byte for each channel of `format`
        Words,   // two bytes for each, the higher one last; the lower one is not looked at
        Five,    // 5 bits each for blue, green, red, from the lowest bit on, in two bytes
        FiveSixFive
    };

    Kind kind;
    int bits;      // of a pixel
    ILenum format; // of Bytes and Words

    std::size_t RowBytes(int pixels) const { return (static_cast<std::size_t>(pixels) * bits + 7) / 8; }
};

// One row as RGBA.
void fxUnpackRow(const PixelLayout& layout, const CodecPalette& palette, const unsigned char* from,
                 int pixels, unsigned char* rgba);
