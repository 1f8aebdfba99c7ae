// Drawing of meshes: triangles in immediate mode, sent anew for every frame.
#include "geometry/mesh.h"
#include "render/gl.h"
#include "render/gl_device.h"

#include <algorithm>

namespace {

// What is sent for a vertex is decided once for a mesh: each combination is a loop of its own.
template <bool kColor, bool kNormal, bool kTexture, bool kSecond>
void localSend(const FXMesh* mesh, const FXMesh* second) {
    for (int i = 0; i < mesh->indexCount; ++i) {
        const int at = mesh->indices[i];
        const tagFXVertex& v = mesh->vertices[at];
        if constexpr (kColor)
            glColor4fv(v.color);
        if constexpr (kNormal)
            glNormal3fv(v.normal);
        if constexpr (kTexture)
            glTexCoord2fv(v.tex);
        if constexpr (kTexture && kSecond)
            fxMultitexture.glMultiTexCoord2fv(GL_TEXTURE1, second->vertices[at].tex);
        glVertex3fv(v.pos);
    }
}

using Sender = void (*)(const FXMesh*, const FXMesh*);

// By colours, lights, texture.
template <bool kSecond>
constexpr Sender kSenders[2][2][2] = {
    {{localSend<false, false, false, kSecond>, localSend<false, false, true, kSecond>},
     {localSend<false, true, false, kSecond>, localSend<false, true, true, kSecond>}},
    {{localSend<true, false, false, kSecond>, localSend<true, false, true, kSecond>},
     {localSend<true, true, false, kSecond>, localSend<true, true, true, kSecond>}},
};

template <bool kSecond> void localSendAll(const FXGL* env, const FXMesh* mesh, const FXMesh* second) {
    glBegin(GL_TRIANGLES);
    if (mesh->colorMode == 0 || mesh->colorMode == 1)
        kSenders<kSecond>[mesh->colorMode][env->lightsOn][env->textureUnit0Bound](mesh, second);
    glEnd();
}

void localRawRender(const FXGL* env, const FXMesh* mesh) {
    localSendAll<false>(env, mesh, nullptr);
}

void localRawRender2(const FXGL* env, const FXMesh* mesh, const FXMesh* second) {
    localSendAll<true>(env, mesh, second);
}

void localApplyColorMode(int mode) {
    if (mode == 0) {
        glColor4f(1, 1, 1, 1);
        glDisable(GL_COLOR_MATERIAL);
    } else if (mode == 1) {
        glEnable(GL_COLOR_MATERIAL);
        glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
        glColor4f(1, 1, 1, 1);
    }
}

// Has the second mesh room for every vertex that the first one's triangles name? What it draws itself is its
// own business.
bool localHoldsCorners(const FXMesh* second, const FXMesh* mesh) {
    return *std::max_element(mesh->indices, mesh->indices + mesh->indexCount) < second->vertexCapacity;
}

} // namespace

void FXGL::RenderMesh(FXMesh* mesh) {
    if (mesh->disabled || mesh->vertexCount < 1 || mesh->indexCount < 1)
        return;
    localApplyColorMode(mesh->colorMode);
    if (mesh->material != nullptr)
        ApplyMaterial(mesh->material);
    else
        ApplyDefaultMaterial();

    const FXMesh* second = mesh->secondMesh;
    if (second == nullptr) {
        ApplyMaterial2(nullptr);
        localRawRender(this, mesh);
    } else if (hasMultitexture && fxMultitexture.glMultiTexCoord2fv != nullptr &&
               localHoldsCorners(second, mesh)) {
        ApplyMaterial2(second->material);
        localRawRender2(this, mesh, second);
    }
}
