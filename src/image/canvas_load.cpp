// From coded pictures to canvases.
#include "base/str.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "image/picture_header.h"
#include "package/package.h"

#include <cstdio>
#include <cstring>

namespace {

// One image of the codec, bound for as long as this lives.
class CodecImage {
public:
    CodecImage() {
        fxCodec.ilGenImages(1, &name_);
        fxCodec.ilBindImage(name_);
    }
    explicit CodecImage(ILuint name) : name_(name) { fxCodec.ilBindImage(name_); }
    ~CodecImage() { fxCodec.ilDeleteImages(1, &name_); }
    bool Exists() const { return name_ != 0; }
    CodecImage(const CodecImage&) = delete;
    CodecImage& operator=(const CodecImage&) = delete;

private:
    ILuint name_ = 0;
};

bool localDetectTransFilename(const char* fileName) {
    FXStr name(fileName);
    name.ToLower();
    return std::strstr(name.text, "tran") != nullptr;
}

} // namespace

bool FXCanvas::CreateFromPictCN(FXPackage* pkg, int entry) {
    const FXPackageData* data = pkg->GetDataPtr(entry);
    const int type = pkg->GetDataType(entry);
    if (data == nullptr || type == kRaw || data->size == 0 || !fxDevilLoaded())
        return false;
    if (!fxPictureIsPlausible({data->start, static_cast<std::size_t>(data->size)}, type))
        return false;
    const CodecImage image;
    return fxCodec.ilLoadL(static_cast<ILenum>(type), data->start, static_cast<ILuint>(data->size)) != 0 &&
           TakeDecodedPicture();
}

bool FXCanvas::CreateFromPictC(FXPackage* pkg, const char* text) {
    int entry = 0;
    return std::sscanf(text, "%d", &entry) == 1 && CreateFromPictCN(pkg, entry);
}

bool FXCanvas::CreateFromPict(const char* fileName) {
    if (fileName == nullptr || *fileName == '\0' || !fxDevilLoaded())
        return false;
    alphaFromRed = detectTrans && localDetectTransFilename(fileName);
    const CodecImage image;
    return fxCodec.ilLoadImage(fileName) != 0 && TakeDecodedPicture();
}

// The codec's current image becomes this canvas. Sizes come from a file and are not trusted.
bool FXCanvas::TakeDecodedPicture() {
    const int w = fxCodec.ilGetInteger(IL_IMAGE_WIDTH);
    const int h = fxCodec.ilGetInteger(IL_IMAGE_HEIGHT);
    if (w <= 0 || h <= 0 || !Realloc(w, h))
        return false;
    const CodecImage clone(fxCodec.ilCloneCurImage());
    // Without the clone or its conversion the rows would be shorter than what is copied; so they are after
    // the conversion of a palette that makes no sense.
    const bool converted = clone.Exists() && fxCodec.ilConvertImage(IL_RGBA, IL_UNSIGNED_BYTE) != 0 &&
                           fxCodec.ilGetInteger(IL_IMAGE_SIZE_OF_DATA) == std::int64_t{4} * w * h;
    if (clearOnLoad && (w < width || h < height)) // elsewhere the picture covers all of it
        Clear(backColor);
    const unsigned char* data = fxCodec.ilGetData();
    opaque = true;
    if (data == nullptr || !converted)
        return false;
    for (int y = 0; y < h; ++y) {
        std::uint32_t* row = pixels + static_cast<std::ptrdiff_t>(y) * width;
        std::memcpy(row, data + static_cast<std::ptrdiff_t>(y) * w * 4, static_cast<std::size_t>(w) * 4);
        for (int x = 0; x < w; ++x) {
            if (alphaFromRed)
                row[x] = row[x] << 24 | 0x00FFFFFFu;
            else if (row[x] >> 24 != 255u)
                opaque = false;
        }
    }
    if (alphaFromRed)
        opaque = false;
    return true;
}
