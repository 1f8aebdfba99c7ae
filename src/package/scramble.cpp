#include "package/scramble.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

// The matrix is turned in blocks of 16 x 16 bytes that stay in registers, one band of rows after the other. A
// band is as high as gives the memory long runs to write and still keeps its cache lines until they are used
// up.
constexpr std::size_t kBlock = 16;
constexpr std::size_t kBand = 1024;
constexpr std::size_t kLine = 64;

using Row = unsigned char __attribute__((vector_size(kBlock)));

std::size_t localSquareRoot(std::size_t n) {
    auto root = static_cast<std::size_t>(std::sqrt(static_cast<double>(n)));
    while (root * root > n)
        --root;
    while ((root + 1) * (root + 1) <= n)
        ++root;
    return root;
}

// Each row of `from` followed by the bytes of the row eight further down, byte by byte; four times that
// transposes.
void localInterleave(const Row* from, Row* to) {
    for (std::size_t i = 0; i < kBlock / 2; ++i) {
        const Row upper = from[i];
        const Row lower = from[i + kBlock / 2];
        to[2 * i] =
            __builtin_shufflevector(upper, lower, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
        to[2 * i + 1] = __builtin_shufflevector(upper, lower, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29,
                                                14, 30, 15, 31);
    }
}

// The block at `from`, transposed. Rows lie n bytes apart.
void localTakeBlock(const unsigned char* from, std::size_t n, Row* a) {
    Row b[kBlock];
    for (std::size_t i = 0; i < kBlock; ++i)
        std::memcpy(&a[i], from + i * n, kBlock);
    localInterleave(a, b);
    localInterleave(b, a);
    localInterleave(a, b);
    localInterleave(b, a);
}

void localPutBlock(const Row* block, unsigned char* to, std::size_t n) {
    for (std::size_t i = 0; i < kBlock; ++i)
        std::memcpy(to + i * n, &block[i], kBlock);
}

// Changes places with its mirror image; a block on the diagonal is its own.
void localSwapBlocks(unsigned char* block, unsigned char* mirror, std::size_t n) {
    Row a[kBlock];
    localTakeBlock(block, n, a);
    if (mirror != block) {
        Row b[kBlock];
        localTakeBlock(mirror, n, b);
        localPutBlock(b, block, n);
    }
    localPutBlock(a, mirror, n);
}

// Rows lie too far apart for the processor to see where the reading and the writing go next.
void localPrefetch(const unsigned char* rows, std::size_t n) {
    for (std::size_t i = 0; i < kBlock; ++i)
        __builtin_prefetch(rows + i * n, 1);
}

// The part of the matrix that whole blocks cover: its first `whole` rows and columns.
void localTransposeBlocks(unsigned char* matrix, std::size_t n, std::size_t whole) {
    for (std::size_t band = 0; band < whole; band += kBand)
        for (std::size_t column = band; column < whole; column += kBlock) {
            const std::size_t end = std::min({band + kBand, whole, column + kBlock});
            for (std::size_t row = band; row < end; row += kBlock) {
                if (column % kLine == 0 && column + kLine < whole)
                    localPrefetch(matrix + row * n + column + kLine, n);
                if (row % kLine == 0 && column + kBlock < whole)
                    localPrefetch(matrix + (column + kBlock) * n + row, n);
                localSwapBlocks(matrix + row * n + column, matrix + column * n + row, n);
            }
        }
}

} // namespace

void fxScramble(unsigned char* bytes, std::size_t size) {
    const std::size_t n = localSquareRoot(size);
    const std::size_t whole = n - n % kBlock;
    localTransposeBlocks(bytes, n, whole);
    for (std::size_t row = 0; row < n; ++row)
        for (std::size_t column = std::max(row + 1, whole); column < n; ++column)
            std::swap(bytes[row * n + column], bytes[column * n + row]);
}
