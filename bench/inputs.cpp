#include "inputs.h"

#include "package/package.h"

#include <cmath>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <initializer_list>

namespace {

constexpr int kFrames = 5;

} // namespace

void PrepareMorph(FXAnim* animation, int vertices, bool linear) {
    for (int f = 0; f < kFrames; ++f) {
        auto* model = new FXModel;
        auto* mesh = new FXMesh;
        mesh->Realloc(vertices, 3);
        for (int v = 0; v < vertices; ++v) {
            tagFXVertex& vertex = mesh->vertices[v];
            vertex = {};
            const float angle = static_cast<float>(v) * 0.01f + static_cast<float>(f);
            vertex.pos[0] = std::sin(angle);
            vertex.pos[1] = std::cos(angle);
            vertex.pos[2] = angle * 0.001f;
            vertex.normal[2] = 1;
        }
        for (int i = 0; i < 3; ++i)
            mesh->indices[i] = i;
        model->meshes.Push(mesh);
        animation->models.Push(model);
        animation->frameTimes.Push(1000000);
    }
    animation->loop = false;
    animation->linear = linear;
    animation->UpdateInterpolation(true, true);
    animation->StartAnim(1000);
    animation->frame = 1; // a segment with neighbours on both sides
    animation->UpdateIFrame();
}

void MakeSheet(FXMesh* mesh, int indices, bool onePosition) {
    const int side = static_cast<int>(std::sqrt(indices / 6.0));
    mesh->Realloc((side + 1) * (side + 1), side * side * 6);
    for (int v = 0; v < mesh->vertexCount; ++v) {
        tagFXVertex& vertex = mesh->vertices[v];
        vertex = {};
        const float x = static_cast<float>(v % (side + 1));
        const float y = static_cast<float>(v / (side + 1));
        vertex.normal[0] = x;
        vertex.normal[1] = y;
        if (onePosition)
            continue;
        vertex.pos[0] = vertex.tex[0] = x;
        vertex.pos[1] = vertex.tex[1] = y;
    }
    int* index = mesh->indices;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const int p = y * (side + 1) + x;
            const int q = p + side + 1;
            for (const int corner : {p, q, p + 1, q, q + 1, p + 1})
                *index++ = corner;
        }
}

std::string MakePackage(int megabytes, int flags) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path();
    const fs::path part = folder / "tamblor-bench-entry";
    std::string bytes(static_cast<std::size_t>(megabytes) * 10486, '\0');
    unsigned state = 1;
    for (char& byte : bytes) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>(state >> 24);
    }
    std::ofstream(part, std::ios::binary) << bytes;
    FXPackage package;
    for (int id = 0; id < 100; ++id)
        package.AddDataFile(id, part.string().c_str());
    const std::string file = (folder / ("tamblor-bench-package-" + std::to_string(flags))).string();
    package.Save(file.c_str(), flags);
    fs::remove(part);
    return file;
}
