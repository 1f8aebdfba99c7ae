// The whole show over the recorder: what is drawn in each stage, and when the stages change.
#include "base/memory.h"
#include "image/codec.h"
#include "unit/whole_show.h"

#include <chrono>
#include <malloc.h>
#include <set>
#include <thread>

namespace {

using Calls = std::vector<std::string>;

// What a thing is drawn with.
struct Drawing {
    std::string name;   // of its texture; "plain" without one
    std::string matrix; // its numbers, if it is not the identity
    std::string lights; // the numbers of those that are on, if lighting is
};

class Show : public testing::Test {
protected:
    static constexpr double kStart = 100;

    Show() {
        show::fire_num = 32;
        std::filesystem::current_path(folder_.Path());
        fakeWin32.libraries = {{"DevIL", "libIL.so.1"}, {"ilu", "libILU.so.1"}};
    }

    void WritePackage(const std::vector<TestEntry>& more = {}) {
        std::vector<TestEntry> entries = SmallShow(folder_);
        entries.insert(entries.begin(), more.begin(), more.end());
        folder_.Write("tamb.dat", PackageOf(entries));
    }
    void Build(bool preview = false) {
        whole_.Build(kStart, preview);
        built_ = GLRecorder::TakeText();
        for (const std::string& call : TakeFakeCalls())
            built_ += call.starts_with("fxDesktop") ? " " + call : "";
    }

    // One frame. Gives what was drawn by the names of the textures, e.g. "space rays "; the cube's faces,
    // which come when they are due, go to faces_.
    std::string Frame(double time) {
        WholeShow::SetClock(time);
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
            } else if (name == "glActiveTexture") {
                secondUnit = what == "GL_TEXTURE1";
            } else if (name == "glBindTexture" && !secondUnit) {
                now.name = NameOf(static_cast<unsigned>(std::stoi(what.substr(14))));
            } else if (name == "glLoadIdentity") {
                now.matrix.clear();
            } else if (name == "glLoadMatrixf") {
                now.matrix = what;
            } else if (name == "glBegin") {
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

    TempFolder folder_;
    WholeShow whole_{folder_, false};
    std::string built_; // the calls of the building, then those for the desktop
    Calls frame_;
    std::vector<Drawing> drawings_;
    std::string faces_;
    std::set<std::string> on_; // what is enabled, from frame to frame
};

const std::string kAlways = "space rays halo lens plain plain plain plain plain label ";

TEST_F(Show, GoesThroughItsCycle) {
    WritePackage();
    Build();
    EXPECT_TRUE(built_.ends_with("Copy(1, 1) fxDesktopLock() fxDesktopUnlock() fxDesktopRelease()"))
        << built_;
    EXPECT_NE(built_.find("112233ff..112233ff)"), std::string::npos) << "the desktop's picture";
    EXPECT_EQ(GLRecorder::LiveTextures(), 9) << "all pictures but the preview's";
    fxSetAllocLimit(1);        // nothing is allocated any more
    std::size_t inUse[3] = {}; // of the heap, whose own caches the first cycle fills
    const auto expect = [&](double time, const std::string& drawn, float alpha,
                            int stage) { // behind the frame
        EXPECT_EQ(Frame(time), kAlways + drawn) << time;
        EXPECT_EQ(show::scr_desk.mesh.vertices[0].color[3], alpha) << time;
        EXPECT_EQ(show::stage, stage) << time;
    };
    double time = kStart;
    for (int cycle = 0; cycle < 3; ++cycle, time += 23) {
        expect(time, "desktop desktop ", 1, show::kDissolving);
        expect(time + 0.5, "desktop desktop ", 0.75f, show::kDissolving);
        expect(time + 2, "desktop desktop ", 0, show::kBurning);
        expect(time + 2.125, "desktop ", 0, show::kBurning);
        const double burning = time;
        GLRecorder::SetNullMode(true);
        for (time += 2.125; show::stage == show::kBurning && time < burning + 17;)
            Frame(time += 0.125);
        GLRecorder::SetNullMode(false);
        EXPECT_GT(time - burning, 5);
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
    EXPECT_EQ(inUse[2], inUse[1]) << "it goes round for days";
    EXPECT_EQ(GLRecorder::LiveTextures(), 9);
}

// Every stage lasts as long as ever there, and what turns goes on turning.
TEST_F(Show, NoStageNoticesThatTheClockStartsAnew) {
    constexpr double kBefore = 4294967.296 - 0.75, kStep = 0.25; // seconds
    const std::tuple<int, double, double> kCases[] = {// the least and the most seconds that it lasts
                                                      {show::kDissolving, 2, 2},
                                                      {show::kBurning, 5, 17},
                                                      {show::kPause, 20, 20},
                                                      {show::kRebuilding, 1, 1.5},
                                                      {show::kReturning, 2, 2}};
    WritePackage();
    GLRecorder::SetNullMode(true);
    fakeWin32.isQuiet = true;
    for (const auto& [stage, least, most] : kCases) {
        SCOPED_TRACE(stage);
        whole_.Build(kBefore - 20);
        for (double time = kBefore - 20; time <= kBefore; time += kStep)
            whole_.Draw(time);
        show::stage = stage;
        show::fire.ReCreate();
        for (FXPhaser* phaser : {&show::scr_phaser, &show::delay_phaser})
            phaser->Restart(kBefore);
        show::reopen.StartAnim(kBefore);
        double time = kBefore, turn = show::phase_sun_rot.phase;
        for (; show::stage == stage && time < kBefore + 400; time += kStep) {
            whole_.Draw(time);
            const double passed = time > kBefore ? kStep : 0;
            EXPECT_NEAR(std::fmod(show::phase_sun_rot.phase - turn + 1, 1), passed / 90, 1e-3) << time;
            turn = show::phase_sun_rot.phase;
        }
        const double lasted = time - kStep - kBefore;
        EXPECT_TRUE(least - 1e-6 <= lasted && lasted <= most + 1e-6) << lasted;
        EXPECT_EQ(show::stage, (stage + 1) % 5);
        whole_.TakeDown();
    }
}

// Where each thing stands is for the pictures (tests/picture).
TEST_F(Show, DrawsEachThingInItsOrderAndLight) {
    WritePackage();
    Build();
    for (const double time : {0.0, 12.5, 35.0})
        Frame(kStart + time);
    show::stage = show::kRebuilding;
    show::reopen.StartAnim(kStart + 37);
    Frame(kStart + 37);
    std::string drawn;
    for (const Drawing& drawing : drawings_)
        drawn += drawing.name + drawing.lights + " ";
    EXPECT_TRUE(drawn.starts_with(
        "space- rays- halo- lens- plain- plain- plain- plain- plain1 label- desktop12 mirror1 "))
        << drawn;
    EXPECT_NEAR(std::stof(drawings_[1].matrix), -1.5f, 1e-3f) << "by the turn of the frame before";
    EXPECT_EQ(Count("glClear(GL_DEPTH_BUFFER_BIT)"), 3) << "medallion, morph and cube";
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
    EXPECT_EQ(drawings_.back().lights, "-") << "the desktop's";
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
        fakeWin32.failing = {copyFails ? "fxDesktopCopy" : "", lockFails ? "fxDesktopLock" : ""};
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

// Its stages come all the same (failing_show_test).
TEST_F(Show, WithoutAnythingTheDesktopIsBlackAndItSaysWhy) {
    fakeWin32.failing = {"fxDesktopCopy"};
    orinPath[0] = '\0';
    configSearch.Set("looked for in many places");
    testing::internal::CaptureStderr();
    Build();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tamblor: package /start/tamb.dat cannot be opened: No such file or directory\n"
              "tamblor: no data folder is known: looked for in many places\n");
    configSearch.Clear();
    EXPECT_NE(built_.find("000000ff..000000ff)"), std::string::npos);
    EXPECT_EQ(Frame(kStart), "plain plain plain plain plain desktop desktop ");
}

TEST_F(Show, PreviewIsOnePictureWhateverOpenGLOffers) {
    WritePackage();
    GLRecorder::SetDriver({.extensions = ""});
    Build(true);
    EXPECT_EQ(built_.find("fxDesktopCopy"), std::string::npos) << "nothing is photographed";
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

TEST_F(Show, IsDrawnByALoopUntilItIsTakenDown) {
    WritePackage();
    fxSetTickSource(nullptr);
    InitScene(kFakeWindow, false);
    const Calls calls = TakeFakeCalls();
    EXPECT_EQ(std::ranges::count(calls, "SetCurrentDirectoryA(" + folder_.File("") + ")"), 1);
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
