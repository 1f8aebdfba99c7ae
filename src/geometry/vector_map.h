// The distinct positions, normals and texture coordinates that packed meshes share.
#pragma once

#include "base/arrays.h"
#include "geometry/vertex.h"

#include <cstdio>
#include <unordered_map>
#include <vector>

class FXPackage;
class FXPackageData;

// Asked while packing: may two vertices, each named by mesh and vertex, share what is stored for one of them?
// The second is -1, -1 when the vector was loaded.
class PMeshSaveClb {
public:
    virtual bool TestRedirect(int meshA, int vertexA, int meshB, int vertexB) = 0;

protected:
    ~PMeshSaveClb() = default;
};

// The numbers of a stored position, normal and texture coordinate.
struct FXTriple {
    int p, n, t;
    bool operator==(const FXTriple&) const = default;
};

class FXVectorMap {
public:
    static constexpr int kKeyStep = 1000000; // as many vectors as the floats grow by

    FXVectorMap() = default;
    FXVectorMap(const FXVectorMap&) = delete;
    FXVectorMap& operator=(const FXVectorMap&) = delete;
    void Destroy();

    // Packing: the number of the stored vector that serves for the vertex's, appended when none may be
    // shared. Sharing needs equal floats and, with a callback, its consent; the lowest number wins.
    int PushVecPos(const tagFXVertex* v, PMeshSaveClb* clb, int meshKey, int vertexKey);
    int PushVecNorm(const tagFXVertex* v, PMeshSaveClb* clb, int meshKey, int vertexKey);
    int PushVecTex(const tagFXVertex* v, PMeshSaveClb* clb, int meshKey, int vertexKey);
    // The search alone; -1 when none may be shared. The first search after a vector was set goes through them
    // all.
    int FindVecPos(int meshKey, int vertexKey, const tagFXVertex* v, PMeshSaveClb* clb);
    int FindVecNorm(int meshKey, int vertexKey, const tagFXVertex* v, PMeshSaveClb* clb);
    int FindVecTex(int meshKey, int vertexKey, const tagFXVertex* v, PMeshSaveClb* clb);

    // Stored vector i, below the count of its kind.
    void GetVecPos(int i, float* out) const;
    void GetVecNorm(int i, float* out) const;
    void GetVecTex(int i, float* out) const;
    void SetVecPos(const tagFXVertex* v, int i);
    void SetVecNorm(const tagFXVertex* v, int i);
    void SetVecTex(const tagFXVertex* v, int i);

    // The record.
    template <class Self, class V> static bool Fields(Self& self, V& v) {
        return v.Vectors("position", 3, self.positions, self.posCount) &&
               v.Vectors("normal", 3, self.normals, self.normCount) &&
               v.Vectors("texture coordinate", 2, self.texCoords, self.texCount);
    }
    bool Save(std::FILE* file) const;
    // Replaces the contents. A count beyond the bytes there are leaves that kind of vector empty.
    void LoadC(FXPackage* pck, FXPackageData* d);
    void Load(std::FILE* file);

    // Replaces one kind of vectors by differences, each vector less the next, then each number less the next
    // (true), or puts the vectors back (false). A float counts as the whole number of its 32 bits, so that
    // every vector comes back bit for bit, as float differences would not. Records hold vectors as they are.
    void ManglePos(bool forward);
    void MangleNorm(bool forward);
    void MangleTex(bool forward);

    // Unpacking: which vertex (0 and up, each made once) was built from a triple of numbers. A push gives
    // false when there is no memory; the triple may then not be found.
    bool PushUsed(int p, int n, int t, int vertex);
    int GetUsed(int p, int n, int t) const;       // -1: none yet
    int GetUsed1(int vertex, int n, int t) const; // the vertex itself if it was built from both; else -1
    const FXArray<FXTriple>& Used() const { return triples_; } // by vertex
    void ClearUsed();

    FXFloatArray positions{3000000}; // x, y, z each
    FXFloatArray normals{3000000};
    FXFloatArray texCoords{2000000}; // u, v each
    int posCount = 0;
    int normCount = 0;
    int texCount = 0;
    // The mesh and the vertex that each stored vector was first taken from; of loaded ones there are none,
    // and a callback gets -1 for them.
    FXArray<int> posMesh{kKeyStep}, posVertex{kKeyStep}, normMesh{kKeyStep}, normVertex{kKeyStep},
        texMesh{kKeyStep}, texVertex{kKeyStep};

private:
    // Stored vectors by the hash of their value, each list rising; built by the searches.
    struct Index {
        void Update(const FXFloatArray& values, int width, int count);
        void Clear();
        std::unordered_map<std::size_t, std::vector<int>> byHash;
        int indexed = 0; // the first so many vectors
        bool isStale = false;
    };
    // One kind of stored vector.
    struct Kind {
        FXFloatArray& values;
        FXArray<int>& meshKeys;
        FXArray<int>& vertexKeys;
        int& count;
        int width; // floats per vector
    };

    Kind Positions() { return {positions, posMesh, posVertex, posCount, 3}; }
    Kind Normals() { return {normals, normMesh, normVertex, normCount, 3}; }
    Kind TexCoords() { return {texCoords, texMesh, texVertex, texCount, 2}; }
    static int Find(Index* index, const Kind& kind, const float* value, PMeshSaveClb* clb, int meshKey,
                    int vertexKey);
    static int Push(Index* index, Kind kind, const float* value, PMeshSaveClb* clb, int meshKey,
                    int vertexKey);
    int SlotOf(const FXTriple& triple) const;
    bool PushShared(int vertex);
    bool GrowSlots();

    Index posIndex_, normIndex_, texIndex_;
    // The users of the stored vectors (posUser, posUsers, normUser, normUsers, texUser, texUsers) are not
    // listed for each kind: there is one vertex per distinct triple, so a triple finds its vertex. Most
    // positions have one user only: it is looked up by the number of the position. The users of the others
    // stand in a hash, so that a corner costs the same however many vertices share its position.
    FXArray<FXTriple> triples_; // by vertex
    FXArray<int> firstUser_;    // by position: none, the one user, or ~user when there are more
    FXArray<int> slots_;        // open hash of vertices, a power of two, at most half full
    int shared_ = 0;            // vertices in it
};
