// Meshes of a few numbers.
#pragma once

#include "geometry/mesh.h"
#include "geometry/model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

struct TestVertex {
    std::array<float, 3> pos;
    std::array<float, 3> normal = {};
    std::array<float, 2> tex = {};

    bool operator==(const TestVertex&) const = default;
};

inline void MakeMesh(FXMesh* mesh, const std::vector<TestVertex>& vertices, const std::vector<int>& indices) {
    ASSERT_TRUE(mesh->Realloc(static_cast<int>(vertices.size()), static_cast<int>(indices.size())));
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        tagFXVertex& v = mesh->vertices[i] = {};
        std::ranges::copy(vertices[i].pos, v.pos);
        std::ranges::copy(vertices[i].normal, v.normal);
        std::ranges::copy(vertices[i].tex, v.tex);
    }
    std::ranges::copy(indices, mesh->indices);
}

inline FXMesh& AddMesh(FXModel* model, const std::vector<TestVertex>& vertices,
                       const std::vector<int>& indices = {}) {
    model->meshes.Push(new FXMesh);
    MakeMesh(model->meshes.Last(), vertices, indices);
    return *model->meshes.Last();
}

inline TestVertex VertexOf(const FXMesh& mesh, int i) {
    const tagFXVertex& v = mesh.vertices[i];
    TestVertex vertex;
    std::copy_n(v.pos, 3, vertex.pos.begin());
    std::copy_n(v.normal, 3, vertex.normal.begin());
    std::copy_n(v.tex, 2, vertex.tex.begin());
    return vertex;
}

// What is drawn: the vertex of every corner.
inline std::vector<TestVertex> CornersOf(const FXMesh& mesh) {
    std::vector<TestVertex> corners;
    for (int i = 0; i < mesh.indexCount; ++i)
        corners.push_back(VertexOf(mesh, mesh.indices[i]));
    return corners;
}
