// The whole show over the recorder: what is drawn in each stage, and when the stages change.
#include "base/memory.h"
#include "fakes/fake_desktop.h"
#include "fakes/fake_win32.h"
#include "fakes/gl_recorder.h"
#include "host/configuration.h"
#include "image/codec.h"
#include "platform/clock.h"
#include "platform/trace.h"
#include "scene/show.h"
#include "unit/scene_parts.h"

#include <dlfcn.h>

#include <chrono>
#include <cmath>
#include <sstream>
#include <thread>

namespace {

using Calls = std::vector<std::string>;

std::uint32_t ticks = 0;

// The codec's modules as the scripted platform hands them out.
void OfferCodec() {
    const auto offer = [](const char* module, const char* file, std::initializer_list<const char*> names) {
        void* library = dlopen(file, RTLD_NOW);
        ASSERT_NE(library, nullptr) << file;
        for (const char* name : names)
            fakeWin32.modules[module][name] = reinterpret_cast<FARPROC>(dlsym(library, name));
    };
    offer("DevIL", "libIL.so.1",
          {"ilInit", "ilShutDown", "ilEnable", "ilDisable", "ilSetInteger", "ilGenImages", "ilDeleteImages",
           "ilBindImage", "ilGetInteger", "ilLoadImage", "ilLoadL", "ilSaveImage", "ilCloneCurImage",
           "ilConvertImage", "ilCopyPixels", "ilSetPixels", "ilGetData", "ilTexImage"});
    offer("ilu", "libILU.so.1", {"iluScale", "iluImageParameter"});
}

class Show : public testing::Test {
protected:
    static constexpr double kStart = 100;

    Show() {
        ResetFakeWin32();
        GLRecorder::Reset();
        fakeWin32.glEntryPoints = GLRecorder::EntryPoints();
        fakeDesktop = {};
        fakeDesktop.pixels = {kDesktop, 4, 1, 1};
        fakeWin32.screenWidth = fakeWin32.screenHeight = 1;
        fxSetTickSource([] { return ticks; });
        std::snprintf(orinPath, sizeof orinPath, "/the show");
        show::fire_num = 32;
        std::filesystem::current_path(folder_.File(""));
        OfferCodec();
    }
    ~Show() override {
        DestroyScene();
        fxCloseTraces();
        fxSetTickSource(nullptr);
        orinPath[0] = '\0';
        std::filesystem::current_path(before_);
    }

    // Pictures, models and a morph of twice half a second, whose triangle carries the desktop's picture.
    void WritePackage() {
        FXPackage package;
        const std::string picture = Tga(1, 1, {0xFFFFFFFFu});
        const std::string model = TriangleModel(folder_);
        std::vector<TestEntry> entries;
        for (const int id : {0, 1, 5, 18, 19, 20, 21, 73, 74})
            entries.push_back({id, kTga, picture});
        for (const int id : {4, 11, 13, 15, 17})
            entries.push_back({id, kRaw, model});
        entries.push_back({72, kRaw, Morph()});
        LoadTestPackage(package, folder_, entries);
        std::filesystem::rename(folder_.File("test-package"), folder_.File("tamb.dat"));
    }
    std::string Morph() {
        FXAnim anim;
        for (int i = 0; i < 3; ++i) {
            anim.models.Push(NewModel({TriangleAt(static_cast<float>(i * i))}, "Material001"));
            anim.frameNames.Push("");
            anim.frameTimes.Push(500);
        }
        EXPECT_TRUE(anim.Save(folder_.File("morph").c_str()));
        return folder_.Read("morph");
    }
    void Build(bool preview = false) {
        Set(kStart);
        BuildScene(kFakeWindow, preview);
        GLRecorder::Take();
        TakeFakeCalls();
    }
    static void Set(double time) { ticks = static_cast<std::uint32_t>(std::lround(time * 1000)); }

    // One frame. Gives what was drawn, by the names of the textures: "space rays ...", "plain" without one;
    // the cube's twelve faces, which come when they are due, go to cube_.
    std::string Frame(double time) {
        std::string drawn, bound;
        const std::ptrdiff_t faces = show::isPreview || show::demo.waiting ? 0 : 12;
        bool secondUnit = false;
        Set(time);
        show::sc.OnRender(&show::gr, time);
        EXPECT_EQ(TakeFakeCalls(), Calls{"SwapBuffers()"});
        frame_ = GLRecorder::Take();
        std::ptrdiff_t left = Count("glBegin(GL_TRIANGLES)");
        cube_.clear();
        for (const std::string& call : frame_)
            if (call.starts_with("glActiveTexture("))
                secondUnit = call == "glActiveTexture(GL_TEXTURE1)";
            else if (call.starts_with("glBindTexture(GL_TEXTURE_2D,") && !secondUnit)
                bound = NameOf(static_cast<unsigned>(std::stoi(call.substr(28))));
            else if (call == "glBegin(GL_TRIANGLES)")
                (left-- > faces ? drawn : cube_) += bound + " ";
        return drawn;
    }
    static std::string NameOf(unsigned texture) {
        const std::pair<const char*, const FXMaterial*> kNames[] = {
            {"preview", &show::preview_mat}, {"desktop", &show::scr_mat},      {"space", &show::desk0_mat},
            {"halo", &show::desk1_mat},      {"rays", &show::desk2_mat},       {"lens", &show::desk_lens_mat},
            {"label", &show::gad.labelMat},  {"error", &show::err_gad.errMat}, {"mirror", &show::demo.envMat},
            {"skin", &show::demo.skinMat}};
        for (const auto& [name, material] : kNames)
            if (texture != 0 && material->texName == texture)
                return name;
        return texture == 0 ? "plain" : "unknown";
    }
    std::ptrdiff_t Count(const char* call) const { return std::ranges::count(frame_, call); }

    // Frames until the stage is over; when that was.
    double Last(int stage, double time, double step) {
        const double end = time + 60;
        GLRecorder::SetNullMode(true);
        while (show::stage == stage && time < end)
            Frame(time += step);
        GLRecorder::SetNullMode(false);
        EXPECT_EQ(show::stage, (stage + 1) % 5);
        return time;
    }

    static constexpr unsigned char kDesktop[4] = {0x33, 0x22, 0x11, 0};
    const std::filesystem::path before_ = std::filesystem::current_path();
    TempFolder folder_;
    Calls frame_;
    std::string cube_;
};

const std::string kAlways = "space rays halo lens plain plain plain plain plain label ";

TEST_F(Show, GoesThroughItsCycle) {
    struct Moment {
        double seconds; // from when the burn begins, or ends
        int stage;      // behind it
        std::string drawn;
        float alpha; // of the desktop as it fades
    };
    using namespace show;
    const Moment kBefore[] = {{0, kDissolving, "desktop desktop ", 1},
                              {0.5, kDissolving, "desktop desktop ", 0.75f},
                              {1.875, kDissolving, "desktop desktop ", 0.0625f},
                              {2, kBurning, "desktop desktop ", 0},
                              {2.125, kBurning, "desktop ", 0}};
    const Moment kAfter[] = {{1, kPause, "", 0},
                             {19.875, kPause, "", 0},
                             {20, kRebuilding, "", 0},
                             {20.25, kRebuilding, "desktop ", 0},
                             {20.5, kRebuilding, "desktop ", 0},
                             {20.875, kRebuilding, "desktop ", 0},
                             {21, kReturning, "desktop ", 0},
                             {21.5, kReturning, "desktop desktop ", 0.25f},
                             {22.875, kReturning, "desktop desktop ", 0.9375f},
                             {23, kDissolving, "desktop desktop ", 1}};
    WritePackage();
    Build();
    EXPECT_EQ(fakeDesktop.calls, "copy 1x1, lock, unlock, release");
    EXPECT_EQ(GLRecorder::LiveTextures(), 9) << "all pictures but the preview's";
    fxSetAllocLimit(1); // nothing is allocated any more
    const auto play = [&](double from, const Moment& m) {
        SCOPED_TRACE(m.seconds);
        EXPECT_EQ(Frame(from + m.seconds), kAlways + m.drawn);
        EXPECT_EQ(stage, m.stage);
        EXPECT_EQ(scr_desk.mesh.vertices[0].color[3], m.alpha);
        // Straight on; the last key frame's 4..5 covers the screen.
        EXPECT_TRUE(m.seconds != 20.25 || reopen.imodel.meshes[0]->vertices[0].pos[0] == -8);
    };
    double time = kStart;
    for (int cycle = 0; cycle < 2; ++cycle, time += 23) {
        for (const Moment& moment : kBefore)
            play(time, moment);
        const double burnt = Last(kBurning, time + 2.125, 0.125);
        EXPECT_TRUE(5 < burnt - time && burnt - time < 17) << burnt - time;
        time = burnt;
        for (const Moment& moment : kAfter)
            play(time, moment);
        EXPECT_EQ(cube_, "mirror mirror mirror mirror mirror mirror skin skin skin skin skin skin ");
    }
    fxSetAllocLimit(0);
}

TEST_F(Show, SwitchesAsOftenAsEachStageSays) {
    WritePackage();
    Build();
    const std::string unlit = "glDisable(GL_DEPTH_TEST) glDepthMask(GL_FALSE) glDisable(GL_LIGHTING) ";
    for (const auto& [stage, times] : {std::pair<int, int>{show::kDissolving, 1},
                                       {show::kBurning, 0},
                                       {show::kPause, 0},
                                       {show::kRebuilding, 0},
                                       {show::kReturning, 2}}) {
        show::stage = stage;
        Frame(kStart + stage);
        // What stands before the cycle ends with the label, what comes behind begins with the cube's lights.
        std::string text;
        for (const std::string& call : frame_)
            text += call + " ";
        std::size_t at = text.rfind("glLoadIdentity() glEnable(GL_LIGHTING)");
        ASSERT_NE(at, std::string::npos);
        text.resize(at);
        text.erase(0, text.find("glDisable(GL_DEPTH_TEST) glDepthMask(GL_FALSE) glLoadIdentity()"));
        int found = 0;
        for (at = text.find(unlit); at != std::string::npos; at = text.find(unlit, at + 1))
            ++found;
        EXPECT_EQ(found, times) << stage;
    }
}

FXMatrix Times(const FXMatrix& a, const FXMatrix& b) {
    FXMatrix product;
    product.Multiply(&a, &b);
    return product;
}

FXMatrix Turned(void (FXMatrix::*about)(float), float degrees) {
    FXMatrix m;
    (m.*about)(degrees);
    return m;
}

FXMatrix Placed(float x, float y, float z, float w, float h, float d) {
    FXMatrix move, scale;
    move.SetMoveF(x, y, z);
    scale.SetScaleF(w, h, d);
    return Times(move, scale);
}

// What a thing is drawn with.
struct Drawing {
    std::string name;
    FXMatrix matrix;
    std::string lights; // the numbers of those that are on, if lighting is
    bool depthTest, depthWrite;
};

// The frame's drawings, from its calls; lights are those that the last frame left.
std::vector<Drawing> DrawingsOf(const Calls& frame, std::string lights, std::string (*nameOf)(unsigned)) {
    std::vector<Drawing> drawings;
    Drawing now = {"", FXMatrix(), "", false, false};
    bool lit = false, secondUnit = false;
    for (const std::string& call : frame) {
        const bool on = call.starts_with("glEnable");
        if (call.starts_with("glActiveTexture("))
            secondUnit = call == "glActiveTexture(GL_TEXTURE1)";
        else if (call.starts_with("glBindTexture(GL_TEXTURE_2D,") && !secondUnit)
            now.name = nameOf(static_cast<unsigned>(std::stoi(call.substr(28))));
        else if (call == "glLoadIdentity()")
            now.matrix.SetIdentity();
        else if (call.starts_with("glLoadMatrixf(")) {
            std::stringstream numbers(call.substr(14));
            for (float& element : now.matrix.m)
                numbers >> element, numbers.ignore();
        } else if (call.ends_with("(GL_LIGHTING)"))
            lit = on;
        else if (call.starts_with("glEnable(GL_LIGHT") || call.starts_with("glDisable(GL_LIGHT")) {
            const char number = call[call.size() - 2];
            std::erase(lights, number);
            lights += on ? std::string(1, number) : "";
        } else if (call.ends_with("(GL_DEPTH_TEST)"))
            now.depthTest = on;
        else if (call.starts_with("glDepthMask"))
            now.depthWrite = call == "glDepthMask(GL_TRUE)";
        else if (call == "glBegin(GL_TRIANGLES)") {
            drawings.push_back(now);
            drawings.back().lights = lit ? lights : "-";
        }
    }
    return drawings;
}

TEST_F(Show, DrawsEachThingInItsPlaceAndLight) {
    WritePackage();
    Build();
    const auto turnX = [](float degrees) { return Turned(&FXMatrix::SetRotateX, degrees); };
    const auto turnY = [](float degrees) { return Turned(&FXMatrix::SetRotateY, degrees); };
    for (const double time : {0.0, 12.5, 35.0})
        Frame(kStart + time);
    show::stage = show::kRebuilding;
    show::reopen.StartAnim(kStart + 37);
    Frame(kStart + 37);
    // Phasers that are first advanced at 100 start there or at their last whole run; so they do after the
    // long gaps.
    const float sun = 47 / 90.0f * 360;
    const FXMatrix glow = Placed(-0.6f, -0.6f, 0, 1.5f, 2, 2);
    const FXMatrix core = Times(Placed(-0.6f, -0.6f, 0, 0.6f, 0.8f, 0.6f), turnY(2 * sun));
    const auto shell = [&](float x, float y, float pulse, int axis) {
        float scale[3] = {1 - 0.9f * pulse, 1 - 0.9f * pulse, 1 - 0.9f * pulse};
        scale[axis] = 1 + 0.7f * pulse;
        FXMatrix stretch;
        stretch.SetScale(scale);
        return Times(Times(Times(core, turnX(x)), turnY(y)), stretch);
    };
    const float wide = 112 / 152.0f * 0.18f; // of the window
    const FXMatrix corner = Placed(0.9f - wide, 0.18f - 0.85f, -1, wide, 0.18f, 1);
    FXMatrix towards;
    towards.SetFlipZ();
    const FXMatrix all;
    const Drawing expected[] = {
        {"space", all, "-", false, false},
        {"rays", Times(glow, Turned(&FXMatrix::SetRotateZ, 180)), "-", false, false},
        {"halo", glow, "-", false, false},
        {"lens", all, "-", false, false},
        {"plain", core, "-", true, true},
        {"plain", shell(57 / 80.0f * 360, -47 / 90.0f * 360, 2 / 8.0f, 0), "-", true, false},
        {"plain", shell(-47 / 90.0f * 360, 37 / 100.0f * 360, 2 / 9.0f, 0), "-", true, false},
        {"plain", shell(27 / 110.0f * 360, 17 / 120.0f * 360, 2 / 10.0f, 0), "-", true, false},
        {"plain", Times(corner, turnY(2 / 8.0f * 360)), "1", true, true},
        {"label", Times(Placed(0.9f - wide, -0.92f, -1, wide, 0.18f, 1), Placed(0, 0, 0, 1.332f, 0.333f, 1)),
         "-", false, false},
        {"desktop", towards, "12", true, true},
    };
    const std::vector<Drawing> drawn = DrawingsOf(frame_, "1", NameOf);
    ASSERT_GE(drawn.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const Drawing& is = drawn[i];
        const Drawing& wanted = expected[i];
        SCOPED_TRACE(testing::Message() << i << " " << wanted.name);
        EXPECT_EQ(is.name + " " + is.lights, wanted.name + " " + wanted.lights);
        EXPECT_TRUE(is.depthTest == wanted.depthTest && is.depthWrite == wanted.depthWrite);
        for (int e = 0; e < 16; ++e)
            EXPECT_NEAR(is.matrix.m[e], wanted.matrix.m[e], 2e-5) << e;
    }
    for (const char* light : {"GL_LIGHT1,GL_POSITION,0,0,-1,0", "GL_LIGHT2,GL_POSITION,0,0,1,0",
                              "GL_LIGHT2,GL_SPOT_DIRECTION,0,0,-1", "GL_LIGHT2,GL_DIFFUSE,0.5,0.5,0.5,1"})
        EXPECT_GE(Count(("glLightfv(" + std::string(light) + ")").c_str()), 1) << light;
    EXPECT_EQ(show::planet.models[1]->meshes[0]->vertices[0].color[3], 0.5f) << "the first shell half there";
    EXPECT_EQ(show::planet.models[2]->meshes[0]->vertices[0].color[3], 4 / 9.0f);
}

TEST_F(Show, BeginsInTheSunsLight) {
    WritePackage();
    Build();
    Frame(kStart);
    for (const char* call :
         {"glLightfv(GL_LIGHT0,GL_POSITION,-0.5,-0.2,0.1,0)",
          "glLightfv(GL_LIGHT0,GL_SPOT_DIRECTION,0.5,0.2,-0.1)",
          "glLightfv(GL_LIGHT0,GL_AMBIENT,0.9,0.9,0.9,0.9)", "glLightfv(GL_LIGHT0,GL_DIFFUSE,1,1,1,1)"})
        EXPECT_EQ(Count(call), 1) << call;
    EXPECT_EQ(DrawingsOf(frame_, "", NameOf)[8].lights, "0") << "the medallion's";
    EXPECT_EQ(show::scr_desk.mesh.colorMode, 1);
}

TEST_F(Show, FirstFrameKeepsWhatIsOnTheScreen) {
    WritePackage();
    Build();
    Frame(kStart);
    EXPECT_EQ(Count("glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT)"), 0);
    EXPECT_EQ(Count("glClear(GL_DEPTH_BUFFER_BIT)"), 2) << "medallion and cube";
    EXPECT_EQ(Count("glEnable(GL_NORMALIZE)"), 1);
    for (int i = 1; i < 3; ++i) {
        Frame(kStart + i);
        EXPECT_EQ(Count("glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT)"), 1);
        EXPECT_TRUE(frame_[0] == "glEnable(GL_DEPTH_TEST)" && frame_[1] == "glDepthMask(GL_TRUE)")
            << "or the depth is not cleared";
    }
}

TEST_F(Show, GoesOnWithoutAnything) {
    fakeWin32.modules.clear();
    fakeDesktop.copyFails = true;
    Build();
    EXPECT_EQ(fakeDesktop.calls, "copy 1x1, release");
    EXPECT_EQ(GLRecorder::LiveTextures(), 1);
    EXPECT_EQ(Frame(kStart), "plain plain plain plain plain desktop desktop ");
    double time = kStart;
    for (int cycle = 0; cycle < 2; ++cycle) {
        EXPECT_NEAR(Last(show::kDissolving, time, 0.25) - time, 2, 1e-9);
        time = Last(show::kBurning, time + 2, 0.25);
        EXPECT_NEAR(Last(show::kPause, time, 0.25) - time, 20, 1e-9);
        EXPECT_NEAR(Last(show::kRebuilding, time + 20, 0.25) - time, 20.25, 1e-9) << "nothing to rebuild";
        time = Last(show::kReturning, time + 20.25, 0.25);
    }
}

TEST_F(Show, DesktopThatCannotBePhotographedIsBlack) {
    for (const bool fails : {true, false}) {
        fakeDesktop.copyFails = fails;
        Set(kStart);
        BuildScene(kFakeWindow, false);
        const std::string upload = "gluBuild2DMipmaps(GL_TEXTURE_2D,4,1,1,GL_RGBA,GL_UNSIGNED_BYTE,";
        EXPECT_EQ(std::ranges::count(GLRecorder::Take(),
                                     upload + (fails ? "000000ff..000000ff)" : "112233ff..112233ff)")),
                  1);
        DestroyScene();
    }
}

TEST_F(Show, PreviewIsOnePictureAndLeavesNoTrace) {
    WritePackage();
    Set(kStart);
    BuildScene(kFakeWindow, true);
    EXPECT_EQ(std::ranges::count(TakeFakeCalls(), "SetCurrentDirectoryA(/the show/)"), 1);
    EXPECT_EQ(fakeDesktop.calls, "release") << "nothing is photographed";
    GLRecorder::Take();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Frame(kStart + i), "preview ");
        EXPECT_EQ(Count("glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT)"), 1);
    }
    EXPECT_EQ(show::stage, show::kDissolving);
    EXPECT_FALSE(std::filesystem::exists(folder_.File("tamb.log")));
    DestroyScene();
    Build();
    EXPECT_TRUE(std::filesystem::exists(folder_.File("tamb.log")));
}

TEST_F(Show, PoorOpenGLShowsTheErrorPictureOnTop) {
    WritePackage();
    GLRecorder::SetDriver({.extensions = ""});
    for (const bool preview : {false, true}) {
        Build(preview);
        EXPECT_EQ(show::hasError, !preview) << "the preview is not tested";
        EXPECT_EQ(Frame(kStart), preview ? "preview " : kAlways + "desktop desktop error ");
        for (const double time : {15.0, 16.0}) // the cube comes
            Frame(kStart + time);
        EXPECT_EQ(DrawingsOf(frame_, "", NameOf).back().name, preview ? "preview" : "error")
            << "on top of all";
        DestroyScene();
    }
}

TEST_F(Show, WithoutAContextNothingIsHandedToOpenGL) {
    WritePackage();
    for (const char* failing :
         {"GetDC", "ChoosePixelFormat", "SetPixelFormat", "wglCreateContext", "wglMakeCurrent"})
        for (const bool preview : {false, true}) {
            SCOPED_TRACE(failing);
            std::filesystem::remove(folder_.File("tamb.log"));
            fakeWin32.failing = {failing};
            fakeWin32.lastError = ERROR_BAD_DRIVER;
            const std::string words = "no OpenGL, the screen stays black: status 2001\n";
            testing::internal::CaptureStderr();
            InitScene(kFakeWindow, preview);
            EXPECT_EQ(testing::internal::GetCapturedStderr(), "tamblor: " + words);
            EXPECT_EQ(folder_.Read("tamb.log").ends_with("] " + words), !preview);
            EXPECT_EQ(show::gr.thread, nullptr) << "no loop";
            FXPixmap picture;
            EXPECT_TRUE(picture.Realloc(1, 1) && show::gr.FastPrepareTexture(&show::scr_mat, &picture));
            EXPECT_EQ(show::scr_mat.texName, 0u);
            show::scr_mat.texName = 1; // of a context that was lost
            DestroyScene();
            EXPECT_EQ(GLRecorder::Take(), Calls{});
            fxCloseTraces();
        }
}

TEST_F(Show, SaysWhereItFoundNoPackage) {
    configSearch.Set("looked for in many places");
    const struct {
        const char* folder;
        bool exists, package;
        std::string words;
    } cases[] = {{"/the show", true, true, ""},
                 {"/the show", false, true, "data folder /the show: status 3\n"},
                 {"", true, false,
                  "package /start/tamb.dat cannot be opened: No such file or directory\n"
                  "tamblor: no data folder is known: looked for in many places\n"}};
    for (const auto& c : cases) {
        std::snprintf(orinPath, sizeof orinPath, "%s", c.folder);
        std::filesystem::remove(folder_.File("tamb.log"));
        std::filesystem::remove(folder_.File("tamb.dat"));
        if (c.package)
            WritePackage();
        fakeWin32.failing = {c.exists ? "" : "SetCurrentDirectoryA"};
        fakeWin32.lastError = ERROR_PATH_NOT_FOUND;
        testing::internal::CaptureStderr();
        Build();
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.words.empty() ? "" : "tamblor: " + c.words);
        EXPECT_NE(show::pck.ids.IsEmpty(), c.package) << "looked for in the folder that is current";
        EXPECT_EQ(std::filesystem::exists(folder_.File("tamb.log")), c.exists);
        DestroyScene();
        fxCloseTraces();
    }
    configSearch.Clear();
}

TEST_F(Show, IsTakenDownAndBuiltAgain) {
    WritePackage();
    for (int build = 0; build < 3; ++build) {
        Build();
        EXPECT_EQ(GLRecorder::LiveTextures(), 9);
        EXPECT_EQ(Frame(kStart), kAlways + "desktop desktop ") << "from the beginning";
        Frame(kStart + 16);
        Frame(kStart + 17);
        EXPECT_TRUE(show::stage != show::kDissolving && !cube_.empty()) << "of which nothing is left";
        std::string textures;
        for (const FXMaterial* material :
             {&show::scr_mat, &show::desk0_mat, &show::desk1_mat, &show::desk2_mat, &show::desk_lens_mat,
              &show::demo.envMat, &show::demo.skinMat, &show::gad.labelMat, &show::err_gad.errMat})
            textures += "glDeleteTextures(1," + std::to_string(material->texName) + ") ";
        GLRecorder::Take();
        DestroyScene();
        EXPECT_EQ(GLRecorder::TakeText() + " ", textures);
        EXPECT_EQ(GLRecorder::LiveTextures(), 0);
        EXPECT_FALSE(fxDevilLoaded());
        EXPECT_TRUE(show::gr.rc == nullptr && show::pck.ids.IsEmpty());
    }
}

TEST_F(Show, IsDrawnByALoopUntilItIsTakenDown) {
    WritePackage();
    fxSetTickSource(nullptr);
    static bool loopRuns;
    loopRuns = false;
    fakeDesktop.atRelease = [] { loopRuns = show::gr.thread != nullptr; };
    InitScene(kFakeWindow, false);
    EXPECT_TRUE(loopRuns) << "the photograph is given back after that";
    fakeDesktop.atRelease = [] {};
    Calls calls = TakeFakeCalls();
    const auto raised = std::ranges::find(calls, "SetPriorityClass(0x100)");
    EXPECT_EQ(std::count(raised, calls.end(), "wglMakeCurrent(off)"),
              1 + std::count(raised, calls.end(), "SwapBuffers()"))
        << "the context is current on the building thread until then";
    const auto frames = [] { return std::ranges::count(TakeFakeCalls(), "SwapBuffers()"); };
    std::ptrdiff_t drawn = 0;
    for (int i = 0; i < 1000 && drawn < 3; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        drawn += frames();
    }
    EXPECT_GE(drawn, 3);
    DestroyScene();
    EXPECT_EQ(GLRecorder::LiveTextures(), 0);
    frames();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(frames(), 0);
}

} // namespace
