#include "scene/screen_placement.h"

#include "env/environment.h"

namespace {

// How far the centre of a span of `size` at `from` lies from the centre of the screen, in half screens.
float localOffset(float size, float screen, float from) {
    return ((size - screen) * 0.5f + from) / screen * 2;
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
    if (!(screenW > 0 && screenH > 0 && picW > 0 && picH > 0))
        return;
    FXMatrix scale;
    FXMatrix move;
    scale.SetScaleF(picW / screenW, picH / screenH, 1);
    move.SetMoveF(localOffset(picW, screenW, posX), -localOffset(picH, screenH, posY), 0);
    placeMatrix.Multiply(&move, &scale);
}

void FXScrPos01::OnRender(PEnv* env, double) {
    if (!relative)
        return env->ApplyMatrix(&placeMatrix);
    FXMatrix product;
    product.Multiply(&fxglobalEnv->matrix, &placeMatrix);
    env->ApplyMatrix(&product);
}
