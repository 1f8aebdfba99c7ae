#include "render/gl_device.h"

#include "image/light.h"
#include "platform/threads.h"
#include "render/gl.h"

#include <algorithm>

namespace {

void localSwitch(bool on, GLenum what) {
    if (on)
        glEnable(what);
    else
        glDisable(what);
}

// 24 bits of colour, 16 of depth and stencil, two buffers; nothing else matters.
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

// Makes the new context current. One that cannot be is none.
bool FXGL::TryContext() {
    if (wglMakeCurrent(dc, rc))
        return true;
    const DWORD reason = GetLastError(); // the caller's to ask for
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
    glAlphaFunc(GL_GREATER, 2.0f / 255.0f); // what one hardly sees need not be drawn
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
        wglMakeCurrent(dc, rc);
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
