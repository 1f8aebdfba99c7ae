// What the render loop, or another drawable, draws.
#pragma once

class PEnv;

class PRender {
public:
    // time: seconds on the clock of fxGetTime, read just before the frame.
    virtual void OnRender(PEnv* env, double time) = 0;

protected:
    ~PRender() = default; // nobody owns a drawable through this interface
};
