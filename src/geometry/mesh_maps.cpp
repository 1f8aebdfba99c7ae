// Pictures laid on a mesh as heights and as colours.
#include "geometry/mesh.h"
#include "image/canvas.h"
#include "render/vectors.h"

namespace {

void localExtend(tagFXVertex& vertex, float d) {
    for (int axis = 0; axis < 3; ++axis)
        vertex.pos[axis] += d * vertex.normal[axis];
    vertex.touched = 1;
}

void localSample(const FXCanvas* canvas, const tagFXVertex& vertex, bool flipV, float* color) {
    canvas->GetColor(vertex.tex[0], flipV ? 1 - vertex.tex[1] : vertex.tex[1], color);
}

} // namespace

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
