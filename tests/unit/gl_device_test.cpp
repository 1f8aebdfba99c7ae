// The device, call by call.
#include "fakes/fake_win32.h"
#include "image/light.h"
#include "render/gl.h"
#include "unit/recorded_device.h"
#include "unit/trace_lines.h"

#include <algorithm>
#include <cstring>

namespace {

using Calls = std::vector<std::string>;

class Device : public testing::Test {
protected:
    Device() {
        ResetFakeWin32();
        GLRecorder::Reset();
        fakeWin32.glEntryPoints = GLRecorder::EntryPoints();
    }
    bool Create() {
        const bool created = gl_.CreateChild(kFakeWindow);
        GLRecorder::Take();
        TakeFakeCalls();
        return created;
    }

    FXGL gl_;
};

TEST_F(Device, SetsUpTheFixedState) {
    const std::string state =
        "glViewport(0,0,152,112) glMatrixMode(GL_PROJECTION) glLoadIdentity() glOrtho(-1,1,-1,1,2,-2) "
        "glMatrixMode(GL_MODELVIEW) glLoadIdentity() glClearColor(0,0,0,0) glClearDepth(2) glClearStencil(0) "
        "glShadeModel(GL_SMOOTH) glHint(GL_PERSPECTIVE_CORRECTION_HINT,GL_NICEST) glDisable(GL_CULL_FACE) "
        "glPolygonMode(GL_FRONT_AND_BACK,GL_FILL) glEnable(GL_DEPTH_TEST) glDepthFunc(GL_LEQUAL) "
        "glEnable(GL_ALPHA_TEST) glAlphaFunc(GL_GREATER,0.00784314) glEnable(GL_BLEND) "
        "glBlendFunc(GL_SRC_ALPHA,GL_ONE_MINUS_SRC_ALPHA) "
        "glTexEnvf(GL_TEXTURE_ENV,GL_TEXTURE_ENV_MODE,GL_MODULATE) glDisable(GL_LIGHTING) "
        "glDisable(GL_NORMALIZE) glLightModelfv(GL_LIGHT_MODEL_AMBIENT,0,0,0,0)";
    fakeWin32.clientArea = {10, 20, 162, 132};
    EXPECT_TRUE(gl_.CreateChild(kFakeWindow));
    EXPECT_EQ(GLRecorder::TakeText(), state);
    EXPECT_EQ(TakeFakeCalls(), (Calls{"wglMakeCurrent(off)", "SetPixelFormat(7)", "wglMakeCurrent(on)",
                                      "wglMakeCurrent(off)"}));
    EXPECT_TRUE(gl_.width == 152 && gl_.height == 112 && gl_.screenWidth == 1280 && gl_.screenHeight == 1024);
    EXPECT_TRUE(gl_.envWindow == kFakeWindow && gl_.glWindow == kFakeWindow);

    PIXELFORMATDESCRIPTOR format = {};
    format.nSize = 40;
    format.nVersion = 1;
    format.dwFlags = 0x25;
    format.cColorBits = 24;
    format.cDepthBits = format.cStencilBits = 16;
    EXPECT_EQ(std::memcmp(&format, &fakeWin32.pixelFormat, sizeof format), 0);

    GLRecorder::SetDriver({.extensions = "GL_EXT_separate_specular_color"});
    gl_.InitExtensions();
    gl_.ClrParams();
    EXPECT_EQ(GLRecorder::TakeText(), state + " glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL,GL_SINGLE_COLOR)");
}

TEST_F(Device, GivesBackWhatItGotWhateverStepFails) {
    const struct {
        const char* failing;
        Calls released;
    } cases[] = {{"GetDC", {"wglMakeCurrent(off)"}},
                 {"ChoosePixelFormat", {"wglMakeCurrent(off)", "ReleaseDC()"}},
                 {"SetPixelFormat", {"wglMakeCurrent(off)", "ReleaseDC()"}},
                 {"wglCreateContext", {"wglMakeCurrent(off)", "ReleaseDC()"}},
                 {"wglMakeCurrent", {"wglMakeCurrent(off)", "ReleaseDC()"}},
                 {"", {"wglMakeCurrent(off)", "wglDeleteContext()", "ReleaseDC()"}}};
    for (const auto& c : cases) {
        const bool fails = *c.failing != '\0';
        fakeWin32.failing = {c.failing};
        fakeWin32.lastError = ERROR_BAD_DRIVER;
        EXPECT_NE(gl_.CreateChild(kFakeWindow), fails) << c.failing;
        EXPECT_TRUE(!fails || (gl_.rc == nullptr && GetLastError() == ERROR_BAD_DRIVER)) << c.failing;
        EXPECT_EQ(GLRecorder::Take().empty(), fails) << c.failing;
        TakeFakeCalls();
        gl_.Destroy();
        EXPECT_EQ(TakeFakeCalls(), c.released) << c.failing;
        EXPECT_TRUE(gl_.dc == nullptr && gl_.rc == nullptr && gl_.glWindow == nullptr);
        EXPECT_EQ(gl_.envWindow, kFakeWindow);
    }
    ASSERT_TRUE(Create());
    EXPECT_FALSE(gl_.CreateChild(nullptr));
    EXPECT_EQ(TakeFakeCalls(), cases[5].released) << "the one before";
}

TEST_F(Device, KnowsWhatTheDriverOffers) {
    const TempFolder folder;
    const struct {
        const char* extensions;
        std::vector<std::string> found;
        bool creates;
    } cases[] = {{"", {}, false},
                 {nullptr, {}, false},
                 {"GL_ARB_multitexture GL_EXT_bgra", {"EXT_bgra", "ARB_multitexture"}, false},
                 {"GL_EXT_bgra_extended", {}, false},
                 {"GL_EXT_bgra_extended GL_EXT_bgra ", {"EXT_bgra"}, false},
                 {"GL_SGIS_texture_edge_clamp", {"EXT_texture_edge_clamp"}, true},
                 {"GL_EXT_texture_edge_clamp", {"EXT_texture_edge_clamp"}, true},
                 {"GL_ARB_texture_non_power_of_two GL_ARB_texture_cube_map GL_EXT_separate_specular_color",
                  {"EXT_separate_specular_color", "ARB_texture_cube_map", "ARB_texture_non_power_of_two"},
                  false}};
    for (const auto& c : cases) {
        const TraceLines trace(folder);
        GLRecorder::SetDriver({.extensions = c.extensions});
        EXPECT_EQ(Create(), c.creates);
        std::vector<std::string> lines = {"OpenGL info:", "vendor: the vendor", "renderer: the renderer",
                                          "version: 1.4"};
        lines.insert(lines.end(), c.found.begin(), c.found.end());
        EXPECT_EQ(trace.Lines(), lines);
        const std::pair<const char*, bool> flags[] = {
            {"EXT_bgra", gl_.hasBgra},
            {"EXT_separate_specular_color", gl_.hasSeparateSpecular},
            {"EXT_texture_edge_clamp", gl_.hasEdgeClamp},
            {"ARB_multitexture", gl_.hasMultitexture},
            {"ARB_multitexture", fxMultitexture.glActiveTexture != nullptr},
            {"ARB_multitexture", fxMultitexture.glMultiTexCoord2f != nullptr},
            {"ARB_multitexture", fxMultitexture.glMultiTexCoord2fv != nullptr},
            {"ARB_texture_cube_map", gl_.hasCubeMap},
            {"ARB_texture_non_power_of_two", gl_.npot}};
        for (const auto& [name, flag] : flags)
            EXPECT_EQ(flag, std::ranges::count(c.found, name) > 0) << name;
        EXPECT_NE(gl_.rc, nullptr) << "in use, whatever is missing";
    }
    GLRecorder::SetDriver(
        {.vendor = nullptr, .renderer = nullptr, .version = nullptr, .extensions = nullptr});
    const TraceLines trace(folder);
    EXPECT_FALSE(Create());
    EXPECT_EQ(trace.Lines(), (std::vector<std::string>{"OpenGL info:", "vendor: (null)", "renderer: (null)",
                                                       "version: (null)"}));
}

TEST_F(Device, FindsWholeExtensionNames) {
    const struct {
        const char *list, *name;
        bool found;
    } kCases[] = {{"GL_a GL_b", "a", true}, {"GL_a GL_b", "b", true}, {"GL_ab GL_a", "a", true},
                  {"GL_ab", "a", false},    {"GL_a\t", "a", false},   {"", "a", false},
                  {"GL_a", "", false},      {nullptr, "a", false},    {"GL_a", nullptr, false},
                  {"aaab aaa", "aa", true}};
    for (const auto& c : kCases)
        EXPECT_EQ(FXGL::TestExtensionString(c.list, c.name), c.found) << (c.list ? c.list : "null");
}

TEST_F(Device, TellsTheUserAboutAPoorDriverOnlyWhenAsked) {
    ASSERT_TRUE(Create());
    EXPECT_TRUE(gl_.TestGL(true));
    GLRecorder::SetDriver({.extensions = ""});
    Create();
    EXPECT_FALSE(gl_.TestGL(false));
    EXPECT_EQ(TakeFakeCalls(), Calls{});
    EXPECT_FALSE(gl_.TestGL(true));
    EXPECT_EQ(
        TakeFakeCalls(),
        Calls{"MessageBoxA(Your Graphics Capabilities seems to be insufficient. Either you have no Graphics "
              "Card, or you have not installed the drivers for it., OrinLab, 0x0)"});
}

TEST_F(Device, SwitchesAreCallsAndRemembered) {
    ASSERT_TRUE(Create());
    for (int mask = 0; mask < 8; ++mask)
        gl_.Clrscr((mask & 1) != 0, (mask & 2) != 0, (mask & 4) != 0);
    EXPECT_EQ(GLRecorder::TakeText(),
              "glClear(0) glClear(GL_COLOR_BUFFER_BIT) glClear(GL_DEPTH_BUFFER_BIT) "
              "glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT) glClear(GL_STENCIL_BUFFER_BIT) "
              "glClear(GL_COLOR_BUFFER_BIT|GL_STENCIL_BUFFER_BIT) "
              "glClear(GL_DEPTH_BUFFER_BIT|GL_STENCIL_BUFFER_BIT) "
              "glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT|GL_STENCIL_BUFFER_BIT)");
    const char* const kCulled[] = {"glDisable(GL_CULL_FACE)", "glEnable(GL_CULL_FACE) glCullFace(GL_FRONT)",
                                   "glEnable(GL_CULL_FACE) glCullFace(GL_BACK)",
                                   "glEnable(GL_CULL_FACE) glCullFace(GL_BACK)"};
    for (int faces = 0; faces < 4; ++faces) {
        gl_.EnableCullface((faces & 1) != 0, (faces & 2) != 0);
        EXPECT_EQ(GLRecorder::TakeText(), kCulled[faces]);
        EXPECT_TRUE(gl_.cullFront == ((faces & 1) != 0) && gl_.cullBack == ((faces & 2) != 0));
    }
    for (const bool on : {false, true}) {
        gl_.EnableDepthTest(on);
        gl_.EnableDepthWrite(on);
        gl_.EnableLights(on);
        EXPECT_EQ(GLRecorder::TakeText(),
                  on ? "glEnable(GL_DEPTH_TEST) glDepthMask(GL_TRUE) glEnable(GL_LIGHTING)"
                     : "glDisable(GL_DEPTH_TEST) glDepthMask(GL_FALSE) glDisable(GL_LIGHTING)");
        EXPECT_TRUE(gl_.depthTest == on && gl_.depthWrite == on && gl_.lightsOn == on);
    }
    const float color[4] = {0.1f, 0.2f, 0.3f, 0.4f};
    gl_.SetAmbient(color);
    gl_.SetClrColor(color);
    EXPECT_FALSE(gl_.PrepareCubeTexture(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(GLRecorder::TakeText(),
              "glLightModelfv(GL_LIGHT_MODEL_AMBIENT,0.1,0.2,0.3,0.4) glClearColor(0.1,0.2,0.3,0.4)");
    EXPECT_TRUE(std::equal(color, color + 4, gl_.clearColor));
}

TEST_F(Device, PresentsAndIsCurrentOnDemand) {
    gl_.RenderEnd();
    EXPECT_EQ(TakeFakeCalls(), Calls{}) << "no window yet";
    ASSERT_TRUE(Create());
    EXPECT_TRUE(gl_.RenderStart());
    {
        const FXGRAutoAct act(&gl_);
        gl_.RenderEnd();
    }
    EXPECT_EQ(TakeFakeCalls(), (Calls{"wglMakeCurrent(on)", "SwapBuffers()", "wglMakeCurrent(off)"}));
}

TEST_F(Device, TakesANewSizeOverWithTheNextFrame) {
    ASSERT_TRUE(Create());
    const struct {
        int width, height;
        const char* calls;
    } kCases[] = {{152, 112, ""}, {0, 0, ""}, {300, 0, ""}, {304, 112, "glViewport(0,0,304,112)"}};
    for (const auto& c : kCases) {
        gl_.Resize(c.width, c.height);
        EXPECT_EQ(GLRecorder::TakeText(), "") << "the context is another thread's";
        gl_.SetAct(true);
        EXPECT_EQ(GLRecorder::TakeText(), c.calls) << c.width << "x" << c.height;
        gl_.SetAct(false);
        gl_.SetAct(true);
        EXPECT_EQ(GLRecorder::TakeText(), "") << "once is enough";
    }
    EXPECT_TRUE(gl_.width == 304 && gl_.height == 112);
    gl_.Resize(9, 9);
    ASSERT_TRUE(Create());
    gl_.SetAct(true);
    EXPECT_EQ(GLRecorder::TakeText(), "") << "the size of the window before";
}

TEST_F(Device, MultipliesMatricesFromTheRight) {
    ASSERT_TRUE(Create());
    FXMatrix scale, move, identity;
    scale.SetScaleF(2, 3, 4);
    move.SetMoveF(1, 1, 1);
    gl_.ApplyMatrix(&scale);
    gl_.MultiplyMatrix(&move);
    EXPECT_EQ(*gl_.matrix.M(3, 2), 4.0f);
    gl_.ApplyMatrixIdentity();
    EXPECT_TRUE(gl_.matrix.Compare(&identity));
    EXPECT_EQ(GLRecorder::TakeText(), "glLoadMatrixf(2,0,0,0,0,3,0,0,0,0,4,0,0,0,0,1) "
                                      "glLoadMatrixf(2,0,0,0,0,3,0,0,0,0,4,0,2,3,4,1) glLoadIdentity()");
}

TEST_F(Device, LoadsTheLightsThatAreOn) {
    ASSERT_TRUE(Create());
    FXLight on, off;
    on.SetDefSpecular(0.5f);
    on.quadraticAttenuation = 0.25f;
    off.disabled = true;
    gl_.lights[0] = &off;
    gl_.lights[2] = &on;
    gl_.UpdateLights();
    EXPECT_EQ(
        GLRecorder::TakeText(),
        "glDisable(GL_LIGHT0) glDisable(GL_LIGHT1) glLightfv(GL_LIGHT2,GL_POSITION,0,0,-1,1) "
        "glLightfv(GL_LIGHT2,GL_SPOT_DIRECTION,0,0,1) glLightfv(GL_LIGHT2,GL_AMBIENT,0,0,0,0.5) "
        "glLightfv(GL_LIGHT2,GL_DIFFUSE,1,1,1,0.5) glLightfv(GL_LIGHT2,GL_SPECULAR,1,1,1,0.5) "
        "glLightf(GL_LIGHT2,GL_SPOT_EXPONENT,12) glLightf(GL_LIGHT2,GL_SPOT_CUTOFF,180) "
        "glLightfv(GL_LIGHT2,GL_CONSTANT_ATTENUATION,0.4) glLightfv(GL_LIGHT2,GL_LINEAR_ATTENUATION,0.4) "
        "glLightfv(GL_LIGHT2,GL_QUADRATIC_ATTENUATION,0.25) glEnable(GL_LIGHT2) glDisable(GL_LIGHT3) "
        "glDisable(GL_LIGHT4) glDisable(GL_LIGHT5) glDisable(GL_LIGHT6) glDisable(GL_LIGHT7)");
    EXPECT_EQ(off.glLight, 0) << "no number for one that is off";
    gl_.EnableLight(true, &off);
    EXPECT_EQ(GLRecorder::TakeText(), "glEnable(0x0)") << "switched all the same";
    off.disabled = true;
    gl_.EnableLight(false, &on);
    EXPECT_TRUE(on.disabled);
    gl_.EnableLight(true, &on);
    EXPECT_FALSE(on.disabled);
    EXPECT_EQ(GLRecorder::TakeText(), "glDisable(GL_LIGHT2) glEnable(GL_LIGHT2)");
    gl_.DisableAllLights();
    EXPECT_TRUE(on.disabled);
    const std::string allOff = GLRecorder::TakeText();
    gl_.UpdateLights();
    EXPECT_EQ(GLRecorder::TakeText(), allOff);
}

TEST_F(Device, LeavesItsParentForTheWholeScreenAndComesBack) {
    const HWND parent = reinterpret_cast<HWND>(UINT_PTR{0xAB});
    fakeWin32.parent = parent;
    fakeWin32.windowAreas = {{kFakeWindow, {110, 220, 262, 332}}, {parent, {100, 200, 500, 600}}};
    ASSERT_TRUE(Create());
    gl_.Enlarge(false);
    EXPECT_EQ(TakeFakeCalls(), Calls{}) << "there is no environment to lock yet";
    fxSetEnv(&gl_);
    const auto step = [&](bool on, RECT client) {
        fakeWin32.clientArea = client;
        gl_.Enlarge(on);
        EXPECT_EQ(gl_.enlarged, on);
        Calls calls = TakeFakeCalls();
        EXPECT_EQ(calls.front() + calls.back(), "wglMakeCurrent(on)wglMakeCurrent(off)");
        return Calls(calls.begin() + 1, calls.end() - 1);
    };
    EXPECT_EQ(step(false, {0, 0, 152, 112}), Calls{}) << "is in its place";
    EXPECT_EQ(step(true, {0, 0, 1280, 1024}), (Calls{"SetParent(0x0)", "SetWindowPos(0, 0, 1280, 1024, 0)"}));
    EXPECT_EQ(GLRecorder::TakeText(), "glViewport(0,0,1280,1024)");
    fakeWin32.windowAreas[kFakeWindow] = {0, 0, 1280, 1024};
    EXPECT_EQ(step(true, {0, 0, 1280, 1024}), Calls{"SetWindowPos(0, 0, 1280, 1024, 0)"});
    EXPECT_EQ(step(false, {0, 0, 152, 112}), (Calls{"SetParent(0xab)", "SetWindowPos(10, 20, 152, 112, 0)"}));
    EXPECT_TRUE(gl_.width == 152 && gl_.height == 112);
    fxSetEnv(nullptr);
}

} // namespace
