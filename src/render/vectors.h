// Vectors as plain float arrays: products component by component, and interpolation.
#pragma once

// out[i] = a[i] * b[i]
void fxVec2fCombine(float* out, const float* a, const float* b);
void fxVec3fCombine(float* out, const float* a, const float* b);
void fxVec4fCombine(float* out, const float* a, const float* b);

// (b - a) * t + a, exactly a at t = 0 and b at t = 1; t outside 0..1 goes on beyond them.
float fxVec1fCombineP(float a, float b, float t);
void fxVec2fCombineP(float* out, const float* a, const float* b, float t);
void fxVec3fCombineP(float* out, const float* a, const float* b, float t);
void fxVec4fCombineP(float* out, const float* a, const float* b, float t);
