// What stands out of the medallion's face: a ring, and the sphere that circles on it. The model and the
// picture on it share this. Lengths are shares of the face's radius; x is to the right, y upwards.
#pragma once

constexpr float kRingRadius = 0.50f;
constexpr float kRingWidth = 0.085f;
constexpr float kMoonRadius = 0.135f;
constexpr float kMoonX = 0.3535f;
constexpr float kMoonY = 0.3535f;
