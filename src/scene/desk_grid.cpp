#include "scene/desk_grid.h"

#include "image/material.h"
#include "render/environment.h"
#include "render/vectors.h"

#include <algorithm>
#include <climits>
#include <cstdint>

// Row by row: operation(vertex, u, v).
template <class Operation> void FXDesk::ForEachVertex(Operation operation) {
    if (mesh.vertexCount == 0)
        return;
    tagFXVertex* vertex = mesh.vertices;
    for (int j = 0; j <= rows; ++j)
        for (int i = 0; i <= cols; ++i)
            operation(*vertex++, static_cast<float>(i) / static_cast<float>(cols),
                      static_cast<float>(j) / static_cast<float>(rows));
}

void FXDesk::Create(int newCols, int newRows) {
    if (newCols == cols && newRows == rows)
        return;
    const std::int64_t cells = std::int64_t{newCols} * newRows;
    if (newCols < 1 || newRows < 1 || cells > INT_MAX / 6 ||
        !mesh.Realloc((newCols + 1) * (newRows + 1), 6 * static_cast<int>(cells)))
        return FXDesk::Destroy();
    cols = newCols;
    rows = newRows;
    std::fill_n(mesh.vertices, mesh.vertexCount, tagFXVertex{});
    int* index = mesh.indices;
    for (int j = 0; j < rows; ++j)
        for (int i = 0; i < cols; ++i) {
            const int p = j * (cols + 1) + i; // top left
            const int q = p + cols + 1;       // bottom left
            for (const int corner : {p, q, p + 1, q, q + 1, p + 1})
                *index++ = corner;
        }
    UpdatePos(true, true);
    UpdateCol();
    UpdateTex();
}

void FXDesk::Destroy() {
    cols = rows = 0;
    mesh.Destroy();
}

void FXDesk::SetMaterial(FXMaterial* m) {
    mesh.material = m;
    UpdateTex();
}

void FXDesk::SetMaterial1(FXMaterial* m) {
    mesh.material = m;
    mesh.ResizeTexCoords();
}

void FXDesk::OnRender(PEnv* env, double) {
    env->RenderMesh(&mesh);
}

void FXDesk::Layout(bool positions, bool normals, float a, float b, bool fromTopLeft) {
    ForEachVertex([&](tagFXVertex& vertex, float u, float v) {
        if (positions) {
            vertex.pos[0] = 2 * u - 1 + (fromTopLeft ? 1 - v : v) * a;
            vertex.pos[1] = 1 - 2 * v + (fromTopLeft ? 1 - u : u) * b;
            vertex.pos[2] = 0;
        }
        if (normals) {
            vertex.normal[0] = vertex.normal[1] = 0;
            vertex.normal[2] = -1;
        }
    });
}

void FXDesk::UpdatePos(bool positions, bool normals) {
    Layout(positions, normals, 0, 0, true);
}

void FXDesk::UpdatePosSkew(bool positions, bool normals, float a, float b) {
    Layout(positions, normals, a, b, true);
}

void FXDesk::UpdatePosSkew1(bool positions, bool normals, float a, float b) {
    Layout(positions, normals, a, b, false);
}

void FXDesk::UpdatePosPerspective(float p) {
    ForEachVertex([&](tagFXVertex& vertex, float u, float v) {
        vertex.pos[0] = (2 * u - 1) * (v * p + 1);
        vertex.pos[1] = 1 - 2 * v;
        vertex.pos[2] = 0;
    });
}

void FXDesk::UpdateCol() {
    const float white[4] = {1, 1, 1, 1};
    UpdateColCol(white);
}

void FXDesk::UpdateColCol(const float* rgba) {
    mesh.SetVerticesCol(rgba);
}

void FXDesk::UpdateCol_LT_RB(const float* lt, const float* rb) {
    ForEachVertex(
        [&](tagFXVertex& vertex, float u, float v) { fxVec4fCombineP(vertex.color, lt, rb, u * v); });
}

void FXDesk::LayPicture(float l, float t, float r, float b, float su, float sv) {
    ForEachVertex([&](tagFXVertex& vertex, float u, float v) {
        const float down = t + (b - t) * v;
        vertex.tex[0] = (l + (r - l) * u) * su;
        vertex.tex[1] = (mesh.flipV ? 1 - down : down) * sv;
    });
}

void FXDesk::UpdateTex() {
    UpdateTexRc(0, 0, 1, 1);
}

void FXDesk::UpdateTex1() {
    LayPicture(0, 0, 1, 1, 1, 1);
}

void FXDesk::UpdateTexRc(float l, float t, float r, float b) {
    const FXMaterial* m = mesh.material;
    LayPicture(l, t, r, b, m ? m->extentU : 0, m ? m->extentV : 0);
}

tagFXVertex* FXDesk::CornerAt(int corner) {
    constexpr int kVertices[] = {0, 1, 3, 2};
    return cols == 1 && rows == 1 && corner >= 1 && corner <= 4 ? &mesh.vertices[kVertices[corner - 1]]
                                                                : nullptr;
}

void FXDesk::SetVertexPos(int corner, float x, float y) {
    if (tagFXVertex* vertex = CornerAt(corner)) {
        vertex->pos[0] = x;
        vertex->pos[1] = y;
    }
}

void FXDesk::SetTexelPos(int corner, float u, float v) {
    if (tagFXVertex* vertex = CornerAt(corner)) {
        vertex->tex[0] = u;
        vertex->tex[1] = v;
    }
}

void FXDesk::SetVertexPos1(int corner, int px, int py, int w, int h) {
    if (w > 0 && h > 0)
        SetVertexPos(corner, 2 * static_cast<float>(px) / static_cast<float>(w) - 1,
                     1 - 2 * static_cast<float>(py) / static_cast<float>(h));
}

void FXDesk::SetTexelPos1(int corner, int px, int py, int w, int h) {
    if (w > 0 && h > 0)
        SetTexelPos(corner, static_cast<float>(px) / static_cast<float>(w),
                    static_cast<float>(py) / static_cast<float>(h));
}
