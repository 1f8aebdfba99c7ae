#include "pack/wavefront.h"

#include "base/whole_file.h"
#include "geometry/mesh.h"
#include "image/material.h"
#include "image/mtl_file.h"
#include "pack/text.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace {

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

std::string localTexLine(const FXMesh& mesh, const float* tex) {
    const double u = mesh.loadedU > 0 ? static_cast<double>(mesh.loadedU) : 1;
    const double v = mesh.loadedV > 0 ? static_cast<double>(mesh.loadedV) : 1;
    return "vt " + NumberText(static_cast<double>(tex[0]) / u) + " " +
           NumberText(1 - static_cast<double>(tex[1]) / v) + "\n";
}

constexpr FXMtlMaterial::Color kBlack = {0, 0, 0};
constexpr FXMtlMaterial::Color kUnderPicture = {0.6f, 0.6f, 0.6f};

void localSetColor(const FXMtlMaterial::Color& from, float alpha, float* color) {
    std::ranges::copy(from, color);
    color[3] = alpha;
}

} // namespace

std::string ObjText(const FXModel& model, const std::string& mtlFile) {
    Lines positions, normals, texCoords;
    std::string faces;
    for (const FXMesh* mesh : model.meshes) {
        faces += std::string("usemtl ") + mesh->materialName.text + "\n";
        for (int i = 0; i < mesh->indexCount; ++i) {
            const tagFXVertex& v = mesh->vertices[mesh->indices[i]];
            faces +=
                Text("%s%d/%d/%d", i % 3 == 0 ? "f " : " ", positions.Number(Line3("v", v.pos)),
                     texCoords.Number(localTexLine(*mesh, v.tex)), normals.Number(Line3("vn", v.normal)));
            if (i % 3 == 2)
                faces += "\n";
        }
    }
    return (mtlFile.empty() ? "" : "mtllib " + mtlFile + "\n") + "o " + model.name.text + "\n" +
           positions.text + texCoords.text + normals.text + faces;
}

bool ReadMtl(const std::string& file, FXMatlib* library, std::string* error) {
    std::string text, fault;
    if (!fxReadWhole(file, &text, error))
        return false;
    const std::vector<FXMtlMaterial> materials = fxReadMtl(text, &fault);
    error->clear();
    if (!fault.empty())
        *error = file + ":" + fault;
    else if (materials.empty())
        *error = file + ": there is no material (newmtl) in it";
    if (!error->empty())
        return false;
    for (const FXMtlMaterial& read : materials) {
        auto* material = new FXMaterial;
        material->ownedByLibrary = true;
        library->AddMaterial(material);
        material->name.Set(read.name.c_str());
        material->texRef.Set(read.picture.c_str());
        localSetColor(read.ambient.value_or(kBlack), 0, material->ambient);
        localSetColor(read.diffuse.value_or(read.picture.empty() ? kBlack : kUnderPicture),
                      read.alpha.value_or(1), material->diffuse);
        localSetColor(read.specular.value_or(kBlack), 0, material->specular);
        localSetColor(read.emission.value_or(kBlack), 0, material->emission);
        material->shininess = read.shininess.value_or(1);
    }
    return true;
}

std::string MtlText(const FXMatlib& library, const std::function<std::string(const char*)>& pictureOf) {
    std::string text;
    for (const FXMaterial* material : library.materials) {
        text += std::string(text.empty() ? "" : "\n") + "newmtl " + material->name.text + "\n";
        text += Line3("Ka", material->ambient) + Line3("Kd", material->diffuse) +
                Line3("Ks", material->specular) + Line3("Ke", material->emission);
        text += "Ns " + NumberText(material->shininess) + "\nd " + NumberText(material->diffuse[3]) + "\n";
        if (!material->texRef.IsEmpty())
            text += "map_Kd " + pictureOf(material->texRef.text) + "\n";
    }
    return text;
}
