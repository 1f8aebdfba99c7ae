// Chased and engraved metal: a landscape of heights, and how it shines.
#pragma once

#include "noise.h"
#include "pictures/colour.h"
#include "raster.h"

#include <cstdint>
#include <vector>

// Heights over a picture, in pixels, higher is nearer to the eye.
class Relief {
public:
    Relief(int width, int height);

    int Width() const { return width_; }
    int Height() const { return height_; }
    float& At(int x, int y) { return heights_[static_cast<std::size_t>(y) * width_ + x]; }
    float At(int x, int y) const { return heights_[static_cast<std::size_t>(y) * width_ + x]; }

    // Every height becomes heightAt(x, y), called with the pixel's centre.
    template <class Function> void Fill(Function heightAt) {
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x)
                At(x, y) = heightAt(static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f);
    }
    // Three box averages over 2 * reach + 1 pixels, as good as a Gaussian.
    void Soften(int reach);
    // Which way the surface faces; x to the right, y up, z to the eye.
    Vec3 Normal(int x, int y) const;
    // 0 where it lies level, 1 from a slope of about 20 degrees on.
    float Steepness(int x, int y) const { return Smooth(1.0f, 0.94f, Normal(x, y).z); }

private:
    void SoftenLine(std::size_t first, std::size_t step, int count, int reach);

    int width_;
    int height_;
    std::vector<float> heights_;
};

// How bright polished metal facing this way is, 0..1: sky above, dark floor below, a lamp at the upper left.
float Shine(Vec3 normal);

// Gold of a given brightness, 0..1.
Rgb Gold(float brightness);
// Steel likewise.
Rgb Steel(float brightness);

// Brushed along x: lines of many lengths, about -1..1.
float Brushed(float x, float y, std::uint32_t seed);
