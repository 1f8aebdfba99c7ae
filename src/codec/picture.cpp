#include "codec/picture.h"

#include "image/pixmap.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace {

struct Format {
    ILenum code;
    int channels;
    int places[4]; // of red, green, blue and alpha within a pixel; -1: opaque
};

constexpr Format kFormats[] = {
    {IL_RGB, 3, {0, 1, 2, -1}}, {IL_RGBA, 4, {0, 1, 2, 3}},       {IL_BGR, 3, {2, 1, 0, -1}},
    {IL_BGRA, 4, {2, 1, 0, 3}}, {IL_LUMINANCE, 1, {0, 0, 0, -1}}, {IL_LUMINANCE_ALPHA, 2, {0, 0, 0, 1}},
};

const Format* localFormat(ILenum code) {
    for (const Format& format : kFormats)
        if (format.code == code)
            return &format;
    return nullptr;
}

bool localIsGrey(const Format& format) {
    return format.places[0] == format.places[2];
}

// How bright the colours look.
unsigned char localBrightness(const unsigned char* rgb) {
    return static_cast<unsigned char>(0.212671f * static_cast<float>(rgb[0]) +
                                      0.715160f * static_cast<float>(rgb[1]) +
                                      0.072169f * static_cast<float>(rgb[2]));
}

} // namespace

int CodecPicture::ChannelsOf(ILenum format) {
    const Format* known = localFormat(format);
    return known != nullptr ? known->channels : 0;
}

void CodecPicture::ConvertPixels(const unsigned char* from, ILenum fromFormat, unsigned char* to,
                                 ILenum toFormat, std::size_t n) {
    const Format* source = localFormat(fromFormat);
    const Format* target = localFormat(toFormat);
    if (source == nullptr || target == nullptr)
        return;
    const bool loses = localIsGrey(*target) && !localIsGrey(*source);
    for (; n > 0; --n, from += source->channels, to += target->channels) {
        unsigned char pixel[4] = {0, 0, 0, 255};
        for (int i = 0; i < 4; ++i)
            if (source->places[i] >= 0)
                pixel[i] = from[source->places[i]];
        if (loses)
            pixel[0] = pixel[1] = pixel[2] = localBrightness(pixel);
        for (int i = 0; i < 4; ++i)
            if (target->places[i] >= 0)
                to[target->places[i]] = pixel[i];
    }
}

bool CodecPicture::Realloc(int w, int h, ILenum ofFormat) {
    Destroy();
    if (w <= 0 || h <= 0 || w > FXPixmap::kMostSide || h > FXPixmap::kMostSide ||
        std::int64_t{w} * h > FXPixmap::kMostPixels || ChannelsOf(ofFormat) == 0)
        return false;
    width = w;
    height = h;
    format = ofFormat;
    bytes = fxNewBytes(Bytes());
    if (!bytes)
        Destroy();
    return !IsEmpty();
}

bool CodecPicture::Convert(ILenum toFormat) {
    if (toFormat == format && !IsEmpty())
        return true;
    CodecPicture converted;
    if (IsEmpty() || !converted.Realloc(width, height, toFormat))
        return false;
    ConvertPixels(bytes.get(), format, converted.bytes.get(), toFormat,
                  static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    bytes = std::move(converted.bytes);
    format = toFormat;
    return true;
}

bool CodecPicture::Copy(const CodecPicture& other) {
    if (other.IsEmpty() || !Realloc(other.width, other.height, other.format))
        return false;
    std::memcpy(bytes.get(), other.bytes.get(), Bytes());
    lowestFirst = other.lowestFirst;
    return true;
}

void CodecPicture::Destroy() {
    bytes = nullptr;
    width = height = 0;
    format = IL_RGBA;
    lowestFirst = true;
}
