// One frame of the show, and the cycle that never ends.
#include "platform/clock.h"
#include "render/gl.h"
#include "scene/scene.h"
#include "scene/show.h"

using namespace show;

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
        reopen.StartAnim(fxGetTime());
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
    localUnlit(); // the fade does it again by itself
    localAdvanceFade(env, t);
    localDrawDesktop(env, t, scr_phaser.phase);
    if (scr_phaser.phase >= 1) {
        stage = kDissolving;
        fire.ReCreate();
        fire.desk.SetMaterial(&scr_mat);
        scr_phaser.Restart(t);
    }
}

using StageDrawer = void (*)(PEnv*, double);
constexpr StageDrawer kStages[] = {localDissolve, localBurn, localPause, localRebuild, localReturn};

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

void Scene::OnRender(PEnv* env, double t) {
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
    kStages[stage](env, t);
    localDrawCube(env, t);
    gr.ApplyMatrixIdentity();
    err_gad.OnRender(env, t);
    gr.RenderEnd();
}
