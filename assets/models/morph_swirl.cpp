#include "models/morph_swirl.h"
#include "models/mesh_builder.h"
#include "pictures/colour.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace {

constexpr float kBehindSheet = -0.3f;
constexpr float kOutOfSight = 30;
constexpr float kDiskTilt = 0.5f; // how round the whirl is seen

// A number of shard or ember `which`, 0 up to 1, the same in every key frame.
float localChance(int which, std::uint32_t property, std::uint32_t seed) {
    return HashUnit(static_cast<std::uint32_t>(which), property, 0, seed);
}
float localBetween(float low, float high, int which, std::uint32_t property, std::uint32_t seed) {
    return Mix(low, high, localChance(which, property, seed));
}

// However wide the whirl is, it stays within the depth that is drawn.
Vec3 localOnWhirl(float radius, float turn, float height) {
    const float depth = radius * std::sin(turn);
    return {radius * std::cos(turn), depth * kDiskTilt + height, -1.3f * depth / (1 + std::fabs(depth))};
}

Vec3 localTurnedAbout(Vec3 v, Vec3 axis, float angle) {
    const float c = std::cos(angle);
    return v * c + Cross(axis, v) * std::sin(angle) + axis * (Dot(axis, v) * (1 - c));
}

constexpr std::uint32_t kShardSeed = 7201;

// Head, body and tail come together first, the wings from the shoulders to the tips after them.
float localArrivalOf(int patch) {
    const int column = patch % kPatchColumns;
    const float out = std::fabs(static_cast<float>(2 * column + 1 - kPatchColumns)) / kPatchColumns;
    return (IsBodyPatch(column) ? 3.0f : 3.1f + 1.0f * out) + 0.4f * localChance(patch, 1, kShardSeed);
}

struct Shard {
    Vec3 centre;
    Vec3 axis;
    float angle;
    float size;
    float curl; // how far its middle stands out, as heat bends paper
};

Shard localShardAt(int patch, float seconds) {
    const float start = localBetween(0.5f, 1.7f, patch, 2, kShardSeed);
    const float wide = localBetween(0.55f, 1.75f, patch, 3, kShardSeed);
    const float radius = Mix(wide, 0.22f, Smooth(start, localArrivalOf(patch), seconds));
    const float turn =
        2 * kPi * localChance(patch, 4, kShardSeed) + seconds * (0.7f + 0.55f / (0.4f + radius));
    const float height = localBetween(-0.35f, 0.35f, patch, 5, kShardSeed) * radius;
    const Vec3 axis =
        Unit({localBetween(-1, 1, patch, 6, kShardSeed), localBetween(-1, 1, patch, 7, kShardSeed),
              localBetween(-1, 1, patch, 8, kShardSeed)});
    const float spin = localBetween(-1.8f, 1.8f, patch, 9, kShardSeed);
    const float size = localBetween(0.55f, 1.25f, patch, 10, kShardSeed);
    return {localOnWhirl(radius, turn, height), axis, spin * seconds,
            size * Smooth(start, start + 0.9f, seconds), localBetween(-0.35f, 0.35f, patch, 11, kShardSeed)};
}

// localTorn, not cut: where a corner of a whole square goes, in half squares. A corner of the sheet is torn
// the same way whichever shard it is on, or the pieces would not have been one sheet.
Vec3 localTorn(const SheetPlace& place, Vec3 half) {
    constexpr float kFine = 4096;
    const int at = static_cast<int>(std::lround((place.s + 1) * kFine)) * 8192 +
                   static_cast<int>(std::lround((place.t + 1) * kFine));
    return half + Vec3{localBetween(-0.42f, 0.42f, at, 12, kShardSeed),
                       localBetween(-0.42f, 0.42f, at, 13, kShardSeed), 0};
}

constexpr std::uint32_t kEmberSeed = 7202;

struct Ember {
    Vec3 at;
    float size;
    Vec3 motion; // in half screen heights per second
};

// One in three stays with the bird and glitters round it until the sheet unfolds.
bool localStaysWithBird(int ember) {
    return ember % 3 == 0;
}

// When it begins to glow.
float localBirthOf(int ember) {
    return localBetween(0.0f, 1.1f, ember, 1, kEmberSeed);
}

// When the opening wings throw it off.
float localBurstOf(int ember) {
    return localBetween(4.6f, 5.6f, ember, 8, kEmberSeed);
}

// Most are sparks, few are large.
float localSizeOf(int ember) {
    const float chance = localChance(ember, 6, kEmberSeed);
    return Mix(0.020f, 0.105f, chance * chance * chance);
}

Vec3 localEmberPlace(int ember, float seconds) {
    const float wide = localBetween(0.3f, 1.9f, ember, 2, kEmberSeed);
    const float gathered = localBetween(0.32f, 0.85f, ember, 3, kEmberSeed);
    float radius = Mix(wide, gathered,
                       Smooth(localBirthOf(ember), localBetween(2.2f, 3.6f, ember, 4, kEmberSeed), seconds));
    float height = localBetween(-0.4f, 0.4f, ember, 5, kEmberSeed) * radius;
    const float turn =
        2 * kPi * localChance(ember, 7, kEmberSeed) + seconds * (0.9f + 0.6f / (0.5f + radius));
    const float since = std::max(0.0f, seconds - localBurstOf(ember));
    radius += (localStaysWithBird(ember) ? 0.22f : 0.62f) * since;
    height -= 0.05f * since * since;
    return localOnWhirl(radius, turn, height);
}

Ember localEmberAt(int ember, float seconds) {
    const float birth = localBirthOf(ember);
    const float last = localStaysWithBird(ember) ? localBetween(8.2f, 10.2f, ember, 9, kEmberSeed)
                                                 : localBurstOf(ember) + 1.6f;
    const float size =
        localSizeOf(ember) * Smooth(birth, birth + 0.7f, seconds) * Smooth(last, last - 1.2f, seconds);
    constexpr float kMoment = 0.05f;
    const Vec3 at = localEmberPlace(ember, seconds);
    return {at, size, (localEmberPlace(ember, seconds + kMoment) - at) * (1 / kMoment)};
}

// A parallelogram with sides along `right` and `up`, which are half its sides and lie on the screen at last.
void localAddSpark(MeshBuilder* mesh, Vec3 at, Vec3 right, Vec3 up) {
    constexpr float kCorners[4][2] = {{-1, 1}, {1, 1}, {-1, -1}, {1, -1}};
    int first = -1;
    for (const auto& [x, y] : kCorners) {
        const int number = mesh->Add({at + right * x + up * y, {0, 0, 1}});
        first = first < 0 ? number : first;
    }
    mesh->Triangle(first, first + 2, first + 1);
    mesh->Triangle(first + 1, first + 2, first + 3);
}

// What an ember looks like to an open shutter: the faster and the smaller, the longer is its trail.
void localAddEmber(MeshBuilder* mesh, const Ember& ember, Vec3 centre) {
    constexpr float kShutter = 0.05f; // seconds
    const float speed = std::hypot(ember.motion.x, ember.motion.y);
    const Vec3 along = speed > 0 ? Vec3{ember.motion.x / speed, ember.motion.y / speed, 0} : Vec3{1, 0, 0};
    const Vec3 across = {-along.y, along.x, 0};
    const float trail = std::min(kShutter * speed, 2.2f * ember.size) * Smooth(0.11f, 0.02f, ember.size);
    const auto onScreen = [](Vec3 v) { return Vec3{v.x / kAspect, v.y, v.z}; };
    localAddSpark(mesh, onScreen(centre + ember.at), onScreen(along * (ember.size + trail)),
                  onScreen(across * ember.size));
}

constexpr Vec3 kSpent = {0, 0, kBehindSheet};

} // namespace

void ScatterShards(SheetCorners* corners, float seconds, Vec3 centre) {
    for (int patch = 0; patch < kPatches; ++patch) {
        const float arrival = localArrivalOf(patch);
        const float arrived = Smooth(arrival - 0.9f, arrival + 0.3f, seconds);
        if (arrived >= 1)
            continue;
        const Shard shard = localShardAt(patch, seconds);
        const SheetPlace middle = MiddleOf(patch);
        for (int corner = 0; corner < kPatchCorners; ++corner) {
            const SheetPlace place = PlaceOf(patch, corner);
            const Vec3 torn = localTorn(
                place, {(place.s - middle.s) * kPatchColumns, (place.t - middle.t) * kPatchRows, 0});
            const float bulge = shard.curl * (1 - 0.5f * (torn.x * torn.x + torn.y * torn.y));
            const Vec3 paper =
                Vec3{torn.x * kAspect / kPatchColumns, torn.y / kPatchRows, bulge / kPatchRows} * shard.size;
            const Vec3 whirling = centre + shard.centre + localTurnedAbout(paper, shard.axis, shard.angle);
            Vec3& at = (*corners)[static_cast<std::size_t>(patch) * kPatchCorners +
                                  static_cast<std::size_t>(corner)];
            at = Mix(whirling, at, arrived);
        }
    }
}

void AddEmbers(MeshBuilder* mesh, float seconds, Vec3 centre) {
    for (int i = 0; i < kEmbers; ++i)
        localAddEmber(mesh, localEmberAt(i, seconds), centre);
    localAddSpark(mesh, kSpent, {}, {});
}

void AddSpentEmbers(MeshBuilder* mesh) {
    for (int i = 0; i <= kEmbers; ++i)
        localAddSpark(mesh, kSpent, {}, {});
}

void AddEmbersForTexture(MeshBuilder* mesh) {
    for (int i = 0; i < kEmbers; ++i)
        localAddSpark(mesh, {0, 0, -kOutOfSight}, {1, 0, 0}, {0, 1, 0});
    localAddSpark(mesh, {0, 0, kOutOfSight}, {}, {});
}
