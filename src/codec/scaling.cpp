#include "codec/scaling.h"

#include <algorithm>
#include <cstdint>

namespace {

// Two neighbours of a place along a side, and how much there is of each.
struct Mix {
    int first, second;
    std::int64_t ofFirst, ofSecond; // together the new side's pixels
};

// Of pixel `at` of `size`, in a side of `fromSize`.
Mix localMix(int at, int size, int fromSize, bool mixes) {
    const std::int64_t place = std::int64_t{at} * fromSize;
    const int first = static_cast<int>(place / size);
    const std::int64_t ofSecond = mixes ? place % size : 0;
    return {first, std::min(first + 1, fromSize - 1), size - ofSecond, ofSecond};
}

} // namespace

bool fxScale(const CodecPicture& from, int w, int h, ILenum filter, CodecPicture* to) {
    if (!to->Realloc(w, h, from.format))
        return false;
    to->lowestFirst = from.lowestFirst;
    const int channels = from.Channels();
    unsigned char* out = to->bytes.get();
    const bool mixes = filter == ILU_BILINEAR;
    for (int y = 0; y < h; ++y) {
        const Mix rows = localMix(y, h, from.height, mixes);
        for (int x = 0; x < w; ++x) {
            const Mix columns = localMix(x, w, from.width, mixes);
            for (int channel = 0; channel < channels; ++channel) {
                const auto along = [&](int row) {
                    const unsigned char* bytes = from.Row(row) + channel;
                    return bytes[columns.first * channels] * columns.ofFirst +
                           bytes[columns.second * channels] * columns.ofSecond;
                };
                const std::int64_t mixed =
                    along(rows.first) * rows.ofFirst + along(rows.second) * rows.ofSecond;
                *out++ = static_cast<unsigned char>(mixed / (std::int64_t{w} * h));
            }
        }
    }
    return true;
}
