// What the environment keeps and does whatever the graphics interface is: the loop, the frame lock, the
// lights, the shared material libraries.
#pragma once

#include "base/owner_array.h"
#include "image/material.h"
#include "image/material_library.h"
#include "render/environment.h"
#include "win32/win32.h"

#include <atomic>

struct FXMutex;
struct FXThread;

// Owns the loop's thread and the material libraries loaded through it; lights, added materials and the loop's
// target are their owners'. Everything but the loop's flags is set up and taken down while no loop runs.
class FXEnv : public PEnv {
public:
    static constexpr int kLights = 8;

    FXEnv();
    ~FXEnv() override;
    FXEnv(const FXEnv&) = delete;
    FXEnv& operator=(const FXEnv&) = delete;

    void Destroy() override;

    // The target's OnRender is called on a thread of its own, from a tenth of a second later, as often as a
    // millisecond's pause between frames allows, with the device current and the frame locked. A loop that
    // runs already changes its target. False when there is no thread to be had, or nothing to draw with.
    bool StartLoop(PRender* target) override;
    // Whether a loop would have anything to draw with; none is started otherwise.
    virtual bool CanDraw() const { return true; }
    // Returns when the frame that is being drawn is done. A loop that does not end in time is ended by force.
    void StopLoop(double timeout) override;
    void Lock(bool on) override;
    void RenderLoop() override;

    bool RegisterLight(FXLight* light) override;
    void UnregisterLight(FXLight* light) override;

    FXMaterial* GetDefaultMaterial() override { return &defaultMaterial; }
    FXMatlib* GetDefaultMatlib() override { return &defaultMatlib; }
    // A library that cannot be loaded is kept all the same, empty: it is not tried again. Null when there is
    // no memory for it.
    FXMatlib* LoadMatlib(const char* name) override;
    FXMatlib* LoadMatlibC(FXPackage* pck, const char* name) override;
    FXMatlib* LoadMatlibCN(FXPackage* pck, int id) override;
    void RemoveMatlib(FXMatlib* library) override;
    void AddMaterial(FXMaterial* material) override;
    void ApplyDefaultMaterial() override;
    void EnableTestingMaterial(bool on) override { testingMaterial = on; }

    bool enlarged = false;
    std::atomic<PRender*> render = nullptr; // the loop's target
    std::atomic<bool> lockEachFrame = true;
    FXLight* lights[kLights] = {};
    FXMaterial defaultMaterial;
    FXMatlib defaultMatlib; // asked first by every library loaded here
    FXOwnerArray<FXMatlib> matlibs;
    bool testingMaterial = false;
    // The device's state as it was last set.
    bool lightsOn = false;
    bool textureUnit0Bound = false;
    bool textureUnit1Bound = false;
    bool depthWrite = true;
    bool depthTest = true;
    bool cullFront = false;
    bool cullBack = false;
    FXMutex* mutex = nullptr;
    std::atomic<bool> running = false;
    std::atomic<bool> stop = false;
    FXThread* thread = nullptr;
    HWND envWindow = nullptr;
    bool npot = false; // textures of any size

private:
    FXMatlib* FindShared(const char* name) const;
    FXMatlib* NewShared(const char* name);
};
