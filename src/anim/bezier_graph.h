// A curve of whole values over frame positions. Stored with an animation, not evaluated by the show.
#pragma once

#include "base/arrays.h"

#include <cstdio>

class FXPackageData;

class FXBezierGraph {
public:
    void Destroy();
    // The record.
    template <class Self, class V> static bool Fields(Self& self, V& v) {
        return v.Int("the graph's resolution", self.resolution) &&
               v.Int("the graph's scale", self.valueScale) &&
               v.Ints("position", "the graph", self.positions) && v.Ints("value", "the graph", self.values) &&
               v.Flag("the graph's first flag", self.flags[0]) &&
               v.Flag("the graph's second flag", self.flags[1]) &&
               v.Float("the graph's tension", self.tension) &&
               v.Int("the graph's samples", self.samplesPerSegment);
    }
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
