#include "models/morph_swirl.h"
#include "models/mesh_builder.h"
#include "pictures/colour.h"

#include <cmath>

namespace {

constexpr float kBehindSheet = -0.3f;
constexpr float kOutOfSight = 30;
constexpr float kDiskTilt = 0.5f; // how round the whirl is seen

// A number of shard or ember `which`, 0 up to 1, the same in every key frame.
float Chance(int which, std::uint32_t property, std::uint32_t seed) {
    return HashUnit(static_cast<std::uint32_t>(which), property, 0, seed);
}
float Between(float low, float high, int which, std::uint32_t property, std::uint32_t seed) {
    return Mix(low, high, Chance(which, property, seed));
}

// However wide the whirl is, it stays within the depth that is drawn.
Vec3 OnWhirl(float radius, float turn, float height) {
    const float depth = radius * std::sin(turn);
    return {radius * std::cos(turn), depth * kDiskTilt + height, -1.3f * depth / (1 + std::fabs(depth))};
}

Vec3 TurnedAbout(Vec3 v, Vec3 axis, float angle) {
    const float c = std::cos(angle);
    return v * c + Cross(axis, v) * std::sin(angle) + axis * (Dot(axis, v) * (1 - c));
}

constexpr std::uint32_t kShardSeed = 7201;

// Head, body and tail come together first, the wings from the shoulders to the tips after them.
float ArrivalOf(int patch) {
    const int column = patch % kPatchColumns;
    const float out = std::fabs(static_cast<float>(2 * column + 1 - kPatchColumns)) / kPatchColumns;
    return (IsBodyPatch(column) ? 3.0f : 3.1f + 1.0f * out) + 0.4f * Chance(patch, 1, kShardSeed);
}

struct Shard {
    Vec3 centre;
    Vec3 axis;
    float angle;
    float size;
};

Shard ShardAt(int patch, float seconds) {
    const float start = Between(0.5f, 1.7f, patch, 2, kShardSeed);
    const float wide = Between(0.55f, 1.75f, patch, 3, kShardSeed);
    const float radius = Mix(wide, 0.22f, Smooth(start, ArrivalOf(patch), seconds));
    const float turn = 2 * kPi * Chance(patch, 4, kShardSeed) + seconds * (0.7f + 0.55f / (0.4f + radius));
    const float height = Between(-0.35f, 0.35f, patch, 5, kShardSeed) * radius;
    const Vec3 axis = Unit({Between(-1, 1, patch, 6, kShardSeed), Between(-1, 1, patch, 7, kShardSeed),
                            Between(-1, 1, patch, 8, kShardSeed)});
    const float spin = Between(-1.8f, 1.8f, patch, 9, kShardSeed);
    return {OnWhirl(radius, turn, height), axis, spin * seconds, 0.8f * Smooth(start, start + 0.9f, seconds)};
}

constexpr std::uint32_t kEmberSeed = 7202;

struct Ember {
    Vec3 at;
    float size;
};

// One in three stays with the bird and glitters round it until the sheet unfolds.
bool StaysWithBird(int ember) {
    return ember % 3 == 0;
}

Ember EmberAt(int ember, float seconds) {
    const float start = Between(0.0f, 1.1f, ember, 1, kEmberSeed);
    const float wide = Between(0.3f, 1.9f, ember, 2, kEmberSeed);
    const float gathered = Between(0.32f, 0.85f, ember, 3, kEmberSeed);
    float radius = Mix(wide, gathered, Smooth(start, Between(2.2f, 3.6f, ember, 4, kEmberSeed), seconds));
    float height = Between(-0.4f, 0.4f, ember, 5, kEmberSeed) * radius;
    float size = Between(0.030f, 0.085f, ember, 6, kEmberSeed) * Smooth(start, start + 0.7f, seconds);
    const float turn = 2 * kPi * Chance(ember, 7, kEmberSeed) + seconds * (0.9f + 0.6f / (0.5f + radius));

    const float burst = Between(4.6f, 5.6f, ember, 8, kEmberSeed); // thrown off by the opening wings
    const float last = StaysWithBird(ember) ? Between(8.2f, 10.2f, ember, 9, kEmberSeed) : burst + 1.6f;
    const float since = std::max(0.0f, seconds - burst);
    radius += (StaysWithBird(ember) ? 0.22f : 0.62f) * since;
    height -= 0.05f * since * since;
    size *= Smooth(last, last - 1.2f, seconds);
    return {OnWhirl(radius, turn, height), size};
}

// The four corners of a square of the screen, at last; `u` and `v` are what the scene will make of it.
void AddSquare(MeshBuilder* mesh, Vec3 at, float halfWidth, float halfHeight) {
    constexpr float kCorners[4][2] = {{-1, 1}, {1, 1}, {-1, -1}, {1, -1}};
    int first = -1;
    for (const auto& [x, y] : kCorners) {
        const int number =
            mesh->Add({at + Vec3{x * halfWidth, y * halfHeight, 0}, {0, 0, 1}, (1 + x) / 2, (1 - y) / 2});
        first = first < 0 ? number : first;
    }
    mesh->Triangle(first, first + 2, first + 1);
    mesh->Triangle(first + 1, first + 2, first + 3);
}

constexpr Vec3 kSpent = {0, 0, kBehindSheet};

} // namespace

void ScatterShards(SheetCorners* corners, float seconds, Vec3 centre) {
    for (int patch = 0; patch < kPatches; ++patch) {
        const float arrival = ArrivalOf(patch);
        const float arrived = Smooth(arrival - 0.9f, arrival + 0.3f, seconds);
        if (arrived >= 1)
            continue;
        const Shard shard = ShardAt(patch, seconds);
        const SheetPlace middle = PlaceOf(patch, kPatchCorners / 2);
        for (int corner = 0; corner < kPatchCorners; ++corner) {
            const SheetPlace place = PlaceOf(patch, corner);
            const Vec3 flat = {(place.s - middle.s) * kAspect * shard.size, (place.t - middle.t) * shard.size,
                               0};
            const Vec3 whirling = centre + shard.centre + TurnedAbout(flat, shard.axis, shard.angle);
            const int number = patch * kPatchCorners + corner;
            Vec3& at = (*corners)[static_cast<std::size_t>(number)];
            at = Mix(whirling, at, arrived);
        }
    }
}

void AddEmbers(MeshBuilder* mesh, float seconds, Vec3 centre) {
    for (int i = 0; i < kEmbers; ++i) {
        const Ember ember = EmberAt(i, seconds);
        const Vec3 at = centre + ember.at;
        AddSquare(mesh, {at.x / kAspect, at.y, at.z}, ember.size / kAspect, ember.size);
    }
    AddSquare(mesh, kSpent, 0, 0);
}

void AddSpentEmbers(MeshBuilder* mesh) {
    for (int i = 0; i <= kEmbers; ++i)
        AddSquare(mesh, kSpent, 0, 0);
}

void AddEmbersForTexture(MeshBuilder* mesh) {
    for (int i = 0; i < kEmbers; ++i)
        AddSquare(mesh, {0, 0, -kOutOfSight}, 1, 1);
    AddSquare(mesh, {0, 0, kOutOfSight}, 0, 0);
}
