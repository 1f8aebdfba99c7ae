#include "geometry/load_budget.h"

#include "geometry/mesh.h"
#include "geometry/model.h"
#include "image/material.h"
#include "package/package_data.h"

#include <algorithm>

namespace {

// Each object with its blocks' heads.
constexpr std::int64_t kModel = 2300;
constexpr std::int64_t kMaterial = 2500;
static_assert(sizeof(FXMesh) + 48 <= FXLoadBudget::kMeshBytes && sizeof(FXModel) + 48 <= kModel &&
              sizeof(FXMaterial) + 16 <= kMaterial);
static_assert(FXLoadBudget::kMostMeshes >= FXPackageData::kSureCount &&
              FXLoadBudget::kMostBytes >=
                  std::int64_t{FXPackageData::kSureCount} * std::max(kModel, kMaterial));

std::int64_t localMiB(std::int64_t bytes) {
    return (bytes + (1 << 20) - 1) >> 20;
}

} // namespace

bool FXLoadBudget::Take(std::int64_t bytes) {
    taken_ += bytes;
    return !IsExceeded();
}

bool FXLoadBudget::TakeFrames(int count) {
    frames_ = count;
    return Take(count * kModel);
}

bool FXLoadBudget::TakeMesh(int vertices, int corners) {
    return Take(
        frames_ * kCopies *
        (kMeshBytes + vertices * std::int64_t{sizeof(tagFXVertex)} + corners * std::int64_t{sizeof(int)}));
}

bool FXLoadBudget::TakeMaterials(int count) {
    return Take(count * kMaterial);
}

bool FXLoadBudget::TakeRecord(int bytes) {
    return Take(bytes);
}

FXStr FXLoadBudget::Describe() const {
    FXStr text;
    text.Format("it takes %lld MiB at the least, and %lld MiB are the most",
                static_cast<long long>(localMiB(taken_)), static_cast<long long>(localMiB(kMostBytes)));
    return text;
}
