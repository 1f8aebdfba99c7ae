#include "scene/pausing_phaser.h"

void FXPhaser1::Restart(double time) {
    FXPhaser::Restart(time);
    loop = true;
}

void FXPhaser1::OnRender(PEnv* env, double time) {
    if (autoRestart) {
        if (reverse)
            loop = false; // stops once it is back
        if (!running && time - start >= pause)
            Restart(time); // the end of a run is in `start`
    }
    FXPhaser::OnRender(env, time);
}
