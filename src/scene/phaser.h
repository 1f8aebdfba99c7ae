// The show's one timer: turns the time into a phase from 0 to 1.
#pragma once

#include <cstdio>

class FXPackage;
class FXPackageData;
class PEnv;

// Runs once, again and again (loop), or there and back (loop and pingPong). Owners set the fields, then
// Restart, or simply begin to call OnRender: a phaser that has fallen behind by more than a run starts now.
// Times are seconds. A duration of 0 or less is over at once: phase 1.
class FXPhaser {
public:
    virtual ~FXPhaser() = default;

    void Restart(double time);
    virtual void OnRender(PEnv* env, double time);
    // 1 up to phase a, 0 from phase b, falling between.
    float GetOnOff(float a, float b) const;

    // The record, 18 bytes.
    template <class Self, class V> static bool Fields(Self& self, V& v) {
        return v.Float("the phase", self.phase) && v.Double("the duration", self.duration) &&
               v.Flag("the flag running", self.running) && v.Flag("the flag reverse", self.reverse) &&
               v.Flag("the flag loop", self.loop) && v.Flag("the flag ping-pong", self.pingPong) &&
               v.Flag("the flag smooth", self.smooth) && v.Flag("the flag half smooth", self.smoothHalf);
    }
    bool Save(std::FILE* file) const;
    bool Load(std::FILE* file); // false, with nothing changed, when the file ends first
    void LoadC(FXPackage* pck, FXPackageData* d);

    // Once, or over and over, of that length and without any shaping.
    void SetPlain(double seconds, bool looping);

    float phase = 0;
    bool running = true;
    bool reverse = false; // the phase runs from 1 to 0
    bool loop = true;
    bool pingPong = false;
    bool wrapped = false; // a run has ended since Restart
    double start = 0.0;
    double duration = 1.0;
    bool smooth = false;     // shape: 3p^2 - 2p^3
    bool smoothHalf = false; // the mean of that and p
    bool cubicFirst = false; // p^3 for this run; the next one lasts nextDuration
    bool steepStart = false;
    double nextDuration = 1.0;

private:
    void EndRun(double time);
    float Shaped(float p) const;
};
