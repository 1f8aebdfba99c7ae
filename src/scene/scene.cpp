#include "scene/scene.h"

#include "host/configuration.h"
#include "image/codec.h"
#include "image/desktop_shot.h"
#include "image/picture_decoder.h"
#include "platform/clock.h"
#include "platform/paths.h"
#include "platform/report.h"
#include "platform/threads.h"
#include "platform/trace.h"
#include "render/gl.h"
#include "scene/show.h"
#include "win32/product.h"

#include <algorithm>

namespace show {

// Destroyed in reverse: the environment outlives all that draws through it.
FXPackage pck;
Scene sc;
FXGL gr;
FXLight light;
FXLight light1;
FXLight light2;
FXDesk preview;
FXMaterial preview_mat;
FXMaterial scr_mat;
FXFireDesk fire;
FXAnim reopen;
FXPhaser delay_phaser;
FXPlanet planet;
FXDesk desk0;
FXMaterial desk0_mat;
FXDesk desk1;
FXMaterial desk1_mat;
FXDesk desk2;
FXMaterial desk2_mat;
FXDesk desk_lens;
FXMaterial desk_lens_mat;
FXDesk scr_desk;
FXPhaser scr_phaser;
FXOrinGadget gad;
FXErrGadget err_gad;
FXPhaser phase_sun_rot;
FXDemoGadget demo;

bool isPreview = false;
bool hasError = false;
int stage = kDissolving;
bool first = true;
int fire_num = 1024;
const char* logsFile = kLogFile;

} // namespace show

using namespace show;

// Building the show, and taking it down.

namespace {

constexpr double kNoLimit = 100000; // seconds
constexpr double kSunTurn = 90;
constexpr double kPauseSeconds = 20;
constexpr double kFadeSeconds = 2;

// A shell of plasma around the sun's core: how it turns, and how it swells and fades.
struct Shell {
    Entry entry;
    double turn1, turn2; // seconds
    int axis;
    double pulse;
};
constexpr Shell kShells[] = {
    {kSunShell1, 80, 90, 1, 8}, {kSunShell2, 90, 100, 1, 9}, {kSunShell3, 110, 120, 1, 10}};
constexpr int kTurnBoth = 3;

struct FlatPicture {
    Entry entry;
    FXDesk& desk;
    FXMaterial& material;
};
const FlatPicture kFlatPictures[] = {{kSpace, desk0, desk0_mat},
                                     {kHalo, desk1, desk1_mat},
                                     {kRays, desk2, desk2_mat},
                                     {kLens, desk_lens, desk_lens_mat}};

double lastClock = 0;  // as the show last saw it
double clockBegan = 0; // when it last started anew, on the show's own time

// The show's time goes on where the clock starts anew, as it does every 49 days.
double localShowTime(double clock) {
    clockBegan += fxSecondsBetween(lastClock, clock) - (clock - lastClock);
    lastClock = clock;
    return clockBegan + clock;
}

// As if the process had just started.
void localResetState(bool asPreview) {
    lastClock = clockBegan = 0;
    isPreview = asPreview;
    hasError = false;
    stage = kDissolving;
    first = true;
    light = light1 = light2 = FXLight();
    for (FXPhaser* phaser : {&delay_phaser, &scr_phaser, &phase_sun_rot})
        *phaser = FXPhaser();
    for (auto* phasers : {&planet.rot1, &planet.rot2, &planet.pulse})
        for (FXPhaser& phaser : *phasers)
            phaser.Restart(0);
}

// The data folder becomes the current one. When it cannot, the package is looked for in the one that is
// current, but nothing is written there.
bool localChooseFolder() {
    fxInitPaths();
    fxSetTypePath(1, orinPath);
    return fxSetPath(1);
}

// In the data folder, or for this user where that cannot be written.
void localOpenTrace(bool inDataFolder) {
    FXStr name(logsFile);
    if (!name.IsEmpty() && showNumber > 1)
        name.Format("tamb-%d.log", showNumber);
    if (name.IsEmpty() || (inDataFolder && fxOpenTraces(name.text)) || fxTracesOpened())
        return;
    const FXStr elsewhere = fxStateFile(name.text);
    if (!elsewhere.IsEmpty())
        fxOpenTraces(elsewhere.text);
}

void localReportConfiguration(bool found, DWORD error) {
    if (!configProblem.IsEmpty())
        fxReport("%s", configProblem.text);
    if (!found)
        fxReport("data folder %s: %s", orinPath, fxErrorWords(error).text);
}

// Decoding begins with the pictures in the order in which the scene asks for them.
void localDecodeAhead(FXPictureDecoder* decoder, bool desktopTaken) {
    FXArray<int> pictures;
    pictures.Push(kErrorPicture);
    if (isPreview) {
        pictures.Push(kPreviewPicture);
    } else {
        if (!desktopTaken)
            pictures.Push(kCalmPicture);
        FXModel::ListPictures(&pck, kSunCore, &pictures);
        for (const Shell& shell : kShells)
            FXModel::ListPictures(&pck, shell.entry, &pictures);
        for (const FlatPicture& flat : kFlatPictures)
            pictures.Push(flat.entry);
        FXAnim::ListPictures(&pck, kMorph, &pictures);
        pictures.Push(kLabelPicture);
        FXModel::ListPictures(&pck, kMedallionModel, &pictures);
        pictures.Push(kCubeReflection);
        pictures.Push(kCubeSkin);
    }
    decoder->Start(&pck, pictures);
}

void localLoadPackage() {
    pck.Load(kPackageFile);
    if (pck.problem.IsEmpty())
        return;
    fxReport("package %s%s %s", fxGetActPath(), kPackageFile, pck.problem.text);
    if (orinPath[0] == '\0')
        fxReport("no data folder is known: %s", configSearch.text);
}

bool localHasCalmPicture() {
    return pck.GetDataType(kCalmPicture) != kRaw;
}

// The picture is kept as a texture alone. In place of a desktop that cannot be photographed there is the
// package's picture, or black.
void localTakeDesktop(FXScrShot* shot, bool isTaken) {
    if (isTaken || !localHasCalmPicture() || !scr_mat.LoadTextureCN(&pck, kCalmPicture)) {
        if (shot->pixels == nullptr && shot->Realloc(1, 1)) {
            const float black[4] = {0, 0, 0, 1};
            shot->Clear(black);
        }
        scr_mat.SetTexture(shot);
    }
    scr_mat.picture = nullptr;
    shot->ReleasePixels();
    scr_mat.SetDefDiffuse(1.0f);
    scr_mat.name.Set(kDesktopMaterial);
    gr.AddMaterial(&scr_mat);
}

void localCreateSun() {
    planet.AddLayerCN(&pck, kSunCore);
    for (const Shell& shell : kShells) {
        planet.AddLayerCN(&pck, shell.entry);
        planet.SetLayerRot(kTurnBoth, shell.turn1, shell.turn2);
        planet.SetLayerScale(shell.axis, shell.pulse);
        planet.SetLayerTransp(FXPlanet::kTransparencyPulse, shell.pulse);
        planet.SetLayerFluid(true);
    }
    phase_sun_rot.SetPlain(kSunTurn, true);
}

void localCreateLights() {
    constexpr float kLightAt[3] = {-0.5f, -0.2f, 0.1f};
    light.SetDefDiffuse(1.0f);
    for (int i = 0; i < 3; ++i) {
        light.position[i] = kLightAt[i];
        light.spotDirection[i] = -kLightAt[i];
    }
    std::fill_n(light.ambient, 4, 0.9f);
    gr.RegisterLight(&light);
    light1.SetDefDiffuse(1.0f);
    light1.disabled = true;
    gr.RegisterLight(&light1);
    light2.SetDefDiffuse(1.0f);
    light2.SetDiffuseDark(0.5f, 1.0f);
    light2.disabled = true;
    light2.position[2] = 1.0f;
    light2.spotDirection[2] = -1.0f;
    gr.RegisterLight(&light2);
}

void localCreateShow(FXScrShot* shot, bool isTaken) {
    localTakeDesktop(shot, isTaken);
    fire.Create(fire_num);
    fire.desk.SetMaterial(&scr_mat);
    localCreateSun();
    delay_phaser.SetPlain(kPauseSeconds, false);
    scr_desk.Create(1, 1);
    scr_desk.SetMaterial(&scr_mat);
    scr_desk.mesh.colorMode = 1;
    scr_phaser.SetPlain(kFadeSeconds, false);
    for (const FlatPicture& flat : kFlatPictures) {
        flat.material.LoadTextureCN(&pck, flat.entry);
        flat.desk.Create(1, 1);
        flat.desk.SetMaterial(&flat.material);
    }
    localCreateLights();
    LoadMorph(&reopen, &pck);
    gad.CreateCN(&pck, kLabelPicture, kMedallionModel);
    demo.CreateCN(&pck, kCubeReflection, kCubeSkin);
}

// Everything but the loop; the context stays current.
void localBuild(HWND window, bool asPreview, FXScrShot* shot) {
    localResetState(asPreview);
    const bool found = localChooseFolder();
    const DWORD error = GetLastError();
    if (!isPreview)
        localOpenTrace(found);
    localReportConfiguration(found, error);
    fxLoadDevil();
    const bool isTaken = !isPreview && shot->Update(); // now, before anything of the saver is drawn
    gr.CreateChild(window);
    if (gr.rc == nullptr)
        fxReport("no OpenGL, the screen stays black: %s", fxErrorWords(GetLastError()).text);
    if (!isPreview && !gr.TestGL(false))
        hasError = true;
    fxSetEnv(&gr);
    gr.SetAct(true);
    localLoadPackage();
    FXPictureDecoder decoder; // until the show is built
    localDecodeAhead(&decoder, isTaken);
    err_gad.CreateCN(&pck, kErrorPicture);
    err_gad.visible = hasError;
    if (isPreview) {
        preview_mat.LoadTextureCN(&pck, kPreviewPicture);
        preview.Create(1, 1);
        preview.SetMaterial(&preview_mat);
    } else {
        localCreateShow(shot, isTaken);
    }
}

} // namespace

// All key frames are fitted by the last one, which lies flat: it covers the screen, and the desktop picture
// it.
void LoadMorph(FXAnim* morph, FXPackage* package) {
    morph->LoadCN(package, kMorph);
    const int last = morph->models.count - 1;
    morph->UnitizeStretch1(last);
    morph->Normalize(-1, false);
    morph->ComputeFrontTexCoords(last, -1);
    morph->ResizeTextCoords1();
    morph->loop = false;
    morph->pingPong = false;
    morph->linear = true;
    morph->UpdateInterpolation(true, true);
    morph->ReleaseKeyFrames();
}

void BuildScene(HWND window, bool asPreview) {
    FXScrShot shot;
    localBuild(window, asPreview, &shot);
    gr.SetAct(false);
}

void InitScene(HWND window, bool asPreview) {
    FXScrShot shot;
    localBuild(window, asPreview, &shot);
    if (!isPreview)
        fxSetAppPriority(1);
    gr.SetAct(false);
    gr.StartLoop(&sc);
}

void ResizeScene(int width, int height) {
    gr.Resize(width, height);
}

void DestroyScene() {
    gr.StopLoop(kNoLimit);
    preview.Destroy();
    preview_mat.Destroy();
    planet.Destroy();
    scr_mat.Destroy();
    fire.Destroy();
    desk0_mat.Destroy();
    desk0.Destroy();
    desk1_mat.Destroy();
    desk1.Destroy();
    desk2_mat.Destroy();
    desk2.Destroy();
    desk_lens.Destroy();
    desk_lens_mat.Destroy();
    reopen.Destroy();
    scr_desk.Destroy();
    demo.Destroy();
    gad.Destroy();
    err_gad.Destroy();
    pck.Destroy();
    gr.Destroy();
    fxUnloadDevil();
}

// One frame of the show, and the cycle of its stages.

namespace {

constexpr float kSunAt[3] = {-0.6f, -0.6f, 0};
constexpr float kGlowScale[3] = {1.5f, 2.0f, 2.0f};
constexpr float kSunScale[3] = {0.6f, 0.8f, 0.6f};

void localDepth(bool on) {
    gr.EnableDepthTest(on);
    gr.EnableDepthWrite(on);
}

void localUnlit() {
    localDepth(false);
    gr.EnableLights(false);
}

// Flat pictures: no depth, no lights, the whole screen.
void localFlat() {
    localUnlit();
    gr.ApplyMatrixIdentity();
}

void localPlaceAtSun(const float* scale) {
    FXMatrix m;
    m.SetMove(kSunAt);
    gr.ApplyMatrix(&m);
    m.SetScale(scale);
    gr.MultiplyMatrix(&m);
}

// Each of the three lights is on for some of what is drawn.
void localUseLights(bool sun, bool front, bool back) {
    gr.EnableLight(sun, &light);
    gr.EnableLight(front, &light1);
    gr.EnableLight(back, &light2);
}

void localDrawBackground(PEnv* env, double t) {
    localFlat();
    desk0.OnRender(env, t);
    localPlaceAtSun(kGlowScale);
    FXMatrix turn;
    turn.SetRotateZ(phase_sun_rot.phase * 360);
    gr.MultiplyMatrix(&turn);
    desk2.OnRender(env, t);
    localPlaceAtSun(kGlowScale);
    desk1.OnRender(env, t);
    gr.ApplyMatrixIdentity();
    desk_lens.OnRender(env, t);
}

void localDrawSun(PEnv* env, double t) {
    localPlaceAtSun(kSunScale);
    phase_sun_rot.OnRender(env, t);
    FXMatrix turn;
    turn.SetRotateY(phase_sun_rot.phase * 360 * 2);
    gr.MultiplyMatrix(&turn);
    gr.EnableLights(false);
    localDepth(true);
    planet.OnRender(env, t);
    gad.OnRender(env, t);
}

void localAdvanceFade(PEnv* env, double t) {
    localUnlit();
    scr_phaser.OnRender(env, t);
}

void localDrawDesktop(PEnv* env, double t, float alpha) {
    const float color[4] = {1, 1, 1, alpha};
    scr_desk.UpdateColCol(color);
    scr_desk.OnRender(env, t);
}

void localDrawMorph(PEnv* env, double t) {
    gr.EnableLights(true);
    localUseLights(false, true, true);
    gr.UpdateLights();
    FXMatrix m;
    m.SetFlipZ(); // models look towards +z, the screen towards -z
    gr.ApplyMatrix(&m);
    localDepth(true);
    gr.Clrscr(false, true, false);
    reopen.OnRender(env, t);
    gr.EnableLights(false);
    localUseLights(true, false, false);
}

// A stage draws, and at its end sets up the next one, which takes effect in the next frame.

void localDissolve(PEnv* env, double t) {
    fire.OnRender(env, t);
    localAdvanceFade(env, t);
    localDrawDesktop(env, t, 1 - scr_phaser.phase);
    if (scr_phaser.phase >= 1)
        stage = kBurning;
}

void localBurn(PEnv* env, double t) {
    fire.OnRender(env, t);
    if (fire.done) {
        stage = kPause;
        delay_phaser.Restart(t);
    }
}

void localPause(PEnv* env, double t) {
    delay_phaser.OnRender(env, t);
    if (delay_phaser.phase >= 1) {
        stage = kRebuilding;
        reopen.backwards = false;
        reopen.StartAnim(localShowTime(fxGetTime()));
    }
}

void localRebuild(PEnv* env, double t) {
    localDrawMorph(env, t);
    if (!reopen.playing) {
        stage = kReturning;
        scr_phaser.Restart(t);
    }
}

void localReturn(PEnv* env, double t) {
    localDrawMorph(env, t);
    localUnlit(); // localAdvanceFade does so again
    localAdvanceFade(env, t);
    localDrawDesktop(env, t, scr_phaser.phase);
    if (scr_phaser.phase >= 1) {
        stage = kDissolving;
        fire.ReCreate();
        fire.desk.SetMaterial(&scr_mat);
        scr_phaser.Restart(t);
    }
}

void localDrawStage(PEnv* env, double t) {
    switch (stage) {
    case kDissolving:
        return localDissolve(env, t);
    case kBurning:
        return localBurn(env, t);
    case kPause:
        return localPause(env, t);
    case kRebuilding:
        return localRebuild(env, t);
    case kReturning:
        return localReturn(env, t);
    }
}

void localDrawCube(PEnv* env, double t) {
    gr.ApplyMatrixIdentity();
    gr.EnableLights(true);
    localUseLights(false, true, false);
    localDepth(true);
    gr.Clrscr(false, true, false);
    demo.OnRender(env, t);
}

// The first frame has nothing to clear: the desktop covers it.
bool localOpenFrame() {
    if (!first || isPreview) {
        if (!gr.RenderStart())
            return false;
        localDepth(true);
        gr.Clrscr(true, true, false);
        localFlat();
    }
    gr.UpdateLights();
    return true;
}

} // namespace

void Scene::OnRender(PEnv* env, double clock) {
    const double t = localShowTime(clock);
    if (!localOpenFrame())
        return;
    if (isPreview) {
        if (!gr.RenderStart())
            return;
        localFlat();
        preview.OnRender(env, t);
        gr.RenderEnd();
        return;
    }
    if (first)
        scr_phaser.Restart(t);
    first = false;
    glEnable(GL_NORMALIZE); // models come in all sizes
    localDrawBackground(env, t);
    localDrawSun(env, t);
    localDepth(false);
    gr.ApplyMatrixIdentity();
    localDrawStage(env, t);
    localDrawCube(env, t);
    gr.ApplyMatrixIdentity();
    err_gad.OnRender(env, t);
    gr.RenderEnd();
}
