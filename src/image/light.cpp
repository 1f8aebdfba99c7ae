#include "image/light.h"

#include "render/vectors.h"

#include <initializer_list>

namespace {

void localSet(float* c, float rgb, float a) {
    c[0] = c[1] = c[2] = rgb;
    c[3] = a;
}

} // namespace

// No spot cone, no attenuation.
void FXLight::SetPlain(float w) {
    position[3] = w;
    spotExponent = 0;
    spotCutoff = 180;
    constantAttenuation = linearAttenuation = quadraticAttenuation = 0;
}

void FXLight::SetDefDiffuse(float a) {
    SetPlain(0);
    localSet(ambient, 0.2f, a);
    localSet(diffuse, 1, a);
    localSet(specular, 0, 0);
}

void FXLight::SetDefAmbient(float a) {
    SetPlain(0);
    localSet(ambient, 1, a);
    localSet(diffuse, 0, 0);
    localSet(specular, 0, 0);
}

void FXLight::SetDefSpecular(float a) {
    SetPlain(1);
    localSet(ambient, 0, a);
    localSet(diffuse, 1, a);
    localSet(specular, 1, a);
    spotExponent = 12;
    constantAttenuation = linearAttenuation = 0.4f;
}

void FXLight::SetDiffuseDark(float d, float a) {
    SetPlain(0);
    localSet(ambient, 0, a);
    localSet(diffuse, d, a);
    localSet(specular, 0, 0);
}

void FXLight::MultiColor(const float* c) {
    for (float* color : {ambient, diffuse, specular})
        fxVec4fCombine(color, color, c);
}

void FXLight::MultiColorF(float r, float g, float b, float a) {
    const float c[4] = {r, g, b, a};
    MultiColor(c);
}
