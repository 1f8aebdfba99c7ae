#include "noise.h"

#include <algorithm>

namespace {

constexpr float kUnit24 = 1.0f / 16777216.0f;

// Octaves are not exact multiples, so that their lattices never line up.
constexpr float kLacunarity = 2.03f;
// Each octave looks at another place of the lattice: its zeros would otherwise meet at the origin.
constexpr Vec3 kOctaveShift = {17.31f, 9.73f, 5.17f};

int localFloor(float v) {
    const int whole = static_cast<int>(v);
    return v < static_cast<float>(whole) ? whole - 1 : whole;
}

float localFade(float t) {
    return t * t * t * (t * (t * 6 - 15) + 10);
}

float localLerp(float a, float b, float t) {
    return a + (b - a) * t;
}

// The directions to the edges of a cube, four of them twice, so that four bits of a hash choose one.
constexpr Vec3 kSlopes[16] = {
    {1, 1, 0}, {-1, 1, 0}, {1, -1, 0}, {-1, -1, 0}, {1, 0, 1}, {-1, 0, 1}, {1, 0, -1}, {-1, 0, -1},
    {0, 1, 1}, {0, -1, 1}, {0, 1, -1}, {0, -1, -1}, {1, 1, 0}, {0, -1, 1}, {-1, 1, 0}, {0, -1, -1},
};

// Coordinates are spread by the primes of Teschner et al. ("Optimized spatial hashing", 2003) and the sum is
// mixed by the finaliser of MurmurHash3. Both halves are apart so that neighbours in a lattice share the
// first.
constexpr std::uint32_t kPrimeX = 73856093u;
constexpr std::uint32_t kPrimeY = 19349663u;
constexpr std::uint32_t kPrimeZ = 83492791u;
constexpr std::uint32_t kPrimeSeed = 0x9E3779B9u;

constexpr std::uint32_t localMixed(std::uint32_t h) {
    h = (h ^ (h >> 16)) * 0x85EBCA6Bu;
    h = (h ^ (h >> 13)) * 0xC2B2AE35u;
    return h ^ (h >> 16);
}

} // namespace

std::uint32_t Hash(std::uint32_t x, std::uint32_t y, std::uint32_t z, std::uint32_t seed) {
    return localMixed((x * kPrimeX) ^ (y * kPrimeY) ^ (z * kPrimeZ) ^ (seed * kPrimeSeed));
}

float HashUnit(std::uint32_t x, std::uint32_t y, std::uint32_t z, std::uint32_t seed) {
    return static_cast<float>(Hash(x, y, z, seed) >> 8) * kUnit24;
}

// K. Perlin, "Improving noise" (2002), with a hash in place of the permutation table.
float GradientNoise(Vec3 p, std::uint32_t seed) {
    const int ix = localFloor(p.x);
    const int iy = localFloor(p.y);
    const int iz = localFloor(p.z);
    const float x = p.x - static_cast<float>(ix);
    const float y = p.y - static_cast<float>(iy);
    const float z = p.z - static_cast<float>(iz);
    const float u = localFade(x);
    const float v = localFade(y);

    const std::uint32_t hx = static_cast<std::uint32_t>(ix) * kPrimeX;
    const std::uint32_t hy = static_cast<std::uint32_t>(iy) * kPrimeY;
    const std::uint32_t hz = static_cast<std::uint32_t>(iz) * kPrimeZ ^ seed * kPrimeSeed;
    const std::uint32_t hz1 = (static_cast<std::uint32_t>(iz) + 1) * kPrimeZ ^ seed * kPrimeSeed;
    const auto at = [](std::uint32_t hash, float dx, float dy, float dz) {
        return Dot(kSlopes[localMixed(hash) >> 28], {dx, dy, dz});
    };
    const auto plane = [&](std::uint32_t h, float dz) {
        const std::uint32_t hx1 = hx + kPrimeX;
        const std::uint32_t hy1 = hy + kPrimeY;
        return localLerp(localLerp(at(hx ^ hy ^ h, x, y, dz), at(hx1 ^ hy ^ h, x - 1, y, dz), u),
                         localLerp(at(hx ^ hy1 ^ h, x, y - 1, dz), at(hx1 ^ hy1 ^ h, x - 1, y - 1, dz), u),
                         v);
    };
    return localLerp(plane(hz, z), plane(hz1, z - 1), localFade(z));
}

float Fbm(Vec3 p, int octaves, std::uint32_t seed) {
    float sum = 0;
    float weight = 0.5f;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * GradientNoise(p, seed + static_cast<std::uint32_t>(i));
        weight *= 0.5f;
        p = p * kLacunarity + kOctaveShift;
    }
    return sum;
}

// After F. K. Musgrave's ridged multifractal: each octave is let through where the one before is strong.
float Ridged(Vec3 p, int octaves, std::uint32_t seed) {
    float sum = 0;
    float weight = 0.5f;
    float total = 0;
    float gate = 1;
    for (int i = 0; i < octaves; ++i) {
        const float crest = 1 - std::fabs(GradientNoise(p, seed + static_cast<std::uint32_t>(i)));
        const float sharp = crest * crest;
        sum += weight * sharp * gate;
        total += weight;
        gate = std::min(1.0f, sharp * 1.3f);
        weight *= 0.55f;
        p = p * kLacunarity + kOctaveShift;
    }
    return sum / total;
}

Vec3 Warped(Vec3 p, float frequency, float step, int octaves, std::uint32_t seed) {
    const Vec3 q = p * frequency;
    return {p.x + step * Fbm(q, octaves, seed + 101), p.y + step * Fbm(q, octaves, seed + 211),
            p.z + step * Fbm(q, octaves, seed + 307)};
}

// S. Worley, "A cellular texture basis function" (1996), one point per cube.
Cell CellNoise(Vec3 p, std::uint32_t seed) {
    const int ix = localFloor(p.x);
    const int iy = localFloor(p.y);
    const int iz = localFloor(p.z);
    float nearest = 8;
    float second = 8;
    std::uint32_t id = 0;
    for (int k = -1; k <= 1; ++k) {
        for (int j = -1; j <= 1; ++j) {
            for (int i = -1; i <= 1; ++i) {
                const std::uint32_t h =
                    Hash(static_cast<std::uint32_t>(ix + i), static_cast<std::uint32_t>(iy + j),
                         static_cast<std::uint32_t>(iz + k), seed);
                const Vec3 point = {static_cast<float>(ix + i) + static_cast<float>(h & 1023) / 1024,
                                    static_cast<float>(iy + j) + static_cast<float>((h >> 10) & 1023) / 1024,
                                    static_cast<float>(iz + k) + static_cast<float>(h >> 20) / 4096};
                const Vec3 d = point - p;
                const float square = Dot(d, d);
                if (square < nearest) {
                    second = nearest;
                    nearest = square;
                    id = h;
                } else if (square < second) {
                    second = square;
                }
            }
        }
    }
    const float distance = std::sqrt(nearest);
    return {distance, std::sqrt(second) - distance, id};
}

// SplitMix64 (Steele, Lea and Flood, 2014).
float Random::Unit() {
    state_ += 0x9E3779B97F4A7C15u;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    z ^= z >> 31;
    return static_cast<float>(z >> 40) * kUnit24;
}
