// From canvases to coded pictures.
#include "base/memory.h"
#include "base/str.h"
#include "image/canvas.h"
#include "image/codec_image.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

// The codec takes the first row it is given for the lowest. It turns these formats over when it writes them;
// the others it writes, and loads again, as they come.
bool localIsTurnedOver(const char* fileName) {
    const char* ending = std::strrchr(fileName, '.');
    const FXStr name(ending);
    return name.iCompare(".png") || name.iCompare(".jpg") || name.iCompare(".jpeg");
}

bool localSave(const char* fileName, int w, int h, int channels, void* rows) {
    const CodecImages image;
    const ILenum format = channels == 1 ? IL_LUMINANCE : IL_RGBA;
    if (fxCodec.ilTexImage(static_cast<ILuint>(w), static_cast<ILuint>(h), 1,
                           static_cast<unsigned char>(channels), format, IL_UNSIGNED_BYTE, rows) == 0)
        return false;
    fxCodec.ilEnable(IL_FILE_OVERWRITE);
    const bool saved = fxCodec.ilSaveImage(fileName) != 0;
    fxCodec.ilDisable(IL_FILE_OVERWRITE);
    return saved;
}

// The used part of the canvas, each pixel's bytes from `first` on, `channels` of them.
bool localSavePart(const FXCanvas& canvas, const char* fileName, int first, int channels) {
    const int w = canvas.usedWidth;
    const int h = canvas.usedHeight;
    if (fileName == nullptr || *fileName == '\0' || w == 0 || h == 0 || !fxDevilLoaded())
        return false;
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{w} * channels;
    const FXBytes rows = fxNewBytes(static_cast<std::size_t>(rowBytes * h));
    if (!rows)
        return false;
    const bool turned = localIsTurnedOver(fileName);
    for (int y = 0; y < h; ++y) {
        const auto* from = reinterpret_cast<const unsigned char*>(
                               canvas.pixels + static_cast<std::ptrdiff_t>(y) * canvas.width) +
                           first;
        unsigned char* to = rows.get() + rowBytes * (turned ? h - 1 - y : y);
        for (int x = 0; x < w; ++x)
            to = std::copy_n(from + std::ptrdiff_t{4} * x, channels, to);
    }
    return localSave(fileName, w, h, channels, rows.get());
}

} // namespace

bool FXCanvas::SaveToPict(const char* fileName) const {
    return localSavePart(*this, fileName, 0, 4);
}

bool FXCanvas::SaveToMask(const char* fileName) const {
    return localSavePart(*this, fileName, 3, 1);
}

void FXCanvas::SetJpegQuality(int quality) {
    if (fxDevilLoaded())
        fxCodec.ilSetInteger(IL_JPG_QUALITY, std::clamp(quality, 0, 99));
}
