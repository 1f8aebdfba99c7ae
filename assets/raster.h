// Pictures in the making: floating-point pixels, alpha not multiplied in, and their way out to PNG and JPEG.
#pragma once

#include <functional>
#include <string>
#include <vector>

// work(row) for every row from 0, on all cores at once; rows must not depend on each other.
void ForEachRow(int rows, const std::function<void(int)>& work);

// Screen colour, 0..1 per component; sums may exceed 1 and are cut when the picture is written.
struct Rgb {
    float r = 0;
    float g = 0;
    float b = 0;

    constexpr Rgb operator+(Rgb o) const { return {r + o.r, g + o.g, b + o.b}; }
    constexpr Rgb operator*(Rgb o) const { return {r * o.r, g * o.g, b * o.b}; }
    constexpr Rgb operator*(float k) const { return {r * k, g * k, b * k}; }
    constexpr Rgb& operator+=(Rgb o) { return *this = *this + o; }
};

struct Rgba {
    Rgb colour;
    float alpha = 0;
};

// A grid of pixels, row 0 at the top. Positions are in pixels; the centre of the first pixel is (0.5, 0.5).
class Raster {
public:
    Raster(int width, int height);

    int Width() const { return width_; }
    int Height() const { return height_; }
    // x and y must lie inside.
    Rgba& At(int x, int y) { return pixels_[Index(x, y)]; }
    const Rgba& At(int x, int y) const { return pixels_[Index(x, y)]; }

    // Every pixel becomes colourAt(x, y), called with the pixel's centre from several threads.
    template <class Function> void Fill(Function colourAt) {
        ForEachRow(height_, [&](int y) {
            for (int x = 0; x < width_; ++x)
                At(x, y) = colourAt(static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f);
        });
    }

    // Between the four nearest pixels; outside, the nearest edge.
    Rgba Sample(float x, float y) const;
    // Reduced by averaging; the new size must not be larger than this one.
    Raster Shrunk(int width, int height) const;

    // Four bytes per pixel: red, green, blue, alpha. Every rounding is dithered, so that slow gradients show
    // no bands; what is exactly 0 or 1 stays exact.
    std::vector<unsigned char> Bytes() const;

    // As 8-bit PNG, without an alpha channel when every pixel is opaque. Empty when well, else what went
    // wrong; what stood there is replaced only by a complete picture.
    std::string WritePng(const std::string& file) const;
    // As JPEG of quality 1..100, for opaque pictures so rich in detail that PNG is wasted on them.
    std::string WriteJpeg(const std::string& file, int quality) const;

private:
    std::size_t Index(int x, int y) const { return static_cast<std::size_t>(y) * width_ + x; }

    int width_;
    int height_;
    std::vector<Rgba> pixels_;
};
