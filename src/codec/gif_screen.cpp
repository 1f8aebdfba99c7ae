#include "codec/gif_screen.h"

#include <cstddef>
#include <cstring>

namespace {

const unsigned char* localRead(FXPackageData* file, int n) {
    return static_cast<const unsigned char*>(file->ReadBlc(n));
}

int localWord(const unsigned char* bytes) {
    return bytes[0] | bytes[1] << 8;
}

// The table of colours that stands here, if the flags say that there is one.
bool localReadPalette(FXPackageData* file, int flags, CodecPalette* palette) {
    if ((flags & 0x80) == 0)
        return true;
    const int colours = 2 << (flags & 7);
    const unsigned char* rgb = localRead(file, 3 * colours);
    if (rgb == nullptr)
        return false;
    CodecPicture::ConvertPixels(rgb, IL_RGB, palette->colours[0], IL_RGBA, static_cast<std::size_t>(colours));
    return true;
}

// What stands before a frame. Gives the number of its transparent colour: -1 for none, -2 when the file ends.
int localReadExtensions(FXPackageData* file) {
    constexpr int kControl = 0xF9; // the kind that tells
    int transparent = -1;
    const unsigned char* head = localRead(file, 1);
    for (; head != nullptr && *head == '!'; head = localRead(file, 1)) {
        const unsigned char* kind = localRead(file, 1);
        const unsigned char* size = localRead(file, 1);
        while (kind != nullptr && size != nullptr && *size != 0) {
            const unsigned char* data = localRead(file, *size);
            if (data != nullptr && *kind == kControl && *size == 4)
                transparent = (data[0] & 1) != 0 ? data[3] : -1;
            size = data != nullptr ? localRead(file, 1) : nullptr;
        }
        if (size == nullptr)
            return -2;
    }
    return head != nullptr && *head == ',' ? transparent : -2;
}

} // namespace

bool fxReadGifScreen(FXPackageData* file, GifScreen* screen) {
    const unsigned char* header = localRead(file, 13);
    if (header == nullptr || !localReadPalette(file, header[10], &screen->palette))
        return false;
    screen->width = localWord(header + 6);
    screen->height = localWord(header + 8);
    const int transparent = localReadExtensions(file);
    const unsigned char* frame = transparent != -2 ? localRead(file, 9) : nullptr;
    if (frame == nullptr || !localReadPalette(file, frame[8], &screen->palette))
        return false;
    screen->left = localWord(frame);
    screen->top = localWord(frame + 2);
    screen->ground = transparent >= 0 ? transparent : header[11];
    if (transparent >= 0)
        screen->palette.colours[transparent][3] = 0;
    return true;
}

bool fxPlaceOnScreen(const CodecPicture& frame, const GifScreen& screen, CodecPicture* picture) {
    if (frame.format != IL_RGBA || frame.width > screen.width - screen.left ||
        frame.height > screen.height - screen.top || !picture->Realloc(screen.width, screen.height, IL_RGBA))
        return false;
    picture->lowestFirst = false;
    unsigned char* end = picture->bytes.get() + picture->Bytes();
    for (unsigned char* pixel = picture->bytes.get(); pixel != end; pixel += 4)
        std::memcpy(pixel, screen.palette.colours[screen.ground], 4);
    for (int y = 0; y < frame.height; ++y)
        std::memcpy(picture->Row(screen.top + y) + std::ptrdiff_t{4} * screen.left, frame.Row(y),
                    frame.RowBytes());
    return true;
}
