#include "scene/screen_placement.h"

#include "render/environment.h"

namespace {

// How far the centre of a span of `size` at `from` lies from the centre of the screen, in half screens.
float localOffset(float size, float screen, float from) {
    return ((size - screen) * 0.5f + from) / screen * 2;
}

// What no integer holds gives 0.
int localTruncate(float x) {
    return x > -2147483648.0f && x < 2147483648.0f ? static_cast<int>(x) : 0;
}

// Pixel `at` of a screen of `screen` pixels on one of `wanted`.
int localRescale(float at, int wanted, float screen) {
    return localTruncate(static_cast<float>(wanted) * at / screen);
}

// Multiplies the matrix by another, which then acts first.
void localMultiply(FXMatrix* m, const FXMatrix& first) {
    const FXMatrix before = *m;
    m->Multiply(&before, &first);
}

} // namespace

void FXScrPos01::SetPos(float x, float y) {
    posX = x;
    posY = y;
    Update();
}

void FXScrPos01::ShiftPos(float dx, float dy) {
    SetPos(posX + screenW * dx, posY + screenH * dy);
}

void FXScrPos01::Update() {
    placeMatrix.SetIdentity();
    if (!HasSizes())
        return;
    FXMatrix scale;
    FXMatrix move;
    scale.SetScaleF(picW / screenW, picH / screenH, 1);
    move.SetMoveF(localOffset(picW, screenW, posX), -localOffset(picH, screenH, posY), 0);
    placeMatrix.Multiply(&move, &scale);
}

void FXScrPos01::UpdateSize() {
    placeMatrix.SetIdentity();
    if (HasSizes())
        placeMatrix.SetScaleF(picW / screenW, picH / screenH, 1);
}

void FXScrPos01::UpdateAspectH1(int mode, float w, float h) {
    const float r = (h / screenH) / (w / screenW);
    if (!(r > 0 && r < 1)) // nor where a size is 0, when r is not a number
        return;
    FXMatrix step;
    if (mode != 0) {
        step.SetMoveF(mode == 1 ? 1 - r : r - 1, 0, 0);
        localMultiply(&placeMatrix, step);
    }
    step.SetScaleF(r, 1, 1);
    localMultiply(&placeMatrix, step);
}

void FXScrPos01::GetPixelRC(FXRect* rc, int w, int h) const {
    rc->SetZero();
    if (!(screenW > 0 && screenH > 0))
        return;
    const auto right = static_cast<float>(localTruncate(posX + picW));
    const auto bottom = static_cast<float>(localTruncate(posY + picH));
    rc->Set(localRescale(posX, w, screenW), localRescale(posY, h, screenH), localRescale(right, w, screenW),
            localRescale(bottom, h, screenH));
}

void FXScrPos01::OnRender(PEnv* env, double) {
    if (!relative)
        return env->ApplyMatrix(&placeMatrix);
    FXMatrix product;
    product.Multiply(&fxglobalEnv->matrix, &placeMatrix);
    env->ApplyMatrix(&product);
}
