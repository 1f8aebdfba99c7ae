// A curve of whole values over frame positions. Stored with an animation, not evaluated by the show.
#pragma once

#include "base/arrays.h"

#include <cstdio>

class FXPackageData;

class FXBezierGraph {
public:
    void Destroy();
    void LoadC(FXPackageData* d);
    bool Save(std::FILE* file) const;

    int resolution = 0;
    int valueScale = 1000;
    FXArray<int> positions;
    FXArray<int> values;
    bool flags[2] = {};
    float tension = 0.3f;
    int samplesPerSegment = 16;
};
