#include "scene/error_gadget.h"

#include "render/environment.h"

template <class Load> void FXErrGadget::Build(Load load) {
    constexpr float kFromCorner = 10; // pixels
    errDesk.Create(1, 1);
    load();
    errDesk.SetMaterial(&errMat);
    placement.picW = errMat.GetWidthF();
    placement.picH = errMat.GetHeightF();
    placement.screenW = static_cast<float>(fxglobalEnv->screenWidth);
    placement.screenH = static_cast<float>(fxglobalEnv->screenHeight);
    placement.SetPos(kFromCorner, kFromCorner);
}

void FXErrGadget::CreateCN(FXPackage* pck, int id) {
    Build([&] { errMat.LoadTextureCN(pck, id); });
}

void FXErrGadget::Create() {
    Build([this] { errMat.LoadTexture("error_message.png"); });
}

void FXErrGadget::Destroy() {
    errDesk.Destroy();
    errMat.Destroy();
}

void FXErrGadget::OnRender(PEnv* env, double time) {
    if (!visible)
        return;
    env->EnableDepthTest(false);
    env->EnableDepthWrite(false);
    env->EnableLights(false);
    placement.OnRender(env, time);
    errDesk.OnRender(env, time);
}
