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
#include "unit/small_show.h"

#include <chrono>
#include <cmath>
#include <malloc.h>
#include <set>
#include <sstream>
#include <thread>

namespace {

using Calls = std::vector<std::string>;

std::uint32_t ticks = 0;

// What a thing is drawn with.
struct Drawing {
    std::string name; // of its texture; "plain" without one
    FXMatrix matrix;
    std::string lights; // the numbers of those that are on, if lighting is
    bool depthTest = false, depthWrite = false;
};

class Show : public testing::Test {
protected:
    static constexpr double kStart = 100;

    Show() {
        ResetFakeWin32();
        GLRecorder::Reset();
        fakeDesktop = {};
        fakeDesktop.pixels = {kDesktop, 4, 1, 1};
        fakeWin32.screenWidth = fakeWin32.screenHeight = 1;
        fxSetTickSource([] { return ticks; });
        std::snprintf(orinPath, sizeof orinPath, "/the show");
        show::fire_num = 32;
        std::filesystem::current_path(folder_.File(""));
        fakeWin32.libraries = {{"DevIL", "libIL.so.1"}, {"ilu", "libILU.so.1"}};
    }
    ~Show() override {
        DestroyScene();
        fxCloseTraces();
        fxSetTickSource(nullptr);
        orinPath[0] = '\0';
        std::filesystem::current_path(before_);
    }

    void WritePackage(const std::vector<TestEntry>& more = {}) {
        std::vector<TestEntry> entries = SmallShow(folder_);
        entries.insert(entries.begin(), more.begin(), more.end());
        folder_.Write("tamb.dat", PackageOf(entries));
    }
    void Build(bool preview = false) {
        Set(kStart);
        BuildScene(kFakeWindow, preview);
        built_ = GLRecorder::TakeText();
        TakeFakeCalls();
    }
    static void Set(double time) { ticks = static_cast<std::uint32_t>(std::lround(time * 1000)); }

    // One frame. Gives what was drawn by the names of the textures, e.g. "space rays "; the cube's faces,
    // which come when they are due, go to faces_.
    std::string Frame(double time) {
        Set(time);
        show::sc.OnRender(&show::gr, time);
        EXPECT_EQ(TakeFakeCalls(), Calls{"SwapBuffers()"});
        frame_ = GLRecorder::Take();
        ReadDrawings();
        std::string drawn;
        faces_.clear();
        for (const Drawing& drawing : drawings_)
            (drawing.name == "mirror" || drawing.name == "skin" ? faces_ : drawn) += drawing.name + " ";
        return drawn;
    }
    void ReadDrawings() {
        drawings_.clear();
        Drawing now;
        bool secondUnit = false;
        for (const std::string& call : frame_) {
            const std::size_t bracket = call.find('(');
            const std::string name = call.substr(0, bracket);
            const std::string what = call.substr(bracket + 1, call.size() - bracket - 2);
            if (name == "glEnable") {
                on_.insert(what);
            } else if (name == "glDisable") {
                on_.erase(what);
            } else if (name == "glDepthMask") {
                now.depthWrite = what == "GL_TRUE";
            } else if (name == "glActiveTexture") {
                secondUnit = what == "GL_TEXTURE1";
            } else if (name == "glBindTexture" && !secondUnit) {
                now.name = NameOf(static_cast<unsigned>(std::stoi(what.substr(14))));
            } else if (name == "glLoadIdentity") {
                now.matrix.SetIdentity();
            } else if (name == "glLoadMatrixf") {
                std::stringstream numbers(what);
                for (float& element : now.matrix.m)
                    numbers >> element, numbers.ignore();
            } else if (name == "glBegin") {
                now.depthTest = on_.contains("GL_DEPTH_TEST");
                now.lights = on_.contains("GL_LIGHTING") ? "" : "-";
                for (const std::string light : {"0", "1", "2"})
                    now.lights += now.lights != "-" && on_.contains("GL_LIGHT" + light) ? light : "";
                drawings_.push_back(now);
            }
        }
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
    std::string built_; // the calls of the building
    Calls frame_;
    std::vector<Drawing> drawings_;
    std::string faces_;
    std::set<std::string> on_; // what is enabled, from frame to frame
};

const std::string kAlways = "space rays halo lens plain plain plain plain plain label ";

TEST_F(Show, GoesThroughItsCycle) {
    WritePackage();
    Build();
    EXPECT_EQ(fakeDesktop.calls, "copy 1x1, lock, unlock, release");
    EXPECT_NE(built_.find("112233ff..112233ff)"), std::string::npos) << "the desktop's picture";
    EXPECT_EQ(GLRecorder::LiveTextures(), 9) << "all pictures but the preview's";
    fxSetAllocLimit(1);        // nothing is allocated any more
    std::size_t inUse[2] = {}; // of the heap
    const auto expect = [&](double time, const std::string& drawn, float alpha,
                            int stage) { // behind the frame
        EXPECT_EQ(Frame(time), kAlways + drawn) << time;
        EXPECT_EQ(show::scr_desk.mesh.vertices[0].color[3], alpha) << time;
        EXPECT_EQ(show::stage, stage) << time;
    };
    double time = kStart;
    for (int cycle = 0; cycle < 2; ++cycle, time += 23) {
        expect(time, "desktop desktop ", 1, show::kDissolving);
        expect(time + 0.5, "desktop desktop ", 0.75f, show::kDissolving);
        expect(time + 2, "desktop desktop ", 0, show::kBurning);
        expect(time + 2.125, "desktop ", 0, show::kBurning);
        const double burnt = Last(show::kBurning, time + 2.125, 0.125);
        EXPECT_TRUE(5 < burnt - time && burnt - time < 17) << burnt - time;
        time = burnt;
        expect(time + 19.875, "", 0, show::kPause);
        expect(time + 20, "", 0, show::kRebuilding);
        expect(time + 20.25, "desktop ", 0, show::kRebuilding);
        // Straight on; the last key frame's 4..5 covers the screen, and the picture it.
        const tagFXVertex* corners = show::reopen.imodel.meshes[0]->vertices;
        EXPECT_TRUE(corners[0].pos[0] == -8 && corners[1].tex[0] == 1);
        expect(time + 20.875, "desktop ", 0, show::kRebuilding);
        expect(time + 21, "desktop ", 0, show::kReturning);
        expect(time + 21.5, "desktop desktop ", 0.25f, show::kReturning);
        expect(time + 23, "desktop desktop ", 1, show::kDissolving);
        EXPECT_EQ(faces_, "mirror mirror mirror mirror mirror mirror skin skin skin skin skin skin ");
        frame_ = {};
        drawings_ = {};
        inUse[cycle] = mallinfo2().uordblks; // a sanitizer's heap has none
    }
    fxSetAllocLimit(0);
    EXPECT_EQ(inUse[1], inUse[0]) << "it goes round for days";
    EXPECT_EQ(GLRecorder::LiveTextures(), 9);
}

// Every stage lasts as long as ever, and what turns goes on turning, where the clock starts anew in its
// middle, and where it passes some minutes at once, as for a machine that was asleep.
TEST_F(Show, NoStageNoticesThatTheClockStartsAnew) {
    constexpr double kAnew = 4294967.296, kStep = 0.25, kHalf = 0.75; // seconds
    const struct {
        int stage;
        double least, most;
    } kCases[] = {{show::kDissolving, 2, 2},
                  {show::kBurning, 5, 17},
                  {show::kPause, 20, 20},
                  {show::kRebuilding, 1, 1.5},
                  {show::kReturning, 2, 2}};
    WritePackage();
    GLRecorder::SetNullMode(true);
    const auto draw = [](double time) {
        Set(time);
        show::sc.OnRender(&show::gr, fxGetTime());
    };
    for (const auto& [stage, least, most] : kCases)
        for (const double start : {1000.0, kAnew - kHalf})
            for (const double sleep : {0.0, 300.0}) {
                SCOPED_TRACE(testing::Message()
                             << "stage " << stage << " at " << start << ", asleep for " << sleep);
                Set(start - 20);
                BuildScene(kFakeWindow, false);
                for (double time = start - 20; time <= start; time += kStep)
                    draw(time);
                show::stage = stage;
                show::fire.ReCreate();
                for (FXPhaser* phaser : {&show::scr_phaser, &show::delay_phaser})
                    phaser->Restart(start);
                show::reopen.StartAnim(start);
                double time = start, turn = show::phase_sun_rot.phase, spin = show::gad.spin.phase;
                for (; show::stage == stage && time < start + 400;
                     time += time < start + kHalf ? kStep : kStep + sleep) {
                    draw(time);
                    if (sleep > 0)
                        continue;
                    const double turned = std::fmod(show::phase_sun_rot.phase - turn + 1, 1),
                                 spun = std::fmod(show::gad.spin.phase - spin + 1, 1);
                    EXPECT_NEAR(turned, time > start ? kStep / 90 : 0, 1e-3) << time - start;
                    EXPECT_NEAR(spun, time > start ? kStep / 8 : 0, 1e-3) << time - start;
                    turn = show::phase_sun_rot.phase;
                    spin = show::gad.spin.phase;
                }
                const double lasted = time - kStep - start;
                EXPECT_EQ(show::stage, (stage + 1) % 5);
                if (sleep == 0) {
                    EXPECT_TRUE(least - 1e-6 <= lasted && lasted <= most + 1e-6) << lasted;
                } else {
                    EXPECT_LE(lasted, 2 * (sleep + kStep) + 1);
                }
                for (double later = 0; later < 60 && show::stage != stage; later += kStep)
                    draw(time + later);
                EXPECT_EQ(show::stage, stage) << "and it comes again";
                DestroyScene();
                TakeFakeCalls();
            }
    GLRecorder::SetNullMode(false);
}

TEST_F(Show, DrawsEachThingInItsPlaceAndLight) {
    WritePackage();
    Build();
    for (const double time : {0.0, 12.5, 35.0})
        Frame(kStart + time);
    show::stage = show::kRebuilding;
    show::reopen.StartAnim(kStart + 37);
    Frame(kStart + 37);
    // Phasers that are first advanced at 100 start there or at their last whole run; so they do after the
    // long gaps.
    const float sun = 47 / 90.0f * 360, wide = 112 / 152.0f * 0.18f; // of the window
    const FXMatrix at = Move(-0.6f, -0.6f, 0), glow = Scale(1.5f, 2, 2),
                   corner = Move(0.9f - wide, -0.67f, -1), size = Scale(0.6f, 0.8f, 0.6f);
    const auto shell = [&](float x, float y, float pulse) -> std::vector<FXMatrix> {
        const FXMatrix stretch = Scale(1 + 0.7f * pulse, 1 - 0.9f * pulse, 1 - 0.9f * pulse);
        return {at, size, TurnY(2 * sun), TurnX(x), TurnY(y), stretch};
    };
    const struct {
        std::string what; // the name, and the lights
        bool depthTest, depthWrite;
        std::vector<FXMatrix> factors;
    } kExpected[] = {
        {"space -", false, false, {}},
        {"rays -", false, false, {at, glow, Made(&FXMatrix::SetRotateZ, 180.0f)}},
        {"halo -", false, false, {at, glow}},
        {"lens -", false, false, {}},
        {"plain -", true, true, shell(0, 0, 0)},
        {"plain -", true, false, shell(57 / 80.0f * 360, -47 / 90.0f * 360, 2 / 8.0f)},
        {"plain -", true, false, shell(-47 / 90.0f * 360, 37 / 100.0f * 360, 2 / 9.0f)},
        {"plain -", true, false, shell(27 / 110.0f * 360, 17 / 120.0f * 360, 2 / 10.0f)},
        {"plain 1", true, true, {corner, Scale(wide, 0.18f, 1), TurnY(2 / 8.0f * 360)}},
        {"label -", false, false, {corner, Move(0, -0.25f, 0), Scale(wide * 1.332f, 0.18f * 0.333f, 1)}},
        {"desktop 12", true, true, {Made(&FXMatrix::SetFlipZ)}},
        {"mirror 1", true, true, {drawings_.back().matrix}},
    };
    ASSERT_EQ(drawings_.size(), std::size(kExpected) + 11);
    for (std::size_t i = 0; i < std::size(kExpected); ++i) {
        const Drawing& is = drawings_[i];
        const auto& wanted = kExpected[i];
        SCOPED_TRACE(testing::Message() << i << " " << wanted.what);
        EXPECT_EQ(is.name + " " + is.lights, wanted.what);
        EXPECT_TRUE(is.depthTest == wanted.depthTest && is.depthWrite == wanted.depthWrite);
        if (is.name != "mirror")
            ExpectMatrix(is.matrix, wanted.factors);
    }
    EXPECT_EQ(Count("glClear(GL_DEPTH_BUFFER_BIT)"), 3) << "medallion, morph and cube";
    for (const char* light : {"GL_LIGHT1,GL_POSITION,0,0,-1,0", "GL_LIGHT2,GL_POSITION,0,0,1,0",
                              "GL_LIGHT2,GL_SPOT_DIRECTION,0,0,-1", "GL_LIGHT2,GL_DIFFUSE,0.5,0.5,0.5,1"})
        EXPECT_GE(Count(("glLightfv(" + std::string(light) + ")").c_str()), 1) << light;
    EXPECT_EQ(show::planet.models[1]->meshes[0]->vertices[0].color[3], 0.5f) << "the first shell half there";
    EXPECT_EQ(show::planet.models[2]->meshes[0]->vertices[0].color[3], 4 / 9.0f);
}

TEST_F(Show, FirstFrameKeepsWhatIsOnTheScreenAndHasTheSunsLight) {
    WritePackage();
    Build();
    Frame(kStart);
    EXPECT_EQ(Count("glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT)"), 0);
    EXPECT_EQ(Count("glClear(GL_DEPTH_BUFFER_BIT)"), 2) << "medallion and cube";
    for (const char* call :
         {"glLightfv(GL_LIGHT0,GL_POSITION,-0.5,-0.2,0.1,0)", "glEnable(GL_NORMALIZE)",
          "glLightfv(GL_LIGHT0,GL_SPOT_DIRECTION,0.5,0.2,-0.1)",
          "glLightfv(GL_LIGHT0,GL_AMBIENT,0.9,0.9,0.9,0.9)", "glLightfv(GL_LIGHT0,GL_DIFFUSE,1,1,1,1)"})
        EXPECT_EQ(Count(call), 1) << call;
    EXPECT_EQ(drawings_[8].lights, "0") << "the medallion's";
    EXPECT_EQ(show::scr_desk.mesh.colorMode, 1);
    const Drawing& desktop = drawings_.back();
    EXPECT_TRUE(!desktop.depthTest && !desktop.depthWrite && desktop.lights == "-");
    ExpectMatrix(desktop.matrix, {});
    for (int i = 1; i < 3; ++i) {
        Frame(kStart + i);
        EXPECT_EQ(Count("glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT)"), 1);
        EXPECT_TRUE(frame_[0] == "glEnable(GL_DEPTH_TEST)" && frame_[1] == "glDepthMask(GL_TRUE)")
            << "or the depth is not cleared";
    }
}

TEST_F(Show, BuiltAnewBurnsThePackagesOwnPictureWhereTheDesktopCannotBePhotographed) {
    WritePackage({{90, kTga, Tga(1, 1, {0xFF776655u})}});
    for (const auto& [copyFails, lockFails] : {std::pair{true, false}, {false, true}, {false, false}}) {
        fakeDesktop.copyFails = copyFails;
        fakeDesktop.lockFails = lockFails;
        Build();
        EXPECT_EQ(built_.find("556677ff") != std::string::npos, copyFails || lockFails);
        EXPECT_EQ(Frame(kStart), kAlways + "desktop desktop ") << "from the beginning";
        EXPECT_TRUE(show::scr_mat.name.Compare("Material001"));
        EXPECT_EQ(show::scr_mat.diffuse[3], 1);
        Frame(kStart + 16);
        Frame(kStart + 17);
        EXPECT_TRUE(show::stage != show::kDissolving && !faces_.empty()) << "of which nothing is left";
        DestroyScene();
        EXPECT_EQ(GLRecorder::LiveTextures(), 0);
        EXPECT_TRUE(!fxDevilLoaded() && show::gr.rc == nullptr && show::pck.ids.IsEmpty());
    }
}

TEST_F(Show, GoesOnWithoutAnythingAndSaysWhere) {
    fakeWin32.libraries.clear();
    fakeDesktop.copyFails = true;
    orinPath[0] = '\0';
    configSearch.Set("looked for in many places");
    testing::internal::CaptureStderr();
    Build();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tamblor: package /start/tamb.dat cannot be opened: No such file or directory\n"
              "tamblor: no data folder is known: looked for in many places\n");
    configSearch.Clear();
    EXPECT_NE(built_.find("000000ff..000000ff)"), std::string::npos) << "a black desktop";
    EXPECT_EQ(fakeDesktop.calls, "copy 1x1, release");
    EXPECT_EQ(GLRecorder::LiveTextures(), 1);
    EXPECT_EQ(Frame(kStart), "plain plain plain plain plain desktop desktop ");
    EXPECT_NEAR(Last(show::kDissolving, kStart, 0.25) - kStart, 2, 1e-9);
    const double burnt = Last(show::kBurning, kStart + 2, 0.25);
    EXPECT_NEAR(Last(show::kPause, burnt, 0.25) - burnt, 20, 1e-9);
    EXPECT_NEAR(Last(show::kRebuilding, burnt + 20, 0.25) - burnt, 20.25, 1e-9) << "nothing to rebuild";
    Last(show::kReturning, burnt + 20.25, 0.25);
}

TEST_F(Show, PreviewIsOnePictureWhateverOpenGLOffers) {
    WritePackage();
    GLRecorder::SetDriver({.extensions = ""});
    Build(true);
    EXPECT_EQ(fakeDesktop.calls, "release") << "nothing is photographed";
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Frame(kStart + i), "preview ");
        EXPECT_EQ(Count("glClear(GL_COLOR_BUFFER_BIT|GL_DEPTH_BUFFER_BIT)"), 1);
    }
    EXPECT_FALSE(show::hasError || std::filesystem::exists(folder_.File("tamb.log")));
    DestroyScene();
    Build();
    EXPECT_TRUE(show::hasError && std::filesystem::exists(folder_.File("tamb.log")));
    EXPECT_EQ(Frame(kStart), kAlways + "desktop desktop error ");
    for (const double time : {15.0, 16.0}) // the cube comes
        Frame(kStart + time);
    EXPECT_EQ(drawings_.back().name, "error") << "on top of all";
}

TEST_F(Show, WithoutAContextNothingIsHandedToOpenGL) {
    WritePackage();
    fakeWin32.failing = {"wglCreateContext"};
    for (const bool preview : {false, true}) {
        SetLastError(77);
        testing::internal::CaptureStderr();
        InitScene(kFakeWindow, preview);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "tamblor: no OpenGL, the screen stays black: status 77\n");
        EXPECT_EQ(show::gr.thread, nullptr) << "no loop";
        show::scr_mat.texName = 1; // of a context that was lost
        DestroyScene();
        EXPECT_EQ(GLRecorder::Take(), Calls{});
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
    const Calls calls = TakeFakeCalls();
    EXPECT_EQ(std::ranges::count(calls, "SetCurrentDirectoryA(/the show/)"), 1);
    const auto raised = std::ranges::find(calls, "SetPriorityClass(0x100)");
    EXPECT_EQ(std::count(raised, calls.end(), "wglMakeCurrent(off)"),
              1 + std::count(raised, calls.end(), "SwapBuffers()"))
        << "the context is current on the building thread until then";
    const auto framesOf = [](int milliseconds) {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        return std::ranges::count(TakeFakeCalls(), "SwapBuffers()");
    };
    std::ptrdiff_t drawn = 0;
    for (int i = 0; i < 1000 && drawn < 3; ++i)
        drawn += framesOf(10);
    EXPECT_GE(drawn, 3);
    DestroyScene();
    framesOf(0);
    EXPECT_EQ(framesOf(20), 0);
}

} // namespace
