#include "models/morph_curve.h"

#include <cstddef>

namespace {

float localSlope(const CurveKey& a, const CurveKey& b) {
    return (b.value - a.value) / (b.at - a.at);
}

// The harmonic mean of the slopes at both sides, which is what keeps the curve from overshooting.
float localTangent(std::span<const CurveKey> keys, std::size_t i) {
    if (i == 0 || i + 1 == keys.size())
        return 0;
    const float before = localSlope(keys[i - 1], keys[i]);
    const float after = localSlope(keys[i], keys[i + 1]);
    return before * after <= 0 ? 0 : 2 * before * after / (before + after);
}

} // namespace

float CurveAt(std::span<const CurveKey> keys, float at) {
    if (at <= keys.front().at)
        return keys.front().value;
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        const CurveKey& a = keys[i];
        const CurveKey& b = keys[i + 1];
        if (at >= b.at)
            continue;
        const float span = b.at - a.at;
        const float t = (at - a.at) / span;
        const float rise = t * t * (3 - 2 * t);
        return a.value + (b.value - a.value) * rise + span * t * (1 - t) * (1 - t) * localTangent(keys, i) -
               span * t * t * (1 - t) * localTangent(keys, i + 1);
    }
    return keys.back().value;
}
