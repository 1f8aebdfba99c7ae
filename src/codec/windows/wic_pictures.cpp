// Pictures by the Windows Imaging Component, which every Windows has. Pixels are taken as they lie in the
// file and made plain here: the system's own conversions differ from one Windows to the next.
#include "codec/gif_screen.h"
#include "codec/pixel_layout.h"
#include "codec/system_pictures.h"
#include "package/package.h"

#include <initguid.h> // the identities below are defined here
#include <wincodec.h>

#include <climits>
#include <cstring>
#include <utility>

namespace {

struct Releaser {
    template <class T> void operator()(T* object) const { object->Release(); }
};
template <class T> using ComObject = FXOwner<T, Releaser>;

// What a function hands out by its last parameter; null when it fails.
template <class T, class Call> ComObject<T> localTake(const Call& call) {
    T* object = nullptr;
    return SUCCEEDED(call(&object)) ? ComObject<T>(object) : nullptr;
}

// COM for the calling thread, whichever that is, for as long as this lives.
class ComThread {
public:
    ComThread() : isMine_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {}
    ~ComThread() {
        if (isMine_)
            CoUninitialize();
    }
    ComThread(const ComThread&) = delete;
    ComThread& operator=(const ComThread&) = delete;

private:
    bool isMine_; // false: it has it already, in another form
};

ComObject<IWICImagingFactory> localFactory() {
    return localTake<IWICImagingFactory>([](IWICImagingFactory** factory) {
        return CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                IID_IWICImagingFactory, reinterpret_cast<void**>(factory));
    });
}

// Null when the system has no part in that type.
const GUID* localContainer(int type) {
    switch (type) {
    case kPng:
        return &GUID_ContainerFormatPng;
    case kJpeg:
        return &GUID_ContainerFormatJpeg;
    case kBmp:
        return &GUID_ContainerFormatBmp;
    case kGif:
        return &GUID_ContainerFormatGif;
    default:
        return nullptr;
    }
}

struct SystemLayout {
    const GUID* name;
    PixelLayout layout;
    bool isGrey; // numbers are shades
};

using Kind = PixelLayout::Kind;
const SystemLayout kLayouts[] = {
    {&GUID_WICPixelFormat1bppIndexed, {Kind::Palette, 1, IL_RGBA}, false},
    {&GUID_WICPixelFormat2bppIndexed, {Kind::Palette, 2, IL_RGBA}, false},
    {&GUID_WICPixelFormat4bppIndexed, {Kind::Palette, 4, IL_RGBA}, false},
    {&GUID_WICPixelFormat8bppIndexed, {Kind::Palette, 8, IL_RGBA}, false},
    {&GUID_WICPixelFormatBlackWhite, {Kind::Palette, 1, IL_LUMINANCE}, true},
    {&GUID_WICPixelFormat2bppGray, {Kind::Palette, 2, IL_LUMINANCE}, true},
    {&GUID_WICPixelFormat4bppGray, {Kind::Palette, 4, IL_LUMINANCE}, true},
    {&GUID_WICPixelFormat8bppGray, {Kind::Palette, 8, IL_LUMINANCE}, true},
    {&GUID_WICPixelFormat16bppGray, {Kind::Words, 16, IL_LUMINANCE}, false},
    {&GUID_WICPixelFormat16bppBGR555, {Kind::Five, 16, IL_BGR}, false},
    {&GUID_WICPixelFormat16bppBGR565, {Kind::FiveSixFive, 16, IL_BGR}, false},
    {&GUID_WICPixelFormat24bppBGR, {Kind::Bytes, 24, IL_BGR}, false},
    {&GUID_WICPixelFormat24bppRGB, {Kind::Bytes, 24, IL_RGB}, false},
    {&GUID_WICPixelFormat32bppBGRA, {Kind::Bytes, 32, IL_BGRA}, false},
    {&GUID_WICPixelFormat32bppRGBA, {Kind::Bytes, 32, IL_RGBA}, false},
    {&GUID_WICPixelFormat48bppRGB, {Kind::Words, 48, IL_RGB}, false},
    {&GUID_WICPixelFormat64bppRGBA, {Kind::Words, 64, IL_RGBA}, false},
};
constexpr int kPlain = 13; // of these: what all others are converted to

// The frame as it can be read here, which may be a conversion of it.
const SystemLayout* localFindLayout(ComObject<IWICBitmapSource>* source) {
    WICPixelFormatGUID format = {};
    if (FAILED((*source)->GetPixelFormat(&format)))
        return nullptr;
    for (const SystemLayout& known : kLayouts)
        if (IsEqualGUID(*known.name, format))
            return &known;
    *source = localTake<IWICBitmapSource>([&](IWICBitmapSource** converted) {
        return WICConvertBitmapSource(*kLayouts[kPlain].name, source->get(), converted);
    });
    return *source ? &kLayouts[kPlain] : nullptr;
}

bool localReadPalette(IWICImagingFactory* factory, IWICBitmapSource* source, CodecPalette* colours) {
    const auto palette =
        localTake<IWICPalette>([&](IWICPalette** made) { return factory->CreatePalette(made); });
    WICColor argb[256] = {};
    UINT count = 0;
    if (!palette || FAILED(source->CopyPalette(palette.get())) ||
        FAILED(palette->GetColors(256, argb, &count)))
        return false;
    CodecPicture::ConvertPixels(reinterpret_cast<const unsigned char*>(argb), IL_BGRA, colours->colours[0],
                                IL_RGBA, count);
    return true;
}

// The file of a BMP has its lowest row first, unless its height is negative.
bool localIsLowestFirst(std::span<const unsigned char> file, int type) {
    constexpr std::size_t kHeaderSize = 14; // places
    constexpr std::size_t kHeightSign = 25;
    constexpr int kOldHeader = 12; // whose height has no sign
    return type == kBmp && file.size() > kHeightSign &&
           (file[kHeaderSize] == kOldHeader || (file[kHeightSign] & 0x80) == 0);
}

// Of numbers, the palette given is used, or where that is null the frame's own.
bool localTakePixels(IWICImagingFactory* factory, ComObject<IWICBitmapSource> source, bool lowestFirst,
                     const CodecPalette* colours, CodecPicture* picture) {
    UINT w = 0, h = 0;
    if (FAILED(source->GetSize(&w, &h)) || w > INT_MAX || h > INT_MAX ||
        !picture->Realloc(static_cast<int>(w), static_cast<int>(h), IL_RGBA))
        return false;
    picture->lowestFirst = lowestFirst;
    const SystemLayout* found = localFindLayout(&source);
    if (found == nullptr)
        return false;
    const PixelLayout& layout = found->layout;
    CodecPalette palette(found->isGrey ? 1 << layout.bits : 0);
    const bool reads = layout.kind == Kind::Palette && !found->isGrey && colours == nullptr;
    if (reads && !localReadPalette(factory, source.get(), &palette))
        return false;
    const std::size_t rowBytes = layout.RowBytes(picture->width);
    const std::size_t size = rowBytes * h;
    const FXBytes bytes = size <= UINT_MAX ? fxNewBytes(size) : nullptr;
    if (!bytes || FAILED(source->CopyPixels(nullptr, static_cast<UINT>(rowBytes), static_cast<UINT>(size),
                                            bytes.get())))
        return false;
    for (int y = 0; y < picture->height; ++y) {
        const int row = lowestFirst ? picture->height - 1 - y : y;
        fxUnpackRow(layout, colours != nullptr ? *colours : palette,
                    bytes.get() + rowBytes * static_cast<std::size_t>(y), picture->width, picture->Row(row));
    }
    return true;
}

bool localReadFrame(std::span<const unsigned char> file, int type, const CodecPalette* colours,
                    CodecPicture* picture) {
    const GUID* container = localContainer(type);
    const ComThread com;
    const auto factory = localFactory();
    if (container == nullptr || !factory || file.size() > INT_MAX)
        return false;
    const auto stream = localTake<IWICStream>([&](IWICStream** made) { return factory->CreateStream(made); });
    const auto decoder = localTake<IWICBitmapDecoder>([&](IWICBitmapDecoder** made) {
        return factory->CreateDecoder(*container, &GUID_VendorMicrosoft, made);
    });
    if (!stream || !decoder ||
        FAILED(stream->InitializeFromMemory(const_cast<unsigned char*>(file.data()),
                                            static_cast<DWORD>(file.size()))) ||
        FAILED(decoder->Initialize(stream.get(), WICDecodeMetadataCacheOnDemand)))
        return false;
    ComObject<IWICBitmapSource> frame = localTake<IWICBitmapFrameDecode>([&](IWICBitmapFrameDecode** made) {
                                            return decoder->GetFrame(0, made);
                                        }).release();
    return frame &&
           localTakePixels(factory.get(), std::move(frame), localIsLowestFirst(file, type), colours, picture);
}

} // namespace

bool fxReadSystemPicture(std::span<const unsigned char> file, int type, CodecPicture* picture) {
    CodecPicture frame;
    if (type != kGif) {
        const bool isRead = localReadFrame(file, type, nullptr, &frame);
        *picture = std::move(frame);
        return isRead;
    }
    FXPackageData data;
    data.InitData(file.data(), static_cast<int>(file.size()));
    GifScreen screen;
    return fxReadGifScreen(&data, &screen) && localReadFrame(file, type, &screen.palette, &frame) &&
           fxPlaceOnScreen(frame, screen, picture);
}

namespace {

// What a type stores of a picture.
ILenum localStored(const CodecPicture& picture, int type) {
    if (picture.format == IL_LUMINANCE && type != kBmp)
        return IL_LUMINANCE;
    return picture.HasAlpha() && type == kPng ? IL_BGRA : IL_BGR;
}

const GUID& localNameOf(ILenum format) {
    return format == IL_LUMINANCE ? GUID_WICPixelFormat8bppGray
           : format == IL_BGRA    ? GUID_WICPixelFormat32bppBGRA
                                  : GUID_WICPixelFormat24bppBGR;
}

bool localSetQuality(IPropertyBag2* options, int quality) {
    wchar_t name[] = L"ImageQuality";
    PROPBAG2 option = {};
    option.pstrName = name;
    VARIANT value = {};
    value.vt = VT_R4;
    value.fltVal = static_cast<float>(quality) / 100;
    return options != nullptr && SUCCEEDED(options->Write(1, &option, &value));
}

bool localWriteFrame(IWICBitmapEncoder* encoder, const CodecPicture& picture, int type, int quality) {
    IPropertyBag2* bag = nullptr;
    const auto frame = localTake<IWICBitmapFrameEncode>(
        [&](IWICBitmapFrameEncode** made) { return encoder->CreateNewFrame(made, &bag); });
    const ComObject<IPropertyBag2> options(bag);
    const ILenum stored = localStored(picture, type);
    WICPixelFormatGUID format = localNameOf(stored);
    if (!frame || (type == kJpeg && !localSetQuality(options.get(), quality)) ||
        FAILED(frame->Initialize(options.get())) ||
        FAILED(frame->SetSize(static_cast<UINT>(picture.width), static_cast<UINT>(picture.height))) ||
        FAILED(frame->SetPixelFormat(&format)) || !IsEqualGUID(format, localNameOf(stored)))
        return false;
    const std::size_t rowBytes = static_cast<std::size_t>(picture.width) * CodecPicture::ChannelsOf(stored);
    const FXBytes row = fxNewBytes(rowBytes);
    if (!row)
        return false;
    for (int y = 0; y < picture.height; ++y) {
        CodecPicture::ConvertPixels(picture.Row(picture.lowestFirst ? picture.height - 1 - y : y),
                                    picture.format, row.get(), stored,
                                    static_cast<std::size_t>(picture.width));
        if (FAILED(
                frame->WritePixels(1, static_cast<UINT>(rowBytes), static_cast<UINT>(rowBytes), row.get())))
            return false;
    }
    return SUCCEEDED(frame->Commit()) && SUCCEEDED(encoder->Commit());
}

FXBytes localBytesOf(IStream* stream, std::size_t* size) {
    STATSTG facts = {};
    HGLOBAL block = nullptr;
    if (FAILED(stream->Stat(&facts, STATFLAG_NONAME)) || FAILED(GetHGlobalFromStream(stream, &block)))
        return nullptr;
    *size = static_cast<std::size_t>(facts.cbSize.QuadPart);
    FXBytes bytes = fxNewBytes(*size);
    const void* held = bytes ? GlobalLock(block) : nullptr;
    if (held == nullptr)
        return nullptr;
    std::memcpy(bytes.get(), held, *size);
    GlobalUnlock(block);
    return bytes;
}

} // namespace

FXBytes fxEncodeSystemPicture(const CodecPicture& picture, int type, int quality, std::size_t* size) {
    const GUID* container = type != kGif ? localContainer(type) : nullptr;
    const ComThread com;
    const auto factory = localFactory();
    if (container == nullptr || !factory)
        return nullptr;
    const auto stream =
        localTake<IStream>([](IStream** made) { return CreateStreamOnHGlobal(nullptr, TRUE, made); });
    const auto encoder = localTake<IWICBitmapEncoder>([&](IWICBitmapEncoder** made) {
        return factory->CreateEncoder(*container, &GUID_VendorMicrosoft, made);
    });
    if (!stream || !encoder || FAILED(encoder->Initialize(stream.get(), WICBitmapEncoderNoCache)) ||
        !localWriteFrame(encoder.get(), picture, type, quality))
        return nullptr;
    return localBytesOf(stream.get(), size);
}
