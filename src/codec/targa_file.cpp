#include "codec/targa_file.h"

#include "codec/pixel_layout.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr int kHeader = 18; // bytes
constexpr int kRuns = 8;    // added to the kinds below
enum Kind : int { kPalette = 1, kColours = 2, kGreys = 3 };
constexpr int kRightFirst = 0x10; // flags
constexpr int kTopFirst = 0x20;

struct Header {
    int wordsBytes, hasPalette, kind, firstColour, colours, colourBits, width, height, bits, flags;
};

bool localReadHeader(FXPackageData* file, Header* header) {
    const auto* bytes = static_cast<const unsigned char*>(file->ReadBlc(kHeader));
    if (bytes == nullptr)
        return false;
    const auto word = [&](int at) { return bytes[at] | bytes[at + 1] << 8; };
    *header = {bytes[0], bytes[1], bytes[2], word(3),   word(5),
               bytes[7], word(12), word(14), bytes[16], bytes[17]};
    return true;
}

// What one pixel or colour of so many bits is; bits 0: nothing that there is.
PixelLayout localColourLayout(int bits) {
    switch (bits) {
    case 15:
    case 16:
        return {PixelLayout::Kind::Five, 16, IL_BGR};
    case 24:
        return {PixelLayout::Kind::Bytes, 24, IL_BGR};
    case 32:
        return {PixelLayout::Kind::Bytes, 32, IL_BGRA};
    default:
        return {PixelLayout::Kind::Bytes, 0, IL_BGR};
    }
}

PixelLayout localLayout(const Header& header) {
    const int kind = header.kind & ~kRuns;
    if (kind == kColours)
        return localColourLayout(header.bits);
    const bool taken = header.bits == 8 && (kind == kGreys || (kind == kPalette && header.hasPalette == 1));
    return {PixelLayout::Kind::Palette, taken ? 8 : 0, IL_LUMINANCE};
}

// Stands in the file also where the pixels are no numbers of colours.
bool localReadPalette(FXPackageData* file, const Header& header, CodecPalette* palette) {
    if (header.hasPalette == 0)
        return true;
    const PixelLayout layout = localColourLayout(header.colourBits);
    const auto* colours =
        static_cast<const unsigned char*>(file->ReadBlc(header.colours * ((header.colourBits + 7) / 8)));
    if ((header.kind & ~kRuns) != kPalette)
        return colours != nullptr;
    if (colours == nullptr || layout.bits == 0)
        return false;
    const int first = std::min(header.firstColour, 256);
    fxUnpackRow(layout, *palette, colours, std::min(header.colours, 256 - first), palette->colours[first]);
    return true;
}

// Fills the block with runs: a head with the length less one, whose highest bit tells whether one pixel
// follows for all of them.
bool localUnpackRuns(FXPackageData* file, unsigned char* to, std::size_t size, int pixelBytes) {
    while (size > 0) {
        const auto* head = static_cast<const unsigned char*>(file->ReadBlc(1));
        if (head == nullptr)
            return false;
        const std::size_t run = static_cast<std::size_t>((*head & 127) + 1) * pixelBytes;
        const bool repeats = (*head & 128) != 0;
        const auto* pixels =
            static_cast<const unsigned char*>(file->ReadBlc(repeats ? pixelBytes : static_cast<int>(run)));
        if (pixels == nullptr)
            return false;
        const std::size_t taken = std::min(run, size);
        for (std::size_t i = 0; i < taken; ++i)
            to[i] = pixels[repeats ? i % static_cast<std::size_t>(pixelBytes) : i];
        to += taken;
        size -= taken;
    }
    return true;
}

void localMirror(unsigned char* row, int pixels) {
    for (unsigned char *left = row, *right = row + std::ptrdiff_t{4} * (pixels - 1); left < right;
         left += 4, right -= 4)
        std::swap_ranges(left, left + 4, right);
}

} // namespace

bool fxReadTarga(FXPackageData* file, CodecPicture* picture) {
    Header header = {};
    if (!localReadHeader(file, &header) || file->ReadBlc(header.wordsBytes) == nullptr)
        return false;
    const PixelLayout layout = localLayout(header);
    CodecPalette palette((header.kind & ~kRuns) == kGreys ? 256 : 0);
    if (layout.bits == 0 || !localReadPalette(file, header, &palette) ||
        !picture->Realloc(header.width, header.height, IL_RGBA))
        return false;
    picture->lowestFirst = (header.flags & kTopFirst) == 0;
    const std::size_t rowBytes = layout.RowBytes(header.width);
    const std::size_t size = rowBytes * static_cast<std::size_t>(header.height);
    FXBytes unpacked;
    const unsigned char* pixels = nullptr;
    if ((header.kind & kRuns) != 0) {
        unpacked = fxNewBytes(size);
        if (unpacked && localUnpackRuns(file, unpacked.get(), size, layout.bits / 8))
            pixels = unpacked.get();
    } else {
        pixels = static_cast<const unsigned char*>(file->ReadBlc(static_cast<int>(size)));
    }
    if (pixels == nullptr) {
        picture->Destroy();
        return false;
    }
    for (int y = 0; y < header.height; ++y, pixels += rowBytes) {
        fxUnpackRow(layout, palette, pixels, header.width, picture->Row(y));
        if ((header.flags & kRightFirst) != 0)
            localMirror(picture->Row(y), header.width);
    }
    return true;
}

FXBytes fxEncodeTarga(const CodecPicture& picture, std::size_t* size) {
    const bool grey = picture.format == IL_LUMINANCE;
    const ILenum format = grey ? IL_LUMINANCE : picture.HasAlpha() ? IL_BGRA : IL_BGR;
    const std::size_t pixels =
        static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    const int channels = CodecPicture::ChannelsOf(format);
    *size = kHeader + pixels * channels;
    FXBytes file = fxNewBytes(*size);
    if (!file)
        return file;
    const auto low = [](int value) { return static_cast<unsigned char>(value & 255); };
    const auto high = [](int value) { return static_cast<unsigned char>(value >> 8); };
    const int flags = (format == IL_BGRA ? 8 : 0) | (picture.lowestFirst ? 0 : kTopFirst);
    const unsigned char header[kHeader] = {0,
                                           0,
                                           low(grey ? kGreys : kColours),
                                           0,
                                           0,
                                           0,
                                           0,
                                           0,
                                           0,
                                           0,
                                           0,
                                           0,
                                           low(picture.width),
                                           high(picture.width),
                                           low(picture.height),
                                           high(picture.height),
                                           low(8 * channels),
                                           low(flags)};
    std::memcpy(file.get(), header, kHeader);
    CodecPicture::ConvertPixels(picture.bytes.get(), picture.format, file.get() + kHeader, format, pixels);
    return file;
}
