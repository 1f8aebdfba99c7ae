#include "scene/cube_gadget.h"

#include "platform/random.h"
#include "render/environment.h"
#include "render/gl.h"

namespace {

constexpr int kPathPoints = 20;
constexpr float kPathReach = 0.7f;
constexpr double kSlowness = 2.0;           // one factor on all motion
constexpr double kTravel = kSlowness * 320; // seconds per unit of the path's mean segment
constexpr double kSpinX = kSlowness * 28;
constexpr double kSpinY = kSlowness * 36;
constexpr double kDelay = 15;
constexpr double kFade = 2;
constexpr float kCubeScale[3] = {0.3f, 0.366f, 0.3f};
constexpr float kSkinScale = 1.001f;
constexpr float kReflectionDarkness = 0.5f;

// Where a turn brings the front face.
struct FaceTurn {
    bool aboutX;
    float degrees;
};
constexpr FaceTurn kFaceTurns[FXDemoGadget::kFaces] = {{false, 0},  {false, -90}, {false, 90},
                                                       {true, -90}, {true, 90},   {true, 180}};

float localRandomPlace() {
    return (2 * fxGetRandom() - 1) * kPathReach;
}

} // namespace

void FXDemoGadget::CreatePath() {
    path.Destroy();
    fxResetRandom();
    if (!path.points.Realloc(3 * kPathPoints))
        return; // no memory: the cube stays at the origin
    for (int i = 0; i < kPathPoints; ++i) {
        path.points.Push(localRandomPlace());
        path.points.Push(localRandomPlace());
        path.points.Push(0);
    }
    path.closed = true;
    path.Precompute();
    path.PrecomputePhasesLenght();
}

// load(material, whether it is the reflection)
template <class Load> void FXDemoGadget::Build(Load load) {
    CreatePath();
    travel.SetPlain(kTravel * static_cast<double>(path.avgSegment), true);
    spinX.SetPlain(kSpinX, true);
    spinY.SetPlain(kSpinY, true);
    load(&skinMat, false);
    skinMat.SetDefDiffuse(1.0f);
    skinMat.PreserveCols();
    load(&envMat, true);
    envMat.SetDefDiffuse(1.0f);
    envMat.ChangeDarkDiffuse(kReflectionDarkness);
    envMat.PreserveCols();
    FXMatrix front;
    front.SetMoveF(0, 0, -1);
    for (int f = 0; f < kFaces; ++f) {
        faces[f].Create(1, 1);
        faces[f].SetMaterial(&envMat);
        skins[f].Create(1, 1);
        skins[f].SetMaterial(&skinMat);
        FXMatrix turn;
        if (kFaceTurns[f].aboutX)
            turn.SetRotateX(kFaceTurns[f].degrees);
        else
            turn.SetRotateY(kFaceTurns[f].degrees);
        faceMats[f].Multiply(&turn, &front);
    }
    needStart = waiting = fading = true;
    delay.SetPlain(kDelay, false);
    fade.SetPlain(kFade, false);
}

void FXDemoGadget::CreateCN(FXPackage* pck, int envId, int skinId) {
    Build([&](FXMaterial* m, bool isEnv) { m->LoadTextureCN(pck, isEnv ? envId : skinId); });
}

void FXDemoGadget::Create(const char* envFile, const char* skinFile) {
    Build([&](FXMaterial* m, bool isEnv) { m->LoadTexture(isEnv ? envFile : skinFile); });
}

void FXDemoGadget::Destroy() {
    path.Destroy();
    envMat.Destroy();
    skinMat.Destroy();
    for (int f = 0; f < kFaces; ++f) {
        faces[f].Destroy();
        skins[f].Destroy();
    }
}

void FXDemoGadget::FadeIn(PEnv* env, double time) {
    fade.OnRender(env, time);
    if (fade.phase >= 1)
        fading = false;
    const float color[4] = {1, 1, 1, fade.phase};
    skinMat.MultiCols(color);
    envMat.MultiCols(color);
}

void FXDemoGadget::PlaceCube(PEnv* env, double time) {
    travel.OnRender(env, time);
    spinX.OnRender(env, time);
    spinY.OnRender(env, time);
    float at[3];
    path.GetAll(at, travel.phase);
    FXMatrix m;
    m.SetMove(at);
    env->MultiplyMatrix(&m);
    m.SetScale(kCubeScale);
    env->MultiplyMatrix(&m);
    m.SetRotateX(spinX.phase * 360);
    env->MultiplyMatrix(&m);
    m.SetRotateY(spinY.phase * 360);
    env->MultiplyMatrix(&m);
}

void FXDemoGadget::DrawFaces(PEnv* env, FXDesk* desks, const FXMatrix& cube, double time) {
    for (int f = 0; f < kFaces; ++f) {
        env->ApplyMatrix(&cube);
        env->MultiplyMatrix(&faceMats[f]);
        desks[f].OnRender(env, time);
    }
}

void FXDemoGadget::OnRender(PEnv* env, double time) {
    if (needStart)
        delay.Restart(time);
    needStart = false;
    if (waiting) {
        delay.OnRender(env, time);
        if (delay.phase >= 1) {
            fade.Restart(time);
            waiting = false;
        }
        return;
    }
    if (fading)
        FadeIn(env, time);

    glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
    glTexGeni(GL_T, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
    glEnable(GL_TEXTURE_GEN_S);
    glEnable(GL_TEXTURE_GEN_T);
    PlaceCube(env, time);
    const FXMatrix cube = env->matrix;
    DrawFaces(env, faces, cube, time);
    glDisable(GL_TEXTURE_GEN_S);
    glDisable(GL_TEXTURE_GEN_T);

    FXMatrix larger;
    larger.SetScaleF(kSkinScale, kSkinScale, kSkinScale);
    FXMatrix shell;
    shell.Multiply(&cube, &larger);
    DrawFaces(env, skins, shell, time);
}
