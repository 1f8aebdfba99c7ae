#include "pack/obj_model.h"

#include "geometry/mesh.h"
#include "pack/text.h"

#include <unordered_map>

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
