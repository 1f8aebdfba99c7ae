// Reading of Wavefront MTL files (the format: Wavefront Advanced Visualizer manual, appendix B1).
#include "image/material.h"
#include "image/material_library.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

namespace {

void localReadColor(std::istream& line, float* color) {
    float rgb[3];
    if (line >> rgb[0] >> rgb[1] >> rgb[2])
        std::copy_n(rgb, 3, color);
}

// One statement about the current material; unknown ones are passed over.
void localReadStatement(const std::string& keyword, std::istream& line, FXMaterial* material) {
    if (keyword == "Ka") {
        localReadColor(line, material->ambient);
    } else if (keyword == "Kd") {
        localReadColor(line, material->diffuse);
    } else if (keyword == "Ks") {
        localReadColor(line, material->specular);
    } else if (keyword == "Ke") {
        localReadColor(line, material->emission);
    } else if (keyword == "Ns") {
        float exponent = 0;
        if (line >> exponent)
            material->shininess = std::clamp(exponent, 0.0f, 128.0f);
    } else if (keyword == "d" || keyword == "Tr") {
        float value = 1;
        if (line >> value)
            material->diffuse[3] = keyword == "d" ? value : 1 - value;
    } else if (keyword == "map_Kd") {
        std::string file;
        std::getline(line >> std::ws, file);
        material->texRef.Set(file.c_str());
        material->texRef.TrimSpaces();
    }
}

} // namespace

bool FXMatlib::LoadFromMtl(const char* path) {
    std::ifstream file(path);
    if (!file)
        return false;
    name.Set(path);
    FXMaterial* current = nullptr;
    const int before = materials.count;
    for (std::string text; std::getline(file, text);) {
        std::istringstream line(text);
        std::string keyword;
        line >> keyword;
        if (keyword == "newmtl") {
            std::string materialName;
            std::getline(line >> std::ws, materialName);
            current = AppendOwned();
            if (current == nullptr)
                break;
            current->name.Set(materialName.c_str());
            current->name.TrimSpaces();
        } else if (current != nullptr) {
            localReadStatement(keyword, line, current);
        }
    }
    for (int i = before; i < materials.count; ++i)
        if (!materials[i]->texRef.IsEmpty())
            materials[i]->LoadTexture(materials[i]->texRef.text);
    return true;
}
