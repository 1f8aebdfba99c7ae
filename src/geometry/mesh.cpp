#include "geometry/mesh.h"

#include "render/environment.h"

#include <algorithm>
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
