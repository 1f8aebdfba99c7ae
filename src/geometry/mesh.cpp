#include "geometry/mesh.h"

#include "image/canvas.h"
#include "image/material.h"
#include "render/environment.h"
#include "render/vectors.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

// A block of at least n elements, not keeping what was in the old one.
template <class T> bool localRoom(T*& block, int& capacity, int n) {
    if (capacity >= n)
        return true;
    std::free(block);
    block = static_cast<T*>(fxMalloc(static_cast<std::size_t>(n) * sizeof(T)));
    capacity = block != nullptr ? n : 0;
    return block != nullptr;
}

// What brings an axis' minimum and maximum to a distance of 2; a flat axis is only centred.
float localStretch(const float* range) {
    const float extent = range[1] - range[0];
    return extent == 0.0f ? 1.0f : 2.0f / extent;
}

void localExtend(tagFXVertex& vertex, float d) {
    for (int axis = 0; axis < 3; ++axis)
        vertex.pos[axis] += d * vertex.normal[axis];
    vertex.touched = 1;
}

void localSample(const FXCanvas* canvas, const tagFXVertex& vertex, bool flipV, float* color) {
    canvas->GetColor(vertex.tex[0], flipV ? 1 - vertex.tex[1] : vertex.tex[1], color);
}

float localLength(const float* v) {
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

void localCross(float* out, const float* a, const float* b) {
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
}

} // namespace

void FXMesh::Destroy() {
    if (fxglobalEnv != nullptr && vertices != nullptr)
        fxglobalEnv->UnprepareMesh(this);
    std::free(vertices);
    std::free(indices);
    vertices = nullptr;
    indices = nullptr;
    vertexCapacity = vertexCount = indexCapacity = indexCount = 0;
}

bool FXMesh::Realloc(int newVertexCount, int newIndexCount) {
    if (newVertexCount < 0 || newIndexCount < 0 || !localRoom(vertices, vertexCapacity, newVertexCount) ||
        !localRoom(indices, indexCapacity, newIndexCount)) {
        vertexCount = indexCount = 0;
        return false;
    }
    vertexCount = newVertexCount;
    indexCount = newIndexCount;
    return true;
}

void FXMesh::CopyMeshI(const FXMesh* src) {
    material = src->material;
    materialName = src->materialName;
    loadedU = src->loadedU;
    loadedV = src->loadedV;
    transparent = src->transparent;
    colorMode = src->colorMode;
    Realloc(src->vertexCount, src->indexCount);
}

void FXMesh::Copy(const FXMesh* src) {
    CopyMeshI(src);
    std::copy_n(src->vertices, vertexCount, vertices);
    std::copy_n(src->indices, indexCount, indices);
}

void FXMesh::SetVerticesCol(const float* rgba) {
    for (int i = 0; i < vertexCount; ++i)
        std::copy_n(rgba, 4, vertices[i].color);
}

// Bounding boxes, fitting and mirroring.

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

// Pictures laid on a mesh as heights and as colours.

void FXMesh::ExtendPositions(float d) {
    for (int v = 0; v < vertexCount; ++v)
        localExtend(vertices[v], d);
}

void FXMesh::ApplyBumpMap(const FXCanvas* canvas, float scale) {
    for (int v = 0; v < vertexCount; ++v) {
        float color[4];
        localSample(canvas, vertices[v], flipV, color);
        const float d = color[2] * scale;
        vertices[v].touched = 0;
        if (d > 0)
            localExtend(vertices[v], d);
    }
}

void FXMesh::ApplyColorMap(const FXCanvas* canvas, const float* rgba) {
    for (int v = 0; v < vertexCount; ++v) {
        float color[4];
        localSample(canvas, vertices[v], flipV, color);
        fxVec4fCombine(vertices[v].color, color, rgba);
    }
}

void FXMesh::ApplyFrontColorMap(const FXCanvas* canvas, const float* rgba) {
    for (int v = 0; v < vertexCount; ++v) {
        float color[4];
        canvas->GetColor((vertices[v].pos[0] + 1) * 0.5f, (1 - vertices[v].pos[1]) * 0.5f, color);
        fxVec4fCombine(vertices[v].color, color, rgba);
    }
}

// Normals.

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

// Texture coordinates.

void FXMesh::ScaleTexCoords(float su, float sv) {
    for (int v = 0; v < vertexCount; ++v) {
        float* tex = vertices[v].tex;
        tex[0] *= su;
        tex[1] = (flipV ? 1 - tex[1] : tex[1]) * sv;
    }
}

void FXMesh::ResizeTexCoords() {
    if (material == nullptr || !(material->extentU > 0 && material->extentV > 0))
        return;
    ScaleTexCoords(loadedU > 0 ? material->extentU / loadedU : material->extentU,
                   loadedV > 0 ? material->extentV / loadedV : material->extentV);
}

void FXMesh::ResizeTexCoords1() {
    if (material != nullptr && material->extentU > 0 && material->extentV > 0)
        ScaleTexCoords(material->extentU, material->extentV);
}

void FXMesh::ComputeFrontTexCoords() {
    for (int v = 0; v < vertexCount; ++v) {
        vertices[v].tex[0] = (vertices[v].pos[0] + 1) * 0.5f;
        vertices[v].tex[1] = (1 - vertices[v].pos[1]) * 0.5f;
    }
}

void FXMesh::CopyTexCoords(const FXMesh* src) {
    for (int v = 0; v < std::min(vertexCount, src->vertexCount); ++v)
        std::copy_n(src->vertices[v].tex, 2, vertices[v].tex);
}
