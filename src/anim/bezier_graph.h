// A curve of whole values over frame positions. It is stored with an animation and not evaluated by the show:
// what is loaded is kept and saved as it is, whatever the numbers.
//
// The record holds the fields in their order. Where it has ended the rest is 0, and counts are believed as
// far as FXPackageData does; Save is false when not all of it got to the disk; Destroy brings the values
// below back. Point i lies at positions[i] and has the value values[i]; there may be more of the one than of
// the other.
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
