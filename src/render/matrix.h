// The 4x4 transform that the effects build and the device loads unchanged.
#pragma once

#include <cstdio>

class FXPackage;
class FXPackageData;

// Sixteen floats in OpenGL's element order and nothing else: also the form in files, 64 bytes. M(i, j) is
// column i, row j of OpenGL's column-vector convention; the translation stands in column 3.
class FXMatrix {
public:
    float* M(int i, int j) { return &m[4 * i + j]; }
    const float* M(int i, int j) const { return &m[4 * i + j]; }

    void Clear(float v);
    void Copy(const FXMatrix* src);
    bool Compare(const FXMatrix* other) const; // exact; false where there is a NaN
    void SetIdentity();
    void SetFlipX();
    void SetFlipY();
    void SetFlipZ();
    void SetMove(const float* v); // three floats
    void SetMoveF(float x, float y, float z);
    void SetScale(const float* v);
    void SetScaleF(float x, float y, float z);
    // About x a point turns by +degrees, about y and z by -degrees.
    void SetRotateX(float degrees);
    void SetRotateY(float degrees);
    void SetRotateZ(float degrees);
    // this = a * b: b acts first. This must be neither a nor b.
    void Multiply(const FXMatrix* a, const FXMatrix* b);

    // The record.
    template <class Self, class V> static bool Fields(Self& self, V& v) {
        return v.Floats("column 0", self.M(0, 0), 4) && v.Floats("column 1", self.M(1, 0), 4) &&
               v.Floats("column 2", self.M(2, 0), 4) && v.Floats("column 3", self.M(3, 0), 4);
    }
    bool Save(std::FILE* file) const;
    bool Load(std::FILE* file); // false, with nothing changed, when the file ends first
    // The next 64 bytes of the entry; with fewer left, identity, and nothing consumed.
    void LoadC(FXPackage* pck, FXPackageData* d);

    float m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

private:
    void SetRotation(float degrees, int i, int j);
};

static_assert(sizeof(FXMatrix) == 64, "the record of a matrix is the matrix");
