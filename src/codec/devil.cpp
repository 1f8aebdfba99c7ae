#include "codec/devil.h"

#include "base/owner_array.h"
#include "codec/picture.h"
#include "codec/scaling.h"
#include "codec/system_pictures.h"
#include "codec/targa_file.h"
#include "image/picture_header.h"
#include "package/file_block.h"
#include "package/package.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <utility>

namespace {

constexpr ILenum IL_IMAGE_DEPTH = 0x0DE6;
constexpr ILenum IL_IMAGE_BYTES_PER_PIXEL = 0x0DE8;
constexpr ILenum IL_IMAGE_BITS_PER_PIXEL = 0x0DE9;
constexpr ILenum IL_IMAGE_FORMAT = 0x0DEA;
constexpr ILenum IL_IMAGE_TYPE = 0x0DEB;
constexpr int kUsualQuality = 99;

// Null where a name's image was deleted. The name is the place, counted from 1.
FXOwnerArray<CodecPicture> localImages;
ILuint localBound = 0;
bool localOverwrites = false;
int localQuality = kUsualQuality;
ILenum localFilter = ILU_NEAREST;

CodecPicture* localImage(ILuint name) {
    return name >= 1 && name <= static_cast<ILuint>(localImages.count)
               ? localImages[static_cast<int>(name) - 1]
               : nullptr;
}

CodecPicture* localCurrent() {
    return localImage(localBound);
}

// The bound image's pixels; null when there are none.
CodecPicture* localFilled() {
    CodecPicture* image = localCurrent();
    return image != nullptr && !image->IsEmpty() ? image : nullptr;
}

// 0: no memory for it.
ILuint localAdd() {
    int place = localImages.Findpos(nullptr);
    if (place < 0 && localImages.PushNull())
        place = localImages.count - 1;
    if (place < 0)
        return 0;
    localImages.items[place] = fxNew<CodecPicture>();
    return localImages.items[place] != nullptr ? static_cast<ILuint>(place) + 1 : 0;
}

bool localRead(std::span<const unsigned char> file, int type, CodecPicture* picture) {
    if (!fxPictureIsPlausible(file, type))
        return false;
    if (type != kTga)
        return fxReadSystemPicture(file, type, picture);
    FXPackageData data;
    data.InitData(file.data(), static_cast<int>(file.size()));
    return fxReadTarga(&data, picture);
}

ILboolean localLoad(std::span<const unsigned char> file, int type) {
    CodecPicture* image = localCurrent();
    CodecPicture picture;
    if (image == nullptr || !localRead(file, type, &picture))
        return 0;
    *image = std::move(picture);
    return 1;
}

int localTypeOf(const char* fileName) {
    const char* dot = std::strrchr(fileName, '.');
    const FXStr ending(dot != nullptr ? dot + 1 : "");
    if (ending.iCompare("jpeg"))
        return kJpeg;
    for (const FXPictureEnding& known : kPictureEndings)
        if (ending.iCompare(known.ending))
            return known.type;
    return kRaw;
}

bool localExists(const char* fileName) {
    return static_cast<bool>(fxOpenFile(fileName, "rb"));
}

// Whether these pixels are of a kind that the modules know.
bool localKnows(ILuint depth, ILenum format, ILenum type) {
    return depth == 1 && type == IL_UNSIGNED_BYTE && CodecPicture::ChannelsOf(format) != 0;
}

} // namespace

void APIENTRY ilInit() {}

void APIENTRY ilShutDown() {
    localImages.DestroyBuf();
    localBound = 0;
    localOverwrites = false;
    localQuality = kUsualQuality;
    localFilter = ILU_NEAREST;
}

ILboolean APIENTRY ilEnable(ILenum mode) {
    localOverwrites = localOverwrites || mode == IL_FILE_OVERWRITE;
    return mode == IL_FILE_OVERWRITE;
}

ILboolean APIENTRY ilDisable(ILenum mode) {
    localOverwrites = localOverwrites && mode != IL_FILE_OVERWRITE;
    return mode == IL_FILE_OVERWRITE;
}

void APIENTRY ilSetInteger(ILenum mode, ILint value) {
    if (mode == IL_JPG_QUALITY && value >= 0 && value <= 99)
        localQuality = value;
}

ILint APIENTRY ilGetInteger(ILenum mode) {
    if (mode == IL_JPG_QUALITY)
        return localQuality;
    const CodecPicture* image = localFilled();
    if (image == nullptr)
        return 0;
    switch (mode) {
    case IL_IMAGE_WIDTH:
        return image->width;
    case IL_IMAGE_HEIGHT:
        return image->height;
    case IL_IMAGE_DEPTH:
        return 1;
    case IL_IMAGE_SIZE_OF_DATA:
        return static_cast<ILint>(std::min<std::size_t>(image->Bytes(), INT_MAX));
    case IL_IMAGE_BYTES_PER_PIXEL:
        return image->Channels();
    case IL_IMAGE_BITS_PER_PIXEL:
        return image->Channels() * 8;
    case IL_IMAGE_FORMAT:
        return static_cast<ILint>(image->format);
    case IL_IMAGE_TYPE:
        return static_cast<ILint>(IL_UNSIGNED_BYTE);
    default:
        return 0;
    }
}

void APIENTRY ilGenImages(std::size_t n, ILuint* names) {
    for (std::size_t i = 0; names != nullptr && i < n; ++i)
        names[i] = localAdd();
}

void APIENTRY ilDeleteImages(std::size_t n, const ILuint* names) {
    for (std::size_t i = 0; names != nullptr && i < n; ++i) {
        CodecPicture* image = localImage(names[i]);
        if (image == nullptr)
            continue;
        delete image;
        localImages.items[names[i] - 1] = nullptr;
        if (localBound == names[i])
            localBound = 0;
    }
}

void APIENTRY ilBindImage(ILuint name) {
    localBound = name;
}

ILuint APIENTRY ilCloneCurImage() {
    const CodecPicture* image = localFilled();
    const ILuint clone = image != nullptr ? localAdd() : 0;
    if (clone != 0 && localImage(clone)->Copy(*image))
        return clone;
    ilDeleteImages(1, &clone);
    return 0;
}

ILboolean APIENTRY ilLoadL(ILenum type, const void* bytes, ILuint size) {
    if (bytes == nullptr || size > INT_MAX)
        return 0;
    return localLoad({static_cast<const unsigned char*>(bytes), size}, static_cast<int>(type));
}

ILboolean APIENTRY ilLoadImage(const char* fileName) {
    FXFileBlock file;
    if (fileName == nullptr || !file.Load(fileName))
        return 0;
    const std::span bytes(file.data.start, static_cast<std::size_t>(file.data.size));
    const int named = localTypeOf(fileName);
    const int found = fxPictureType(bytes);
    return localLoad(bytes, named) != 0 || (found != named && localLoad(bytes, found) != 0);
}

ILboolean APIENTRY ilTexImage(ILuint w, ILuint h, ILuint d, unsigned char channels, ILenum format,
                              ILenum type, void* pixels) {
    CodecPicture* image = localCurrent();
    CodecPicture picture;
    if (image == nullptr || !localKnows(d, format, type) || channels != CodecPicture::ChannelsOf(format) ||
        w > INT_MAX || h > INT_MAX || !picture.Realloc(static_cast<int>(w), static_cast<int>(h), format))
        return 0;
    if (pixels != nullptr)
        std::memcpy(picture.bytes.get(), pixels, picture.Bytes());
    else
        std::memset(picture.bytes.get(), 0, picture.Bytes());
    *image = std::move(picture);
    return 1;
}

ILboolean APIENTRY ilSaveImage(const char* fileName) {
    const CodecPicture* image = localFilled();
    if (image == nullptr || fileName == nullptr || (!localOverwrites && localExists(fileName)))
        return 0;
    const int type = localTypeOf(fileName);
    std::size_t size = 0;
    const FXBytes bytes = type == kTga ? fxEncodeTarga(*image, &size)
                                       : fxEncodeSystemPicture(*image, type, localQuality, &size);
    FXFile file = bytes ? fxOpenFile(fileName, "wb") : nullptr;
    if (!file)
        return 0;
    const bool written = fxWrite(bytes.get(), 1, size, file.get());
    return fxCloseWritten(std::move(file)) && written;
}

ILboolean APIENTRY ilConvertImage(ILenum format, ILenum type) {
    CodecPicture* image = localFilled();
    return image != nullptr && type == IL_UNSIGNED_BYTE && image->Convert(format);
}

unsigned char* APIENTRY ilGetData() {
    const CodecPicture* image = localFilled();
    return image != nullptr ? image->bytes.get() : nullptr;
}

ILuint APIENTRY ilCopyPixels(ILuint x, ILuint y, ILuint z, ILuint w, ILuint h, ILuint d, ILenum format,
                             ILenum type, void* pixels) {
    const CodecPicture* image = localFilled();
    if (image == nullptr || pixels == nullptr || z != 0 || !localKnows(d, format, type) ||
        std::uint64_t{x} + w > static_cast<ILuint>(image->width) ||
        std::uint64_t{y} + h > static_cast<ILuint>(image->height))
        return 0;
    const std::size_t rowBytes = static_cast<std::size_t>(w) * CodecPicture::ChannelsOf(format);
    auto* to = static_cast<unsigned char*>(pixels);
    for (ILuint row = 0; row < h; ++row, to += rowBytes)
        CodecPicture::ConvertPixels(image->Row(static_cast<int>(y + row)) +
                                        static_cast<std::size_t>(x) * image->Channels(),
                                    image->format, to, format, w);
    return static_cast<ILuint>(rowBytes * h);
}

void APIENTRY ilSetPixels(ILint x, ILint y, ILint z, ILuint w, ILuint h, ILuint d, ILenum format, ILenum type,
                          void* pixels) {
    const CodecPicture* image = localFilled();
    if (image == nullptr || pixels == nullptr || z != 0 || !localKnows(d, format, type))
        return;
    // The part of the pixels that lies on the image.
    const std::int64_t left = std::max<std::int64_t>(0, -std::int64_t{x});
    const std::int64_t right = std::min<std::int64_t>(w, std::int64_t{image->width} - x);
    const std::int64_t first = std::max<std::int64_t>(0, -std::int64_t{y});
    const std::int64_t end = std::min<std::int64_t>(h, std::int64_t{image->height} - y);
    if (left >= right)
        return;
    const std::int64_t channels = CodecPicture::ChannelsOf(format);
    for (std::int64_t row = first; row < end; ++row)
        CodecPicture::ConvertPixels(static_cast<const unsigned char*>(pixels) + (row * w + left) * channels,
                                    format,
                                    image->Row(static_cast<int>(y + row)) + (x + left) * image->Channels(),
                                    image->format, static_cast<std::size_t>(right - left));
}

ILboolean APIENTRY iluScale(ILuint w, ILuint h, ILuint d) {
    CodecPicture* image = localFilled();
    CodecPicture scaled;
    if (image == nullptr || d != 1 || w > INT_MAX || h > INT_MAX ||
        !fxScale(*image, static_cast<int>(w), static_cast<int>(h), localFilter, &scaled))
        return 0;
    *image = std::move(scaled);
    return 1;
}

void APIENTRY iluImageParameter(ILenum parameter, ILenum value) {
    if (parameter == ILU_FILTER)
        localFilter = value;
}
