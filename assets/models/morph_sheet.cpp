#include "models/morph_sheet.h"
#include "models/mesh_builder.h"
#include "pictures/colour.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kGridColumns = 2 * kPatchColumns + 1; // of half patches
constexpr int kGridRows = 2 * kPatchRows + 1;
constexpr float kTouching = 1e-4f;
constexpr float kSmoothFold = 0.80f;   // cosine of the sharpest fold that is rounded
constexpr float kTowardsViewer = 0.5f; // how much all surfaces are lit as if they faced the viewer more

// A corner's column and row on the whole grid, row 0 at the bottom.
struct GridPlace {
    int column, row;
};

// From a patch's left and bottom, in half patches.
constexpr GridPlace kWingCorners[] = {{0, 2}, {1, 2}, {2, 2}, {0, 0}, {1, 0}, {2, 0}};
constexpr GridPlace kBodyCorners[] = {{0, 2}, {2, 2}, {0, 1}, {2, 1}, {0, 0}, {2, 0}};
constexpr int kWingTriangles[][3] = {{0, 3, 1}, {1, 3, 4}, {1, 4, 2}, {2, 4, 5}};
constexpr int kBodyTriangles[][3] = {{0, 2, 1}, {1, 2, 3}, {2, 4, 3}, {3, 4, 5}};

bool localIsBody(int patch) {
    return IsBodyPatch(patch % kPatchColumns);
}

GridPlace localOnGrid(int patch, GridPlace inside) {
    return {2 * (patch % kPatchColumns) + inside.column, 2 * (patch / kPatchColumns) + inside.row};
}

GridPlace localOnGrid(int patch, int corner) {
    return localOnGrid(patch, localIsBody(patch) ? kBodyCorners[corner] : kWingCorners[corner]);
}

// operation(a, b, c) for the corners of every triangle of the patch.
template <class Operation> void localForEachTriangle(int patch, Operation operation) {
    const int first = patch * kPatchCorners;
    for (const auto& [a, b, c] : localIsBody(patch) ? kBodyTriangles : kWingTriangles)
        operation(first + a, first + b, first + c);
}

float localShare(int number, int count) {
    return static_cast<float>(2 * number - (count - 1)) / static_cast<float>(count - 1);
}

// For each place of the grid, the corners that belong there.
std::vector<std::vector<int>> localSharedPlaces() {
    std::vector<std::vector<int>> shared(static_cast<std::size_t>(kGridColumns) * kGridRows);
    ForEachCorner([&](int patch, int corner) {
        const GridPlace at = localOnGrid(patch, corner);
        shared[static_cast<std::size_t>(at.row) * kGridColumns + at.column].push_back(patch * kPatchCorners +
                                                                                      corner);
    });
    return shared;
}

// Of each patch by itself: the larger a triangle, the more its corners face as it does.
std::vector<Vec3> localPatchNormals(const SheetCorners& corners) {
    std::vector<Vec3> normals(corners.size());
    const auto at = [](int number) { return static_cast<std::size_t>(number); };
    for (int patch = 0; patch < kPatches; ++patch)
        localForEachTriangle(patch, [&](int a, int b, int c) {
            const Vec3 facing = Cross(corners[at(b)] - corners[at(a)], corners[at(c)] - corners[at(a)]);
            for (const int number : {a, b, c})
                normals[at(number)] = normals[at(number)] + facing;
        });
    std::transform(normals.begin(), normals.end(), normals.begin(), Unit);
    return normals;
}

std::vector<Vec3> localSheetNormals(const SheetCorners& corners) {
    const std::vector<Vec3> own = localPatchNormals(corners);
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

void localJoinPatches(MeshBuilder* mesh) {
    for (int patch = 0; patch < kPatches; ++patch)
        localForEachTriangle(patch, [&](int a, int b, int c) { mesh->Triangle(a, b, c); });
}

SheetPlace localPlaceOf(int patch, GridPlace at) {
    return {localShare(at.column, kGridColumns), localShare(at.row, kGridRows), patch % kPatchColumns,
            patch / kPatchColumns};
}

} // namespace

SheetPlace PlaceOf(int patch, int corner) {
    return localPlaceOf(patch, localOnGrid(patch, corner));
}

SheetPlace MiddleOf(int patch) {
    return localPlaceOf(patch, localOnGrid(patch, {1, 1}));
}

void AddSheet(MeshBuilder* mesh, const SheetCorners& corners) {
    const std::vector<Vec3> normals = localSheetNormals(corners);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const Vec3 at = corners[i];
        mesh->Add({{at.x / kAspect, at.y, at.z}, localLit(normals[i])});
    }
    localJoinPatches(mesh);
}

void AddFlatSheet(MeshBuilder* mesh) {
    ForEachCorner([&](int patch, int corner) {
        const SheetPlace place = PlaceOf(patch, corner);
        mesh->Add({{place.s, place.t, 0}, {0, 0, 1}});
    });
    localJoinPatches(mesh);
}
