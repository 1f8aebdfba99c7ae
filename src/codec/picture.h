// A picture as the codec's modules keep it, and the formats of pixels that they know.
#pragma once

#include "base/memory.h"
#include "image/codec.h"

#include <cstddef>

// Codes of the modules that the saver does not use.
constexpr ILenum IL_RGB = 0x1907;
constexpr ILenum IL_BGR = 0x80E0;
constexpr ILenum IL_BGRA = 0x80E1;
constexpr ILenum IL_LUMINANCE_ALPHA = 0x190A;

// One byte for each channel. Owns its pixels; rows follow each other without padding.
class CodecPicture {
public:
    // The channels of a format; 0: it is none that the modules know.
    static int ChannelsOf(ILenum format);
    // n pixels from one known format into another; they do not overlap.
    static void ConvertPixels(const unsigned char* from, ILenum fromFormat, unsigned char* to,
                              ILenum toFormat, std::size_t n);

    // Pixels with nothing in them yet. False, with the picture empty, when the format is not known, a side is
    // none that the saver's own pictures can have, or there is no memory.
    bool Realloc(int w, int h, ILenum ofFormat);
    // False, with the picture as it was, when the format is not known or there is no memory.
    bool Convert(ILenum toFormat);
    bool Copy(const CodecPicture& other); // false when there is no memory
    void Destroy();

    int Channels() const { return ChannelsOf(format); }
    std::size_t RowBytes() const { return static_cast<std::size_t>(width) * Channels(); }
    std::size_t Bytes() const { return RowBytes() * static_cast<std::size_t>(height); }
    unsigned char* Row(int y) const { return bytes.get() + RowBytes() * static_cast<std::size_t>(y); }
    bool HasAlpha() const { return format == IL_RGBA || format == IL_BGRA || format == IL_LUMINANCE_ALPHA; }
    bool IsEmpty() const { return !bytes; }

    int width = 0; // pixels
    int height = 0;
    ILenum format = IL_RGBA;
    bool lowestFirst = true; // whether the first row is the lowest one
    FXBytes bytes;
};
