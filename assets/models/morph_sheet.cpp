#include "models/morph_sheet.h"
#include "models/mesh_builder.h"
#include "pictures/colour.h"

#include <array>
#include <cmath>

namespace {

constexpr int kSteps = kPatchSide - 1; // cells of a patch, each way
constexpr int kGridColumns = kPatchColumns * kSteps + 1;
constexpr int kGridRows = kPatchRows * kSteps + 1;
constexpr float kTouching = 1e-4f;
constexpr float kSmoothFold = 0.80f;   // cosine of the sharpest fold that is rounded
constexpr float kTowardsViewer = 0.5f; // how much all surfaces are lit as if they faced the viewer more

// A corner's column and row on the whole grid, row 0 at the bottom.
struct GridPlace {
    int column, row;
};

GridPlace localOnGrid(int patch, int corner) {
    return {patch % kPatchColumns * kSteps + corner % kPatchSide,
            patch / kPatchColumns * kSteps + kSteps - corner / kPatchSide};
}

float localShare(int number, int count) {
    return static_cast<float>(2 * number - (count - 1)) / static_cast<float>(count - 1);
}

// The patch's normal at each of its corners, from its own cells.
std::array<Vec3, kPatchCorners> localPatchNormals(const Vec3* corners) {
    std::array<Vec3, kPatchCorners> normals;
    for (int corner = 0; corner < kPatchCorners; ++corner) {
        const int column = corner % kPatchSide;
        const int row = corner / kPatchSide;
        const Vec3* here = corners + corner;
        const Vec3 right = here[column < kSteps ? 1 : 0] - here[column > 0 ? -1 : 0];
        const Vec3 up = here[row > 0 ? -kPatchSide : 0] - here[row < kSteps ? kPatchSide : 0];
        normals[static_cast<std::size_t>(corner)] = Unit(Cross(right, up));
    }
    return normals;
}

// For each place of the grid, the corners that belong there.
std::vector<std::vector<int>> localSharedPlaces() {
    std::vector<std::vector<int>> shared(static_cast<std::size_t>(kGridColumns) * kGridRows);
    for (int patch = 0; patch < kPatches; ++patch)
        for (int corner = 0; corner < kPatchCorners; ++corner) {
            const GridPlace at = localOnGrid(patch, corner);
            const int place = at.row * kGridColumns + at.column;
            shared[static_cast<std::size_t>(place)].push_back(patch * kPatchCorners + corner);
        }
    return shared;
}

std::vector<Vec3> localSheetNormals(const SheetCorners& corners) {
    std::vector<Vec3> own;
    for (int patch = 0; patch < kPatches; ++patch)
        for (const Vec3& normal :
             localPatchNormals(&corners[static_cast<std::size_t>(patch) * kPatchCorners]))
            own.push_back(normal);
    std::vector<Vec3> smooth = own;
    for (const std::vector<int>& place : localSharedPlaces())
        for (const int a : place)
            for (const int b : place) {
                const auto from = static_cast<std::size_t>(b);
                const auto to = static_cast<std::size_t>(a);
                const Vec3 apart = corners[from] - corners[to];
                if (a != b && Dot(apart, apart) < kTouching * kTouching &&
                    Dot(own[from], own[to]) > kSmoothFold)
                    smooth[to] = smooth[to] + own[from];
            }
    return smooth;
}

Vec3 localLit(Vec3 normal) {
    const Vec3 unit = Unit(normal);
    return Unit(unit + Vec3{0, 0, kTowardsViewer * unit.z / (std::fabs(unit.z) + 0.25f)});
}

Corner localCornerAt(Vec3 position, Vec3 normal, const SheetPlace& place) {
    return {position, normal, (1 + place.s) / 2, (1 - place.t) / 2};
}

void localJoinPatches(MeshBuilder* mesh) {
    for (int patch = 0; patch < kPatches; ++patch) {
        const int first = patch * kPatchCorners;
        for (int row = 0; row < kSteps; ++row)
            for (int column = 0; column < kSteps; ++column) {
                const int a = first + row * kPatchSide + column;
                const int c = a + kPatchSide;
                mesh->Triangle(a, c, a + 1);
                mesh->Triangle(a + 1, c, c + 1);
            }
    }
}

} // namespace

SheetPlace PlaceOf(int patch, int corner) {
    const GridPlace at = localOnGrid(patch, corner);
    return {localShare(at.column, kGridColumns), localShare(at.row, kGridRows), patch % kPatchColumns,
            patch / kPatchColumns};
}

void AddSheet(MeshBuilder* mesh, const SheetCorners& corners) {
    const std::vector<Vec3> normals = localSheetNormals(corners);
    for (int i = 0; i < kPatches * kPatchCorners; ++i) {
        const Vec3 at = corners[static_cast<std::size_t>(i)];
        mesh->Add(localCornerAt({at.x / kAspect, at.y, at.z}, localLit(normals[static_cast<std::size_t>(i)]),
                                PlaceOf(i / kPatchCorners, i % kPatchCorners)));
    }
    localJoinPatches(mesh);
}

void AddFlatSheet(MeshBuilder* mesh) {
    for (int i = 0; i < kPatches * kPatchCorners; ++i) {
        const SheetPlace place = PlaceOf(i / kPatchCorners, i % kPatchCorners);
        mesh->Add(localCornerAt({place.s, place.t, 0}, {0, 0, 1}, place));
    }
    localJoinPatches(mesh);
}
