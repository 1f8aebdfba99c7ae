#include "anim/morph_animation.h"

#include <algorithm>

namespace {

constexpr double kDefaultDuration = 0.5; // seconds

// Calls the operation for every key frame there is.
template <class Operation> void localForEach(const FXOwnerArray<FXModel>& models, Operation operation) {
    for (FXModel* model : models)
        if (model != nullptr)
            operation(*model);
}

} // namespace

void FXAnim::Destroy() {
    playing = true;
    backwards = segmentReversed = false;
    loop = true;
    pingPong = false;
    startTime = 0;
    frame = 0;
    frameNames.DestroyBuf();
    frameTimes.DestroyBuf();
    models.DestroyBuf();
    graph.Destroy();
    UpdateInterpolation(false, true);
}

void FXAnim::StartAnim(double time) {
    startTime = time;
    frame = 0;
    phase = 0;
    ComputeFrameDuration();
    frameChanged = true;
    playing = frameTimes.count > 0;
}

void FXAnim::ContinueAnim(double time) {
    startTime = time;
    ComputeFrameDuration();
    playing = frameTimes.count > 0;
}

void FXAnim::ComputeFrameDuration() {
    frameDuration = kDefaultDuration;
    if (frameTimes.count == 0)
        return;
    const int milliseconds = frameTimes[std::clamp(frame, 0, LastFrame())];
    if (milliseconds > 0)
        frameDuration = milliseconds / 1000.0;
}

// One key frame on, or back. What the old frame ran over its time counts for the new one; after a stall the
// new one starts afresh.
void FXAnim::Advance(double time) {
    frame += backwards ? -1 : 1;
    if (frame > LastFrame()) {
        if (!loop) {
            frame = LastFrame();
            playing = false;
        } else if (pingPong) {
            frame = std::max(LastFrame() - 1, 0);
            backwards = true;
        } else {
            frame = 0;
        }
    } else if (frame < 0) {
        if (!loop) {
            frame = 0;
            playing = false;
        } else if (pingPong) {
            frame = std::min(1, LastFrame());
            backwards = false;
        } else {
            frame = LastFrame();
        }
    }
    const double elapsed = time - startTime;
    const double carry =
        frameDuration == 0 || elapsed > 2 * frameDuration ? 0 : (elapsed - frameDuration) / frameDuration;
    ComputeFrameDuration();
    startTime = time - carry * frameDuration;
}

void FXAnim::OnRender(PEnv* env, double time) {
    if (frameTimes.count == 0)
        return;
    const int before = frame;
    if (playing && !paused && time - startTime >= frameDuration)
        Advance(time);
    frame = std::clamp(frame, 0, LastFrame());
    if (!interpolate) {
        if (FXModel* model = EnumModels(frame))
            model->OnRender(env, time);
        return;
    }
    if (!paused) {
        if (frame != before || frameChanged) {
            UpdateIFrame();
            frameChanged = false;
        }
        UpdateIPos(time);
    }
    imodel.OnRender(env, time);
}

void FXAnim::FitAll(int i, void (FXModel::*fit)(const float*), bool halfHoriz) {
    float box[6] = {};
    if (const FXModel* model = EnumModels(i)) {
        model->FindMaxims(box);
        if (halfHoriz)
            box[1] = box[0] + 2 * (box[1] - box[0]);
        localForEach(models, [&](FXModel& m) { (m.*fit)(box); });
    }
}

void FXAnim::Unitize(int i) {
    FitAll(i, &FXModel::UnitizeMaxims);
}

void FXAnim::UnitizeStretch(int i) {
    FitAll(i, &FXModel::UnitizeMaximsStretch);
}

void FXAnim::UnitizeStretch1(int i) {
    FitAll(i, &FXModel::UnitizeMaximsStretch1);
}

void FXAnim::UnitizeStretch1HalfHoriz(int i) {
    FitAll(i, &FXModel::UnitizeMaximsStretch1, true);
}

void FXAnim::FlipHoriz() {
    localForEach(models, [](FXModel& m) { m.FlipHoriz(); });
}

void FXAnim::ResizeTextCoords() {
    localForEach(models, [](FXModel& m) { m.ResizeTextCoords(); });
}

void FXAnim::ResizeTextCoords1() {
    localForEach(models, [](FXModel& m) { m.ResizeTextCoords1(); });
}

void FXAnim::Normalize(int i, bool onlyTouched) {
    if (i == -1)
        localForEach(models, [&](FXModel& m) { m.Normalize(onlyTouched); });
    else if (FXModel* model = EnumModels(i))
        model->Normalize(onlyTouched);
}

void FXAnim::ComputeFrontTexCoords(int i, int mesh) {
    FXModel* source = EnumModels(i);
    if (source == nullptr)
        return;
    source->ComputeFrontTexCoords(mesh);
    localForEach(models, [&](FXModel& m) {
        if (&m != source)
            m.CopyTexCoords(mesh, source);
    });
}

void FXAnim::MoveFrame(int dest, int src) {
    if (src < 0 || src >= models.count || dest < 0 || dest >= models.count)
        return;
    FXModel** const from = models.begin() + src;
    FXModel** const to = models.begin() + dest;
    src < dest ? std::rotate(from, from + 1, to + 1) : std::rotate(to, from, from + 1);
    if (src < frameNames.count && dest < frameNames.count) {
        const FXStr name(frameNames.Get(src));
        frameNames.RemovePos(src);
        frameNames.Insert(dest, name.text);
    }
    if (src < frameTimes.count && dest < frameTimes.count) {
        const int milliseconds = frameTimes[src];
        frameTimes.RemovePos(src);
        frameTimes.Insert(dest, milliseconds);
    }
}
