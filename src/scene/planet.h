// The sun: layers of models at one place, each turning by itself, some pulsing and fading.
#pragma once

#include "base/arrays.h"
#include "base/owner_array.h"
#include "geometry/model.h"
#include "render/environment.h"
#include "render/matrix.h"
#include "scene/phaser.h"

class FXPackage;

// Owns its layers' models; layer i is element i of every list. The layer setters change the layer that was
// added last, and do nothing before the first one or after one that there was no memory for. Layers are added
// before the render loop starts, drawn on its thread; drawing allocates nothing.
class FXPlanet : public PRender {
public:
    static constexpr int kMaxLayers = 10;
    static constexpr int kTransparencyPulse = 0x200;

    FXPlanet();
    ~FXPlanet() { Destroy(); }
    FXPlanet(const FXPlanet&) = delete;
    FXPlanet& operator=(const FXPlanet&) = delete;

    // A model that does not load makes a layer that draws nothing. An eleventh layer, or one that there is no
    // memory for, is not added.
    void AddLayerCN(FXPackage* pck, int id);
    void AddLayer(const char* path); // the same from a file
    // mode: 0 and others none, 1 about x, 2 about y, 3 about x, then y. d1, d2: seconds per turn, of the
    // first and of the second axis. Neighbouring layers turn different ways.
    void SetLayerRot(int mode, double d1, double d2);
    // Within `seconds`, grows to 1.7 times its length along an axis (0 none, 1 x, 2 y, 3 z) and shrinks to a
    // tenth across it, and begins again. The seconds are shared with SetLayerTransp: the later call's count.
    void SetLayerScale(int axis, double seconds);
    // With kTransparencyPulse, alpha goes from 0 to layerColor's and back within `seconds`; with 0 it stays.
    void SetLayerTransp(int bit, double seconds);
    void SetLayerFluid(bool fluidLayer); // drawn without writing depth
    void Destroy();                      // the phasers stay as they are
    // On top of the environment's matrix; leaves the last layer's matrix and depth writing in force.
    void OnRender(PEnv* env, double time) override;

    bool useColMat = false;             // colours go into materials instead of vertices
    float layerColor[4] = {1, 1, 1, 1}; // of a layer when it is added; of one that fades, always
    int layerCount = 0;
    int curLayer = -1; // the one that the setters change; -1: none
    FXOwnerArray<FXModel> models;
    FXArray<int> rotModes;
    FXArray<int> pulseModes; // bits 0 and 1: the axis; kTransparencyPulse
    FXArray<int> fluid;      // 1: drawn without writing depth
    FXPhaser rot1[kMaxLayers];
    FXPhaser rot2[kMaxLayers];
    FXPhaser pulse[kMaxLayers];
    int matFirst = 1000; // layers matFirst..matLast get layerMatrix as well
    int matLast = 1000;
    FXMatrix layerMatrix;

private:
    template <class Load> void Add(Load load);
    void Turn(PEnv* env, int layer, double time);
    void Pulse(PEnv* env, int layer, double time);
    void Color(FXModel* model, const float* rgba) const;
};
