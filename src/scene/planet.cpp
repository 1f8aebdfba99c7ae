#include "scene/planet.h"

#include "render/environment.h"

#include <algorithm>

namespace {

constexpr double kFirstTurn = 10;
constexpr double kSecondTurn = 12;
constexpr double kPulse = 4;
constexpr int kAxisBits = 3;
constexpr float kStretch = 0.7f;
constexpr float kSquash = 0.9f;

void localRotate(PEnv* env, bool aboutX, float degrees) {
    FXMatrix m;
    if (aboutX)
        m.SetRotateX(degrees);
    else
        m.SetRotateY(degrees);
    env->MultiplyMatrix(&m);
}

} // namespace

FXPlanet::FXPlanet() {
    for (int i = 0; i < kMaxLayers; ++i) {
        rot1[i].SetPlain(kFirstTurn, true);
        rot2[i].SetPlain(kSecondTurn, true);
        pulse[i].SetPlain(kPulse, true);
    }
}

template <class Load> void FXPlanet::Add(Load load) {
    if (layerCount >= kMaxLayers)
        return;
    curLayer = -1;
    FXArray<int>* const settings[] = {&rotModes, &pulseModes, &fluid};
    for (FXArray<int>* setting : settings) // first, so that a layer is in every list or in none
        if (!setting->Realloc(layerCount + 1))
            return;
    FXModel* model = models.PushNew();
    if (model == nullptr)
        return;
    for (FXArray<int>* setting : settings)
        setting->Push(0);
    load(model);
    model->UpdateMeshes();
    model->PreserveColMat();
    curLayer = layerCount++;
    Color(model, layerColor);
}

void FXPlanet::AddLayerCN(FXPackage* pck, int id) {
    Add([&](FXModel* model) { model->LoadCN(pck, id); });
}

void FXPlanet::AddLayer(const char* path) {
    Add([&](FXModel* model) { model->Load(path); });
}

void FXPlanet::SetLayerRot(int mode, double d1, double d2) {
    if (curLayer < 0)
        return;
    rotModes[curLayer] = mode;
    rot1[curLayer].duration = d1;
    rot2[curLayer].duration = d2;
}

void FXPlanet::SetLayerScale(int axis, double seconds) {
    if (curLayer < 0)
        return;
    pulseModes[curLayer] = (pulseModes[curLayer] & ~kAxisBits) | (axis & kAxisBits);
    pulse[curLayer].duration = seconds;
}

void FXPlanet::SetLayerTransp(int bit, double seconds) {
    if (curLayer < 0)
        return;
    pulseModes[curLayer] = (pulseModes[curLayer] & ~kTransparencyPulse) | bit;
    pulse[curLayer].duration = seconds;
}

void FXPlanet::SetLayerFluid(bool fluidLayer) {
    if (curLayer >= 0)
        fluid[curLayer] = fluidLayer ? 1 : 0;
}

void FXPlanet::Destroy() {
    models.DestroyBuf();
    for (FXArray<int>* settings : {&rotModes, &pulseModes, &fluid})
        settings->DestroyBuf();
    layerCount = 0;
    curLayer = -1;
}

void FXPlanet::Color(FXModel* model, const float* rgba) const {
    if (useColMat)
        model->UpdateColMat(rgba);
    else
        model->UpdateColCol(rgba);
}

// Neighbouring layers turn different ways.
void FXPlanet::Turn(PEnv* env, int layer, double time) {
    const float sign1 = (layer & 1) != 0 ? 1.0f : -1.0f;
    const float sign2 = (layer & 2) != 0 ? 1.0f : -1.0f;
    const int mode = rotModes[layer];
    if (mode < 1 || mode > 3)
        return;
    rot1[layer].OnRender(env, time);
    localRotate(env, mode != 2, rot1[layer].phase * 360 * sign1);
    if (mode == 3) {
        rot2[layer].OnRender(env, time);
        localRotate(env, false, rot2[layer].phase * 360 * sign2);
    }
}

void FXPlanet::Pulse(PEnv* env, int layer, double time) {
    const int mode = pulseModes[layer];
    if (mode == 0)
        return;
    pulse[layer].OnRender(env, time);
    const float p = pulse[layer].phase;
    if (const int axis = mode & kAxisBits; axis != 0) {
        float scale[3];
        std::fill_n(scale, 3, 1 - kSquash * p);
        scale[axis - 1] = 1 + kStretch * p;
        FXMatrix m;
        m.SetScale(scale);
        env->MultiplyMatrix(&m);
    }
    if ((mode & kTransparencyPulse) != 0) {
        const float there = p < 0.5f ? 2 * p : 2 * (1 - p);
        const float rgba[4] = {layerColor[0], layerColor[1], layerColor[2], layerColor[3] * there};
        Color(models[layer], rgba);
    }
}

void FXPlanet::OnRender(PEnv* env, double time) {
    const FXMatrix base = env->matrix;
    for (int layer = 0; layer < layerCount; ++layer) {
        env->ApplyMatrix(&base);
        if (matFirst <= layer && layer <= matLast)
            env->MultiplyMatrix(&layerMatrix);
        Turn(env, layer, time);
        Pulse(env, layer, time);
        env->EnableDepthWrite(fluid[layer] == 0);
        models[layer]->OnRender(env, time);
    }
}
