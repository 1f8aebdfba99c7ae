// The score of the morph: what the bird does when, and its key frames.
#include "anim/morph_animation.h"
#include "geometry/mesh.h"
#include "image/material_library.h"
#include "models/mesh_builder.h"
#include "models/models.h"
#include "models/morph_curve.h"
#include "models/morph_packing.h"
#include "models/morph_sheet.h"
#include "models/morph_swirl.h"

#include <cmath>
#include <string>

namespace {

constexpr const char* kLibrary = "42";
constexpr int kGlowing = 2; // embers do not hide each other

// All over seconds. The shards have come together at about 4, the wings open at 5, beat twice, and at 10.5
// the bird, seen from above, begins to unfold.
constexpr CurveKey kYaw[] = {{0, 58},    {4.4f, 26},  {5.4f, 30},   {6.4f, 38},
                             {8.2f, 20}, {9.2f, -24}, {10.2f, -76}, {10.7f, -90}};
constexpr CurveKey kElevation[] = {{0, 14},    {4.4f, 20},  {6.4f, 44}, {8.2f, 50},
                                   {9.2f, 62}, {10.2f, 84}, {10.7f, 90}};
constexpr CurveKey kRoll[] = {{0, 0}, {7.8f, 0}, {9.0f, -16}, {10.0f, -6}, {10.7f, 0}};
constexpr CurveKey kOpen[] = {{0, 0}, {4.7f, 0}, {5.9f, 1}};
constexpr CurveKey kDihedral[] = {{0, 40},      {5.0f, 40}, {5.9f, 40}, {6.55f, -30}, {7.2f, 36},
                                  {7.85f, -28}, {8.5f, 32}, {9.2f, -8}, {10.0f, 10},  {10.7f, 0}};
constexpr CurveKey kBend[] = {{0, 0},     {5.9f, -14}, {6.2f, 26},  {6.55f, 14}, {6.9f, -30}, {7.2f, -12},
                              {7.5f, 26}, {7.85f, 12}, {8.2f, -26}, {8.5f, -8},  {9.2f, 14},  {10.7f, 0}};
constexpr CurveKey kNeck[] = {{0, 1}, {5.0f, 1}, {6.6f, 0.35f}, {8.0f, 0}};
constexpr CurveKey kSize[] = {{0, 0.95f},    {4.6f, 0.98f},  {6.4f, 0.88f},
                              {9.0f, 0.84f}, {10.7f, 0.86f}, {12.2f, 1}};
constexpr CurveKey kX[] = {{0, 0.40f}, {4.6f, 0.42f}, {6.4f, 0.36f}, {8.4f, 0.30f}, {10.7f, 0}};
constexpr CurveKey kY[] = {{0, 0.0f},    {4.6f, -0.06f}, {6.2f, -0.02f}, {6.55f, 0.06f},
                           {7.2f, 0.0f}, {7.85f, 0.08f}, {8.5f, 0.02f},  {10.7f, 0}};
constexpr CurveKey kWingSheet[] = {{0, 0}, {10.5f, 0}, {11.6f, 0.46f}, {12.3f, 0.84f}, {13.1f, 1}};
constexpr CurveKey kBodySheet[] = {{0, 0}, {10.7f, 0}, {11.6f, 0.34f}, {12.3f, 0.84f}, {13.1f, 1}};
constexpr CurveKey kCurl[] = {{0, 0}, {10.7f, 0}, {12.0f, 1}, {13.2f, 0}};

// When the key frames are, up to the one in which the sheet lies flat. What turns fast needs them close
// together: between two of them every corner moves on a straight line.
constexpr float kMoments[] = {0.0f,   0.42f,  0.84f,  1.26f, 1.68f,  2.1f,  2.52f, 2.94f,  3.36f,
                              3.78f,  4.2f,   4.6f,   5.0f,  5.3f,   5.6f,  5.9f,  6.225f, 6.55f,
                              6.875f, 7.2f,   7.525f, 7.85f, 8.175f, 8.5f,  8.85f, 9.2f,   9.6f,
                              10.0f,  10.35f, 10.7f,  11.1f, 11.5f,  11.9f, 12.3f, 12.7f,  13.0f};
constexpr float kFlatAt = 13.3f;
constexpr int kTextureMilliseconds = 80;

BirdPose localPoseAt(float seconds) {
    BirdPose pose;
    pose.yaw = CurveAt(kYaw, seconds);
    pose.elevation = CurveAt(kElevation, seconds);
    pose.roll = CurveAt(kRoll, seconds);
    pose.open = CurveAt(kOpen, seconds);
    pose.dihedral = CurveAt(kDihedral, seconds);
    pose.bend = CurveAt(kBend, seconds);
    pose.neck = CurveAt(kNeck, seconds);
    pose.size = CurveAt(kSize, seconds);
    pose.x = CurveAt(kX, seconds);
    pose.y = CurveAt(kY, seconds);
    pose.wingSheet = CurveAt(kWingSheet, seconds);
    pose.bodySheet = CurveAt(kBodySheet, seconds);
    pose.curl = CurveAt(kCurl, seconds);
    return pose;
}

// A key frame and how long the way from it to the next one takes.
void localAddFrame(FXAnim* anim, const MeshBuilder& sheet, const MeshBuilder& embers, int milliseconds) {
    auto* model = new FXModel;
    model->matlibName.Set(kLibrary);
    GiveMesh(model, sheet.Build());
    GiveMesh(model, embers.Build());
    FXStr name;
    name.Format("%d", anim->models.count);
    anim->models.Push(model);
    anim->frameNames.Push(name.text);
    anim->frameTimes.Push(milliseconds);
}

void localAddBirdFrame(FXAnim* anim, float seconds, float next) {
    const BirdPose pose = localPoseAt(seconds);
    const Vec3 centre = {pose.x, pose.y, 0};
    SheetCorners corners;
    ForEachCorner([&](int patch, int corner) { corners.push_back(BirdPoint(PlaceOf(patch, corner), pose)); });
    ScatterShards(&corners, seconds, centre);
    MeshBuilder sheet(kDesktopMaterial);
    MeshBuilder embers("Ember", kGlowing);
    AddSheet(&sheet, corners);
    AddEmbers(&embers, seconds, centre);
    localAddFrame(anim, sheet, embers, static_cast<int>(std::lround((next - seconds) * 1000)));
}

void localAddFlatFrame(FXAnim* anim, void (*addEmbers)(MeshBuilder*)) {
    MeshBuilder sheet(kDesktopMaterial);
    MeshBuilder embers("Ember", kGlowing);
    AddFlatSheet(&sheet);
    addEmbers(&embers);
    localAddFrame(anim, sheet, embers, kTextureMilliseconds);
}

} // namespace

std::string WriteMorph(const std::string& file, const Screen&) {
    FXAnim anim;
    anim.loop = false;
    for (std::size_t i = 0; i < std::size(kMoments); ++i)
        localAddBirdFrame(&anim, kMoments[i], i + 1 < std::size(kMoments) ? kMoments[i + 1] : kFlatAt);
    localAddFlatFrame(&anim, AddSpentEmbers);
    localAddFlatFrame(&anim, AddEmbersForTexture);
    return WriteAnimation(file, anim);
}
