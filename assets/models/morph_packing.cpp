#include "models/morph_packing.h"

#include "anim/morph_animation.h"
#include "base/whole_file.h"
#include "geometry/mesh.h"
#include "geometry/num_pool.h"
#include "package/record.h"

#include <cstddef>
#include <map>
#include <vector>

namespace {

// For every vertex of all meshes, the number of the first one that has the same vector in every key frame.
std::vector<float> localAlike(const FXAnim& anim, float (tagFXVertex::*vector)[3]) {
    std::map<std::vector<float>, int> first;
    std::vector<float> numbers;
    for (int m = 0; m < anim.models[0]->meshes.count; ++m)
        for (int v = 0; v < anim.models[0]->meshes[m]->vertexCount; ++v) {
            std::vector<float> course;
            for (const FXModel* frame : anim.models) {
                const float* at = frame->meshes[m]->vertices[v].*vector;
                course.insert(course.end(), at, at + 3);
            }
            numbers.push_back(
                static_cast<float>(first.emplace(course, static_cast<int>(numbers.size())).first->second));
        }
    return numbers;
}

// Who writes the parts of the record.
class Packer {
public:
    Packer(const FXAnim& anim, std::FILE* out)
        : frames(anim.models.count), count(anim.models[0]->meshes.count), library(anim.models[0]->matlibName),
          anim_(anim), out_(out) {}

    // The map is made of meshes whose vectors are numbers of what may be shared; what is written are the real
    // ones.
    bool Begin() {
        const std::vector<float> positions = localAlike(anim_, &tagFXVertex::pos);
        const std::vector<float> normals = localAlike(anim_, &tagFXVertex::normal);
        std::size_t at = 0;
        for (const FXMesh* mesh : anim_.models[0]->meshes) {
            FXMesh numbered;
            numbered.Copy(mesh);
            for (int v = 0; v < numbered.vertexCount; ++v, ++at) {
                tagFXVertex& vertex = numbered.vertices[v];
                vertex = {};
                vertex.pos[0] = positions[at];
                vertex.normal[0] = normals[at];
            }
            FXNumPool* pool = pools_.Push(new FXNumPool(FXNumPool::kSaveStep));
            for (int kind = 0; kind < 3; ++kind)
                numbers_.PushNew();
            numbered.ToVMap(&map_, pool, nullptr, 0, numbers_.items + numbers_.count - 3);
        }
        return true;
    }
    bool PackedMesh(int m) const { return anim_.models[0]->meshes[m]->SaveMeshI(out_); }
    bool Pools() const { return true; }
    bool Pool(int m) const { return pools_[m]->Save(out_); }
    bool Map(int f) {
        for (int m = 0; m < count; ++m)
            anim_.models[f]->meshes[m]->ApplyRedir(&map_, numbers_.items + std::ptrdiff_t{3} * m);
        return map_.Save(out_);
    }

    int frames;
    int count; // of meshes
    FXStr library;

private:
    const FXAnim& anim_;
    std::FILE* out_;
    FXVectorMap map_;
    FXOwnerArray<FXNumPool> pools_;
    FXOwnerArray<FXArray<int>> numbers_; // of each mesh's corners: positions, normals, texture coordinates
};

} // namespace

std::string WriteAnimation(const std::string& file, const FXAnim& anim) {
    std::string trouble;
    fxReplaceFile(
        file,
        [&](std::FILE* out) {
            Packer packer(anim, out);
            FXRecordWriter writer(out);
            return FXStr(FXAnim::kVersion3).Save(out) && FXAnim::Fields_v02(anim, writer) &&
                   FXAnim::Fields_v03(packer, writer);
        },
        &trouble);
    return trouble;
}
