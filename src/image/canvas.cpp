#include "image/canvas.h"

#include "base/memory.h"
#include "base/str.h"
#include "image/codec_image.h"
#include "image/colors.h"
#include "image/picture_decoder.h"
#include "image/picture_header.h"
#include "package/file_block.h"
#include "package/package.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>

namespace {

// The index of the cell at x, brought into 0..size - 1; not a number: 0.
int localCell(float x, int size) {
    if (!(x > 0))
        return 0;
    return x < static_cast<float>(size) ? static_cast<int>(x) : size - 1;
}

bool localDetectTransFilename(const char* fileName) {
    FXStr name(fileName);
    name.ToLower();
    return std::strstr(name.text, "tran") != nullptr;
}

// The codec goes by the name's ending first, then by the bytes: the file must be fit to be taken for either.
bool localFileIsPlausible(const char* fileName) {
    FXFileBlock file;
    int size = 0;
    int type = kRaw;
    if (!file.Load(fileName) || !FXPackage::CheckFile(fileName, &size, &type))
        return false;
    const std::span bytes(file.data.start, static_cast<std::size_t>(file.data.size));
    return fxPictureIsPlausible(bytes, type) && fxPictureIsPlausible(bytes, fxPictureType(bytes));
}

void localCopyRow(FXCanvas* canvas, int y, const unsigned char* from) {
    std::uint32_t* row = canvas->pixels + static_cast<std::ptrdiff_t>(y) * canvas->width;
    std::memcpy(row, from, static_cast<std::size_t>(canvas->usedWidth) * sizeof *row);
    for (int x = 0; x < canvas->usedWidth; ++x) {
        if (canvas->alphaFromRed)
            row[x] = row[x] << 24 | 0x00FFFFFFu;
        else if (row[x] >> 24 != 255u)
            canvas->opaque = false;
    }
}

// The codec's current image becomes the canvas. Sizes come from a file and are not trusted.
bool localTakePicture(FXCanvas* canvas, CodecImages* images) {
    const int w = fxCodec.ilGetInteger(IL_IMAGE_WIDTH);
    const int h = fxCodec.ilGetInteger(IL_IMAGE_HEIGHT);
    if (!canvas->Realloc(w, h))
        return false;
    // Without the clone or its conversion the rows would be shorter than what is copied; so they are after
    // the conversion of a palette that makes no sense.
    const bool converted = images->Clone() && fxCodec.ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE) != 0 &&
                           fxCodec.ilGetInteger(IL_IMAGE_SIZE_OF_DATA) == std::int64_t{4} * w * h;
    const unsigned char* data = converted ? fxCodec.ilGetData() : nullptr;
    // A picture that covers the whole storage needs no clearing first.
    if (canvas->clearOnLoad && (data == nullptr || w < canvas->width || h < canvas->height))
        canvas->Clear(canvas->backColor);
    canvas->opaque = true;
    if (data == nullptr)
        return false;
    for (int y = 0; y < h; ++y)
        localCopyRow(canvas, y, data + static_cast<std::ptrdiff_t>(y) * w * 4);
    if (canvas->alphaFromRed)
        canvas->opaque = false;
    return true;
}

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
    if (fileName == nullptr || *fileName == '\0' || canvas.pixels == nullptr || w == 0 || h == 0 ||
        !fxDevilLoaded())
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

void FXCanvas::Clear(const float* rgba) {
    FXPixmap::Clear(fxColToInt1(rgba));
}

void FXCanvas::Destroy() {
    FXPixmap::Destroy();
    opaque = true;
    alphaFromRed = false;
}

bool FXCanvas::Copy(const FXCanvas* src) {
    if (src->HasReleasedPixels() || !Realloc(src->usedWidth, src->usedHeight))
        return false;
    for (int y = 0; y < usedHeight; ++y) {
        const std::uint32_t* from = src->pixels + static_cast<std::ptrdiff_t>(y) * src->width;
        std::uint32_t* to = pixels + static_cast<std::ptrdiff_t>(y) * width;
        std::copy_n(from, usedWidth, to);
        if (std::any_of(to, to + usedWidth, [](std::uint32_t pixel) { return pixel >> 24 != 255u; }))
            opaque = false;
    }
    return true;
}

void FXCanvas::GetColor(float u, float v, float* out) const {
    if (pixels == nullptr)
        return fxColSetBlackT(out);
    const std::ptrdiff_t row = localCell(v * GetHeightF(), height);
    fxColFromInt1(out, pixels[row * width + localCell(u * GetWidthF(), width)]);
}

float FXCanvas::GetBump(float u, float v) const {
    float color[4];
    GetColor(u, 1 - v, color);
    return color[0];
}

void FXCanvas::ExtendEdges() {
    if (pixels == nullptr || usedWidth == 0 || usedHeight == 0)
        return;
    std::uint32_t* row = pixels;
    for (int y = 0; y < usedHeight; ++y, row += width)
        std::fill(row + usedWidth, row + width, row[usedWidth - 1]);
    for (int y = usedHeight; y < height; ++y, row += width)
        std::copy_n(row - width, width, row);
}

bool FXCanvas::CreateFromPictCN(FXPackage* pkg, int entry) {
    const FXPackageData* data = pkg->GetDataPtr(entry);
    const int type = pkg->GetDataType(entry);
    if (data == nullptr || type == kRaw || data->size == 0 || !fxDevilLoaded())
        return false;
    const FXPictureFile file = {data->start, data->size, type};
    FXPictureDecoder* decoder = FXPictureDecoder::Active();
    return decoder != nullptr ? decoder->Load(this, file) : Decode(file);
}

bool FXCanvas::Decode(const FXPictureFile& file) {
    if (!fxPictureIsPlausible({file.start, static_cast<std::size_t>(file.size)}, file.type))
        return false;
    CodecImages images;
    return fxCodec.ilLoadL(static_cast<ILenum>(file.type), file.start, static_cast<ILuint>(file.size)) != 0 &&
           localTakePicture(this, &images);
}

bool FXCanvas::CreateFromPictC(FXPackage* pkg, const char* text) {
    int entry = 0;
    return std::sscanf(text, "%d", &entry) == 1 && CreateFromPictCN(pkg, entry);
}

bool FXCanvas::CreateFromPict(const char* fileName) {
    if (fileName == nullptr || *fileName == '\0' || !fxDevilLoaded())
        return false;
    alphaFromRed = detectTrans && localDetectTransFilename(fileName);
    if (!localFileIsPlausible(fileName))
        return false;
    CodecImages images;
    return fxCodec.ilLoadImage(fileName) != 0 && localTakePicture(this, &images);
}

bool FXCanvas::LoadMaskCN(FXPackage* pkg, int entry) {
    FXCanvas mask;
    return mask.CreateFromPictCN(pkg, entry) && TakeMask(mask);
}

bool FXCanvas::LoadMaskC(FXPackage* pkg, const char* text) {
    int entry = 0;
    return std::sscanf(text, "%d", &entry) == 1 && LoadMaskCN(pkg, entry);
}

bool FXCanvas::LoadMask(const char* fileName) {
    FXCanvas mask;
    mask.detectTrans = false; // its red is wanted, whatever its name
    return mask.CreateFromPict(fileName) && TakeMask(mask);
}

bool FXCanvas::TakeMask(const FXCanvas& mask) {
    if (HasReleasedPixels() || mask.usedWidth > usedWidth || mask.usedHeight > usedHeight)
        return false;
    opaque = mask.usedWidth == usedWidth && mask.usedHeight == usedHeight;
    std::uint32_t* pixel = pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, ++pixel) {
            const bool covered = x < mask.usedWidth && y < mask.usedHeight;
            const std::uint32_t alpha =
                covered ? mask.pixels[static_cast<std::ptrdiff_t>(y) * mask.width + x] & 255u : 0;
            *pixel = (*pixel & 0x00FFFFFFu) | alpha << 24;
            if (covered && alpha != 255)
                opaque = false;
        }
    return true;
}

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
