// The bevelled gold disc with the emblem on both faces.
#include "medallion_shape.h"
#include "models/mesh_builder.h"
#include "models/models.h"
#include "pictures/colour.h"

#include <cmath>
#include <span>
#include <string>

namespace {

constexpr const char* kLibrary = "41";
constexpr float kAcross = 0.1013f; // of the screen (kSize of the scene)
constexpr float kFaceRadius = 0.84f;
constexpr float kFaceHeight = 0.052f;
constexpr float kRise = 0.075f; // of the emblem over the face, in radii of the face

// Where the face has corners, from the middle outwards: close together where the emblem stands out of it.
constexpr float kFaceRings[] = {0.00f, 0.16f, 0.28f, 0.36f, 0.41f, 0.45f, 0.50f,
                                0.55f, 0.59f, 0.64f, 0.72f, 0.86f, 1.00f};

// The medallion is drawn flattened to about a tenth of its width and a sixth of its height, its depth left
// alone, which steepens every slope for the light as much. Normals are stored flatter by as much, so that
// they come out as meant; the faces are shaded as if they were domed, so that a streak of light crosses them
// at every turn.
constexpr float kFlatX = 0.40f;
constexpr float kFlatY = 0.20f;
constexpr float kDomeX = 0.90f;
constexpr float kDomeY = 0.16f;

// A step of the rim, outwards; height is half the thickness there, `out` and `up` the normal.
struct Step {
    float radius, height, out, up;
};
// Where a radius and height stand twice with different normals, the edge is sharp.
constexpr Step kRim[] = {
    {0.840f, 0.052f, -0.80f, 0.60f}, {0.875f, 0.074f, -0.80f, 0.60f}, // up from the face
    {0.875f, 0.074f, -0.35f, 0.94f}, {0.900f, 0.080f, 0.00f, 1.00f},  // over the top, rounded
    {0.930f, 0.078f, 0.30f, 0.95f},  {0.955f, 0.066f, 0.60f, 0.80f},  //
    {0.955f, 0.066f, 0.75f, 0.66f},  {0.988f, 0.034f, 0.75f, 0.66f},  // bevel
    {0.988f, 0.034f, 1.00f, 0.00f},  {1.000f, 0.020f, 1.00f, 0.00f},  // edge
    {1.000f, 0.000f, 1.00f, 0.00f},
};

struct Direction {
    float x, y;
};
Direction localDirectionOf(int sector, int sectors) {
    const float turn = 2 * kPi * static_cast<float>(sector % sectors) / static_cast<float>(sectors);
    return {std::cos(turn), std::sin(turn)};
}

// The front is at -z; the back is the front seen in a mirror behind it, its pictures turned to read well
// there.
struct Side {
    float z;
    bool isBack;
    int sectors;
};

// Rows run outwards and columns clockwise on the front, so that triangles run anticlockwise; on the back, the
// other way round.
template <class CornerAt>
void localAddRings(MeshBuilder* mesh, const Side& side, int rings, CornerAt cornerAt) {
    int first = -1;
    for (int ring = 0; ring < rings; ++ring)
        for (int sector = 0; sector <= side.sectors; ++sector) {
            const Direction d = localDirectionOf(side.isBack ? sector : side.sectors - sector, side.sectors);
            const int number = mesh->Add(cornerAt(ring, d));
            first = first < 0 ? number : first;
        }
    mesh->JoinGrid(first, side.sectors + 1, rings);
}

// How far the emblem stands out at a place of the face.
float localRiseAt(float x, float y) {
    const auto swell = [](float distance, float reach) {
        const float left = Clamp01(1 - distance * distance / (reach * reach));
        return left * left;
    };
    const float moon = std::hypot(x - kMoonX, y - kMoonY);
    const float gap = Smooth(kMoonRadius + 0.01f, kMoonRadius + 0.05f, moon);
    const float ring = swell(std::hypot(x, y) - kRingRadius, kRingWidth * 1.25f);
    return kRise * (0.8f * gap * ring + 1.2f * swell(moon, kMoonRadius * 1.15f));
}

void localAddFace(MeshBuilder* mesh, const Side& side) {
    localAddRings(mesh, side, static_cast<int>(std::size(kFaceRings)), [&](int ring, Direction d) {
        constexpr float kStep = 0.004f;
        const float r = kFaceRings[ring];
        const float across = side.isBack ? -d.x : d.x; // as the face's picture is seen
        const float x = across * r;
        const float y = d.y * r;
        const float slopeX = (localRiseAt(x + kStep, y) - localRiseAt(x - kStep, y)) / (2 * kStep);
        const float slopeY = (localRiseAt(x, y + kStep) - localRiseAt(x, y - kStep)) / (2 * kStep);
        const Vec3 at = {d.x * r * kFaceRadius, d.y * r * kFaceRadius,
                         side.z * (kFaceHeight + kFaceRadius * localRiseAt(x, y))};
        const Vec3 normal = Unit({kDomeX * r * d.x - kFlatX * slopeX * (side.isBack ? -1 : 1),
                                  kDomeY * r * d.y - kFlatY * slopeY, side.z});
        return Corner{at, normal, (1 + x) / 2, (1 - y) / 2};
    });
}

void localAddRim(MeshBuilder* mesh, const Side& side) {
    localAddRings(mesh, side, static_cast<int>(std::size(kRim)), [&](int ring, Direction d) {
        const Step& step = kRim[ring];
        const Vec3 at = {d.x * step.radius, d.y * step.radius, side.z * step.height};
        const Vec3 normal = Unit({kFlatX * step.out * d.x, kFlatY * step.out * d.y, side.z * step.up});
        return Corner{at, normal, (1 + at.x) / 2, (1 - at.y) / 2};
    });
}

} // namespace

std::string WriteMedallion(const std::string& file, const Screen& screen) {
    const int sectors = PiecesOfCircle(kAcross * static_cast<float>(screen.width) / 2);
    MeshBuilder faces("Emblem");
    MeshBuilder rim("Gold");
    for (const Side& side : {Side{-1, false, sectors}, Side{1, true, sectors}}) {
        localAddFace(&faces, side);
        localAddRim(&rim, side);
    }
    return WriteModel(file, "medallion", kLibrary, {&faces, &rim});
}
