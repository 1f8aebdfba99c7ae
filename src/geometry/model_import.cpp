// Models from Wavefront OBJ files. A target of its own: the saver imports nothing.
#include "geometry/model_import.h"
#include "geometry/mesh.h"
#include "geometry/model.h"
#include "image/material.h"
#include "image/material_library.h"
#include "platform/trace.h"
#include "render/environment.h"

#include <algorithm>
#include <filesystem>
#include <unordered_map>
#include <vector>

namespace {

using Key = std::string; // the bytes of a vertex

class MeshMaker {
public:
    MeshMaker(const FXObjMesh& source, const FXObjLooks& looks) : source_(source), looks_(looks) {}

    FXMesh* Make() {
        auto* mesh = new FXMesh;
        mesh->materialName.Set(source_.material.c_str());
        mesh->material = FindMaterial();
        mesh->transparent = DrawClass(mesh->material);
        if (mesh->material != nullptr && mesh->material->extentU > 0)
            SetExtents(mesh);
        for (const FXObjCorner& corner : source_.corners)
            Add(corner);
        const auto vertices = static_cast<int>(vertices_.size());
        const auto indices = static_cast<int>(indices_.size());
        if (mesh->Realloc(vertices, indices)) {
            std::ranges::copy(vertices_, mesh->vertices);
            std::ranges::copy(indices_, mesh->indices);
        }
        return mesh;
    }

private:
    FXMaterial* FindMaterial() const {
        return looks_.library != nullptr ? looks_.library->FindMaterial(source_.material.c_str()) : nullptr;
    }

    int DrawClass(const FXMaterial* material) const {
        for (const std::string& key : {source_.material, std::string()})
            if (const auto given = looks_.draw.find(key); given != looks_.draw.end())
                return given->second;
        return material != nullptr && !material->IsSolid() ? 1 : 0;
    }

    void SetExtents(FXMesh* mesh) {
        mesh->loadedU = mesh->material->extentU;
        mesh->loadedV = mesh->material->extentV;
        u_ = static_cast<double>(mesh->loadedU);
        v_ = static_cast<double>(mesh->loadedV);
    }

    void Add(const FXObjCorner& corner) {
        tagFXVertex vertex = {};
        for (std::size_t i = 0; i < 3; ++i) {
            vertex.pos[i] = static_cast<float>(corner.position[i]);
            vertex.normal[i] = static_cast<float>(corner.normal[i]);
        }
        vertex.tex[0] = static_cast<float>(corner.tex[0] * u_);
        vertex.tex[1] = static_cast<float>((1 - corner.tex[1]) * v_);
        std::fill_n(vertex.color, 4, 1.0f);
        const auto next = static_cast<int>(vertices_.size());
        const Key key(reinterpret_cast<const char*>(&vertex), sizeof vertex);
        const int at = looks_.shareCorners ? numbers_.emplace(key, next).first->second : next;
        if (at == next)
            vertices_.push_back(vertex);
        indices_.push_back(at);
    }

    const FXObjMesh& source_;
    const FXObjLooks& looks_;
    double u_ = 1, v_ = 1;
    std::vector<tagFXVertex> vertices_;
    std::vector<int> indices_;
    std::unordered_map<Key, int> numbers_;
};

} // namespace

void FXModel::ImportObj(const FXObjFile& obj, const FXObjLooks& looks) {
    name.Set(obj.object.c_str());
    matlibName.Set(looks.libraryName.c_str());
    for (const FXObjMesh& mesh : obj.meshes)
        loadedMeshes.Push(MeshMaker(mesh, looks).Make());
}

bool FXModel::ImportObj(const char* path) {
    Destroy();
    FXObjFile obj;
    std::string problem;
    if (!fxReadObj(path, &obj, &problem)) {
        err("%s\n", problem.c_str());
        return false;
    }
    FXObjLooks looks;
    if (!obj.libraries.empty()) {
        looks.libraryName =
            (std::filesystem::path(path).parent_path() / obj.libraries.front()).lexically_normal().string();
        if (fxglobalEnv != nullptr)
            matlib = fxglobalEnv->LoadMatlib(looks.libraryName.c_str());
        looks.library = matlib;
    }
    ImportObj(obj, looks);
    return true;
}
