// The contract between everything that draws and the device that draws it. Materials, libraries and meshes
// are known here by name only, so that they can be built on this interface.
//
// Space. What is drawn lies in the cube -1..1 (x, to the right) by -1..1 (y, upwards) by -2..2 (z, away from
// the viewer), seen along z without perspective. It fills the window, whatever the window's proportions.
// Angles are degrees, times are seconds. A colour is four floats, red, green, blue and alpha, 0..1 each.
//
// Threads. From StartLoop until StopLoop has returned, only the loop's thread uses the environment and what
// draws through it, from within OnRender; others may call StopLoop and Lock. Before and after, only the
// thread that builds the show and takes it down does. It makes the device current (SetAct) before it calls
// what needs that, and releases it before the loop starts.
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
    // The device is current. time: on the clock of fxGetTime, read just before the frame.
    virtual void OnRender(PEnv* env, double time) = 0;

protected:
    ~PRender() = default; // nobody owns a drawable through this interface
};

// One environment draws into one window. It owns the libraries loaded through it, and nothing else that it is
// given; pointers must not be null but where that is said. Nothing reports a failure of the device itself.
class PEnv {
public:
    virtual ~PEnv() = default;

    // Binds the device to a window (a HWND), after a Destroy. False when there is no device for it, or one
    // without what the show needs; what works is kept in use.
    virtual bool CreateChild(void* window) = 0;
    // Stops the loop, waiting half a second, and releases the libraries, the default library's materials and
    // the device. The window stays.
    virtual void Destroy() = 0;
    virtual void ClrParams() = 0; // the state that every drawing relies on; needs the device current
    // Makes the device current on the calling thread, or releases it. It is current on one at a time.
    virtual void SetAct(bool on) = 0;
    virtual bool RenderStart() = 0; // before a frame; false: it is not to be drawn
    virtual void RenderEnd() = 0;   // shows what has been drawn since the last time
    // Calls the target's OnRender on a thread of its own, again and again; while a loop runs, only the target
    // changes. False, with no loop, when there is no device or no thread.
    virtual bool StartLoop(PRender* target) = 0;
    // Returns when the frame being drawn is done, or after `timeout` seconds: the thread is ended by force
    // then. 100000 and more wait without limit. Nothing when no loop runs.
    virtual void StopLoop(double timeout) = 0;
    // Takes, or gives back, the lock that the loop holds during every frame. Not for OnRender.
    virtual void Lock(bool on) = 0;

    // All from here to Enlarge need the device current.
    virtual void SetClrColor(const float* rgba) = 0; // of Clrscr; transparent black to begin with
    virtual void Clrscr(bool color, bool depth, bool stencil) = 0;
    // Takes the window out of its parent to cover the screen, or puts it back; this one makes the device
    // current itself.
    virtual void Enlarge(bool on) = 0;

    // A light takes the first of eight places that is empty or its own; false when there is none. The light
    // stays the caller's. Unregistering one that has no place changes nothing.
    virtual bool RegisterLight(FXLight* light) = 0;
    virtual void UnregisterLight(FXLight* light) = 0;
    // Gives the registered lights to the device with their present values, positions turned by the matrix in
    // force, and switches on those that are not disabled. Needs the device current.
    virtual void UpdateLights() = 0;

    virtual FXMaterial* GetDefaultMaterial() = 0; // white; never null
    virtual FXMatlib* GetDefaultMatlib() = 0;     // never null
    // A library, shared by all that ask for the name, or loaded and its pictures uploaded: from an MTL file,
    // or the package entry whose number the name is. The caller gives up its reference with
    // FXMatlib::Release. One that cannot be loaded is empty, and is not tried again; null when there is no
    // memory. Needs the device current.
    virtual FXMatlib* LoadMatlib(const char* name) = 0;
    virtual FXMatlib* LoadMatlibC(FXPackage* pck, const char* name) = 0;
    virtual FXMatlib* LoadMatlibCN(FXPackage* pck, int id) = 0;
    // Forgets a library, which becomes the caller's; nothing for one that is not known. For
    // FXMatlib::Release.
    virtual void RemoveMatlib(FXMatlib* library) = 0;
    virtual void AddMaterial(FXMaterial* material) = 0; // to the default library; stays the caller's

    // All from here on need the device current, but for EnableTestingMaterial. What they set stays until the
    // next such call, over the end of a frame too.
    virtual void ApplyDefaultMaterial() = 0;
    virtual void ApplyMaterial(FXMaterial* material) = 0;  // its colours, and its texture if it has one
    virtual void ApplyMaterial2(FXMaterial* material) = 0; // the second layer's texture; null: none

    // The model-view matrix: replaced, multiplied by one that then acts on points first, or none.
    virtual void ApplyMatrix(const FXMatrix* matrix) = 0;
    virtual void MultiplyMatrix(const FXMatrix* matrix) = 0;
    virtual void ApplyMatrixIdentity() = 0;
    virtual void EnableLights(bool on) = 0; // lighting as a whole
    // One light: its `disabled`, and the device's light if UpdateLights has given it one.
    virtual void EnableLight(bool on, FXLight* light) = 0;
    virtual void DisableAllLights() = 0;
    virtual void SetAmbient(const float* rgba) = 0; // of the scene as a whole; black to begin with
    virtual void EnableDepthTest(bool on) = 0;
    virtual void EnableDepthWrite(bool on) = 0;
    virtual void EnableCullface(bool front, bool back) = 0; // faces not drawn; both: the back ones only
    virtual void EnableTestingMaterial(bool on) = 0;        // while on, materials change nothing

    // Uploads the material's picture, which must have pixels, into its texture. False for what the device
    // cannot have.
    virtual bool PrepareTexture(FXMaterial* material) = 0;
    // The same with another picture, without mipmaps; the material gets its extents and is prepared.
    virtual bool FastPrepareTexture(FXMaterial* material, FXPixmap* picture) = 0;
    virtual bool PrepareCubeTexture(FXMaterial* material, FXPixmap* px, FXPixmap* nx, FXPixmap* py,
                                    FXPixmap* ny, FXPixmap* pz, FXPixmap* nz) = 0;
    virtual void UnprepareTexture(FXMaterial* material) = 0; // deletes the texture; nothing without one
    virtual bool PrepareMesh(FXMesh* mesh) = 0;              // may upload it
    virtual void UnprepareMesh(FXMesh* mesh) = 0;            // its vertices are about to go
    // Draws the triangles with the mesh's material, or the default one. Nothing for a mesh that is disabled
    // or has no triangles, nor for one with a second mesh that the device, or that mesh's size, does not
    // allow.
    virtual void RenderMesh(FXMesh* mesh) = 0;
    virtual void RenderLoop() = 0; // body of the loop's thread

    // What effects read; the device keeps them up to date.
    int width = 0; // of the drawing window, in pixels
    int height = 0;
    int screenWidth = 0; // of the primary monitor, in pixels
    int screenHeight = 0;
    FXMatrix matrix; // the model-view matrix in force
};

// The process-wide environment, null until fxSetEnv; it is never reset. Materials and meshes that go without
// one skip their call; whatever loads or draws needs it.
inline PEnv* fxglobalEnv = nullptr;
inline void fxSetEnv(PEnv* env) {
    fxglobalEnv = env;
}
