#include "image/picture_header.h"

#include "image/pixmap.h"
#include "package/package.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string_view>

namespace {

// How many pixels a byte of a file can stand for at most.
std::int64_t localMostPixelsPerByte(int type) {
    switch (type) {
    case kPng:
        return 8 * 1032; // of one bit each; deflate packs 1032 bytes of zeros into one
    case kGif:
        return 4096; // a code of 12 bits for the longest string there is
    case kJpeg:
        return 1024; // flat blocks of 64 pixels, which take some bits each
    default:
        return 128; // runs of one colour
    }
}

// Numbers at places of the file; a place outside reads as 0 and spoils the reader.
class HeaderReader {
public:
    explicit HeaderReader(std::span<const unsigned char> file) : file_(file) {}

    bool Good() const { return good_; }
    int Byte(std::size_t at) {
        if (at < file_.size())
            return file_[at];
        good_ = false;
        return 0;
    }
    int Little16(std::size_t at) { return Byte(at) | Byte(at + 1) << 8; }
    int Big16(std::size_t at) { return Byte(at) << 8 | Byte(at + 1); }
    int Little32(std::size_t at) {
        return static_cast<int>(static_cast<unsigned>(Little16(at + 2)) << 16 |
                                static_cast<unsigned>(Little16(at)));
    }
    int Big32(std::size_t at) {
        return static_cast<int>(static_cast<unsigned>(Big16(at)) << 16 |
                                static_cast<unsigned>(Big16(at + 2)));
    }

private:
    std::span<const unsigned char> file_;
    bool good_ = true;
};

constexpr FXPictureSize kBroken = {-1, -1}; // what the codec must not see

FXPictureSize localBmpSize(HeaderReader& file) {
    constexpr int kOldHeader = 12; // of OS/2, with 16 bits for each side
    if (file.Little32(14) == kOldHeader)
        return {file.Little16(18), file.Little16(20)};
    const int height = file.Little32(22); // negative where the first row is the top one
    return {file.Little32(18), height < 0 ? -std::max(height, -INT_MAX) : height};
}

// The scans' data, up to the next marker that is not part of it.
std::size_t localAfterScan(HeaderReader& file, std::size_t at) {
    const auto isData = [&](int next) { return next == 0 || (next >= 0xD0 && next <= 0xD7); };
    while (file.Good() && (file.Byte(at) != 0xFF || isData(file.Byte(at + 1))))
        ++at;
    return at;
}

// All segments, to the end of the picture: of one that breaks off before, DevIL would wait for the rest for
// ever.
FXPictureSize localJpegSize(HeaderReader& file) {
    if (file.Big16(0) != 0xFFD8)
        return {};
    FXPictureSize size = kBroken;
    for (std::size_t at = 2; file.Good() && file.Byte(at) == 0xFF;) {
        const int marker = file.Byte(at + 1);
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (marker == 0xD9)
            return size;
        if (isFrame)
            size = {file.Big16(at + 7), file.Big16(at + 5)};
        if (marker == 0xFF) { // padding
            ++at;
            continue;
        }
        at += 2 + static_cast<std::size_t>(file.Big16(at + 2));
        if (marker == 0xDA)
            at = localAfterScan(file, at);
    }
    return kBroken;
}

// All chunks, to the one that ends the picture: DevIL reads on behind the end of one that breaks off.
FXPictureSize localPngSize(HeaderReader& file) {
    constexpr int kSignature = static_cast<int>(0x89504E47u);
    constexpr int kEnd = 0x49454E44;
    constexpr std::size_t kAroundData = 12; // length, kind and checksum
    if (file.Big32(0) != kSignature)
        return {};
    for (std::size_t at = 8; file.Good();) {
        if (file.Big32(at + 4) == kEnd)
            return {file.Big32(16), file.Big32(20)};
        const int length = file.Big32(at);
        if (length < 0)
            break;
        at += kAroundData + static_cast<std::size_t>(length);
    }
    return kBroken;
}

// How far behind `at` a table of colours ends, if these flags say that there is one.
std::size_t localAfterColours(std::size_t at, int flags) {
    return (flags & 0x80) != 0 ? at + (std::size_t{3} << ((flags & 7) + 1)) : at;
}

// Blocks of data, each after its size; the last is empty.
std::size_t localAfterData(HeaderReader& file, std::size_t at) {
    while (const int size = file.Byte(at))
        at += static_cast<std::size_t>(size) + 1;
    return at + 1;
}

// All blocks, to the one that ends the picture; the screen's size counts, of which the first frame may be a
// part. DevIL does not look whether a frame lies on the screen, nor whether a block is of a kind that there
// is.
FXPictureSize localGifSize(HeaderReader& file) {
    constexpr int kLongestCode = 8; // a picture begins with codes of so many bits at most
    const FXPictureSize screen = {file.Little16(6), file.Little16(8)};
    FXPictureSize size;
    std::size_t at = localAfterColours(13, file.Byte(10));
    while (file.Good() && file.Byte(at) != ';') {
        if (file.Byte(at) == '!') {
            at = localAfterData(file, at + 2);
            continue;
        }
        const FXPictureSize frame = {file.Little16(at + 5), file.Little16(at + 7)};
        if (file.Byte(at) != ',' || file.Little16(at + 1) + frame.width > screen.width ||
            file.Little16(at + 3) + frame.height > screen.height || frame.width == 0 || frame.height == 0)
            return kBroken;
        size = screen;
        at = localAfterColours(at + 10, file.Byte(at + 9));
        if (file.Byte(at) > kLongestCode)
            return kBroken;
        at = localAfterData(file, at + 1);
    }
    return file.Good() ? size : kBroken;
}

// Where the TGA's pixels begin: behind the text and the colours that may stand before them.
std::size_t localTgaPixels(HeaderReader& file) {
    constexpr std::size_t kHeader = 18;
    const int colours = file.Byte(1) != 0 ? file.Little16(5) * ((file.Byte(7) + 7) / 8) : 0;
    return kHeader + static_cast<std::size_t>(file.Byte(0) + colours);
}

// Whether that many pixels of two bytes each stand there, plain or in runs.
bool localTgaHolds(HeaderReader& file, std::int64_t pixels) {
    constexpr int kFirstWithRuns = 9; // of the kinds
    constexpr std::size_t kPixel = 2;
    const bool runs = file.Byte(2) >= kFirstWithRuns;
    std::size_t at = localTgaPixels(file);
    while (pixels > 0 && file.Good()) {
        const int head = runs ? file.Byte(at++) : 0;
        const std::int64_t count = runs ? (head & 127) + 1 : pixels;
        at += (head & 128) != 0 ? kPixel : kPixel * static_cast<std::size_t>(count);
        file.Byte(at - 1);
        pixels -= count;
    }
    return file.Good();
}

// Of 15 or 16 bits whose pixels are not all there, DevIL keeps less memory than it then reads. From 32768
// colours on it takes their number for a negative one, and copies 4 GB of them.
FXPictureSize localTgaSize(HeaderReader& file) {
    constexpr int kRuns = 8; // of the kinds, without which 1 is the one that has colours
    const FXPictureSize size = {file.Little16(12), file.Little16(14)};
    if ((file.Byte(2) & ~kRuns) == 1 && file.Little16(5) > SHRT_MAX)
        return kBroken;
    const int bits = file.Byte(16);
    const bool taken =
        (bits != 15 && bits != 16) || localTgaHolds(file, std::int64_t{size.width} * size.height);
    return taken ? size : kBroken;
}

FXPictureSize localSizeOf(HeaderReader& file, int type) {
    switch (type) {
    case kBmp:
        return localBmpSize(file);
    case kJpeg:
        return localJpegSize(file);
    case kPng:
        return localPngSize(file);
    case kTga:
        return localTgaSize(file);
    case kGif:
        return localGifSize(file);
    default:
        return {};
    }
}

} // namespace

int fxPictureType(std::span<const unsigned char> file) {
    constexpr struct {
        std::string_view start;
        int type;
    } kSignatures[] = {{"\x89PNG", kPng}, {"\xFF\xD8", kJpeg}, {"GIF8", kGif}, {"BM", kBmp}};
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    for (const auto& signature : kSignatures)
        if (text.starts_with(signature.start))
            return signature.type;
    return kRaw;
}

std::optional<FXPictureSize> fxPictureSize(std::span<const unsigned char> file, int type) {
    HeaderReader reader(file);
    const FXPictureSize size = localSizeOf(reader, type);
    if (!reader.Good() || size.width <= 0 || size.height <= 0)
        return std::nullopt;
    return size;
}

bool fxPictureIsPlausible(std::span<const unsigned char> file, int type) {
    HeaderReader reader(file);
    const auto [width, height] = localSizeOf(reader, type);
    if (width == 0 || height == 0)
        return true;
    const std::int64_t pixels = std::int64_t{width} * height;
    return width > 0 && height > 0 && width <= FXPixmap::kMostSide && height <= FXPixmap::kMostSide &&
           pixels <= FXPixmap::kMostPixels &&
           pixels <= localMostPixelsPerByte(type) * static_cast<std::int64_t>(file.size());
}
