// From coded pictures to canvases.
#include "base/str.h"
#include "image/canvas.h"
#include "image/codec_image.h"
#include "image/picture_header.h"
#include "package/file_block.h"
#include "package/package.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>

namespace {

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

} // namespace

bool FXCanvas::CreateFromPictCN(FXPackage* pkg, int entry) {
    const FXPackageData* data = pkg->GetDataPtr(entry);
    const int type = pkg->GetDataType(entry);
    if (data == nullptr || type == kRaw || data->size == 0 || !fxDevilLoaded())
        return false;
    if (!fxPictureIsPlausible({data->start, static_cast<std::size_t>(data->size)}, type))
        return false;
    CodecImages images;
    return fxCodec.ilLoadL(static_cast<ILenum>(type), data->start, static_cast<ILuint>(data->size)) != 0 &&
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
