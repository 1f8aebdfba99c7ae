#include "geometry/mesh.h"
#include "image/material.h"

#include <algorithm>

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
