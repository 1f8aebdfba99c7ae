#include "image/mtl_file.h"

#include "base/whole_file.h"
#include "image/material.h"
#include "image/material_library.h"
#include "image/wavefront_lines.h"

#include <algorithm>
#include <new>

namespace {

constexpr double kMostShininess = 128;

struct Statement {
    const char* keyword;
    std::size_t count; // numbers
    std::optional<FXMtlMaterial::Color> FXMtlMaterial::*color;
};
constexpr Statement kStatements[] = {{"Ka", 3, &FXMtlMaterial::ambient},
                                     {"Kd", 3, &FXMtlMaterial::diffuse},
                                     {"Ks", 3, &FXMtlMaterial::specular},
                                     {"Ke", 3, &FXMtlMaterial::emission},
                                     {"Ns", 1, nullptr},
                                     {"d", 1, nullptr},
                                     {"Tr", 1, nullptr}};

struct PictureOption {
    const char* name;
    int least, most; // words that follow; behind the least, numbers alone
};
constexpr PictureOption kPictureOptions[] = {
    {"-blendu", 1, 1}, {"-blendv", 1, 1},  {"-bm", 1, 1},         {"-boost", 1, 1}, {"-cc", 1, 1},
    {"-clamp", 1, 1},  {"-imfchan", 1, 1}, {"-colorspace", 1, 1}, {"-mm", 2, 2},    {"-o", 1, 3},
    {"-s", 1, 3},      {"-t", 1, 3},       {"-texres", 1, 1},     {"-type", 1, 1}};

std::string localFirstWord(const std::string& text) {
    return text.substr(0, text.find_first_of(" \t"));
}

std::string localWithoutOptions(std::string text) {
    for (;;) {
        const auto* option = std::ranges::find(kPictureOptions, localFirstWord(text), &PictureOption::name);
        if (option == std::end(kPictureOptions))
            return text;
        text = fxTrimmed(text.substr(localFirstWord(text).size()));
        for (int i = 0; i < option->most; ++i) {
            const std::string word = localFirstWord(text);
            if (i >= option->least && !fxIsNumber(word))
                break;
            text = fxTrimmed(text.substr(word.size()));
        }
    }
}

class Reader {
public:
    void Take(const FXWavefrontLine& line) {
        if (line.keyword == "newmtl")
            return Begin(line);
        if (line.keyword == "map_Kd" && !materials.empty())
            materials.back().picture = localWithoutOptions(line.rest);
        const auto* statement = std::ranges::find(kStatements, line.keyword, &Statement::keyword);
        if (statement == std::end(kStatements))
            return;
        double numbers[3];
        if (materials.empty())
            Fail(line, line.keyword + " stands before the first newmtl");
        else if (!fxHasNumbers(line, statement->count, numbers))
            Fail(line, line.keyword + " needs " + std::to_string(statement->count) + " numbers");
        else if (statement->color != nullptr)
            materials.back().*statement->color = {static_cast<float>(numbers[0]),
                                                  static_cast<float>(numbers[1]),
                                                  static_cast<float>(numbers[2])};
        else
            TakeNumber(line.keyword, numbers[0]);
    }

    std::vector<FXMtlMaterial> materials;
    std::string fault;

private:
    void Begin(const FXWavefrontLine& line) {
        if (line.rest.empty())
            Fail(line, "newmtl needs a name");
        materials.emplace_back();
        materials.back().name = line.rest;
        hasD_ = false;
    }

    void TakeNumber(const std::string& keyword, double number) {
        FXMtlMaterial& material = materials.back();
        if (keyword == "Ns")
            material.shininess = static_cast<float>(std::clamp(number, 0.0, kMostShininess));
        else if (keyword == "d")
            material.alpha = static_cast<float>(number);
        else if (!hasD_) // exporters do not agree which end of Tr is opaque, so d counts before it
            material.alpha = static_cast<float>(1 - number);
        hasD_ = hasD_ || keyword == "d";
    }

    void Fail(const FXWavefrontLine& line, const std::string& text) {
        if (fault.empty())
            fault = std::to_string(line.number) + ": " + text;
    }

    bool hasD_ = false; // of the last material
};

void localTake(const std::optional<FXMtlMaterial::Color>& given, float* color) {
    if (given)
        std::ranges::copy(*given, color);
}

} // namespace

std::vector<FXMtlMaterial> fxReadMtl(const std::string& text, std::string* fault) {
    Reader reader;
    if (const int line = fxLineOfZero(text); line > 0)
        reader.fault = std::to_string(line) + ": " + kFXZeroInText;
    fxForEachLine(text, [&](const FXWavefrontLine& line) { reader.Take(line); });
    if (fault != nullptr)
        *fault = reader.fault;
    return reader.materials;
}

bool FXMatlib::LoadFromMtl(const char* path) try {
    std::string text, problem;
    if (!fxReadWhole(path, &text, &problem))
        return false;
    name.Set(path);
    const int before = materials.count;
    for (const FXMtlMaterial& read : fxReadMtl(text)) {
        FXMaterial* material = AppendOwned();
        if (material == nullptr)
            break;
        material->name.Set(read.name.c_str());
        material->texRef.Set(read.picture.c_str());
        localTake(read.ambient, material->ambient);
        localTake(read.diffuse, material->diffuse);
        localTake(read.specular, material->specular);
        localTake(read.emission, material->emission);
        material->diffuse[3] = read.alpha.value_or(material->diffuse[3]);
        material->shininess = read.shininess.value_or(material->shininess);
    }
    for (int i = before; i < materials.count; ++i)
        if (!materials[i]->texRef.IsEmpty())
            materials[i]->LoadTexture(materials[i]->texRef.text);
    return true;
} catch (const std::bad_alloc&) {
    return false;
}
