// What a model or an animation may cost in memory while it is loaded and after.
#pragma once

#include "base/str.h"

#include <cstdint>

// Meshes count twice, for models keep them as loaded and as working copies; an animation's count once for
// each key frame. Whoever takes more than there is has to leave the thing out that it was taken for; nothing
// fits any more then. The costs of objects are fixed numbers, so that every platform refuses the same.
class FXLoadBudget {
public:
    // A 32-bit process has 2 GiB. The show holds five models and one animation: 960 MiB at the worst, splines
    // a sixth of the animation's more, which leaves it a gigabyte for pictures and the package. As many empty
    // meshes, key frames or materials as FXPackageData::kSureCount fit.
    static constexpr std::int64_t kMostBytes = 160 << 20;
    // What each mesh costs beside its vertices and indices, and so how many there can be.
    static constexpr std::int64_t kMeshBytes = 1200;
    static constexpr std::int64_t kCopies = 2;
    static constexpr int kMostMeshes = kMostBytes / (kCopies * kMeshBytes);

    // How many key frames the meshes to come are loaded for; false when their models are too many.
    bool TakeFrames(int count);
    bool TakeMesh(int vertices, int corners);
    bool TakeMaterials(int count); // of a library that a model loaded for itself
    bool TakeRecord(int bytes);    // of the entry, whose vectors are copied while it is read
    bool IsExceeded() const { return taken_ > kMostBytes; }
    // "it takes 170 MiB at the least, and 160 MiB are the most".
    FXStr Describe() const;

private:
    bool Take(std::int64_t bytes);

    std::int64_t taken_ = 0;
    std::int64_t frames_ = 1;
};
