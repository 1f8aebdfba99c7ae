// Curves through given values, for what moves in the morph and for the bird's outline.
#pragma once

#include <span>

struct CurveKey {
    float at;
    float value;
};

// The smooth curve through the keys, which rise by `at`: level at both ends and beyond, at turning points,
// and never outside the two values it runs between.
float CurveAt(std::span<const CurveKey> keys, float at);
