// A flat picture: a grid of cells that at rest covers the screen exactly.
#pragma once

#include "geometry/mesh.h"
#include "render/environment.h"

// Vertex (i, j), column i from the left and row j from the top, is record j * (cols + 1) + i; it lies at
// u = i / cols, v = j / rows of the picture. Screen space: -1..1 in x and y, +1 at the top. Owns its mesh;
// the material stays the caller's and must outlive its use. A desk without cells draws nothing.
class FXDesk : public PRender {
public:
    FXDesk() = default;
    virtual ~FXDesk() { FXDesk::Destroy(); }
    FXDesk(const FXDesk&) = delete;
    FXDesk& operator=(const FXDesk&) = delete;

    // At rest, white, with the picture over it. Nothing when it has that size already; fewer than one cell in
    // a direction gives a desk without cells.
    void Create(int newCols, int newRows);
    void SetMaterial(FXMaterial* m);
    void SetMaterial1(FXMaterial* m); // rescales the coordinates there are instead of laying the picture anew

    void OnRender(PEnv* env, double time) override;
    virtual void Destroy();
    // Layouts. The normal at rest is (0, 0, -1).
    virtual void UpdatePos(bool positions, bool normals);
    virtual void UpdatePosSkew(bool positions, bool normals, float a, float b);  // more towards the top left
    virtual void UpdatePosSkew1(bool positions, bool normals, float a, float b); // towards the bottom right
    virtual void UpdatePosPerspective(float p); // the bottom edge 1 + p times as wide
    virtual void UpdateCol();                   // white
    virtual void UpdateColCol(const float* rgba);
    virtual void UpdateCol_LT_RB(const float* lt, const float* rb); // rb at the bottom right corner only
    // The whole picture; without a material all coordinates are 0.
    virtual void UpdateTex();
    virtual void UpdateTex1(); // the whole texture, whatever the picture fills of it
    virtual void UpdateTexRc(float l, float t, float r, float b); // a part of the picture, 0..1 each

    // One corner of a desk of one cell, 1 to 4 clockwise from the top left; of other desks, or corners,
    // nothing. On the screen, of the texture, or in pixels of a screen or texture of w x h (both above 0).
    void SetVertexPos(int corner, float x, float y);
    void SetTexelPos(int corner, float u, float v);
    void SetVertexPos1(int corner, int px, int py, int w, int h);
    void SetTexelPos1(int corner, int px, int py, int w, int h);

    int cols = 0;
    int rows = 0;
    FXMesh mesh;

private:
    template <class Operation> void ForEachVertex(Operation operation);
    tagFXVertex* CornerAt(int corner);
    void Layout(bool positions, bool normals, float a, float b, bool fromTopLeft);
    void LayPicture(float l, float t, float r, float b, float su, float sv);
};
