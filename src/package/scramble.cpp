#include "package/scramble.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

constexpr std::size_t kSide = 16; // of a block, in bytes
constexpr std::size_t kBlock = kSide * kSide;
constexpr std::size_t kLine = 64;   // of the cache
constexpr std::size_t kBand = 1024; // rows whose cache lines stay near until all their bytes are used

std::size_t localSquareRoot(std::size_t n) {
    auto root = static_cast<std::size_t>(std::sqrt(static_cast<double>(n)));
    while (root * root > n)
        --root;
    while ((root + 1) * (root + 1) <= n)
        ++root;
    return root;
}

// Every byte of the first half, followed by that of the second half. Compilers vectorize this.
void localInterleave(const unsigned char* __restrict from, unsigned char* __restrict to) {
    for (std::size_t i = 0; i < kBlock / 2; ++i) {
        to[2 * i] = from[i];
        to[2 * i + 1] = from[i + kBlock / 2];
    }
}

// The block at `from`, whose rows lie n bytes apart, transposed. The index of a byte is its row's four bits
// and its column's four; interleaving turns the eight round by one, and four times that exchanges them.
void localTake(const unsigned char* from, std::size_t n, unsigned char* block) {
    for (std::size_t i = 0; i < kSide; ++i)
        std::memcpy(block + i * kSide, from + i * n, kSide);
    unsigned char other[kBlock];
    for (int twice = 0; twice < 2; ++twice) {
        localInterleave(block, other);
        localInterleave(other, block);
    }
}

void localPut(const unsigned char* block, unsigned char* to, std::size_t n) {
    for (std::size_t i = 0; i < kSide; ++i)
        std::memcpy(to + i * n, block + i * kSide, kSide);
}

// Rows lie too far apart for the processor to foresee which it needs next.
void localPrefetch(const unsigned char* rows, std::size_t n) {
    for (std::size_t i = 0; i < kSide; ++i)
        __builtin_prefetch(rows + i * n, 1);
}

} // namespace

void fxScramble(unsigned char* bytes, std::size_t size) {
    const std::size_t n = localSquareRoot(size);
    const std::size_t whole = n - n % kSide; // rows and columns that blocks cover
    for (std::size_t band = 0; band < whole; band += kBand)
        for (std::size_t column = band; column < whole; column += kSide)
            for (std::size_t row = band; row < std::min({band + kBand, column + kSide, whole});
                 row += kSide) {
                unsigned char* const upper = bytes + row * n + column;
                unsigned char* const lower = bytes + column * n + row;
                if (column % kLine == 0 && column + kLine < whole)
                    localPrefetch(upper + kLine, n);
                if (row % kLine == 0 && column + kSide < whole)
                    localPrefetch(lower + kSide * n, n);
                unsigned char a[kBlock], b[kBlock];
                localTake(lower, n, a);
                localTake(upper, n, b);
                localPut(a, upper, n);
                localPut(b, lower, n);
            }
    for (std::size_t row = 0; row < n; ++row)
        for (std::size_t column = std::max(row + 1, whole); column < n; ++column)
            std::swap(bytes[row * n + column], bytes[column * n + row]);
}
