// Bounding boxes, fitting and mirroring.
#include "geometry/mesh.h"

#include <algorithm>

namespace {

// What brings an axis' minimum and maximum to a distance of 2; a flat axis is only centred.
float localStretch(const float* range) {
    const float extent = range[1] - range[0];
    return extent == 0.0f ? 1.0f : 2.0f / extent;
}

} // namespace

void FXMesh::FindMultiMaxims(bool* first, float* box) const {
    for (int v = 0; v < vertexCount; ++v) {
        for (int axis = 0; axis < 3; ++axis) {
            const float at = vertices[v].pos[axis];
            box[2 * axis] = *first ? at : std::min(box[2 * axis], at);
            box[2 * axis + 1] = *first ? at : std::max(box[2 * axis + 1], at);
        }
        *first = false;
    }
}

void FXMesh::FindMaxims(float* box) const {
    std::fill_n(box, 6, 0.0f);
    bool first = true;
    FindMultiMaxims(&first, box);
}

void FXMesh::Unitize() {
    float box[6];
    FindMaxims(box);
    UnitizeMaxims(box);
}

void FXMesh::Fit(const float* box, const float* scale) {
    for (int axis = 0; axis < 3; ++axis) {
        const float centre = (box[2 * axis] + box[2 * axis + 1]) / 2.0f;
        for (int v = 0; v < vertexCount; ++v)
            vertices[v].pos[axis] = (vertices[v].pos[axis] - centre) * scale[axis];
    }
}

void FXMesh::UnitizeMaxims(const float* box) {
    const float largest = std::max({box[1] - box[0], box[3] - box[2], box[5] - box[4]});
    const float fit = largest > 0 ? 2.0f / largest : 1.0f; // a point is only centred
    const float scale[3] = {fit, fit, fit};
    Fit(box, scale);
}

void FXMesh::UnitizeMaximsStretch(const float* box) {
    const float scale[3] = {localStretch(box), localStretch(box + 2), localStretch(box + 4)};
    Fit(box, scale);
}

void FXMesh::UnitizeMaximsStretch1(const float* box) {
    const float scale[3] = {localStretch(box), localStretch(box + 2), 1};
    Fit(box, scale);
}

void FXMesh::FlipHoriz() {
    for (int v = 0; v < vertexCount; ++v)
        vertices[v].pos[0] = -vertices[v].pos[0];
}

void FXMesh::Transform(int ix, int iy, int iz, bool negX, bool negY, bool negZ) {
    const int from[3] = {ix, iy, iz};
    const bool negate[3] = {negX, negY, negZ};
    if (std::any_of(from, from + 3, [](int i) { return i < 0 || i > 2; }))
        return;
    for (int v = 0; v < vertexCount; ++v)
        for (float* vector : {vertices[v].pos, vertices[v].normal}) {
            const float old[3] = {vector[0], vector[1], vector[2]};
            for (int axis = 0; axis < 3; ++axis)
                vector[axis] = negate[axis] ? -old[from[axis]] : old[from[axis]];
        }
}

int FXMesh::TextToIndi(const char* s) {
    return s != nullptr && *s >= 'x' && *s <= 'z' ? *s - 'x' : -1;
}
