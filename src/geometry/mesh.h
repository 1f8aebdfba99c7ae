// The one drawable geometry: an indexed triangle list with one material.
#pragma once

#include "base/arrays.h"
#include "base/str.h"
#include "geometry/vertex.h"

#include <cstdio>

class FXCanvas;
class FXLoadBudget;
class FXMaterial;
class FXMatlib;
class FXNumPool;
class FXPackage;
class FXPackageData;
class FXVectorMap;
class PMeshSaveClb;
struct FXMeshRecord;

// Owns its vertices and indices; the material and the second mesh are owned elsewhere. Every index is below
// vertexCount: loaders leave a mesh empty whose record breaks that, or does not fit into the bytes there are.
// A box is six floats: min x, max x, min y, max y, min z, max z.
class FXMesh {
public:
    FXMesh() = default;
    ~FXMesh() { Destroy(); }
    FXMesh(const FXMesh&) = delete;
    FXMesh& operator=(const FXMesh&) = delete;

    void Destroy(); // frees the buffers; the other fields stay
    // Room for that many; contents are undefined where a buffer had to grow. False, with the mesh empty, when
    // a count is negative or there is no memory.
    bool Realloc(int newVertexCount, int newIndexCount);
    void Copy(const FXMesh* src);      // not disabled, flipV and secondMesh
    void CopyMeshI(const FXMesh* src); // the header; FromVMap fills in the rest

    // Records (mesh_records.cpp): the full one, and the header of a packed mesh. A mesh that is beyond the
    // budget, where one is given, is empty.
    void LoadMeshC(FXPackage* pck, FXPackageData* d, FXMatlib* lib, FXLoadBudget* budget = nullptr);
    void LoadMeshIC(FXPackage* pck, FXPackageData* d, FXMatlib* lib, FXLoadBudget* budget = nullptr);
    void LoadMesh(std::FILE* file, FXMatlib* lib); // the same records from a file that stands before them
    void LoadMeshI(std::FILE* file, FXMatlib* lib);
    bool SaveMesh(std::FILE* file) const;
    bool SaveMeshI(std::FILE* file) const;

    // The packed form (mesh_packing.cpp). ToVMap also drops the vertices that nothing uses; redirect, when
    // given, is three arrays that get the number of position, normal and texture coordinate of every corner.
    // FromVMap leaves the mesh empty when the stream ends early, names a vector that is not there, or makes
    // more vertices than the header said; and when there is no memory.
    void ToVMap(FXVectorMap* map, FXNumPool* pool, PMeshSaveClb* clb, int meshKey,
                FXArray<int>* const* redirect);
    bool FromVMap(FXVectorMap* map, FXNumPool* pool);
    // Rewrites the map with this mesh's vectors; it must have as many corners as the mesh that was packed.
    void ApplyRedir(FXVectorMap* map, const FXArray<int>* const* redirect) const;
    void DiscardVertices(); // those that no index refers to; `touched` of the rest holds their new number

    // Normals: a vertex gets the normalised sum of the unit normals of its faces.
    void ComputeNormals(bool onlyTouched) { ComputeNormalsZ(onlyTouched, 1.0f); }
    void ComputeNormalsZ(bool onlyTouched, float zScale);
    void Normalize(bool onlyTouched);

    // Texture coordinates.
    void ResizeTexCoords();                // from the extents in force when stored to the material's
    void ResizeTexCoords1();               // by the material's extents alone
    void ComputeFrontTexCoords();          // seen along z, for a mesh in -1..1
    void CopyTexCoords(const FXMesh* src); // vertex by vertex, as far as both go

    // Pictures read vertex by vertex, at the texture coordinates, with 1 - v under flipV. A
    // vertex is moved along its normal by `d`, or by blue times `scale` where that is above 0; `touched` then
    // says so. A colour map's colours are multiplied by rgba.
    void ExtendPositions(float d);
    void ApplyBumpMap(const FXCanvas* canvas, float scale);
    void ApplyColorMap(const FXCanvas* canvas, const float* rgba);
    void ApplyFrontColorMap(const FXCanvas* canvas, const float* rgba); // seen along z, for a mesh in -1..1

    // Fitting. Normals stay.
    void Unitize();
    void FindMaxims(float* box) const;
    void FindMultiMaxims(bool* first, float* box) const;
    void UnitizeMaxims(const float* box);         // into -1..1, keeping proportions
    void UnitizeMaximsStretch(const float* box);  // each axis by itself
    void UnitizeMaximsStretch1(const float* box); // x and y; z is centred only
    void FlipHoriz();
    // New x, y, z = old components ix, iy, iz (0..2), then negated where asked; normals likewise.
    void Transform(int ix, int iy, int iz, bool negX, bool negY, bool negZ);
    static int TextToIndi(const char* s); // "x", "y", "z": 0, 1, 2; else -1
    void SetVerticesCol(const float* rgba);

    bool disabled = false;
    int transparent = 0; // 0 opaque, 1 in two culled passes, 2 twice, first without depth writes
    int colorMode = 0;   // 1: the vertices' colours count
    bool flipV = false;
    FXMesh* secondMesh = nullptr;   // gives the second layer's texture coordinates and material
    FXMaterial* material = nullptr; // null: the default material
    FXStr materialName;
    float loadedU = 0; // the material's extents when the texture coordinates were stored
    float loadedV = 0;
    int vertexCapacity = 0;
    int vertexCount = 0;
    tagFXVertex* vertices = nullptr;
    int indexCapacity = 0;
    int indexCount = 0;
    int* indices = nullptr;

private:
    void ScaleTexCoords(float su, float sv);
    void Fit(const float* box, const float* scale);
    void TakeHead(const FXMeshRecord& record, FXMatlib* lib);
    FXMeshRecord Record() const;
    bool IndicesFit() const;
    bool ReallocWithin(FXLoadBudget* budget, int newVertexCount, int newIndexCount);
};
