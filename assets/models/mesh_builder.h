// Meshes in the making, and their way into model files.
#pragma once

#include "noise.h"

#include <memory>
#include <string>
#include <vector>

class FXMesh;
class FXModel;

constexpr Vec3 Cross(Vec3 a, Vec3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
constexpr Vec3 Mix(Vec3 a, Vec3 b, float t) {
    return a * (1 - t) + b * t;
}

struct Corner {
    Vec3 position;
    Vec3 normal;
    float u = 0;
    float v = 0;
};

// A grid of corners joined to triangles: row after row, all of one length.
class MeshBuilder {
public:
    explicit MeshBuilder(const char* material, int transparency = 0)
        : material_(material), transparency_(transparency) {}

    int Add(const Corner& corner); // its number
    void Triangle(int a, int b, int c) { indices_.insert(indices_.end(), {a, b, c}); }
    // Corners first .. first + columns * rows - 1 are a grid, row by row; seen with columns to the right and
    // rows downwards, its triangles run anticlockwise. A quad with an edge that is one point becomes one
    // triangle; one that is a line, none.
    void JoinGrid(int first, int columns, int rows);

    std::unique_ptr<FXMesh> Build() const;

private:
    std::string material_;
    int transparency_;
    std::vector<Corner> corners_;
    std::vector<int> indices_;
};

// Takes the mesh as the model's next one.
void GiveMesh(FXModel* model, std::unique_ptr<FXMesh> mesh);
// Writes a model of these meshes, whose materials stand in the library of that number.
std::string WriteModel(const std::string& file, const char* name, const char* library,
                       const std::vector<const MeshBuilder*>& meshes);
