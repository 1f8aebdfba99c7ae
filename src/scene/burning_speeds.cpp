// How fast each part of the burning edge runs: random bumps of three sizes over a base speed.
#include "platform/random.h"
#include "scene/burning_desk.h"

#include <algorithm>

// A triangle over a part of the circle: lengthShare to twice that, `height` about half of its peak.
void FXFireDesk::AddBump(int ring, float lengthShare, float height, bool over) {
    const float columns = static_cast<float>(num + 1);
    const int start = static_cast<int>(fxGetRandom() * columns);
    const int length = static_cast<int>((fxGetRandom() * lengthShare + lengthShare) * columns);
    const int half = length / 2;
    const int middle = start + half;
    const int end = start + length;
    const float slope = static_cast<float>(std::max(half, 1)); // a bump of one column has none
    float* speed = Speeds(ring);
    for (int k = start; k <= end; ++k) {
        const float weight = static_cast<float>(k < middle ? k - start : end - k) / slope;
        const float bump = (fxGetRandom() * 0.01f + 2.0f) * height * weight;
        float& at = speed[k % num];
        at = (over ? at : speedBase) + bump;
    }
}

void FXFireDesk::UpdateSpeeds1() {
    fxResetRandom();
    std::fill(speeds.begin(), speeds.end(), speedBase);
    for (int r = 0; r < kMovingRings && speeds.count > 0; ++r)
        AddBump(r, 0.25f, 0.75f, false);
}

void FXFireDesk::UpdateSpeeds2() {
    fxResetRandom();
    for (int pass = 0; pass < 3 && speeds.count > 0; ++pass)
        for (int r = 0; r < kMovingRings; ++r)
            AddBump(r, 0.125f, 0.5f, true);
}

void FXFireDesk::UpdateSpeeds3() {
    fxResetRandom();
    for (int pass = 0; pass < 10 && speeds.count > 0; ++pass)
        for (int r = 0; r < kMovingRings; ++r)
            AddBump(r, 0.05f, 0.25f, true);
}
