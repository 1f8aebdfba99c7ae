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
struct FXTriple;
class PMeshSaveClb;
struct FXMeshRecord;

// Owns its vertices and indices; the material and the second mesh are owned elsewhere, and may be null. Three
// indices make a triangle; one or two left over draw nothing. Every index is below vertexCount: loaders leave
// a mesh empty whose record breaks that, or does not fit into the bytes there are. Operations on an empty
// mesh do nothing. A colour is four floats, red, green, blue, alpha, 0..1; a box six, min x, max x, min y,
// max y, min z, max z.
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
    // Everything but disabled, flipV and secondMesh. Without memory the copy is empty.
    void Copy(const FXMesh* src);
    void CopyMeshI(const FXMesh* src); // the header and room for the rest, which FromVMap fills in

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
    // The same without reading the stream again, into the copy of a mesh that came of it, for what the
    // vertices of that one were built from. False, with nothing changed, when the map does not have all of
    // it.
    bool FromVMapLike(const FXMesh* first, const FXArray<FXTriple>& built, const FXVectorMap& map);
    // Rewrites the map with this mesh's vectors; it must have as many corners as the mesh that was packed.
    void ApplyRedir(FXVectorMap* map, const FXArray<int>* const* redirect) const;
    void DiscardVertices(); // those that no index refers to; `touched` of the rest holds their new number

    // Normals: a vertex gets the normalised sum of the unit normals of its faces, (p0 - p2) x (p0 - p1) by
    // the order of their corners. Faces meet smoothly where they share vertices. With onlyTouched, only faces
    // with a touched corner count, and then touch all their corners. A vertex without such faces, or whose
    // faces cancel out, keeps its normal. zScale stretches the depth that the normals are computed with.
    void ComputeNormals(bool onlyTouched) { ComputeNormalsZ(onlyTouched, 1.0f); }
    void ComputeNormalsZ(bool onlyTouched, float zScale);
    // The last step alone, from the vertices' normalSum: of all of them, or of the touched ones.
    void Normalize(bool onlyTouched);

    // Texture coordinates: 0..1 over the used part of a picture times the material's extents, which are the
    // share of the texture that it fills. Resizing replaces v by 1 - v under flipV, and does nothing without
    // a material with extents above 0.
    void ResizeTexCoords();       // times the material's extents, through loadedU, loadedV where above 0
    void ResizeTexCoords1();      // times the material's extents
    void ComputeFrontTexCoords(); // 0..1 from the left, and from the top, over -1..1 in x and y
    void CopyTexCoords(const FXMesh* src); // vertex by vertex, as far as both go

    // Pictures read vertex by vertex, at the texture coordinates, with 1 - v under flipV. A vertex is moved
    // along its normal by `d`, or by blue (0..1) times `scale` where that is above 0, and touched. It gets a
    // colour map's colour times rgba.
    void ExtendPositions(float d);
    void ApplyBumpMap(const FXCanvas* canvas, float scale);
    void ApplyColorMap(const FXCanvas* canvas, const float* rgba);
    void ApplyFrontColorMap(const FXCanvas* canvas, const float* rgba); // seen along z, for a mesh in -1..1

    // Fitting: moves the box's centre to the origin and scales by what brings the box to -1..1. The box may
    // be another mesh's: then this one lands where it lies in it. An axis on which the box has no extent is
    // centred only. Normals stay.
    void UnitizeMaxims(const float* box);         // by the longest axis, keeping proportions
    void UnitizeMaximsStretch(const float* box);  // each axis by its own extent
    void UnitizeMaximsStretch1(const float* box); // x and y likewise; z is centred only
    void Unitize();                               // UnitizeMaxims by its own box
    void FindMaxims(float* box) const;            // all 0 without vertices
    // Widens the box by this mesh, for boxes of several: *first, true before the first vertex of all, says
    // that the box holds nothing yet.
    void FindMultiMaxims(bool* first, float* box) const;
    void FlipHoriz(); // x is negated; normals and the order of corners stay
    // New x, y, z = old components ix, iy, iz (0..2), then negated where asked; normals likewise. Nothing for
    // other numbers.
    void Transform(int ix, int iy, int iz, bool negX, bool negY, bool negZ);
    static int TextToIndi(const char* s);   // a text that begins with x, y, z: 0, 1, 2; else -1
    void SetVerticesCol(const float* rgba); // they show with colorMode 1

    bool disabled = false;
    int transparent = 0;          // 0 opaque, 1 in two culled passes, 2 twice, first without depth writes
    int colorMode = 0;            // 1: the vertices' colours, 0: the material's; another value draws nothing
    bool flipV = false;           // pictures stand upside down: v counts from the bottom
    FXMesh* secondMesh = nullptr; // gives the second layer's texture coordinates and material
    FXMaterial* material = nullptr; // null: the default material
    FXStr materialName;             // which is the mesh's own name too
    float loadedU = 0; // the material's extents when the texture coordinates were stored; 0: not known
    float loadedV = 0;
    int vertexCapacity = 0; // records and indices that there is room for; only the first *Count are in use
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
