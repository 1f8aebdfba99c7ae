#include "package/scramble.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// Tiles keep both the rows read and the rows written in the first-level cache; a plain double loop would touch a new
// cache line with every byte.
constexpr std::size_t kTile = 32;

std::size_t localSquareRoot(std::size_t n) {
    auto root = static_cast<std::size_t>(std::sqrt(static_cast<double>(n)));
    while (root * root > n)
        --root;
    while ((root + 1) * (root + 1) <= n)
        ++root;
    return root;
}

} // namespace

void fxScramble(const unsigned char* from, unsigned char* to, std::size_t size) {
    const std::size_t n = localSquareRoot(size);
    for (std::size_t row = 0; row < n; row += kTile)
        for (std::size_t column = 0; column < n; column += kTile) {
            const std::size_t lastRow = std::min(row + kTile, n);
            const std::size_t lastColumn = std::min(column + kTile, n);
            for (std::size_t c = column; c < lastColumn; ++c)
                for (std::size_t r = row; r < lastRow; ++r)
                    to[c * n + r] = from[r * n + c];
        }
    if (size > n * n)
        std::memcpy(to + n * n, from + n * n, size - n * n);
}
