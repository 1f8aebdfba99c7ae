#include "scene/logo_gadget.h"

#include "render/environment.h"

double rotate_dur = 8.0;

namespace {

constexpr float kSize = 0.18f; // half the medallion's width, in half screens
constexpr float kRight = 0.9f;
constexpr float kBottom = -0.85f;
constexpr float kNear = -1;
constexpr float kLabelBelow = -0.25f;
constexpr float kLabelScale[2] = {1.332f, 0.333f};
constexpr float kLabelColor[4] = {1, 1, 1, 0.4f};

void localMove(PEnv* env, float x, float y, float z) {
    FXMatrix m;
    m.SetMoveF(x, y, z);
    env->MultiplyMatrix(&m);
}

void localScale(PEnv* env, float x, float y) {
    FXMatrix m;
    m.SetScaleF(x, y, 1);
    env->MultiplyMatrix(&m);
}

} // namespace

void FXOrinGadget::CreateCN(FXPackage* pck, int pictureId, int modelId) {
    medallion.LoadCN(pck, modelId);
    medallion.UpdateMeshes();
    labelMat.LoadTextureCN(pck, pictureId);
    FinishCreate();
}

void FXOrinGadget::Create() {
    medallion.Load("orin_medallion.om");
    medallion.UpdateMeshes();
    medallion.UpdateColCol(kLabelColor);
    labelMat.LoadTexture("label.png");
    FinishCreate();
}

void FXOrinGadget::FinishCreate() {
    needStart = true;
    label.Create(1, 1);
    label.UpdateColCol(kLabelColor);
    label.mesh.colorMode = 1;
    label.SetMaterial(&labelMat);
    spin.SetPlain(rotate_dur, true);
}

void FXOrinGadget::Destroy() {
    medallion.Destroy();
    label.Destroy();
    labelMat.Destroy();
}

void FXOrinGadget::OnRender(PEnv* env, double time) {
    if (needStart)
        spin.Restart(time);
    needStart = false;
    spin.OnRender(env, time);

    const float w = static_cast<float>(env->width);
    const float h = static_cast<float>(env->height);
    const float sx = (w > h ? h / w : 1) * kSize;
    const float sy = (w > h ? 1 : w / h) * kSize;
    const float x = kRight - sx;
    const float y = sy + kBottom;

    env->ApplyMatrixIdentity();
    localMove(env, x, y, kNear);
    localScale(env, sx, sy);
    FXMatrix turn;
    turn.SetRotateY(spin.phase * 360);
    env->MultiplyMatrix(&turn);
    if (showModel)
        DrawModel(env, time);
    env->EnableLights(false);

    env->ApplyMatrixIdentity();
    localMove(env, x, y, kNear);
    localMove(env, 0, kLabelBelow, 0);
    localScale(env, sx, sy);
    localScale(env, kLabelScale[0], kLabelScale[1]);
    label.OnRender(env, time);
}

void FXOrinGadget::DrawModel(PEnv* env, double time) {
    env->EnableLights(true);
    env->EnableDepthTest(true);
    env->EnableDepthWrite(true);
    env->Clrscr(false, true, false);
    medallion.OnRender(env, time);
    env->EnableDepthTest(false);
    env->EnableDepthWrite(false);
}
