#include "models/morph_bird.h"
#include "models/mesh_builder.h"
#include "models/morph_curve.h"
#include "pictures/colour.h"

#include <algorithm>
#include <cmath>

namespace {

// In the bird's own frame x is forwards, y to its left and z upwards.

constexpr float kBodyShare = static_cast<float>(kBodyColumns) / kPatchColumns; // of the sheet's width
constexpr float kPleat = 2.0f / kPatchRows;                                    // its width on the sheet
constexpr float kDegree = kPi / 180;

// The spine, over t from the tail's end to the tip of the beak: stretched in flight, and with the neck
// raised.
constexpr CurveKey kSpineX[] = {{-1, -0.95f},   {-0.62f, -0.52f}, {-0.45f, -0.36f}, {-0.15f, -0.06f},
                                {0.12f, 0.20f}, {0.30f, 0.36f},   {0.55f, 0.58f},   {0.74f, 0.74f},
                                {0.86f, 0.84f}, {1, 1.02f}};
constexpr CurveKey kSpineZ[] = {{-1, 0.02f},    {-0.62f, 0.00f}, {-0.45f, 0.01f}, {-0.15f, 0.05f},
                                {0.12f, 0.06f}, {0.30f, 0.05f},  {0.55f, 0.08f},  {0.74f, 0.14f},
                                {0.86f, 0.14f}, {1, 0.09f}};
constexpr CurveKey kRaisedX[] = {{-1, -0.92f},   {-0.62f, -0.50f}, {-0.45f, -0.35f}, {-0.15f, -0.06f},
                                 {0.12f, 0.20f}, {0.30f, 0.34f},   {0.55f, 0.40f},   {0.74f, 0.46f},
                                 {0.86f, 0.56f}, {1, 0.74f}};
constexpr CurveKey kRaisedZ[] = {{-1, 0.30f},    {-0.62f, 0.12f}, {-0.45f, 0.06f}, {-0.15f, 0.05f},
                                 {0.12f, 0.08f}, {0.30f, 0.17f},  {0.55f, 0.42f},  {0.74f, 0.60f},
                                 {0.86f, 0.62f}, {1, 0.52f}};
// Half the width across, and how far the sides hang down from the ridge of the back.
constexpr CurveKey kHalfWidth[] = {{-1, 0.30f},     {-0.62f, 0.09f}, {-0.45f, 0.08f}, {-0.15f, 0.17f},
                                   {0.12f, 0.17f},  {0.30f, 0.09f},  {0.55f, 0.05f},  {0.72f, 0.085f},
                                   {0.84f, 0.055f}, {1, 0.002f}};
constexpr CurveKey kHang[] = {{-1, 0.0f},     {-0.62f, 0.05f}, {-0.45f, 0.10f}, {-0.15f, 0.30f},
                              {0.12f, 0.31f}, {0.30f, 0.18f},  {0.55f, 0.08f},  {0.72f, 0.13f},
                              {0.84f, 0.08f}, {1, 0.004f}};

// The wing is a fan: from a short root along the body, rays of these lengths over their share of the fan,
// from the leading edge to the trailing one.
constexpr CurveKey kRay[] = {{0, 1.10f},    {0.10f, 1.30f}, {0.25f, 1.24f},
                             {0.5f, 0.92f}, {0.75f, 0.66f}, {1, 0.52f}};
constexpr float kFeatherNotch = 0.90f; // every other fold ends short
constexpr float kRootFront = 0.30f, kRootBack = -0.26f;
constexpr float kRootOut = 0.055f;
constexpr float kFoldedRootUp = 0.04f,
                kSpreadRootUp = -0.03f; // under the slope of the back, so that no gap shows
// Angles of the first and the last ray, from straight out to straight back.
constexpr float kSpreadLead = -20, kSpreadTrail = 84;
constexpr float kFoldedLead = 80, kFoldedTrail = 97;
constexpr float kSweep = 30; // how much the foremost rays turn backwards on their way, when spread
constexpr float kFoldedDihedral = -48;
constexpr float kFoldedLift = 0.13f; // how much the tips of the folded wings rise

float localRowEdge(int row) {
    return -1 + kPleat * static_cast<float>(row);
}

// The wing without its folds. `along` is 0 at the body and 1 at the tips; y is outwards.
struct WingPoint {
    Vec3 at;
    float tilt; // of the wing's plane here
};

WingPoint localSmoothWing(float along, float t, float notch, const BirdPose& pose) {
    const float share = (1 - t) / 2;
    const float lead = Mix(kFoldedLead, kSpreadLead, pose.open);
    const float trail = Mix(kFoldedTrail, kSpreadTrail, pose.open);
    const float angle =
        (Mix(lead, trail, share) + kSweep * pose.open * along * along * (1 - share)) * kDegree;
    const float ray = CurveAt(kRay, share) * Mix(1, notch, along) * along;
    const float out = std::cos(angle) * ray;
    const float forward = Mix(kRootFront, kRootBack, share) - std::sin(angle) * ray;

    const float tilt =
        (Mix(kFoldedDihedral, pose.dihedral, pose.open) + pose.bend * pose.open * out) * kDegree;
    const Vec3 wing = {forward, kRootOut + out * std::cos(tilt),
                       Mix(kFoldedRootUp, kSpreadRootUp, pose.open) + out * std::sin(tilt) +
                           kFoldedLift * (1 - pose.open) * ray};
    const float edge = kAspect * kBodyShare;
    const Vec3 sheet = {t, edge + (kAspect - edge) * along, 0};
    return {Mix(wing, sheet, pose.wingSheet), tilt * (1 - pose.wingSheet)};
}

// Paper does not shrink: what a pleat has lost in width it stands up.
Vec3 localCrease(float along, int edge, const BirdPose& pose) {
    const bool isValley = (edge & 1) != 0;
    const float t = localRowEdge(edge);
    const float notch = isValley ? kFeatherNotch : 1;
    const WingPoint here = localSmoothWing(along, t, Mix(notch, 1, pose.wingSheet), pose);
    const Vec3 across = localSmoothWing(along, t + kPleat / 2, 1, pose).at -
                        localSmoothWing(along, t - kPleat / 2, 1, pose).at;
    const float lost = std::max(0.0f, kPleat * kPleat - Dot(across, across));
    const float height =
        std::min(0.045f, 0.5f * std::sqrt(lost)) * Smooth(0, 0.22f, along) * Mix(0.45f, 1, pose.open);
    const Vec3 up = {0, -std::sin(here.tilt), std::cos(here.tilt)};
    return here.at + up * (isValley ? -height : height);
}

Vec3 localSpine(float t, float neck) {
    return Mix(Vec3{CurveAt(kSpineX, t), 0, CurveAt(kSpineZ, t)},
               Vec3{CurveAt(kRaisedX, t), 0, CurveAt(kRaisedZ, t)}, neck);
}

Vec3 localBodyInside(const SheetPlace& place, const BirdPose& pose) {
    const float across = place.s / kBodyShare;
    const Vec3 ridge = localSpine(place.t, pose.neck);
    const Vec3 forward =
        Unit(localSpine(place.t + 0.02f, pose.neck) - localSpine(place.t - 0.02f, pose.neck));
    const Vec3 up = {-forward.z, 0, forward.x};

    // The tail is a fan too: its folds are columns, and its middle reaches farther back.
    const float tail = Smooth(-0.55f, -1.0f, place.t);
    const float fold = across * kBodyColumns / 2;
    const float zigzag = 2 * std::fabs(fold - 2 * std::floor(fold / 2) - 1) - 1;
    const float hang = CurveAt(kHang, place.t) * std::fabs(across) - 0.035f * tail * zigzag;
    Vec3 bird = ridge - up * hang + forward * (tail * (0.16f * across * across + 0.03f * zigzag));
    bird.y = -across * CurveAt(kHalfWidth, place.t);
    return Mix(bird, {place.t, -place.s * kAspect, 0}, pose.bodySheet);
}

// Its edge is straight along every patch, as the wings' edges are.
Vec3 localBodyPlace(const SheetPlace& place, const BirdPose& pose) {
    if (std::fabs(place.s) < kBodyShare)
        return localBodyInside(place, pose);
    SheetPlace below = place;
    SheetPlace above = place;
    below.t = localRowEdge(place.row);
    above.t = localRowEdge(place.row + 1);
    return Mix(localBodyInside(below, pose), localBodyInside(above, pose), (place.t - below.t) / kPleat);
}

// Once the sheet unfolds, the wings' roots, which lay under the bird's back, are drawn out to where the
// body's edge is, so that body and wings are one sheet again; less so farther out.
Vec3 localDrawnToBody(const SheetPlace& place, float along, const BirdPose& pose) {
    const float drawn = Smooth(0, 0.24f, pose.wingSheet) * (1 - along);
    if (drawn <= 0)
        return {};
    SheetPlace edge = place;
    edge.s = place.s > 0 ? kBodyShare : -kBodyShare;
    const Vec3 body = localBodyPlace(edge, pose);
    const Vec3 root = localSmoothWing(0, place.t, 1, pose).at;
    return (body - Vec3{root.x, place.s > 0 ? -root.y : root.y, root.z}) * drawn;
}

Vec3 localWingPlace(const SheetPlace& place, const BirdPose& pose) {
    const float along = (std::fabs(place.s) - kBodyShare) / (1 - kBodyShare);
    const float between = (place.t - localRowEdge(place.row)) / kPleat;
    Vec3 at = Mix(localCrease(along, place.row, pose), localCrease(along, place.row + 1, pose), between);
    at.y = place.s > 0 ? -at.y : at.y;
    return at + localDrawnToBody(place, along, pose);
}

// Turns the pair (a, b) by degrees, a towards b.
void localTurn(float* a, float* b, float degrees) {
    const float c = std::cos(degrees * kDegree);
    const float s = std::sin(degrees * kDegree);
    const float turned = *a * c - *b * s;
    *b = *a * s + *b * c;
    *a = turned;
}

} // namespace

Vec3 BirdPoint(const SheetPlace& place, const BirdPose& pose) {
    Vec3 own = IsBodyPatch(place.column) ? localBodyPlace(place, pose) : localWingPlace(place, pose);
    own.z += pose.curl * (place.s * place.s * 0.55f + place.t * place.t * 0.22f - 0.2f);
    localTurn(&own.y, &own.z, pose.roll);
    // Seen from its right: forwards is to the right, left is away from the viewer.
    Vec3 at = {own.x, own.z, -own.y};
    localTurn(&at.x, &at.z, pose.yaw);
    localTurn(&at.y, &at.z, pose.elevation);
    return at * pose.size + Vec3{pose.x, pose.y, 0};
}
