#include "scene/phaser.h"

#include "package/record.h"

namespace {

float localSmooth(float p) {
    return 2 * p * (1 - p) * p + p * p;
}

float localPower12(float x) {
    const float x3 = x * x * x;
    const float x6 = x3 * x3;
    return x6 * x6;
}

} // namespace

void FXPhaser::SetPlain(double seconds, bool looping) {
    duration = seconds;
    loop = looping;
    pingPong = smooth = smoothHalf = cubicFirst = steepStart = false;
}

void FXPhaser::Restart(double time) {
    start = time;
    phase = 0;
    running = true;
    wrapped = false;
    reverse = false;
}

void FXPhaser::EndRun(double time) {
    if (cubicFirst) {
        cubicFirst = false;
        duration = nextDuration;
    }
    if (!loop) {
        running = false;
        phase = reverse ? 0.0f : 1.0f;
    } else if (pingPong) {
        reverse = !reverse;
    }
    wrapped = true;
    // The next run begins where the last one ended, so that loops do not drift.
    const float late = static_cast<float>(time - start);
    start = late > 2 * duration ? time : start + duration;
}

float FXPhaser::Shaped(float p) const {
    if (smooth)
        return localSmooth(p);
    if (smoothHalf)
        return (p + localSmooth(p)) * 0.5f;
    if (cubicFirst)
        return p * p * p;
    if (steepStart) {
        const float k = localPower12(0.92f);
        return p < k ? k - localPower12(0.92f - p) : p;
    }
    return p;
}

void FXPhaser::OnRender(PEnv*, double time) {
    if (running && time - start >= duration)
        EndRun(time);
    if (!running)
        return;
    float p = duration > 0 ? static_cast<float>((time - start) / duration) : 1.0f;
    if (p < 0)
        p = 0;
    else if (p > 1)
        p = 1;
    p = Shaped(p);
    phase = reverse ? 1 - p : p;
}

float FXPhaser::GetOnOff(float a, float b) const {
    if (phase <= a)
        return 1;
    return phase < b ? (b - phase) / (b - a) : 0.0f;
}

bool FXPhaser::Save(std::FILE* file) const {
    return fxSaveRecord(*this, file);
}

bool FXPhaser::Load(std::FILE* file) {
    return fxLoadRecord(*this, file);
}

void FXPhaser::LoadC(FXPackage*, FXPackageData* d) {
    fxLoadRecord(*this, d);
}
