// The device, and textures, materials and meshes on it, call by call; the modules of the codec, and the
// desktop.
#include "fakes/fake_win32.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "image/desktop_shot.h"
#include "image/light.h"
#include "platform/trace.h"
#include "render/gl.h"
#include "unit/recorded_device.h"
#include "unit/temp_folder.h"
#include "unit/test_mesh.h"

#include <algorithm>
#include <cstring>
#include <sstream>

namespace {

using Calls = std::vector<std::string>;

// A trace without threads and times, e.g. {"loading devil", "#ERROR: failed"}.
std::vector<std::string> TraceLines(const std::string& trace) {
    std::vector<std::string> lines;
    std::istringstream log(trace);
    for (std::string line; std::getline(log, line);)
        if (const std::size_t text = line.find("] "); text != std::string::npos)
            lines.push_back((line.starts_with("#ERROR: ") ? "#ERROR: " : "") + line.substr(text + 2));
    return lines;
}

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

TEST_F(Device, GivesBackWhatItGotAndMakesNoTextureOnceItsWindowHasGone) {
    ASSERT_TRUE(Create());
    FXMaterial material;
    FXCanvas white;
    ASSERT_TRUE(white.Realloc(1, 1));
    material.picture = &white;
    for (const bool gone : {true, false}) {
        fakeWin32.failing = {gone ? "wglMakeCurrent" : ""};
        gl_.SetAct(true);
        EXPECT_TRUE(gl_.PrepareTexture(&material));
        EXPECT_EQ(GLRecorder::Take().empty(), gone);
    }
    material.Destroy();
    TakeFakeCalls();
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
        fxOpenTraces(folder.File("trace").c_str());
        GLRecorder::SetDriver({.version = nullptr, .extensions = c.extensions});
        EXPECT_EQ(Create(), c.creates);
        fxCloseTraces();
        Calls lines = {"OpenGL info:", "vendor: the vendor", "renderer: the renderer", "version: (null)"};
        lines.insert(lines.end(), c.found.begin(), c.found.end());
        EXPECT_EQ(TraceLines(folder.Read("trace")), lines);
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

const std::string kBlack = "glMaterialfv(GL_FRONT_AND_BACK,GL_AMBIENT,0,0,0,0) "
                           "glMaterialfv(GL_FRONT_AND_BACK,GL_DIFFUSE,0,0,0,0.5) "
                           "glMaterialfv(GL_FRONT_AND_BACK,GL_SPECULAR,0,0,0,0) "
                           "glMaterialfv(GL_FRONT_AND_BACK,GL_EMISSION,0,0,0,0) "
                           "glMaterialf(GL_FRONT_AND_BACK,GL_SHININESS,0) ";

// Binding of a texture on the active unit; 0: none.
std::string Binding(int name) {
    const std::string bind = "glBindTexture(GL_TEXTURE_2D," + std::to_string(name) + ")";
    return (name > 0 ? "glEnable(GL_TEXTURE_2D) " : "glDisable(GL_TEXTURE_2D) ") + bind;
}
std::string SecondBinding(int name) {
    return "glActiveTexture(GL_TEXTURE1) " + Binding(name) + " glActiveTexture(GL_TEXTURE0)";
}

class Drawing : public testing::Test {
protected:
    Drawing() {
        ResetFakeWin32();
        // Three by two pixels, in a storage of four by two.
        canvas_.Realloc(3, 2);
        static_cast<FXPixmap&>(canvas_).Clear(0x44332211u);
        canvas_.pixels[7] = 0xDDCCBBAAu;
        for (FXMaterial* m : {&plain_, &textured_, &second_})
            m->SetBlack(0.5f);
    }

    RecordedDevice<> device_;
    FXGL& gl_ = device_.gl;
    FXCanvas canvas_;
    FXMaterial plain_, textured_, second_;
};

TEST_F(Drawing, UploadsTheWholeStorage) {
    const std::string bind = "glBindTexture(GL_TEXTURE_2D,1) glPixelStorei(GL_UNPACK_ALIGNMENT,1) ";
    const std::string pixels = "GL_RGBA,GL_UNSIGNED_BYTE,11223344..aabbccdd) ";
    const std::string rest = "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_MAG_FILTER,GL_LINEAR) "
                             "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_WRAP_S,GL_CLAMP_TO_EDGE) "
                             "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_WRAP_T,GL_CLAMP_TO_EDGE) "
                             "glBindTexture(GL_TEXTURE_2D,0)";
    EXPECT_TRUE(textured_.SetTexture(&canvas_));
    EXPECT_EQ(GLRecorder::TakeText(),
              "glGenTextures(1,1) " + bind + "gluBuild2DMipmaps(GL_TEXTURE_2D,4,4,2," + pixels +
                  "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_MIN_FILTER,GL_LINEAR_MIPMAP_LINEAR) " + rest);
    const std::string again = bind + "glTexImage2D(GL_TEXTURE_2D,0,4,4,2,0," + pixels + // the same object
                              "glTexParameteri(GL_TEXTURE_2D,GL_TEXTURE_MIN_FILTER,GL_LINEAR) " + rest;
    textured_.mipmaps = false;
    EXPECT_TRUE(gl_.PrepareTexture(&textured_));
    EXPECT_EQ(GLRecorder::TakeText(), again);
    textured_.mipmaps = true;
    textured_.extentU = textured_.extentV = 0;
    textured_.prepared = false;
    EXPECT_TRUE(gl_.FastPrepareTexture(&textured_, &canvas_));
    EXPECT_EQ(GLRecorder::TakeText(), again);
    EXPECT_TRUE(textured_.prepared && textured_.extentU == 0.75f && textured_.extentV == 1.0f);
    gl_.UnprepareTexture(&textured_);
    gl_.UnprepareTexture(&textured_);
    EXPECT_EQ(GLRecorder::TakeText(), "glDeleteTextures(1,1)");
    EXPECT_TRUE(textured_.prepared && textured_.texName == 0);
}

class MeshDrawing : public Drawing {
protected:
    MeshDrawing() {
        std::vector<TestVertex> vertices, layer;
        for (const float i : {0.0f, 1.0f, 2.0f}) {
            vertices.push_back({{i, 1, 2}, {3, i, 4}, {5, i}});
            layer.push_back({{}, {}, {5, 10 + i}});
        }
        MakeMesh(&mesh_, vertices, {2, 0, 1, 1}); // a rest that makes no triangle is sent as well
        MakeMesh(&layer_, layer, {});
        for (int i = 0; i < 3; ++i)
            mesh_.vertices[i].color[2] = static_cast<float>(i);
    }

    FXMesh mesh_, layer_;
};

TEST_F(MeshDrawing, SendsWhatColourModeLightsAndTextureAskFor) {
    const std::string kUncoloured = "glColor4f(1,1,1,1) glDisable(GL_COLOR_MATERIAL) ";
    const std::string kColoured =
        "glEnable(GL_COLOR_MATERIAL) "
        "glColorMaterial(GL_FRONT_AND_BACK,GL_AMBIENT_AND_DIFFUSE) glColor4f(1,1,1,1) ";
    ASSERT_TRUE(textured_.SetTexture(&canvas_));
    ASSERT_TRUE(second_.SetTexture(&canvas_));
    layer_.material = &second_;
    for (int bits = 0; bits < 16; ++bits) {
        const bool colored = (bits & 1) != 0, lit = (bits & 2) != 0, textured = (bits & 4) != 0,
                   layered = (bits & 8) != 0;
        mesh_.colorMode = colored;
        mesh_.material = textured ? &textured_ : &plain_;
        mesh_.secondMesh = layered ? &layer_ : nullptr;
        gl_.EnableLights(lit);
        GLRecorder::Take();
        gl_.RenderMesh(&mesh_);
        std::string expected = (colored ? kColoured : kUncoloured) + kBlack + Binding(textured ? 1 : 0) +
                               " " + SecondBinding(layered ? 2 : 0) + " glBegin(GL_TRIANGLES)";
        for (const std::string n : {"2", "0", "1", "1"}) {
            expected += colored ? " glColor4fv(0,0," + n + ",0)" : "";
            expected += lit ? " glNormal3fv(3," + n + ",4)" : "";
            expected += textured ? " glTexCoord2fv(5," + n + ")" : "";
            expected += textured && layered ? " glMultiTexCoord2fv(GL_TEXTURE1,5,1" + n + ")" : "";
            expected += " glVertex3fv(" + n + ",1,2)";
        }
        EXPECT_EQ(GLRecorder::TakeText(), expected + " glEnd()") << bits;
    }
    mesh_.material = nullptr; // the default one
    gl_.GetDefaultMaterial()->SetBlack(0.5f);
    gl_.RenderMesh(&mesh_);
    EXPECT_TRUE(GLRecorder::TakeText().starts_with(kColoured + kBlack));
    gl_.EnableTestingMaterial(true);
    gl_.RenderMesh(&mesh_);
    const std::string text = GLRecorder::TakeText();
    EXPECT_TRUE(text.find("glMaterial") == std::string::npos && text.find("Texture") == std::string::npos);
}

TEST_F(MeshDrawing, OfTwoLayersNeedsRoomAndMultitexture) {
    mesh_.disabled = true;
    gl_.RenderMesh(&mesh_);
    EXPECT_EQ(GLRecorder::TakeText(), "") << "not even its material";
    mesh_.disabled = false;
    mesh_.secondMesh = &layer_;
    layer_.vertexCount = layer_.indexCount = 0; // what it draws itself does not matter
    const auto expect = [&](int capacity, bool draws) {
        layer_.vertexCapacity = capacity;
        gl_.RenderMesh(&mesh_);
        EXPECT_EQ(std::ranges::count(GLRecorder::Take(), "glBegin(GL_TRIANGLES)"), draws) << capacity;
    };
    expect(3, true);
    expect(2, false);
    GLRecorder::SetDriver({.missing = "glMultiTexCoord2fv"});
    gl_.CreateChild(kFakeWindow);
    GLRecorder::Take();
    expect(3, false);
}

TEST(ScriptedCodec, ThatIsNotAllThereIsTracedAndGivenBack) {
    static int shutDowns = 0;
    ResetFakeWin32();
    fakeWin32.modules["ilu"] = {};
    // Some of the entry points; it bears to be shut down, ilInit is not called.
    for (const char* name : {"ilInit", "ilShutDown", "ilEnable", "ilDisable", "ilSetInteger"})
        fakeWin32.modules["DevIL"][name] = FakeEntry(+[] { ++shutDowns; });
    const TempFolder folder;
    fxOpenTraces(folder.File("trace").c_str());
    EXPECT_FALSE(fxLoadDevil() || fxDevilLoaded());
    fxCloseTraces();
    EXPECT_EQ(TakeFakeCalls(), (Calls{"LoadLibraryA(DevIL)", "LoadLibraryA(ilu)", "FreeLibrary(module)",
                                      "FreeLibrary(module)"}));
    EXPECT_EQ(TraceLines(folder.Read("trace")),
              (Calls{"loading devil", "#ERROR: failed to load devil libraries", "unload devil"}));
    EXPECT_EQ(shutDowns, 1);
    EXPECT_FALSE(FXCanvas().CreateFromPict(folder.Write("a", "picture").c_str()));
}

// A desktop of 200 x 150 pixels of which (x, y) is blue x, green y, red 0x30.
TEST(Desktop, IsPhotographedWhateverThePitchAndTheScreensSizeWithABlackMargin) {
    constexpr unsigned kWidth = 200, kHeight = 150;
    for (const auto& [padding, screen] : {std::pair{0u, 200u}, {12, 200}, {0, 100}, {0, 250}}) {
        const unsigned pitch = 4 * kWidth + padding;
        std::vector<unsigned char> bytes(pitch * (kHeight - 1) + 4 * kWidth); // the last row ends the block
        for (unsigned i = 0; i < kWidth * kHeight; ++i) {
            unsigned char* pixel = &bytes[i / kWidth * pitch + 4 * (i % kWidth)];
            pixel[0] = static_cast<unsigned char>(i % kWidth);
            pixel[1] = static_cast<unsigned char>(i / kWidth);
            pixel[2] = 0x30;
        }
        ResetFakeWin32();
        fakeWin32.desktop = {bytes.data(), static_cast<int>(pitch), kWidth, kHeight};
        fakeWin32.screenWidth = static_cast<int>(screen);
        fakeWin32.screenHeight = kHeight;
        FXScrShot shot;
        ASSERT_TRUE(shot.Update() && shot.opaque);
        EXPECT_EQ(TakeFakeCalls(), (Calls{"fxDesktopCopy(" + std::to_string(screen) + ", 150)",
                                          "fxDesktopLock()", "fxDesktopUnlock()"}));
        for (unsigned i = 0; i < static_cast<unsigned>(shot.width) * kHeight; ++i) {
            const unsigned x = i % static_cast<unsigned>(shot.width),
                           y = i / static_cast<unsigned>(shot.width);
            const std::uint32_t shown = x < std::min(kWidth, screen) ? 0x30u | y << 8 | x << 16 : 0;
            ASSERT_EQ(shot.pixels[i], 0xFF000000u | shown) << x << "," << y;
        }
        fakeWin32.failing = {"fxDesktopLock"};
        EXPECT_FALSE(shot.Update());
        EXPECT_EQ(TakeFakeCalls().back(), "fxDesktopRelease()")
            << "a copy that cannot be locked is given back";
    }
}

} // namespace
