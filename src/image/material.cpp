#include "image/material.h"

#include "package/package.h"
#include "package/record.h"
#include "render/environment.h"
#include "render/vectors.h"

#include <cstdio>
#include <cstring>

// Ambient, diffuse, specular, emission, each as grey and alpha.
void FXMaterial::SetColors(const float (&colors)[4][2]) {
    float* const targets[4] = {ambient, diffuse, specular, emission};
    for (int i = 0; i < 4; ++i) {
        targets[i][0] = targets[i][1] = targets[i][2] = colors[i][0];
        targets[i][3] = colors[i][1];
    }
}

void FXMaterial::SetDefDiffuse(float a) {
    SetColors({{0.2f, 0}, {1, a}, {0, 0}, {0, 0}});
}

void FXMaterial::SetDefSpecular(float a) {
    SetColors({{0, 0}, {0.2f, a}, {1, a}, {0, 0}});
    shininess = 128;
}

void FXMaterial::SetDefSpecular1(float a) {
    SetColors({{0.2f, a}, {1, a}, {1, a}, {0, 0}});
}

void FXMaterial::SetDefEmission(float a) {
    SetColors({{0, 0}, {0, a}, {0, 0}, {1, a}});
}

void FXMaterial::SetBlack(float a) {
    SetColors({{0, 0}, {0, a}, {0, 0}, {0, 0}});
}

void FXMaterial::PrepareDarkDiffuse(float a) {
    SetColors({{0, a}, {1, a}, {0, 0}, {0, 0}});
}

void FXMaterial::ChangeDarkDiffuse(float v) {
    diffuse[0] = diffuse[1] = diffuse[2] = v;
}

void FXMaterial::PreserveCols() {
    const float* const colors[4] = {ambient, diffuse, specular, emission};
    for (int i = 0; i < 4; ++i)
        std::memcpy(keptColors[i], colors[i], sizeof keptColors[i]);
}

void FXMaterial::MultiCols(const float* c) {
    float* const colors[4] = {ambient, diffuse, specular, emission};
    for (int i = 0; i < 4; ++i)
        fxVec4fCombine(colors[i], keptColors[i], c);
}

bool FXMaterial::IsSolid() const {
    return !(prepared && !texOpaque) && diffuse[3] == 1.0f;
}

void FXMaterial::DropTexture() {
    if (texName != 0 && fxglobalEnv != nullptr)
        fxglobalEnv->UnprepareTexture(this);
    texName = 0;
    prepared = false;
}

bool FXMaterial::TakeCanvas(bool loaded) {
    if (!loaded) {
        DropTexture();
        return false;
    }
    if (!SetTexture(&canvas))
        return false;
    canvas.ReleasePixels();
    return true;
}

bool FXMaterial::LoadTextureCN(FXPackage* pkg, int entry) {
    picture = nullptr;
    return TakeCanvas(canvas.CreateFromPictCN(pkg, entry));
}

bool FXMaterial::LoadTextureC(FXPackage* pkg, const char* text) {
    picture = nullptr;
    return TakeCanvas(canvas.CreateFromPictC(pkg, text));
}

bool FXMaterial::LoadTexture(const char* fileName) {
    picture = nullptr;
    return TakeCanvas(canvas.CreateFromPict(fileName));
}

bool FXMaterial::SetTexture(FXCanvas* c) {
    if (c->pixels == nullptr || fxglobalEnv == nullptr) {
        picture = nullptr;
        DropTexture();
        return false;
    }
    extentU = static_cast<float>(c->usedWidth) / static_cast<float>(c->width);
    extentV = static_cast<float>(c->usedHeight) / static_cast<float>(c->height);
    texOpaque = c->opaque;
    prepared = true;
    picture = c;
    if (fxglobalEnv->PrepareTexture(this))
        return true;
    DropTexture();
    return false;
}

bool FXMaterial::LoadC(FXPackage* pkg, FXPackageData* d) {
    SetDefSpecular(1);
    const int before = d->left;
    fxLoadRecord(*this, d);
    ownedByLibrary = true;
    const bool isWhole = before - d->left >= fxLeastSize<FXMaterial>() + name.len + texRef.len;
    if (pkg == nullptr && !isWhole)
        shininess = 0; // not half a colour, at the end of a file
    return texRef.IsEmpty() || (pkg != nullptr ? LoadTextureC(pkg, texRef.text) : LoadTexture(texRef.text));
}

bool FXMaterial::Load(std::FILE* file) {
    FXFileRest rest(file);
    return LoadC(nullptr, &rest.data);
}

bool FXMaterial::Save(std::FILE* file) const {
    return fxSaveRecord(*this, file);
}

void FXMaterial::Destroy() {
    DropTexture();
    canvas.Destroy();
    picture = nullptr;
}
