// A set of meshes that share a material library: a layer of the sun, the medallion, a key frame of the morph.
#pragma once

#include "base/owner_array.h"
#include "base/str.h"
#include "geometry/mesh.h"
#include "render/environment.h"

#include <cstdio>

class FXLoadBudget;
class FXMatlib;
class FXPackage;
class FXPackageData;
struct FXObjFile;
struct FXObjLooks;

// Keeps the meshes as loaded, and working copies that are drawn, edited and saved; owns both, and one
// reference of the library. Loading does not make the working copies: UpdateMeshes does. The environment must
// be set while a model is loaded.
class FXModel final : public PRender {
public:
    FXModel() = default;
    ~FXModel() { Destroy(); }
    FXModel(const FXModel&) = delete;
    FXModel& operator=(const FXModel&) = delete;

    void Destroy();
    // The record, behind its magic word. Parts: who reads, writes or checks it. Begin comes before the
    // meshes, Map before the packed ones.
    static constexpr const char* kVersion2 = "om02";
    static constexpr const char* kVersion3 = "om03";
    template <class Parts, class V> static bool Fields_v02(Parts& p, V& v) {
        return HeadFields(p, v) && v.Each(p.count, [&](int i) { return p.Mesh(i); });
    }
    template <class Parts, class V> static bool Fields_v03(Parts& p, V& v) {
        return HeadFields(p, v) && p.Map() &&
               v.Each(p.count, [&](int i) { return p.PackedMesh(i) && p.Pool(i); });
    }

    // From an entry, in either version of the format. False when there is no such entry; one that is no
    // model, or is malformed, gives a model that is empty or holds empty meshes. Meshes beyond the budget are
    // left out; without one given, that is said in the trace.
    bool LoadCN(FXPackage* pck, int id, FXLoadBudget* budget = nullptr);
    // The entries of the pictures that LoadCN would load (FXMatlib::ListPictures).
    static void ListPictures(FXPackage* pck, int id, FXArray<int>* entries);
    // The same bytes in a file; its library is a material file.
    bool Load(const char* path, FXLoadBudget* budget = nullptr);
    void UpdateMeshes();
    void UseLoadedMeshes(); // they become the working ones, and are not kept as loaded
    // The source's working meshes, library and flipV.
    void Copy(FXModel* src);
    // Loads the library matlibName, from the package or, without one, a material file; for loaders, of a
    // model that has none yet.
    void LoadMatlib(FXPackage* pck, FXLoadBudget* budget);
    // Takes a reference of its own; null gives up the one held.
    void ShareMatlib(FXMatlib* library);

    // Writes the working meshes; version 3 only those that are not disabled. False when not all of it got to
    // the disk. Packing drops vertices that no index uses.
    bool Save(const char* path);
    bool Save_v02(std::FILE* file) const;
    bool Save_v03(std::FILE* file);
    // Adds the library and its pictures to a package in the making, once for all models that share it, and
    // names it by its number there. It stands in a temporary file beside it until DeleteTmpFiles. False when
    // that cannot be written.
    bool Compile(FXPackage* pck);

    // The loaded group from a Wavefront OBJ file: a mesh for each material, looked up in the MTL file that it
    // names (the first, beside it). What is not solid is drawn in two culled passes. False, with the line in
    // the trace, when it cannot be read. In the target tamb_model_import.
    bool ImportObj(const char* path);
    // The same from what fxReadObj has read. Texture coordinates are stored times the extents of their
    // picture, which is what it fills of a texture whose sides are powers of two, and with v downwards.
    void ImportObj(const FXObjFile& obj, const FXObjLooks& looks);

    // The working meshes. Out of range gives null, or nothing happens.
    FXMesh* EnumMeshes(int i) const;
    const char* EnumMeshNames(int i) const;       // the name of the mesh's material, null without one
    FXMesh* FindMesh(const char* meshName) const; // stops at the first mesh without a material
    void DisableMesh(int i, bool disable);
    void RemoveMesh(FXMesh* mesh); // from the model; it becomes the caller's
    // Copies the mesh srcName under the material newName, replacing a mesh that has it; the copy is the last
    // mesh. Null when there is no such mesh, and, with the mesh that had the name deleted, when there is no
    // such material.
    FXMesh* DoubleMesh(const char* newName, const char* srcName);
    int GetTotalVertices() const;

    // For every working mesh, as FXMesh does it; boxes are of the whole model.
    void Normalize(bool onlyTouched);
    void FlipHoriz();
    void Transform(int ix, int iy, int iz, bool negX, bool negY, bool negZ);
    void FindMaxims(float* box) const; // a model without vertices leaves the box as it is
    void UnitizeMaxims(const float* box);
    void UnitizeMaximsStretch(const float* box);
    void UnitizeMaximsStretch1(const float* box);
    void Unitize();
    void UnitizeStretch();
    void UnitizeStretch1();
    void ResizeTextCoords();
    void ResizeTextCoords1();
    void ComputeFrontTexCoords(int i);             // -1: every mesh
    void CopyTexCoords(int i, const FXModel* src); // when both have as many meshes
    void UpdateColCol(const float* rgba);          // vertex colours, switched on
    void UpdateColMat(const float* rgba);          // the materials' kept colours times rgba
    void PreserveColMat();

    // Opaque meshes, then those in two culled passes, then those drawn first without depth writes. Leaves
    // culling off and depth writes on; the time is not used.
    void OnRender(PEnv* env, double time) override;

    FXStr name;
    FXStr matlibName;
    FXMatlib* matlib = nullptr;
    bool flipV = false;
    FXOwnerArray<FXMesh> loadedMeshes;
    FXOwnerArray<FXMesh> meshes; // entries may be null

private:
    struct Loader;
    struct Saver;

    template <class Parts, class V> static bool HeadFields(Parts& p, V& v) {
        return v.String("the name", p.name) && v.String("the library", p.library) &&
               v.template Count<FXMeshRecord>("meshes", p.count) && p.Begin();
    }
    void LoadFrom(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget);
    // Without a package they are Load_v02 and Load_v03, of a file.
    void Load_v02CN(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget);
    void Load_v03CN(FXPackage* pck, FXPackageData* d, FXLoadBudget* budget);
    void DrawAll(PEnv* env, int transparent) const;
};
