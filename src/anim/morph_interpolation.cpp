// From key frames to the moving model.
#include "anim/morph_animation.h"
#include "geometry/mesh.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kStride = sizeof(tagFXVertex) / sizeof(float);
// Vertices moved in one go: their records stay in the cache between positions and normals.
constexpr int kRun = 512;

} // namespace

// As many meshes in every key frame, and as many vertices in each of them?
bool FXAnim::FramesAgree() const {
    for (const FXModel* model : models) {
        if (model == nullptr || model->meshes.count != imodel.meshes.count)
            return false;
        for (int m = 0; m < imodel.meshes.count; ++m) {
            const FXMesh* mine = imodel.meshes[m];
            const FXMesh* theirs = model->meshes[m];
            if (mine == nullptr || theirs == nullptr || mine->vertexCount != theirs->vertexCount)
                return false;
        }
    }
    return true;
}

bool FXAnim::BuildSplines() {
    const int total = imodel.GetTotalVertices();
    if (!FramesAgree() || !posSplines.Create(total, models.count) ||
        !normSplines.Create(total, models.count)) {
        posSplines.Destroy();
        return false;
    }
    posSplines.tension = normSplines.tension = tension;
    for (int f = 0; f < models.count; ++f) {
        int spline = 0;
        for (const FXMesh* mesh : models[f]->meshes)
            for (int v = 0; v < mesh->vertexCount; ++v, ++spline) {
                posSplines.SetPoint(spline, f, mesh->vertices[v].pos);
                normSplines.SetPoint(spline, f, mesh->vertices[v].normal);
            }
    }
    for (FXSplineSet* splines : {&posSplines, &normSplines})
        splines->SetActPoints(0, 1); // until something else is aimed at
    return true;
}

void FXAnim::UpdateInterpolation(bool on, bool second) {
    interpolate = on;
    secondFlag = second;
    imodel.Destroy();
    posSplines.Destroy();
    normSplines.Destroy();
    FXModel* first = EnumModels(0);
    if (!on || first == nullptr)
        return;
    imodel.Copy(first);
    if (BuildSplines())
        UpdateIFrame();
}

void FXAnim::ReleaseKeyFrames() {
    for (FXModel* model : models)
        if (model != nullptr)
            model->meshes.DestroyBuf();
}

void FXAnim::AimAt(int a, int b) {
    for (FXSplineSet* splines : {&posSplines, &normSplines}) {
        splines->closed = !pingPong;
        splines->linear = linear;
        splines->SetActPoints(a, b);
    }
}

// The segment is always the one from the lower key frame to the next, or from the last to the first when it
// wraps; backwards it is evaluated at 1 - phase.
void FXAnim::SetActFrames(int a, int b) {
    frame = a;
    segmentReversed = false;
    const bool wraps = a == LastFrame() && b == 0;
    if (a > b && !wraps) {
        std::swap(a, b);
        segmentReversed = true;
    }
    AimAt(a, b);
}

void FXAnim::UpdateIFrame() {
    const int n = frameTimes.count;
    if (n == 0 || imodel.meshes.count == 0)
        return;
    segmentReversed = backwards;
    int a = backwards ? frame - 1 : frame;
    int b = backwards ? frame : frame + 1;
    if (b >= n)
        b = !loop ? frame : pingPong ? std::max(n - 2, 0) : 0;
    if (a < 0)
        a = !loop ? frame : !pingPong ? n - 1 : n > 1 ? 1 : n - 1;
    if (a > b && !(a == n - 1 && b == 0)) {
        std::swap(a, b);
        segmentReversed = !segmentReversed;
    }
    if (a == b)
        playing = false;
    else
        AimAt(a, b);
}

void FXAnim::MoveVertices(float p) {
    if (posSplines.GetCnt() == 0)
        return;
    FXBezierPhaseH h;
    h.Prepare(segmentReversed ? 1 - p : p);
    int spline = 0;
    for (FXMesh* mesh : imodel.meshes)
        for (int v = 0; v < mesh->vertexCount;) {
            const int run = std::min(kRun, mesh->vertexCount - v);
            posSplines.GetH(spline, run, mesh->vertices[v].pos, kStride, &h);
            normSplines.GetH(spline, run, mesh->vertices[v].normal, kStride, &h);
            v += run;
            spline += run;
        }
}

void FXAnim::SetActPhase(float p) {
    phase = p;
    MoveVertices(p);
}

void FXAnim::UpdateIPos(double time) {
    if (imodel.meshes.count == 0)
        return;
    if (playing)
        phase = static_cast<float>((time - startTime) / frameDuration);
    MoveVertices(phase);
}
