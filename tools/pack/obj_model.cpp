#include "pack/obj_model.h"

#include "geometry/mesh.h"
#include "image/material.h"
#include "pack/text.h"
#include "pack/wavefront_lines.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <vector>

namespace {

using Key = std::string; // the bytes of a vertex

class MeshMaker {
public:
    MeshMaker(const ObjMesh& source, const ModelLooks& looks) : source_(source), looks_(looks) {}

    FXMesh* Make() {
        auto* mesh = new FXMesh;
        mesh->materialName.Set(source_.material.c_str());
        mesh->material = FindMaterial();
        mesh->transparent = DrawClass(mesh->material);
        if (mesh->material != nullptr && mesh->material->extentU > 0)
            SetExtents(mesh);
        for (const ObjCorner& corner : source_.corners)
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
        return material != nullptr && material->diffuse[3] < 1 ? 1 : 0;
    }

    void SetExtents(FXMesh* mesh) {
        mesh->loadedU = mesh->material->extentU;
        mesh->loadedV = mesh->material->extentV;
        u_ = static_cast<double>(mesh->loadedU);
        v_ = static_cast<double>(mesh->loadedV);
    }

    void Add(const ObjCorner& corner) {
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

    const ObjMesh& source_;
    const ModelLooks& looks_;
    double u_ = 1, v_ = 1;
    std::vector<tagFXVertex> vertices_;
    std::vector<int> indices_;
    std::unordered_map<Key, int> numbers_;
};

// The distinct values of one keyword, each a line, numbered from 1 in the order of first use.
class Lines {
public:
    int Number(const std::string& line) {
        const auto [at, isNew] = numbers_.emplace(line, static_cast<int>(numbers_.size()) + 1);
        if (isNew)
            text += line;
        return at->second;
    }

    std::string text;

private:
    std::unordered_map<std::string, int> numbers_;
};

std::string TexLine(const FXMesh& mesh, const float* tex) {
    const double u = mesh.loadedU > 0 ? static_cast<double>(mesh.loadedU) : 1;
    const double v = mesh.loadedV > 0 ? static_cast<double>(mesh.loadedV) : 1;
    return "vt " + NumberText(static_cast<double>(tex[0]) / u) + " " +
           NumberText(1 - static_cast<double>(tex[1]) / v) + "\n";
}

} // namespace

void MakeModel(const ObjFile& obj, const ModelLooks& looks, FXModel* model) {
    model->name.Set(obj.object.c_str());
    model->matlibName.Set(looks.libraryName.c_str());
    for (const ObjMesh& mesh : obj.meshes)
        model->meshes.Push(MeshMaker(mesh, looks).Make());
}

std::string ObjText(const FXModel& model, const std::string& mtlFile) {
    Lines positions, normals, texCoords;
    std::string faces;
    for (const FXMesh* mesh : model.meshes) {
        faces += std::string("usemtl ") + mesh->materialName.text + "\n";
        for (int i = 0; i < mesh->indexCount; ++i) {
            const tagFXVertex& v = mesh->vertices[mesh->indices[i]];
            faces += Text("%s%d/%d/%d", i % 3 == 0 ? "f " : " ", positions.Number(Line3("v", v.pos)),
                          texCoords.Number(TexLine(*mesh, v.tex)), normals.Number(Line3("vn", v.normal)));
            if (i % 3 == 2)
                faces += "\n";
        }
    }
    return (mtlFile.empty() ? "" : "mtllib " + mtlFile + "\n") + "o " + model.name.text + "\n" +
           positions.text + texCoords.text + normals.text + faces;
}
