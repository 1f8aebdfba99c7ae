// The contract between everything that draws and the device that draws it. Materials, libraries and meshes
// are known here by name only, so that they can be built on this interface.
#pragma once

#include "render/matrix.h"

class FXLight;
class FXMaterial;
class FXMatlib;
class FXMesh;
class FXPackage;
class FXPixmap;
class PEnv;

// What the render loop, or another drawable, draws.
class PRender {
public:
    // time: seconds on the clock of fxGetTime, read just before the frame.
    virtual void OnRender(PEnv* env, double time) = 0;

protected:
    ~PRender() = default; // nobody owns a drawable through this interface
};

// One environment draws into one window. Colours are four floats, red, green, blue, alpha.
class PEnv {
public:
    virtual ~PEnv() = default;

    // Binds the device to a window (of the platform's own kind). False when there is no device for it.
    virtual bool CreateChild(void* window) = 0;
    virtual void Destroy() = 0;
    virtual void ClrParams() = 0;     // the fixed state that every effect relies on
    virtual void SetAct(bool on) = 0; // makes the device current on the calling thread, or releases it
    virtual bool RenderStart() = 0;
    virtual void RenderEnd() = 0; // presents the frame
    virtual bool StartLoop(PRender* target) = 0;
    virtual void StopLoop(double timeout) = 0; // seconds; 100000 and more wait without limit
    virtual void Lock(bool on) = 0;

    virtual void SetClrColor(const float* rgba) = 0;
    virtual void Clrscr(bool color, bool depth, bool stencil) = 0;
    virtual void Enlarge(bool on) = 0;

    virtual bool RegisterLight(FXLight* light) = 0; // false when all eight places are taken
    virtual void UnregisterLight(FXLight* light) = 0;
    virtual void UpdateLights() = 0;

    virtual FXMaterial* GetDefaultMaterial() = 0;
    virtual FXMatlib* GetDefaultMatlib() = 0;
    // Shared libraries, found by name or loaded; each holder releases its reference.
    virtual FXMatlib* LoadMatlib(const char* name) = 0;
    virtual FXMatlib* LoadMatlibC(FXPackage* pck, const char* name) = 0;
    virtual FXMatlib* LoadMatlibCN(FXPackage* pck, int id) = 0;
    virtual void RemoveMatlib(FXMatlib* library) = 0;
    virtual void AddMaterial(FXMaterial* material) = 0; // to the default library; stays the caller's
    virtual void ApplyDefaultMaterial() = 0;
    virtual void ApplyMaterial(FXMaterial* material) = 0;
    virtual void ApplyMaterial2(FXMaterial* material) = 0; // second texture layer; may be null

    virtual void ApplyMatrix(const FXMatrix* matrix) = 0;
    virtual void MultiplyMatrix(const FXMatrix* matrix) = 0; // acts before what is applied already
    virtual void ApplyMatrixIdentity() = 0;
    virtual void EnableLights(bool on) = 0;
    virtual void EnableLight(bool on, FXLight* light) = 0;
    virtual void DisableAllLights() = 0;
    virtual void SetAmbient(const float* rgba) = 0;
    virtual void EnableDepthTest(bool on) = 0;
    virtual void EnableDepthWrite(bool on) = 0;
    virtual void EnableCullface(bool front, bool back) = 0;
    virtual void EnableTestingMaterial(bool on) = 0; // while on, materials change nothing

    virtual bool PrepareTexture(FXMaterial* material) = 0;
    virtual bool FastPrepareTexture(FXMaterial* material, FXPixmap* picture) = 0;
    virtual bool PrepareCubeTexture(FXMaterial* material, FXPixmap* px, FXPixmap* nx, FXPixmap* py,
                                    FXPixmap* ny, FXPixmap* pz, FXPixmap* nz) = 0;
    virtual void UnprepareTexture(FXMaterial* material) = 0;
    virtual bool PrepareMesh(FXMesh* mesh) = 0;
    virtual void UnprepareMesh(FXMesh* mesh) = 0;
    virtual void RenderMesh(FXMesh* mesh) = 0;
    virtual void RenderLoop() = 0; // body of the loop thread

    // What effects read; the device keeps them up to date.
    int width = 0; // of the drawing window, in pixels
    int height = 0;
    int screenWidth = 0;
    int screenHeight = 0;
    FXMatrix matrix; // the current model-view matrix
};

// The process-wide environment, null until fxSetEnv; it is never reset.
inline PEnv* fxglobalEnv = nullptr;
inline void fxSetEnv(PEnv* env) {
    fxglobalEnv = env;
}
