#include "pack/mtl_file.h"

#include "base/whole_file.h"
#include "geometry/wavefront_lines.h"
#include "image/material.h"
#include "pack/text.h"

#define TINYOBJLOADER_USE_DOUBLE
#include <tiny_obj_loader.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <vector>

namespace {

constexpr double kMostShininess = 128;

struct Numbers {
    const char* keyword;
    std::size_t count;
};
constexpr Numbers kNumbers[] = {{"Ka", 3}, {"Kd", 3}, {"Ks", 3}, {"Ke", 3}, {"Ns", 1}, {"d", 1}, {"Tr", 1}};

// The first line that is not as it should be; empty when all are.
std::string localFaultOf(const std::string& file, const std::string& text) {
    std::string fault;
    bool hasMaterial = false;
    fxForEachLine(text, [&](const FXWavefrontLine& line) {
        hasMaterial = hasMaterial || line.keyword == "newmtl";
        const auto* known = std::ranges::find(kNumbers, line.keyword, &Numbers::keyword);
        std::string found;
        if (known != std::end(kNumbers) && !hasMaterial)
            found = line.keyword + " stands before the first newmtl";
        else if (known != std::end(kNumbers) && !fxHasNumbers(line, known->count))
            found = Text("%s needs %zu numbers", known->keyword, known->count);
        else if (line.keyword == "newmtl" && line.rest.empty())
            found = "newmtl needs a name";
        if (fault.empty() && !found.empty())
            fault = file + ":" + std::to_string(line.number) + ": " + found;
    });
    return fault.empty() && !hasMaterial ? file + ": there is no material (newmtl) in it" : fault;
}

void localSetColor(const tinyobj::real_t* from, float alpha, float* color) {
    for (int i = 0; i < 3; ++i)
        color[i] = static_cast<float>(from[i]);
    color[3] = alpha;
}

} // namespace

bool ReadMtl(const std::string& file, FXMatlib* library, std::string* error) {
    std::string text;
    if (!fxReadWhole(file, &text, error))
        return false;
    *error = localFaultOf(file, text);
    if (!error->empty())
        return false;
    std::map<std::string, int> numbers;
    std::vector<tinyobj::material_t> materials;
    std::istringstream stream(text);
    std::string warnings;
    tinyobj::LoadMtl(&numbers, &materials, &stream, &warnings, error);
    for (const tinyobj::material_t& read : materials) {
        auto* material = new FXMaterial;
        material->ownedByLibrary = true;
        library->AddMaterial(material);
        material->name.Set(fxTrimmed(read.name).c_str());
        material->texRef.Set(read.diffuse_texname.c_str());
        localSetColor(read.ambient, 0, material->ambient);
        localSetColor(read.diffuse, static_cast<float>(read.dissolve), material->diffuse);
        localSetColor(read.specular, 0, material->specular);
        localSetColor(read.emission, 0, material->emission);
        material->shininess = static_cast<float>(std::clamp(read.shininess, 0.0, kMostShininess));
    }
    return error->empty();
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
