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
    for (const std::string failing :
         {"GetDC", "ChoosePixelFormat", "SetPixelFormat", "wglCreateContext", "wglMakeCurrent", ""}) {
        const bool fails = !failing.empty();
        fakeWin32.failing = {failing};
        SetLastError(ERROR_BAD_DRIVER);
        EXPECT_NE(gl_.CreateChild(kFakeWindow), fails) << failing;
        EXPECT_TRUE(!fails || (gl_.rc == nullptr && GetLastError() == ERROR_BAD_DRIVER)) << failing;
        EXPECT_EQ(GLRecorder::Take().empty(), fails) << failing;
        TakeFakeCalls();
        gl_.Destroy();
        const Calls released = TakeFakeCalls();
        EXPECT_EQ(std::ranges::count(released, "wglDeleteContext()"), !fails) << failing;
        EXPECT_EQ(std::ranges::count(released, "ReleaseDC()"), failing != "GetDC") << failing;
        EXPECT_TRUE(gl_.dc == nullptr && gl_.rc == nullptr && gl_.glWindow == nullptr);
    }
    // A context whose window has gone since: no texture is made.
    ASSERT_TRUE(Create());
    FXMaterial material;
    for (const bool gone : {true, false}) {
        fakeWin32.failing = {gone ? "wglMakeCurrent" : ""};
        gl_.SetAct(true);
        FXCanvas white;
        ASSERT_TRUE(white.Realloc(1, 1));
        material.picture = &white;
        EXPECT_TRUE(gl_.PrepareTexture(&material));
        EXPECT_EQ(GLRecorder::Take().empty(), gone);
    }
    material.Destroy();
    gl_.Destroy();
    TakeFakeCalls();

    ASSERT_TRUE(Create());
    EXPECT_FALSE(gl_.CreateChild(nullptr));
    EXPECT_EQ(TakeFakeCalls(), (Calls{"wglMakeCurrent(off)", "wglDeleteContext()", "ReleaseDC()"}))
        << "the one before";
}

TEST_F(Device, KnowsWhatTheDriverOffers) {
    const TempFolder folder;
    const struct {
        const char* extensions;
        std::vector<std::string> found;
        bool creates;
    } kCases[] = {{"GL_ARB_multitexture GL_EXT_bgra", {"EXT_bgra", "ARB_multitexture"}, false},
                  {nullptr, {}, false},
                  {"GL_EXT_bgra_extended", {}, false},
                  {"GL_EXT_bgra_extended GL_EXT_bgra ", {"EXT_bgra"}, false},
                  {"GL_SGIS_texture_edge_clamp", {"EXT_texture_edge_clamp"}, true},
                  {"GL_ARB_texture_non_power_of_two GL_ARB_texture_cube_map GL_EXT_separate_specular_color",
                   {"EXT_separate_specular_color", "ARB_texture_cube_map", "ARB_texture_non_power_of_two"},
                   false}};
    for (const auto& c : kCases) {
        const TraceLines trace(folder);
        GLRecorder::SetDriver({.version = nullptr, .extensions = c.extensions});
        EXPECT_EQ(Create(), c.creates);
        Calls lines = {"OpenGL info:", "vendor: the vendor", "renderer: the renderer", "version: (null)"};
        lines.insert(lines.end(), c.found.begin(), c.found.end());
        EXPECT_EQ(trace.Lines(), lines);
        EXPECT_EQ(gl_.hasSeparateSpecular, std::ranges::count(c.found, "EXT_separate_specular_color") > 0);
        EXPECT_EQ(gl_.hasMultitexture, std::ranges::count(c.found, "ARB_multitexture") > 0);
        EXPECT_EQ(fxMultitexture.glActiveTexture != nullptr, gl_.hasMultitexture);
        EXPECT_NE(gl_.rc, nullptr) << "in use, whatever is missing";
        EXPECT_EQ(gl_.TestGL(false), gl_.hasMultitexture);
        EXPECT_EQ(TakeFakeCalls(), Calls{}) << "no message";
    }
}

TEST_F(Device, TakesANewSizeOverWithTheNextFrame) {
    ASSERT_TRUE(Create());
    for (const auto& [width, height, calls] :
         {std::tuple{152, 112, ""}, {300, 0, ""}, {304, 112, "glViewport(0,0,304,112)"}}) {
        gl_.Resize(width, height);
        EXPECT_EQ(GLRecorder::TakeText(), "") << "the context is another thread's";
        gl_.SetAct(true);
        EXPECT_EQ(GLRecorder::TakeText(), calls);
    }
    EXPECT_TRUE(gl_.width == 304 && gl_.height == 112);
    gl_.Resize(9, 9);
    ASSERT_TRUE(Create());
    gl_.SetAct(true);
    EXPECT_EQ(GLRecorder::TakeText(), "") << "the size of the window before";
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
    gl_.EnableLight(true, &off);
    EXPECT_EQ(GLRecorder::TakeText(), "glEnable(0x0)") << "has no number, and is switched all the same";
    for (const bool lit : {false, true}) {
        gl_.EnableLight(lit, &on);
        EXPECT_NE(on.disabled, lit);
    }
    EXPECT_EQ(GLRecorder::TakeText(), "glDisable(GL_LIGHT2) glEnable(GL_LIGHT2)");
}

} // namespace
