// A phaser that goes there and back, pauses, and does it again.
#pragma once

#include "scene/phaser.h"

// With autoRestart and pingPong: a run ends where it began, stands still for `pause` seconds and starts over.
// Without autoRestart it is an FXPhaser.
class FXPhaser1 : public FXPhaser {
public:
    void Restart(double time); // looping
    void OnRender(PEnv* env, double time) override;

    bool autoRestart = false;
    bool restartForward = true; // Restart runs forward in either case
    double pause = 0.0;
};
