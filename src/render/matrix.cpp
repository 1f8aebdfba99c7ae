#include "render/matrix.h"

#include "package/record.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

// 3.1415 / 180, not pi / 180: the angles of the effects are tuned to it.
constexpr float kRadiansPerDegree = 0.017452778f;

} // namespace

void FXMatrix::Clear(float v) {
    std::fill(std::begin(m), std::end(m), v);
}

void FXMatrix::Copy(const FXMatrix* src) {
    *this = *src;
}

bool FXMatrix::Compare(const FXMatrix* other) const {
    return std::equal(std::begin(m), std::end(m), other->m);
}

void FXMatrix::SetIdentity() {
    SetScaleF(1, 1, 1);
}

void FXMatrix::SetFlipX() {
    SetScaleF(-1, 1, 1);
}

void FXMatrix::SetFlipY() {
    SetScaleF(1, -1, 1);
}

void FXMatrix::SetFlipZ() {
    SetScaleF(1, 1, -1);
}

void FXMatrix::SetMove(const float* v) {
    SetMoveF(v[0], v[1], v[2]);
}

void FXMatrix::SetMoveF(float x, float y, float z) {
    SetIdentity();
    *M(3, 0) = x;
    *M(3, 1) = y;
    *M(3, 2) = z;
}

void FXMatrix::SetScale(const float* v) {
    SetScaleF(v[0], v[1], v[2]);
}

void FXMatrix::SetScaleF(float x, float y, float z) {
    Clear(0);
    *M(0, 0) = x;
    *M(1, 1) = y;
    *M(2, 2) = z;
    *M(3, 3) = 1;
}

// In the plane of the axes i and j, with the sense that puts +sin at M(i, j).
void FXMatrix::SetRotation(float degrees, int i, int j) {
    const float angle = degrees * kRadiansPerDegree;
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    SetIdentity();
    *M(i, i) = c;
    *M(j, j) = c;
    *M(i, j) = s;
    *M(j, i) = -s;
}

void FXMatrix::SetRotateX(float degrees) {
    SetRotation(degrees, 1, 2);
}

void FXMatrix::SetRotateY(float degrees) {
    SetRotation(degrees, 0, 2);
}

void FXMatrix::SetRotateZ(float degrees) {
    SetRotation(degrees, 1, 0);
}

void FXMatrix::Multiply(const FXMatrix* a, const FXMatrix* b) {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            float sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += *a->M(k, j) * *b->M(i, k);
            *M(i, j) = sum;
        }
}

bool FXMatrix::Save(std::FILE* file) const {
    return fxSaveRecord(*this, file);
}

bool FXMatrix::Load(std::FILE* file) {
    return fxLoadRecord(*this, file);
}

void FXMatrix::LoadC(FXPackage*, FXPackageData* d) {
    if (d->left < static_cast<int>(sizeof m))
        return SetIdentity();
    fxLoadRecord(*this, d);
}
