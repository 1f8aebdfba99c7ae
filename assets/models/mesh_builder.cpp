#include "models/mesh_builder.h"

#include "geometry/mesh.h"
#include "geometry/model.h"

#include <algorithm>

namespace {

bool localSamePlace(Vec3 a, Vec3 b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

} // namespace

int MeshBuilder::Add(const Corner& corner) {
    corners_.push_back(corner);
    return static_cast<int>(corners_.size()) - 1;
}

void MeshBuilder::JoinGrid(int first, int columns, int rows) {
    const auto at = [&](int corner) { return corners_[static_cast<std::size_t>(corner)].position; };
    for (int row = 0; row + 1 < rows; ++row)
        for (int column = 0; column + 1 < columns; ++column) {
            const int a = first + row * columns + column;
            const int b = a + 1;
            const int c = a + columns;
            const int d = c + 1;
            if (localSamePlace(at(a), at(c)) && localSamePlace(at(b), at(d)))
                continue;
            if (!localSamePlace(at(a), at(b)))
                Triangle(a, c, b);
            if (!localSamePlace(at(c), at(d)))
                Triangle(b, c, d);
        }
}

std::unique_ptr<FXMesh> MeshBuilder::Build() const {
    auto mesh = std::make_unique<FXMesh>();
    mesh->materialName.Set(material_.c_str());
    mesh->transparent = transparency_;
    if (!mesh->Realloc(static_cast<int>(corners_.size()), static_cast<int>(indices_.size())))
        return mesh;
    std::transform(corners_.begin(), corners_.end(), mesh->vertices, [](const Corner& c) {
        tagFXVertex v = {};
        v.pos[0] = c.position.x;
        v.pos[1] = c.position.y;
        v.pos[2] = c.position.z;
        v.normal[0] = c.normal.x;
        v.normal[1] = c.normal.y;
        v.normal[2] = c.normal.z;
        v.tex[0] = c.u;
        v.tex[1] = c.v;
        std::fill_n(v.color, 4, 1.0f);
        return v;
    });
    std::copy(indices_.begin(), indices_.end(), mesh->indices);
    return mesh;
}

void GiveMesh(FXModel* model, std::unique_ptr<FXMesh> mesh) {
    model->meshes.Push(mesh.release());
}

std::string WriteModel(const std::string& file, const char* name, const char* library,
                       const std::vector<const MeshBuilder*>& meshes) {
    FXModel model;
    model.name.Set(name);
    model.matlibName.Set(library);
    for (const MeshBuilder* mesh : meshes)
        GiveMesh(&model, mesh->Build());
    return model.Save(file.c_str()) ? "" : file + ": cannot be written";
}
