#include "scene/scene.h"

#include "host/configuration.h"
#include "image/codec.h"
#include "image/desktop_shot.h"
#include "platform/paths.h"
#include "platform/report.h"
#include "platform/threads.h"
#include "platform/trace.h"
#include "scene/show.h"

#include <algorithm>

using namespace show;

namespace {

constexpr const char* kPackageFile = "tamb.dat";
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

// As if the process had just started.
void localResetState(bool asPreview) {
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
    if (*logsFile == '\0' || (inDataFolder && fxOpenTraces(logsFile)) || fxTracesOpened())
        return;
    const FXStr elsewhere = fxStateFile(logsFile);
    if (!elsewhere.IsEmpty())
        fxOpenTraces(elsewhere.text);
}

void localReportConfiguration(bool found, DWORD error) {
    if (!configProblem.IsEmpty())
        fxReport("%s", configProblem.text);
    if (!found)
        fxReport("data folder %s: %s", orinPath, fxErrorWords(error).text);
}

void localLoadPackage() {
    pck.Load(kPackageFile);
    if (pck.problem.IsEmpty())
        return;
    fxReport("package %s%s %s", fxGetActPath(), kPackageFile, pck.problem.text);
    if (orinPath[0] == '\0')
        fxReport("no data folder is known: %s", configSearch.text);
}

// The picture lives on as a texture; what remains of a desktop that cannot be photographed is black.
void localTakeDesktop(FXScrShot* shot) {
    if (shot->pixels == nullptr && shot->Realloc(1, 1)) {
        const float black[4] = {0, 0, 0, 1};
        shot->Clear(black);
    }
    scr_mat.SetTexture(shot);
    scr_mat.picture = nullptr; // the photograph does not outlive the building
    scr_mat.SetDefDiffuse(1.0f);
    scr_mat.name.Set("Material001");
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
    constexpr float kSunAt[3] = {-0.5f, -0.2f, 0.1f};
    light.SetDefDiffuse(1.0f);
    for (int i = 0; i < 3; ++i) {
        light.position[i] = kSunAt[i];
        light.spotDirection[i] = -kSunAt[i];
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

// All key frames are fitted by the last one, which lies flat: it covers the screen, and the desktop picture
// it.
void localCreateMorph() {
    reopen.LoadCN(&pck, kMorph);
    const int last = reopen.models.count - 1;
    reopen.UnitizeStretch1(last);
    reopen.Normalize(-1, false);
    reopen.ComputeFrontTexCoords(last, -1);
    reopen.ResizeTextCoords1();
    reopen.loop = false;
    reopen.pingPong = false;
    reopen.linear = true;
    reopen.UpdateInterpolation(true, true);
}

void localCreateShow(FXScrShot* shot) {
    localTakeDesktop(shot);
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
    localCreateMorph();
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
    if (!isPreview)
        shot->Update(); // now, before anything of the saver is drawn
    gr.CreateChild(window);
    if (gr.rc == nullptr)
        fxReport("no OpenGL, the screen stays black: %s", fxErrorWords(GetLastError()).text);
    if (!isPreview && !gr.TestGL(false))
        hasError = true;
    fxSetEnv(&gr);
    gr.SetAct(true);
    localLoadPackage();
    err_gad.CreateCN(&pck, kErrorPicture);
    err_gad.visible = hasError;
    if (isPreview) {
        preview_mat.LoadTextureCN(&pck, kPreviewPicture);
        preview.Create(1, 1);
        preview.SetMaterial(&preview_mat);
    } else {
        localCreateShow(shot);
    }
}

} // namespace

void BuildScene(HWND window, bool asPreview) {
    FXScrShot shot;
    localBuild(window, asPreview, &shot);
    gr.SetAct(false);
}

void InitScene(HWND window, bool asPreview) {
    FXScrShot shot; // lives until the loop has started
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
