// Noise that is the same on every machine and at every build: integer hashes, and the patterns made of them.
#pragma once

#include <cmath>
#include <cstdint>

struct Vec3 {
    float x = 0;
    float y = 0;
    float z = 0;

    constexpr Vec3 operator+(Vec3 o) const { return {x + o.x, y + o.y, z + o.z}; }
    constexpr Vec3 operator-(Vec3 o) const { return {x - o.x, y - o.y, z - o.z}; }
    constexpr Vec3 operator*(float k) const { return {x * k, y * k, z * k}; }
};

constexpr float Dot(Vec3 a, Vec3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vec3 Unit(Vec3 v) {
    const float length = std::sqrt(Dot(v, v));
    return length > 0 ? v * (1 / length) : Vec3{0, 0, 1};
}

// 32 well-mixed bits of a lattice point.
std::uint32_t Hash(std::uint32_t x, std::uint32_t y, std::uint32_t z, std::uint32_t seed);
// The same as a number in 0 <= n < 1.
float HashUnit(std::uint32_t x, std::uint32_t y, std::uint32_t z, std::uint32_t seed);

// Perlin's gradient noise: -1..1, features about 1 unit wide, zero at whole coordinates.
float GradientNoise(Vec3 p, std::uint32_t seed);
// Octaves of it, each half as strong and about twice as fine: roughly -1..1, mostly within half of that.
float Fbm(Vec3 p, int octaves, std::uint32_t seed);
// Octaves of folded noise, sharp crests over soft valleys: 0..1.
float Ridged(Vec3 p, int octaves, std::uint32_t seed);
// p moved by noise of the given size of step; makes what is drawn there flow.
Vec3 Warped(Vec3 p, float frequency, float step, int octaves, std::uint32_t seed);

// Cells round one random point in every unit cube.
struct Cell {
    float nearest;    // distance to the nearest point
    float border;     // second nearest less nearest: 0 on the border between cells
    std::uint32_t id; // of the nearest point
};
Cell CellNoise(Vec3 p, std::uint32_t seed);

// A row of random numbers from a fixed seed.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    float Unit(); // 0 <= n < 1
    float Range(float low, float high) { return low + (high - low) * Unit(); }

private:
    std::uint64_t state_;
};
