// The OpenGL device: the one concrete environment.
#pragma once

#include "render/render_environment.h"

#include <atomic>
#include <cstdint>

// Binds OpenGL to a window, which stays its maker's, and owns the context. Draws in immediate mode with the
// fixed function pipeline into the cube -1..1 x -1..1 x -2..2; a larger z lies farther away. All drawing
// operations need the context current on the calling thread (SetAct). Without a context (rc is null) there is
// no loop to draw, and the texture operations do nothing: a show is built and taken down all the same.
class FXGL : public FXEnv {
public:
    FXGL() = default;
    ~FXGL() override { FXGL::Destroy(); }

    // False when there is no window, no pixel format or no context, and also, with the context in use all the
    // same, when the driver cannot clamp textures to their edge. Where there is no context, the platform's
    // last error says why.
    bool CreateChild(void* window) override;
    bool CanDraw() const override { return rc != nullptr; }
    void Destroy() override;
    void ClrParams() override;
    void SetAct(bool on) override;
    bool RenderStart() override { return true; }
    void RenderEnd() override;

    void SetClrColor(const float* rgba) override;
    void Clrscr(bool color, bool depth, bool stencil) override;
    // Takes the window out of its parent to cover the screen, and puts it back. Locks the global environment
    // and makes its context current meanwhile.
    void Enlarge(bool on) override;

    void UpdateLights() override; // positions are turned by the matrix in force
    void EnableLights(bool on) override;
    void EnableLight(bool on, FXLight* light) override; // by the number that UpdateLights gave it last
    void DisableAllLights() override;
    void SetAmbient(const float* rgba) override;

    void ApplyMatrix(const FXMatrix* m) override;
    void MultiplyMatrix(const FXMatrix* m) override;
    void ApplyMatrixIdentity() override;
    void EnableDepthTest(bool on) override;
    void EnableDepthWrite(bool on) override;
    void EnableCullface(bool front, bool back) override; // both: back faces only

    void ApplyMaterial(FXMaterial* m) override;
    void ApplyMaterial2(FXMaterial* m) override;
    bool PrepareTexture(FXMaterial* m) override;
    bool FastPrepareTexture(FXMaterial* m, FXPixmap* p) override;
    bool PrepareCubeTexture(FXMaterial*, FXPixmap*, FXPixmap*, FXPixmap*, FXPixmap*, FXPixmap*,
                            FXPixmap*) override {
        return false;
    }
    void UnprepareTexture(FXMaterial* m) override;
    bool PrepareMesh(FXMesh*) override { return true; } // meshes are sent anew for every frame
    void UnprepareMesh(FXMesh*) override {}
    // Sends the mesh's triangles with its material. A mesh with a second one is drawn with two layers of
    // texture, and not at all where the driver has no multitexture.
    void RenderMesh(FXMesh* mesh) override;

    // The window's client area has this size now, in pixels. From any thread: taken over when the context is
    // made current next. A size without area, as of a minimised window, is passed over.
    void Resize(int w, int h);

    // What the driver offers; traces it. Needs the context current. True when it can clamp to the edge.
    bool InitExtensions();
    // Is the name, with or without what stands before its "GL_", in the driver's list?
    static bool TestExtensionString(const char* extensions, const char* name);
    // Does the driver suffice for the show? With showMessage, a message box says when it does not.
    bool TestGL(bool showMessage);

    HWND glWindow = nullptr;
    HWND savedParent = nullptr; // while enlarged
    RECT savedRect = {};
    HDC dc = nullptr;
    HGLRC rc = nullptr; // null: nothing can be drawn
    float clearColor[4] = {0, 0, 0, 0};
    bool hasBgra = false;
    bool hasSeparateSpecular = false;
    bool hasEdgeClamp = false;
    bool hasMultitexture = false;
    bool hasCubeMap = false;

private:
    bool TryContext();
    void ReadSize();
    void PlaceWindow(int x, int y, int w, int h);
    void ApplyNewSize();

    bool hasVersion_ = true;                 // the driver tells it; GLU reads it for mipmaps without looking
    bool isLost_ = false;                    // the context could not be made current last: the window is gone
    std::atomic<std::uint64_t> newSize_ = 0; // width << 32 | height; 0: nothing new
};

// Locks an environment and makes its device current for as long as it lives: for code outside the loop.
// Without an environment it does nothing.
class FXGRAutoAct {
public:
    explicit FXGRAutoAct(PEnv* env) : env_(env) {
        if (env_ == nullptr)
            return;
        env_->Lock(true);
        env_->SetAct(true);
    }
    ~FXGRAutoAct() {
        if (env_ == nullptr)
            return;
        env_->SetAct(false);
        env_->Lock(false);
    }
    FXGRAutoAct(const FXGRAutoAct&) = delete;
    FXGRAutoAct& operator=(const FXGRAutoAct&) = delete;

private:
    PEnv* env_;
};
