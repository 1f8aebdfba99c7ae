// The colours of a surface and, if it has one, its picture as a texture.
#pragma once

#include "base/str.h"
#include "image/canvas.h"

#include <cstdio>

class FXPackage;
class FXPackageData;

// Loads its picture into its own canvas and has the device upload it at once: the environment must be set and
// its context current on the calling thread; without an environment a material stays untextured. Of a picture
// that is a texture, the canvas keeps the sizes alone. Owns the texture object.
class FXMaterial {
public:
    FXMaterial() { SetDefDiffuse(1); }
    ~FXMaterial() { Destroy(); }
    FXMaterial(const FXMaterial&) = delete;
    FXMaterial& operator=(const FXMaterial&) = delete;

    // Presets of the four colours; `a` is the alpha of those that carry one.
    void SetDefDiffuse(float a);
    void SetDefault(float a) { SetDefDiffuse(a); }
    void SetDefSpecular(float a); // sets shininess too
    void SetDefSpecular1(float a);
    void SetDefEmission(float a);
    void SetBlack(float a);
    void PrepareDarkDiffuse(float a);
    void ChangeDarkDiffuse(float v); // diffuse red, green and blue
    // Tints without drift: PreserveCols once, then MultiCols as often as one likes.
    void PreserveCols();
    void MultiCols(const float* c);
    // Opaque in picture and diffuse colour.
    bool IsSolid() const;

    bool LoadTextureCN(FXPackage* pkg, int entry);
    bool LoadTextureC(FXPackage* pkg, const char* text); // the entry's number in decimal
    bool LoadTexture(const char* fileName);
    // Makes c the picture and uploads it. The canvas stays the caller's and is read by the size queries;
    // without pixels or without an environment: false, and the material is untextured.
    bool SetTexture(FXCanvas* c);
    int GetWidth() const { return picture ? picture->GetWidth() : 0; }
    int GetHeight() const { return picture ? picture->GetHeight() : 0; }
    float GetWidthF() const { return static_cast<float>(GetWidth()); }
    float GetHeightF() const { return static_cast<float>(GetHeight()); }

    // The record.
    template <class Self, class V> static bool Fields(Self& self, V& v) {
        return v.String("the name of", self.name) && v.String("the picture of", self.texRef) &&
               v.Floats("the ambient colour of", self.ambient, 4) &&
               v.Floats("the diffuse colour of", self.diffuse, 4) &&
               v.Floats("the specular colour of", self.specular, 4) &&
               v.Floats("the emission colour of", self.emission, 4) &&
               v.Float("the shininess of", self.shininess);
    }
    // False when the picture it names cannot be loaded; a record that ends early keeps the preset
    // SetDefSpecular(1) for the colours it lacks. Without a package, the picture is a file.
    bool LoadC(FXPackage* pkg, FXPackageData* d);
    bool Load(std::FILE* file);
    bool Save(std::FILE* file) const;
    void Destroy(); // deletes the texture; the colours stay

    FXStr name;
    bool ownedByLibrary = false;
    float ambient[4];
    float diffuse[4];
    float specular[4];
    float emission[4];
    float shininess = 0; // 0..128
    float keptColors[4][4] = {};
    bool prepared = false;    // has a picture meant as a texture
    unsigned int texName = 0; // OpenGL's name, 0: none
    float extentU = 0;        // the part of the texture that the picture fills
    float extentV = 0;
    bool texOpaque = false;
    bool mipmaps = true;
    FXCanvas* picture = nullptr;
    FXCanvas canvas;
    FXStr texRef; // an entry's number in decimal, or a file name

private:
    void SetColors(const float (&colors)[4][2]);
    void DropTexture();
    bool TakeCanvas(bool loaded);
};
