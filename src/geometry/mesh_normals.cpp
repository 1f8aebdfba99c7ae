#include "geometry/mesh.h"

#include <cmath>

namespace {

float localLength(const float* v) {
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

void localCross(float* out, const float* a, const float* b) {
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
}

} // namespace

void FXMesh::ComputeNormalsZ(bool onlyTouched, float zScale) {
    if (indexCount < 3 || vertexCount < 1)
        return;
    for (int v = 0; v < vertexCount; ++v)
        for (float& component : vertices[v].normalSum)
            component = 0;
    for (int i = 0; i + 2 < indexCount; i += 3) {
        tagFXVertex* corner[3];
        for (int k = 0; k < 3; ++k)
            corner[k] = &vertices[indices[i + k]];
        if (onlyTouched && !corner[0]->touched && !corner[1]->touched && !corner[2]->touched)
            continue;
        float a[3];
        float b[3];
        for (int axis = 0; axis < 3; ++axis) {
            a[axis] = corner[0]->pos[axis] - corner[1]->pos[axis];
            b[axis] = corner[0]->pos[axis] - corner[2]->pos[axis];
        }
        a[2] *= zScale;
        b[2] *= zScale;
        float normal[3];
        localCross(normal, b, a);
        const float length = localLength(normal);
        if (length == 0)
            continue;
        for (tagFXVertex* vertex : corner) {
            for (int axis = 0; axis < 3; ++axis)
                vertex->normalSum[axis] += normal[axis] / length;
            vertex->touched = 1;
        }
    }
    Normalize(onlyTouched);
}

void FXMesh::Normalize(bool onlyTouched) {
    for (int v = 0; v < vertexCount; ++v) {
        tagFXVertex& vertex = vertices[v];
        const float length = localLength(vertex.normalSum);
        if ((onlyTouched && !vertex.touched) || length == 0)
            continue;
        for (int axis = 0; axis < 3; ++axis)
            vertex.normal[axis] = vertex.normalSum[axis] * (1.0f / length);
    }
}
