// The materials of the models. In a package a material's picture is named by the number of its entry.
#include "image/material.h"
#include "image/material_library.h"
#include "models/models.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string>

namespace {

struct Look {
    const char* name;
    const char* picture;
    std::array<float, 4> ambient, diffuse, specular, emission;
    float shininess;
};

constexpr std::array<float, 4> kNone = {0, 0, 0, 0};
constexpr std::array<float, 4> kOpaqueBlack = {0, 0, 0, 1};
constexpr std::array<float, 4> kWhite = {1, 1, 1, 1};

constexpr Look localPlain(const char* name, const char* picture) {
    return {name, picture, {0.2f, 0.2f, 0.2f, 0}, kWhite, kNone, kNone, 0};
}
// Shines by itself: light adds nothing.
constexpr Look localGlowing(const char* name, const char* picture) {
    return {name, picture, kNone, kOpaqueBlack, kNone, kWhite, 0};
}
// The show's light has an ambient part of a fifth and no highlights of its own. So a strong ambient colour
// makes the metal visible at all angles, and a diffuse colour over 1 makes the streak that crosses it gleam.
constexpr Look localMetal(const char* name, const char* picture, float body, float gleam) {
    return {name,  picture, {5 * body, 5 * body, 5 * body, 0}, {gleam, gleam, gleam * 0.92f, 1}, kNone,
            kNone, 0};
}

std::string localWriteLibrary(const std::string& file, const char* name, std::initializer_list<Look> looks) {
    FXMatlib library;
    library.name.Set(name);
    for (const Look& look : looks) {
        library.AddMaterial(new FXMaterial);
        FXMaterial& m = *library.materials.Last();
        m.ownedByLibrary = true;
        m.name.Set(look.name);
        m.texRef.Set(look.picture);
        std::copy(look.ambient.begin(), look.ambient.end(), m.ambient);
        std::copy(look.diffuse.begin(), look.diffuse.end(), m.diffuse);
        std::copy(look.specular.begin(), look.specular.end(), m.specular);
        std::copy(look.emission.begin(), look.emission.end(), m.emission);
        m.shininess = look.shininess;
    }
    return library.Save(file.c_str()) ? "" : file + ": cannot be written";
}

} // namespace

std::string WriteSunLibrary(const std::string& file, const Screen&) {
    return localWriteLibrary(file, "40",
                             {localPlain("SunCore", "30"), localPlain("PlasmaA", "31"),
                              localPlain("PlasmaB", "32"), localPlain("PlasmaC", "33")});
}

std::string WriteMedallionLibrary(const std::string& file, const Screen&) {
    return localWriteLibrary(
        file, "41", {localMetal("Gold", "34", 0.56f, 0.85f), localMetal("Emblem", "35", 0.58f, 0.85f)});
}

// The sheet's material is not here: it is the desktop picture, which the scene registers.
std::string WriteMorphLibrary(const std::string& file, const Screen&) {
    return localWriteLibrary(file, "42", {localGlowing("Ember", "36")});
}
