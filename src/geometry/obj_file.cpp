#include "geometry/obj_file.h"

#include "base/whole_file.h"
#include "image/wavefront_lines.h"

#define TINYOBJLOADER_USE_DOUBLE
#include <tiny_obj_loader.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <map>
#include <sstream>

namespace {

enum Part { kPosition, kTexture, kNormal };
constexpr const char* kPartKeyword[] = {"v", "vt", "vn"};
constexpr std::size_t kPartNumbers[] = {3, 2, 3};

// What a corner of a face names: "3", "3/1", "3//2", "3/1/2". Numbers that are not there are 0. Behind a
// slash at the end, the reader would take the next corner's.
bool localParseCorner(const std::string& word, std::array<long, 3>* numbers) {
    *numbers = {};
    std::istringstream parts(word);
    std::size_t part = 0;
    for (std::string number; std::getline(parts, number, '/'); ++part) {
        char* end = nullptr;
        const long value = std::strtol(number.c_str(), &end, 10);
        const bool isOptional = part != kPosition && number.empty();
        if (part > kNormal || *end != '\0' || (value == 0 && !isOptional) || value > INT_MAX ||
            value < -INT_MAX)
            return false;
        (*numbers)[part] = value;
    }
    return (*numbers)[kPosition] != 0 && !word.ends_with('/');
}

// Checks every line that the reader will read, and readies the text for it: the reader forgets a material's
// name that no MTL file has, and the desktop's stands in none. So materials become numbers that it finds in a
// library of ours.
class Scan {
public:
    Scan(const std::string& file, FXObjFile* obj) : file_(file), obj_(obj) {}

    bool Run(const std::string& text) {
        if (const int line = fxLineOfZero(text); line > 0)
            Fail(line, kFXZeroInText);
        fxForEachLine(text, [this](const FXWavefrontLine& line) {
            if (error.empty())
                Take(line);
        });
        for (const int part : {kPosition, kTexture, kNormal})
            if (error.empty() && highest_[part].number > counts_[part])
                Fail(highest_[part].line, std::string("a face names ") + kPartKeyword[part] + " " +
                                              std::to_string(highest_[part].number) + ", but there are " +
                                              std::to_string(counts_[part]));
        return error.empty();
    }

    std::string error;
    std::string prepared;
    std::vector<std::string> materials; // by the number that stands for it

private:
    struct Highest {
        long number = 0;
        int line = 0;
    };

    void Fail(int line, const std::string& text) {
        if (error.empty())
            error = file_ + ":" + std::to_string(line) + ": " + text;
    }

    void Take(const FXWavefrontLine& line) {
        const std::string& keyword = line.keyword;
        for (const int part : {kPosition, kTexture, kNormal})
            if (keyword == kPartKeyword[part]) {
                if (!fxHasNumbers(line, kPartNumbers[part]))
                    Fail(line.number, keyword + " needs " + std::to_string(kPartNumbers[part]) + " numbers");
                ++counts_[part];
            }
        if (keyword == "f")
            TakeFace(line);
        if (keyword == "o" && obj_->object.empty())
            obj_->object = line.rest;
        if (keyword == "mtllib" && std::ranges::find(obj_->libraries, line.rest) == obj_->libraries.end())
            obj_->libraries.push_back(line.rest);
        prepared += PreparedLine(line) + "\n";
    }

    void TakeFace(const FXWavefrontLine& line) {
        if (line.words.size() < 3)
            return Fail(line.number, "a face needs 3 corners");
        std::array<long, 3> numbers;
        for (const std::string& word : line.words) {
            if (!localParseCorner(word, &numbers))
                return Fail(line.number,
                            "'" + word + "' is no corner of a face, such as 1, 1/2, 1//3 or 1/2/3");
            for (const int part : {kPosition, kTexture, kNormal}) {
                if (numbers[part] + counts_[part] < 0)
                    return Fail(line.number, std::string("the face names ") + kPartKeyword[part] + " " +
                                                 std::to_string(numbers[part]) + ", but there are only " +
                                                 std::to_string(counts_[part]) + " before it");
                if (numbers[part] > highest_[part].number)
                    highest_[part] = {numbers[part], line.number};
            }
        }
    }

    // Blanks that are no line's end here may be one to the reader.
    static std::string Spaced(const FXWavefrontLine& line) {
        std::string text = line.keyword;
        for (const std::string& word : line.words)
            text.append(" ").append(word);
        return text;
    }

    // The reader counts the corners of a face in a byte.
    static constexpr std::size_t kMostCorners = 255;
    static std::string Fan(const std::vector<std::string>& corners) {
        std::string faces;
        for (std::size_t i = 2; i < corners.size(); ++i)
            faces += "f " + corners[0] + " " + corners[i - 1] + " " + corners[i] + "\n";
        return faces;
    }

    // Line by line the same, so that the reader's line numbers are the file's, but for large faces.
    std::string PreparedLine(const FXWavefrontLine& line) {
        if (!hasLibrary_ && (line.keyword.empty() || line.keyword == "mtllib")) {
            hasLibrary_ = true;
            return "mtllib ours";
        }
        if (line.keyword == "f" && line.words.size() > kMostCorners)
            return Fan(line.words);
        if (line.keyword != "usemtl")
            return line.keyword == "mtllib" ? "" : Spaced(line);
        const auto at = std::ranges::find(materials, line.rest);
        const std::string use = "usemtl " + std::to_string(at - materials.begin());
        if (at == materials.end())
            materials.push_back(line.rest);
        const bool isFirstChance = !hasLibrary_;
        hasLibrary_ = true;
        return isFirstChance ? "mtllib ours\n" + use : use;
    }

    const std::string& file_;
    FXObjFile* obj_;
    std::array<long, 3> counts_ = {};
    std::array<Highest, 3> highest_ = {};
    bool hasLibrary_ = false;
};

class NumberedMaterials : public tinyobj::MaterialReader {
public:
    explicit NumberedMaterials(std::size_t count) : count_(count) {}
    bool operator()(const std::string&, std::vector<tinyobj::material_t>*, std::map<std::string, int>* found,
                    std::string*, std::string*) override {
        for (std::size_t i = 0; i < count_; ++i)
            (*found)[std::to_string(i)] = static_cast<int>(i);
        return true;
    }

private:
    std::size_t count_;
};

using Vector = std::array<double, 3>;

template <std::size_t N> std::array<double, N> localAt(const std::vector<double>& numbers, int index) {
    std::array<double, N> value;
    std::copy_n(numbers.begin() + static_cast<std::ptrdiff_t>(N) * index, N, value.begin());
    return value;
}

// Unit, or zero for a triangle without area.
Vector localFaceNormal(const Vector& a, const Vector& b, const Vector& c) {
    Vector u, v;
    for (std::size_t i = 0; i < 3; ++i) {
        u[i] = b[i] - a[i];
        v[i] = c[i] - a[i];
    }
    Vector n = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
    const double length = std::hypot(n[0], n[1], n[2]);
    for (double& component : n)
        component = length > 0 ? component / length : 0;
    return n;
}

class Collector {
public:
    Collector(const tinyobj::attrib_t& attributes, const std::vector<std::string>& materials, FXObjFile* obj)
        : attributes_(attributes), materials_(materials), obj_(obj) {}

    void Take(const tinyobj::mesh_t& mesh) {
        const tinyobj::index_t* corners = mesh.indices.data();
        for (std::size_t face = 0; face < mesh.num_face_vertices.size(); ++face) {
            const std::size_t count = mesh.num_face_vertices[face];
            FXObjMesh& target = MeshOf(mesh.material_ids[face]);
            for (std::size_t i = 2; i < count; ++i)
                TakeTriangle({corners[0], corners[i - 1], corners[i]}, mesh.smoothing_group_ids[face],
                             &target);
            corners += count;
        }
    }

    // The corners that share a position in a smoothed group get what they have in common.
    void Smooth() {
        for (const Smoothed& corner : smoothed_) {
            Vector normal = sums_[{corner.position, corner.group}];
            const double length = std::hypot(normal[0], normal[1], normal[2]);
            for (double& component : normal)
                component = length > 0 ? component / length : 0;
            obj_->meshes[corner.mesh].corners[corner.corner].normal = normal;
        }
    }

private:
    struct Smoothed {
        std::size_t mesh, corner;
        int position;
        unsigned group;
    };

    FXObjMesh& MeshOf(int material) {
        const auto [at, isNew] = meshes_.emplace(material, obj_->meshes.size());
        if (isNew)
            obj_->meshes.push_back({material < 0 ? "" : materials_[static_cast<std::size_t>(material)], {}});
        return obj_->meshes[at->second];
    }

    void TakeTriangle(const std::array<tinyobj::index_t, 3>& triangle, unsigned group, FXObjMesh* mesh) {
        std::array<Vector, 3> at;
        for (std::size_t i = 0; i < 3; ++i)
            at[i] = localAt<3>(attributes_.vertices, triangle[i].vertex_index);
        const Vector face = localFaceNormal(at[0], at[1], at[2]);
        for (std::size_t i = 0; i < 3; ++i) {
            const tinyobj::index_t& index = triangle[i];
            FXObjCorner corner = {at[i], face, {}};
            if (index.normal_index >= 0)
                corner.normal = localAt<3>(attributes_.normals, index.normal_index);
            else if (group != 0)
                AddSmoothed(index.vertex_index, group, face, mesh);
            if (index.texcoord_index >= 0)
                corner.tex = localAt<2>(attributes_.texcoords, index.texcoord_index);
            mesh->corners.push_back(corner);
        }
    }

    void AddSmoothed(int position, unsigned group, const Vector& face, const FXObjMesh* mesh) {
        Vector& sum = sums_[{position, group}];
        for (std::size_t axis = 0; axis < 3; ++axis)
            sum[axis] += face[axis];
        smoothed_.push_back(
            {static_cast<std::size_t>(mesh - obj_->meshes.data()), mesh->corners.size(), position, group});
    }

    const tinyobj::attrib_t& attributes_;
    const std::vector<std::string>& materials_;
    FXObjFile* obj_;
    std::map<int, std::size_t> meshes_; // by material
    std::map<std::pair<int, unsigned>, Vector> sums_;
    std::vector<Smoothed> smoothed_;
};

} // namespace

bool fxReadObj(const std::string& file, FXObjFile* obj, std::string* error) {
    std::string text;
    if (!fxReadWhole(file, &text, error))
        return false;
    Scan scan(file, obj);
    if (!scan.Run(text)) {
        *error = scan.error;
        return false;
    }
    tinyobj::attrib_t attributes;
    std::vector<tinyobj::shape_t> shapes;
    std::vector<tinyobj::material_t> unused;
    std::string warnings, problem;
    std::istringstream prepared(scan.prepared);
    NumberedMaterials materials(scan.materials.size());
    if (!tinyobj::LoadObj(&attributes, &shapes, &unused, &warnings, &problem, &prepared, &materials, false,
                          false)) {
        *error = file + ": " + fxTrimmed(problem);
        return false;
    }
    Collector collector(attributes, scan.materials, obj);
    for (const tinyobj::shape_t& shape : shapes)
        collector.Take(shape.mesh);
    collector.Smooth();
    if (obj->meshes.empty())
        *error = file + ": there is no face (f) in it";
    return !obj->meshes.empty();
}
