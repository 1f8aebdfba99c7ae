// The parameters of one fixed-function OpenGL light.
#pragma once

// The scene registers up to eight with the environment; the device loads them. Presets set all colours and
// the spot and attenuation factors, never the position's x, y, z or the direction; `a` is the alpha of the
// colours.
class FXLight {
public:
    FXLight() { SetDefDiffuse(1); }

    void SetDefDiffuse(float a);
    void SetDefault(float a) { SetDefDiffuse(a); }
    void SetDefAmbient(float a);
    void SetDefSpecular(float a);
    void SetDiffuseDark(float d, float a);
    void MultiColor(const float* c); // ambient, diffuse and specular, component by component
    void MultiColorF(float r, float g, float b, float a);

    int glLight = 0;                   // the OpenGL light it was loaded into last
    float position[4] = {0, 0, -1, 0}; // w = 0: a directional light
    float spotDirection[4] = {0, 0, 1, 0};
    float ambient[4];
    float diffuse[4];
    float specular[4];
    float spotExponent;
    float spotCutoff; // degrees; 180: no cone
    float constantAttenuation;
    float linearAttenuation;
    float quadraticAttenuation;
    bool disabled = false;

private:
    void SetPlain(float w);
};
