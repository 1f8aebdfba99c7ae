// A block of 32-bit pixels whose storage can be handed to an OpenGL 1.1 device unchanged.
#pragma once

#include <cstdint>

// A pixel's bytes in memory are red, green, blue, alpha. Rows follow each other without padding, the first
// row of the picture first. The storage is rounded up to powers of two; the picture fills its upper left
// part. Owns the pixels.
class FXPixmap {
public:
    static constexpr int kMostSide = 32768;
    static constexpr std::int64_t kMostPixels = std::int64_t{1} << 28; // 1 GiB

    FXPixmap() = default;
    ~FXPixmap() { Destroy(); }
    FXPixmap(const FXPixmap&) = delete;
    FXPixmap& operator=(const FXPixmap&) = delete;

    // Storage for w x h pixels; contents are neither kept nor cleared, and a large enough block is used
    // again. False, with the pixmap empty, when a size is negative or beyond kMostSide, the
    // storage would hold more than kMostPixels, or there is no memory.
    bool Realloc(int w, int h);
    void Clear(std::uint32_t value); // the whole storage
    void Destroy();
    void ReleasePixels(); // the sizes stay
    // What the other one holds, which is empty then. Whether sides are powers of two is not taken over.
    void MoveFrom(FXPixmap* other);

    std::uint32_t* pixels = nullptr; // null: empty, or released
    int capacity = 0;                // pixels the block holds
    int width = 0;                   // of the storage
    int height = 0;
    int usedWidth = 0; // of the picture
    int usedHeight = 0;
    bool powerOfTwo = true;
};
