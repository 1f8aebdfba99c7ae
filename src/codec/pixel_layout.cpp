#include "codec/pixel_layout.h"

#include <cstring>

namespace {

void localUnpackNumbers(int bits, const CodecPalette& palette, const unsigned char* from, int pixels,
                        unsigned char* rgba) {
    const int perByte = 8 / bits;
    const int mask = (1 << bits) - 1;
    for (int i = 0; i < pixels; ++i) {
        const int shift = 8 - bits * (i % perByte + 1);
        std::memcpy(rgba + std::ptrdiff_t{4} * i, palette.colours[from[i / perByte] >> shift & mask], 4);
    }
}

void localUnpackWords(ILenum format, const unsigned char* from, int pixels, unsigned char* rgba) {
    const int channels = CodecPicture::ChannelsOf(format);
    for (int i = 0; i < pixels; ++i) {
        unsigned char pixel[4];
        for (int channel = 0; channel < channels; ++channel, from += 2)
            pixel[channel] = from[1];
        CodecPicture::ConvertPixels(pixel, format, rgba + std::ptrdiff_t{4} * i, IL_RGBA, 1);
    }
}

void localUnpackFives(int greenBits, const unsigned char* from, int pixels, unsigned char* rgba) {
    const auto byte = [](int value, int bits) {
        return static_cast<unsigned char>((value & ((1 << bits) - 1)) << (8 - bits));
    };
    for (int i = 0; i < pixels; ++i, from += 2, rgba += 4) {
        const int pixel = from[0] | from[1] << 8;
        rgba[0] = byte(pixel >> (5 + greenBits), 5);
        rgba[1] = byte(pixel >> 5, greenBits);
        rgba[2] = byte(pixel, 5);
        rgba[3] = 255;
    }
}

} // namespace

CodecPalette::CodecPalette(int greys) {
    for (int i = 0; i < greys; ++i) {
        std::memset(colours[i], i * 255 / (greys - 1), 3);
        colours[i][3] = 255;
    }
}

void fxUnpackRow(const PixelLayout& layout, const CodecPalette& palette, const unsigned char* from,
                 int pixels, unsigned char* rgba) {
    switch (layout.kind) {
    case PixelLayout::Kind::Palette:
        return localUnpackNumbers(layout.bits, palette, from, pixels, rgba);
    case PixelLayout::Kind::Bytes:
        return CodecPicture::ConvertPixels(from, layout.format, rgba, IL_RGBA,
                                           static_cast<std::size_t>(pixels));
    case PixelLayout::Kind::Words:
        return localUnpackWords(layout.format, from, pixels, rgba);
    case PixelLayout::Kind::Five:
        return localUnpackFives(5, from, pixels, rgba);
    case PixelLayout::Kind::FiveSixFive:
        return localUnpackFives(6, from, pixels, rgba);
    }
}
