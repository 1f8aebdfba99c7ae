#include "render/gl_device.h"

#include "geometry/mesh.h"
#include "image/light.h"
#include "image/material.h"
#include "platform/threads.h"
#include "platform/trace.h"
#include "render/gl.h"

#include <algorithm>
#include <bit>
#include <span>
#include <string_view>

namespace {

void localSwitch(bool on, GLenum what) {
    if (on)
        glEnable(what);
    else
        glDisable(what);
}

// 24 bits of colour, 16 of depth and stencil, two buffers; the rest stays 0.
PIXELFORMATDESCRIPTOR localPixelFormat() {
    PIXELFORMATDESCRIPTOR format = {};
    format.nSize = 40;
    format.nVersion = 1;
    format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    format.iPixelType = PFD_TYPE_RGBA;
    format.cColorBits = 24;
    format.cDepthBits = 16;
    format.cStencilBits = 16;
    return format;
}

void localLoadLight(GLenum number, const FXLight& light) {
    glLightfv(number, GL_POSITION, light.position);
    glLightfv(number, GL_SPOT_DIRECTION, light.spotDirection);
    glLightfv(number, GL_AMBIENT, light.ambient);
    glLightfv(number, GL_DIFFUSE, light.diffuse);
    glLightfv(number, GL_SPECULAR, light.specular);
    glLightf(number, GL_SPOT_EXPONENT, light.spotExponent);
    glLightf(number, GL_SPOT_CUTOFF, light.spotCutoff);
    glLightfv(number, GL_CONSTANT_ATTENUATION, &light.constantAttenuation);
    glLightfv(number, GL_LINEAR_ATTENUATION, &light.linearAttenuation);
    glLightfv(number, GL_QUADRATIC_ATTENUATION, &light.quadraticAttenuation);
    glEnable(number);
}

// Null where the driver has no answer.
const char* localGLString(GLenum name) {
    return reinterpret_cast<const char*>(glGetString(name));
}

// What printf writes for a null string where it allows one.
const char* localPrintable(const char* text) {
    return text != nullptr ? text : "(null)";
}

template <class Function> void localFetch(Function*& function, const char* name) {
    function = std::bit_cast<Function*>(wglGetProcAddress(name));
}

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

bool FXGL::CreateChild(void* window) {
    Destroy();
    mutex = fxCreateMutex();
    glWindow = envWindow = static_cast<HWND>(window);
    if (glWindow == nullptr)
        return false;
    screenWidth = GetSystemMetrics(SM_CXSCREEN);
    screenHeight = GetSystemMetrics(SM_CYSCREEN);
    newSize_ = 0;
    ReadSize();
    dc = GetDC(glWindow);
    if (dc == nullptr)
        return false;
    const PIXELFORMATDESCRIPTOR wanted = localPixelFormat();
    const int format = ChoosePixelFormat(dc, &wanted);
    if (format == 0 || !SetPixelFormat(dc, format, &wanted))
        return false;
    rc = wglCreateContext(dc);
    if (rc == nullptr || !TryContext())
        return false;
    const bool clamps = InitExtensions();
    ClrParams();
    wglMakeCurrent(nullptr, nullptr);
    return clamps;
}

// Makes the new context current; false, with the context deleted, when that fails.
bool FXGL::TryContext() {
    if (wglMakeCurrent(dc, rc))
        return true;
    const DWORD reason = GetLastError(); // which deleting may replace
    wglDeleteContext(rc);
    rc = nullptr;
    SetLastError(reason);
    return false;
}

void FXGL::Destroy() {
    FXEnv::Destroy();
    wglMakeCurrent(nullptr, nullptr);
    if (rc != nullptr)
        wglDeleteContext(rc);
    rc = nullptr;
    if (dc != nullptr)
        ReleaseDC(glWindow, dc);
    dc = nullptr;
    glWindow = savedParent = nullptr;
}

void FXGL::ClrParams() {
    glViewport(0, 0, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-1, 1, -1, 1, 2, -2); // a larger z lies farther away
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const float transparent[4] = {0, 0, 0, 0};
    SetClrColor(transparent);
    glClearDepth(2.0);
    glClearStencil(0);
    glShadeModel(GL_SMOOTH);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    glDisable(GL_CULL_FACE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_GREATER, 2.0f / 255.0f); // an alpha up to that is hardly seen
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glDisable(GL_LIGHTING);
    glDisable(GL_NORMALIZE);
    SetAmbient(transparent);
    if (hasSeparateSpecular)
        glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SINGLE_COLOR);
}

void FXGL::SetAct(bool on) {
    if (on) {
        isLost_ = wglMakeCurrent(dc, rc) == FALSE;
        ApplyNewSize();
    } else {
        wglMakeCurrent(nullptr, nullptr);
    }
}

void FXGL::Resize(int w, int h) {
    if (w > 0 && h > 0)
        newSize_ = static_cast<std::uint64_t>(w) << 32 | static_cast<std::uint32_t>(h);
}

void FXGL::ApplyNewSize() {
    if (rc == nullptr)
        return;
    const std::uint64_t size = newSize_.exchange(0);
    const int w = static_cast<int>(size >> 32);
    const int h = static_cast<int>(size & 0xFFFFFFFFu);
    if (size == 0 || (w == width && h == height))
        return;
    width = w;
    height = h;
    glViewport(0, 0, width, height);
}

void FXGL::RenderEnd() {
    if (dc != nullptr)
        SwapBuffers(dc);
}

void FXGL::SetClrColor(const float* rgba) {
    std::copy_n(rgba, 4, clearColor);
    glClearColor(rgba[0], rgba[1], rgba[2], rgba[3]);
}

void FXGL::Clrscr(bool color, bool depth, bool stencil) {
    glClear((color ? GL_COLOR_BUFFER_BIT : 0u) | (depth ? GL_DEPTH_BUFFER_BIT : 0u) |
            (stencil ? GL_STENCIL_BUFFER_BIT : 0u));
}

void FXGL::ReadSize() {
    RECT area = {};
    GetClientRect(glWindow, &area);
    width = area.right - area.left;
    height = area.bottom - area.top;
}

void FXGL::PlaceWindow(int x, int y, int w, int h) {
    SetWindowPos(glWindow, nullptr, x, y, w, h, 0);
    ReadSize();
    glViewport(0, 0, width, height);
}

void FXGL::Enlarge(bool on) {
    const FXGRAutoAct act(fxglobalEnv);
    if (on) {
        if (!enlarged) {
            GetWindowRect(glWindow, &savedRect);
            savedParent = SetParent(glWindow, nullptr);
            RECT parent = {};
            GetWindowRect(savedParent, &parent);
            savedRect = {savedRect.left - parent.left, savedRect.top - parent.top,
                         savedRect.right - parent.left, savedRect.bottom - parent.top};
        }
        PlaceWindow(0, 0, screenWidth, screenHeight);
        enlarged = true;
    } else if (enlarged) {
        SetParent(glWindow, savedParent);
        savedParent = nullptr;
        PlaceWindow(savedRect.left, savedRect.top, savedRect.right - savedRect.left,
                    savedRect.bottom - savedRect.top);
        enlarged = false;
    }
}

void FXGL::UpdateLights() {
    for (int i = 0; i < kLights; ++i) {
        const GLenum number = GL_LIGHT0 + static_cast<GLenum>(i);
        FXLight* light = lights[i];
        if (light == nullptr || light->disabled) {
            glDisable(number);
            continue;
        }
        light->glLight = static_cast<int>(number);
        localLoadLight(number, *light);
    }
}

void FXGL::EnableLights(bool on) {
    lightsOn = on;
    localSwitch(on, GL_LIGHTING);
}

void FXGL::EnableLight(bool on, FXLight* light) {
    light->disabled = !on;
    localSwitch(on, static_cast<GLenum>(light->glLight));
}

void FXGL::DisableAllLights() {
    for (int i = 0; i < kLights; ++i) {
        if (lights[i] != nullptr)
            lights[i]->disabled = true;
        glDisable(GL_LIGHT0 + static_cast<GLenum>(i));
    }
}

void FXGL::SetAmbient(const float* rgba) {
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, rgba);
}

void FXGL::ApplyMatrix(const FXMatrix* m) {
    matrix.Copy(m);
    glLoadMatrixf(matrix.m);
}

void FXGL::MultiplyMatrix(const FXMatrix* m) {
    FXMatrix product;
    product.Multiply(&matrix, m);
    ApplyMatrix(&product);
}

void FXGL::ApplyMatrixIdentity() {
    matrix.SetIdentity();
    glLoadIdentity();
}

void FXGL::EnableDepthTest(bool on) {
    depthTest = on;
    localSwitch(on, GL_DEPTH_TEST);
}

void FXGL::EnableDepthWrite(bool on) {
    depthWrite = on;
    glDepthMask(on ? GL_TRUE : GL_FALSE);
}

void FXGL::EnableCullface(bool front, bool back) {
    cullFront = front;
    cullBack = back;
    localSwitch(front || back, GL_CULL_FACE);
    if (front || back)
        glCullFace(back ? GL_BACK : GL_FRONT);
}

// What the driver offers, and whether it suffices.

FXMultitexture fxMultitexture = {};

bool FXGL::TestExtensionString(const char* extensions, const char* name) {
    const std::string_view list(extensions ? extensions : "");
    const std::string_view wanted(name ? name : "");
    if (list.empty() || wanted.empty())
        return false;
    for (std::size_t at = list.find(wanted); at != std::string_view::npos; at = list.find(wanted, at + 1)) {
        const std::size_t end = at + wanted.size();
        if (end == list.size() || list[end] == ' ')
            return true;
    }
    return false;
}

bool FXGL::InitExtensions() {
    trc("OpenGL info:\n");
    trc("vendor: %s\n", localPrintable(localGLString(GL_VENDOR)));
    trc("renderer: %s\n", localPrintable(localGLString(GL_RENDERER)));
    const char* version = localGLString(GL_VERSION);
    trc("version: %s\n", localPrintable(version));
    hasVersion_ = version != nullptr;

    const char* list = localGLString(GL_EXTENSIONS);
    const auto has = [list](const char* name) { return TestExtensionString(list, name); };
    hasBgra = has("EXT_bgra");
    hasSeparateSpecular = has("EXT_separate_specular_color");
    hasEdgeClamp = has("EXT_texture_edge_clamp") || has("SGIS_texture_edge_clamp");
    hasMultitexture = has("ARB_multitexture");
    hasCubeMap = has("ARB_texture_cube_map");
    npot = has("ARB_texture_non_power_of_two");

    fxMultitexture = {};
    if (hasMultitexture) {
        localFetch(fxMultitexture.glActiveTexture, "glActiveTexture");
        localFetch(fxMultitexture.glMultiTexCoord2f, "glMultiTexCoord2f");
        localFetch(fxMultitexture.glMultiTexCoord2fv, "glMultiTexCoord2fv");
    }

    const struct {
        bool found;
        const char* name;
    } offered[] = {{hasBgra, "EXT_bgra"},
                   {hasSeparateSpecular, "EXT_separate_specular_color"},
                   {hasEdgeClamp, "EXT_texture_edge_clamp"},
                   {hasMultitexture, "ARB_multitexture"},
                   {hasCubeMap, "ARB_texture_cube_map"},
                   {npot, "ARB_texture_non_power_of_two"}};
    for (const auto& extension : offered)
        if (extension.found)
            trc("%s\n", extension.name);
    return hasEdgeClamp;
}

bool FXGL::TestGL(bool showMessage) {
    if (!hasMultitexture && showMessage)
        MessageBoxA(nullptr,
                    "Your Graphics Capabilities seems to be insufficient. Either you have no Graphics Card, "
                    "or you have not installed the drivers for it.",
                    "OrinLab", MB_OK);
    return hasMultitexture;
}

// Textures and materials.

// GLU does not stand a context that is not current.
bool FXGL::PrepareTexture(FXMaterial* m) {
    if (rc == nullptr || isLost_)
        return true;
    localBindNamed(m);
    localUpload(*m->picture, m->mipmaps && hasVersion_);
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

// Meshes: triangles in immediate mode, sent anew for every frame.

namespace {

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

// What is sent for a vertex is the same for all of them: the compiler makes a loop of each case.
void localRawRender2(const FXGL* env, const FXMesh* mesh, const FXMesh* second) {
    const bool colors = mesh->colorMode == 1;
    const bool normals = env->lightsOn;
    const bool texture = env->textureUnit0Bound;
    const tagFXVertex* const vertices = mesh->vertices;
    glBegin(GL_TRIANGLES);
    if (mesh->colorMode == 0 || mesh->colorMode == 1)
        for (const int at : std::span(mesh->indices, static_cast<std::size_t>(mesh->indexCount))) {
            const tagFXVertex& v = vertices[at];
            if (colors)
                glColor4fv(v.color);
            if (normals)
                glNormal3fv(v.normal);
            if (texture)
                glTexCoord2fv(v.tex);
            if (texture && second != nullptr)
                fxMultitexture.glMultiTexCoord2fv(GL_TEXTURE1, second->vertices[at].tex);
            glVertex3fv(v.pos);
        }
    glEnd();
}

void localRawRender(const FXGL* env, const FXMesh* mesh) {
    localRawRender2(env, mesh, nullptr);
}

// Has the second mesh room for every vertex that the first one's triangles name? How many of them its own
// triangles use does not matter here.
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
