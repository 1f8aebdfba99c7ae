// Textures and materials on the device.
#include "image/material.h"
#include "render/gl.h"
#include "render/gl_device.h"

namespace {

// OpenGL 1.1's count of components as the internal format.
constexpr GLint kComponents = 4;

// Makes the material's texture object current, and one if it has none.
void localBindNamed(FXMaterial* m) {
    if (m->texName == 0)
        glGenTextures(1, &m->texName);
    glBindTexture(GL_TEXTURE_2D, m->texName);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
}

void localUpload(const FXPixmap& p, bool mipmaps) {
    if (mipmaps)
        gluBuild2DMipmaps(GL_TEXTURE_2D, kComponents, p.width, p.height, GL_RGBA, GL_UNSIGNED_BYTE, p.pixels);
    else
        glTexImage2D(GL_TEXTURE_2D, 0, kComponents, p.width, p.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     p.pixels);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, mipmaps ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glBindTexture(GL_TEXTURE_2D, 0);
}

// Binds the material's texture on the active unit, or none; gives whether there is one.
bool localBind(const FXMaterial* m) {
    const bool textured = m != nullptr && m->prepared && m->texName != 0;
    if (textured)
        glEnable(GL_TEXTURE_2D);
    else
        glDisable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, textured ? m->texName : 0);
    return textured;
}

} // namespace

bool FXGL::PrepareTexture(FXMaterial* m) {
    if (rc == nullptr)
        return true;
    localBindNamed(m);
    localUpload(*m->picture, m->mipmaps);
    return true;
}

bool FXGL::FastPrepareTexture(FXMaterial* m, FXPixmap* p) {
    if (rc == nullptr)
        return true;
    localBindNamed(m);
    localUpload(*p, false);
    m->extentU = static_cast<float>(static_cast<double>(p->usedWidth) / p->width);
    m->extentV = static_cast<float>(static_cast<double>(p->usedHeight) / p->height);
    m->prepared = true;
    return true;
}

void FXGL::UnprepareTexture(FXMaterial* m) {
    if (m->texName != 0 && rc != nullptr)
        glDeleteTextures(1, &m->texName);
    m->texName = 0;
}

void FXGL::ApplyMaterial(FXMaterial* m) {
    if (testingMaterial)
        return;
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, m->ambient);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, m->diffuse);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, m->specular);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, m->emission);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, m->shininess);
    textureUnit0Bound = localBind(m);
}

void FXGL::ApplyMaterial2(FXMaterial* m) {
    if (testingMaterial || fxMultitexture.glActiveTexture == nullptr)
        return;
    fxMultitexture.glActiveTexture(GL_TEXTURE1);
    textureUnit1Bound = localBind(m);
    fxMultitexture.glActiveTexture(GL_TEXTURE0);
}
