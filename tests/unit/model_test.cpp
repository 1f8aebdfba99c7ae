// Meshes, their packed form, and models.
#include "base/file_handle.h"
#include "geometry/model.h"
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"
#include "image/material.h"
#include "image/material_library.h"
#include "unit/recorded_device.h"
#include "unit/test_mesh.h"
#include "unit/test_package.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <numeric>
#include <tuple>

namespace {

void Load(FXVectorMap* map, const std::string& record) {
    FXPackageData data = CursorOf(record);
    map->LoadC(nullptr, &data);
}

// Packs the mesh and expects the same corners when it is unpacked, with so many vertices. Gives the stream.
std::string Packed(FXMesh* mesh, FXVectorMap* map, int vertices) {
    const std::vector<TestVertex> corners = CornersOf(*mesh);
    FXMesh unpacked;
    FXNumPool pool(64);
    mesh->ToVMap(map, &pool, nullptr, 0, nullptr);
    EXPECT_TRUE(CornersOf(*mesh) == corners);
    for (int again = 0; again < 2; ++again) { // the map serves mesh after mesh
        unpacked.CopyMeshI(mesh);
        std::fill_n(unpacked.vertices, unpacked.vertexCount, tagFXVertex{{7}, {7}, {7}, {7}, {7}, 7, {7}});
        EXPECT_TRUE(unpacked.FromVMap(map, &pool));
        EXPECT_EQ(unpacked.vertexCount, vertices);
        EXPECT_TRUE(CornersOf(unpacked) == corners);
        EXPECT_TRUE(unpacked.vertices[0].normalSum[0] == 0 && unpacked.vertices[0].touched == 0);
    }
    return {reinterpret_cast<const char*>(pool.buffer), static_cast<std::size_t>(pool.size)};
}

// A mesh of different vertices with numbers from `start` on: a corner for each in order, then `tail`.
std::string PackedFrom(int start, int count, const std::vector<int>& tail) {
    const auto some = [start](int width) { // nobody's
        return Ints({width * start}) +
               Floats(std::vector<float>(static_cast<std::size_t>(width * start), -1));
    };
    FXVectorMap map;
    Load(&map, some(3) + some(3) + some(2));
    std::vector<TestVertex> vertices;
    for (int i = 0; i < count; ++i) {
        const auto f = static_cast<float>(i);
        vertices.push_back({{f, 1, 2}, {0, f, 1}, {f, f}});
    }
    std::vector<int> indices(static_cast<std::size_t>(count));
    std::iota(indices.begin(), indices.end(), 0);
    for (const int number : tail)
        indices.push_back(number - start);
    FXMesh mesh;
    MakeMesh(&mesh, vertices, indices);
    return Packed(&mesh, &map, count);
}

TEST(Packing, TakesTheShortestOfFourCodes) {
    const auto thrice = [](char flags, const std::string& number) {
        return flags + number + number + number;
    };
    const std::string next(1, '\0'), zero(1, '\0');
    EXPECT_EQ(PackedFrom(0, 301, {17, 300, 255, 256, 300, 0, 1}),
              std::string(301, '\0') + thrice('\x15', "\x11") + thrice('\x2A', "\x2C\x01") +
                  thrice('\x15', "\xFF") + next + thrice('\x2A', "\x2C\x01") + thrice('\x15', zero) + next);
    EXPECT_EQ(PackedFrom(65530, 10, {65535, 65536, 65535, 65537, 65539, 65530}),
              thrice('\x2A', "\xFA\xFF") + std::string(9, '\0') + thrice('\x2A', "\xFF\xFF") + next +
                  thrice('\x2A', "\xFF\xFF") + thrice('\x3F', {"\1\0\1\0", 4}) +
                  thrice('\x3F', {"\3\0\1\0", 4}) + thrice('\x2A', "\xFA\xFF"));
}

TEST(Packing, SharesWhatIsEqualAndMakesOneVertexPerTriple) {
    // Two positions, two normals, two texture coordinates; vertex 5 repeats vertex 1, vertex 6 is a seam of
    // vertex 4, nobody uses vertex 0.
    FXMesh mesh;
    MakeMesh(&mesh,
             {{{9, 9, 9}, {9, 9, 9}, {9, 9}},
              {{0, 0, 0}, {0, 0, 1}, {0, 0}},
              {{0, 0, 0}, {0, 1, 0}, {0, 0}},
              {{-0.0f, 0, 0}, {0, 1, 0}, {1, 0}},
              {{1e-30f, 0, 0}, {0, 0, 1}, {0, 0}},
              {{0, 0, 0}, {0, 0, 1}, {0, 0}},
              {{1e-30f, 0, 0}, {0, 0, 1}, {1, 0}}},
             {1, 2, 3, 4, 5, 2, 6});
    FXVectorMap map;
    Packed(&mesh, &map, 5);
    EXPECT_TRUE(mesh.vertexCount == 6 && map.posCount == 2 && map.normCount == 2 && map.texCount == 2);
}

TEST(Unpacking, OfAMalformedStreamGivesAnEmptyMesh) {
    FXVectorMap map;
    Load(&map, Ints({6}) + Floats({0, 0, 0, 1, 1, 1}) + Ints({6}) + Floats({0, 0, 0, 1, 1, 1}) + Ints({4}) +
                   Floats({0, 0, 1, 1}));
    const std::string zero(1, '\0'), two(2, '\0'),
        three = two + std::string("\x15\0\0\0", 4); // corners: 0, 1, 0
    const std::tuple<const char*, std::string, int, int> cases[] = {
        // room, vertices
        {"good, more room and bytes", three + "rest", 9, 2},
        {"half a word", two + "\x20" + zero, 2, 0},
        {"beyond the positions, by one more", two + zero, 9, 0},
        {"beyond the normals", two + std::string("\x05\0\x02", 3), 9, 0},
        {"beyond the texture coordinates", two + std::string("\x15\0\0\x02", 4), 9, 0},
        {"more vertices than the header says", three, 1, 0}};
    for (const auto& [what, stream, room, vertices] : cases) {
        FXNumPool pool;
        for (const char byte : stream)
            pool.PushByte(static_cast<unsigned char>(byte));
        FXMesh mesh;
        ASSERT_TRUE(mesh.Realloc(room, 3));
        EXPECT_EQ(mesh.FromVMap(&map, &pool), vertices > 0) << what;
        EXPECT_TRUE(mesh.indexCount == (vertices > 0 ? 3 : 0) && mesh.vertexCount == vertices) << what;
    }
}

TEST(VectorMapRecord, KeepsWholeVectorsOfWhatIsThere) {
    const std::string rest = Ints({3}) + Floats({0, 0, 1}) + Ints({2}) + Floats({0.5f, 0.25f});
    FXVectorMap map;
    Load(&map, Ints({7}) + Floats({1, 2, 3, 4, 5, 6, 7}) + rest);
    EXPECT_TRUE(map.posCount == 2 && map.normCount == 1 && map.texCount == 1);
    Load(&map, Ints({INT_MAX}));
    EXPECT_EQ(map.posCount + map.normCount + map.texCount, 0);
}

TEST(MeshRecord, ThatIsMalformedGivesAMeshWithoutTriangles) {
    const std::tuple<bool, int, int, int, bool> kCases[] = {
        // the header alone, with 6 bytes behind it; vertices, corners, an index; is it good
        {false, 3, 3, 1, true},        {false, -1, 3, 1, false}, {false, INT_MAX, 3, 1, false},
        {false, 3, INT_MAX, 1, false}, {false, 3, 4, 1, false},  {false, 3, 3, -1, false},
        {false, 3, 3, 3, false},       {true, 3, 6, 0, true},    {true, 3, 7, 0, false},
        {true, -1, 6, 0, false},       {true, 3, -1, 0, false}};
    FXMesh mesh;
    for (const auto& [packed, vertices, corners, index, good] : kCases) {
        const std::string record =
            Header("m") + Floats({0, 0}) + Ints({0, 0, vertices}) +
            (packed ? Ints({corners}) + std::string(6, '\0')
                    : std::string(3 * sizeof(tagFXVertex), '\1') + Ints({corners, 0, index, 2}));
        FXPackageData data = CursorOf(record);
        MakeMesh(&mesh, {{}, {}, {}}, {0, 1, 2}); // what was there before
        packed ? mesh.LoadMeshIC(nullptr, &data, nullptr) : mesh.LoadMeshC(nullptr, &data, nullptr);
        EXPECT_EQ(mesh.indexCount, good ? corners : 0)
            << packed << " " << vertices << " " << corners << " " << index;
    }
}

TEST(MeshNormals, AreTheSumOfTheFacesAroundAVertex) {
    const float half = std::sqrt(0.5f);
    const std::pair<float, std::vector<std::array<float, 3>>> kCases[] = {
        // the scale of z
        {1, {{0, 0, -1}, {half, 0, -half}, {half, 0, -half}, {1, 0, 0}, {7, 7, 7}}},
        {0, {{0, 0, -1}, {0, 0, -1}, {0, 0, -1}, {}, {7, 7, 7}}}};
    for (const auto& [zScale, normals] : kCases) {
        // The floor z = 0 and a smaller wall up at x = 1 meet at vertices 1 and 2; vertex 4 has no face.
        FXMesh mesh;
        MakeMesh(&mesh, {{{-2, 0, 0}}, {{1, 0, 0}}, {{1, 1, 0}}, {{1, 0, 1}}, {{9, 9, 9}, {7, 7, 7}}},
                 {0, 1, 2, 3, 2, 1, 0, 0, 0}); // the last triangle has no area
        mesh.vertices[0].normalSum[2] = 5;
        mesh.ComputeNormalsZ(false, zScale);
        for (int i = 0; i < 5; ++i)
            for (std::size_t axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(mesh.vertices[i].normal[axis], normals[i][axis], 1e-6f) << i << " " << axis;
        EXPECT_EQ(mesh.vertices[1].touched, 1);
    }
}

using Tex = std::array<float, 2>;

// Writes down what a model draws: meshes by the x of their first vertex, culling and depth writes.
struct DrawingDevice : FXGL {
    void RenderMesh(FXMesh* mesh) override {
        Note(std::to_string(static_cast<int>(mesh->vertices[0].pos[0])));
    }
    void UnprepareMesh(FXMesh*) override { ++unprepared; }
    void EnableCullface(bool front, bool back) override { Note(front ? "front" : back ? "back" : "none"); }
    void EnableDepthWrite(bool on) override { Note(on ? "write" : "no-write"); }
    void Note(const std::string& what) { drawn.append(what).append(" "); }
    std::string drawn;
    int unprepared = 0;
};

Tex TexOf(const FXModel& model, int mesh) {
    return VertexOf(*model.meshes[mesh], 0).tex;
}

// Entry 5 is a library named "5" with the materials glass and wood, entry 3 the model.
class Model : public testing::Test {
protected:
    void LoadPackage(const std::string& model) {
        const std::string library =
            Header("5") + Ints({2}) + MaterialRecord("glass", "") + MaterialRecord("wood", "");
        LoadTestPackage(package_, folder_, {{3, kRaw, model}, {5, kRaw, library}});
    }

    // Three pairs of triangles, as working meshes: of glass, of a material that is nowhere, of wood.
    void Make(FXModel* model) {
        LoadPackage("");
        model->Destroy();
        model->name.Set("a model");
        model->matlibName.Set("5");
        model->matlib = device_.gl.LoadMatlibC(&package_, "5");
        model->matlib->materials[0]->extentU = 0.75f;
        model->matlib->materials[0]->extentV = 0.5f;
        model->matlib->materials[1]->extentU = 1; // and of no height: as it was loaded
        for (const char* name : {"glass", "nowhere", "wood"}) {
            const int i = model->meshes.count;
            const auto f = static_cast<float>(i);
            FXMesh& mesh = AddMesh(
                model,
                {{{f, 0, 0}, {0, 0, 1}, {0, f}}, {{f, 1, 0}, {0, f, 0}, {1, f}}, {{0, 0, f}}, {{8, 8, 8}}},
                {0, 1, 2, 2, 1, 0});
            mesh.materialName.Set(name);
            mesh.material = model->matlib->FindMaterial(name);
            mesh.transparent = i;
            mesh.colorMode = i & 1;
            mesh.loadedU = mesh.loadedV = 0.25f;
        }
    }
    std::string Saved(FXModel* model, int version) {
        FXFile file = fxOpenFile(folder_.File("m").c_str(), "wb");
        EXPECT_TRUE(version == 2 ? model->Save_v02(file.get()) : model->Save_v03(file.get()));
        EXPECT_TRUE(fxCloseWritten(std::move(file)));
        return folder_.Read("m");
    }

    TempFolder folder_;
    RecordedDevice<DrawingDevice> device_;
    FXPackage package_;
};

TEST_F(Model, GoesThroughBothFormatsInPackageAndFile) {
    for (const int version : {2, 3}) {
        FXModel written, read, fromFile;
        Make(&written);
        const std::string bytes = Saved(&written, version);
        EXPECT_EQ(bytes.substr(0, 8), Header(version == 2 ? "om02" : "om03"));
        LoadPackage(bytes);
        ASSERT_TRUE(read.LoadCN(&package_, 3));
        ASSERT_TRUE(fromFile.Load(folder_.Write("model", bytes).c_str()));
        EXPECT_EQ(read.matlib->refCount, 3) << "one library, also for the file";
        for (FXModel* model : {&read, &fromFile}) {
            EXPECT_TRUE(model->name.Compare("a model") && model->matlibName.Compare("5"));
            model->UpdateMeshes();
            model->UpdateMeshes(); // they replace those before
            ASSERT_EQ(model->meshes.count, 3);
            EXPECT_EQ(model->GetTotalVertices(), version == 2 ? 12 : 9) << "packed: without what is not used";
            for (int i = 0; i < 3; ++i) {
                const FXMesh &actual = *model->meshes[i], &expected = *written.meshes[i];
                EXPECT_EQ(CornersOf(actual), CornersOf(expected));
                EXPECT_STREQ(actual.materialName.text, expected.materialName.text);
                EXPECT_TRUE(actual.material == expected.material && actual.transparent == i &&
                            actual.colorMode == expected.colorMode);
            }
            EXPECT_TRUE(model->meshes[0]->loadedU == 0.75f && model->meshes[0]->loadedV == 0.5f);
            EXPECT_TRUE(model->meshes[2]->loadedU == 1 &&
                        model->meshes[2]->loadedV == (version == 3 ? 0.25f : 0));
            model->Destroy();
        }
        EXPECT_EQ(written.matlib->refCount, 1);
    }
    EXPECT_TRUE(device_.gl.matlibs.IsEmpty());
}

TEST_F(Model, Version3LeavesOutWhatIsDisabled) {
    FXModel model, read;
    Make(&model);
    model.meshes.PushNull();
    std::rotate(model.meshes.begin(), model.meshes.end() - 1, model.meshes.end());
    model.meshes[2]->disabled = true;
    for (const int version : {2, 3}) {
        LoadPackage(Saved(&model, version));
        ASSERT_TRUE(read.LoadCN(&package_, 3));
        EXPECT_EQ(read.loadedMeshes.count, version == 2 ? 3 : 2);
        EXPECT_STREQ(read.loadedMeshes.Last()->materialName.text, "wood");
    }
    EXPECT_FALSE(model.Save(folder_.File("no/folder").c_str()));
    EXPECT_FALSE(model.Save("/dev/full")) << "not all of it got to the disk";
    EXPECT_TRUE(model.Save(folder_.File("saved").c_str()));
    EXPECT_EQ(folder_.Read("saved"), Saved(&model, 3));
}

TEST_F(Model, DrawsOpaqueMeshesThenThoseSeenThrough) {
    FXModel model;
    for (const int transparent : {1, 0, 1, 2, 2, 1, 7, -1})
        AddMesh(&model, {{{static_cast<float>(model.meshes.count), 0, 0}}}).transparent = transparent;
    model.meshes.Push(nullptr);
    model.OnRender(&device_.gl, 1);
    EXPECT_EQ(device_.gl.drawn, "1 front 5 2 0 back 0 2 5 none no-write 3 4 write 3 4 ");
    model.Destroy();
    EXPECT_EQ(device_.gl.unprepared, 8);
}

TEST_F(Model, CopyIsEnabledAndHoldsAReferenceOfItsOwn) {
    FXModel model, copy;
    Make(&model);
    model.meshes.Push(nullptr);
    FXMesh& mesh = *model.meshes[1];
    model.flipV = mesh.disabled = mesh.flipV = true;
    mesh.secondMesh = model.meshes[0];
    mesh.loadedU = mesh.loadedV = 0.5f;
    copy.name.Set("old");
    copy.Copy(&model);
    EXPECT_TRUE(copy.name.IsEmpty() && copy.flipV && copy.matlibName.Compare("5"));
    EXPECT_EQ(copy.matlib->refCount, 2);
    ASSERT_TRUE(copy.meshes.count == 4 && copy.meshes[3] == nullptr);
    const FXMesh& copied = *copy.meshes[1];
    EXPECT_FALSE(copied.disabled || copied.flipV || copied.secondMesh != nullptr);
    EXPECT_TRUE(copied.transparent == 1 && copied.colorMode == 1 && copied.loadedV == 0.5f);
    EXPECT_EQ(CornersOf(copied), CornersOf(mesh));
}

TEST_F(Model, FollowsTheExtentsOfItsPictures) {
    const std::tuple<float, float, float, float, bool, Tex, Tex> kCases[] = {
        // the material's extents, those loaded, is v turned; (0.5, 0.25) resized, and by the material's alone
        {0.5f, 0.25f, 2.0f, 0.5f, false, {0.125f, 0.125f}, {0.25f, 0.0625f}},
        {0.5f, 0.25f, 2.0f, 0.5f, true, {0.125f, 0.375f}, {0.25f, 0.1875f}},
        {0.5f, 0.25f, 0.0f, -1.0f, false, {0.25f, 0.0625f}, {0.25f, 0.0625f}},
        {0.0f, 0.25f, 1.0f, 1.0f, true, {0.5f, 0.25f}, {0.5f, 0.25f}},
        {0.5f, 0.0f, 1.0f, 1.0f, true, {0.5f, 0.25f}, {0.5f, 0.25f}}};
    for (const auto& [extentU, extentV, loadedU, loadedV, flip, resized, resized1] : kCases)
        for (const bool one : {false, true}) {
            FXModel model;
            FXMaterial material;
            material.extentU = extentU;
            material.extentV = extentV;
            FXMesh& mesh = AddMesh(&model, {{{}, {}, {0.5f, 0.25f}}});
            mesh.material = &material;
            mesh.loadedU = loadedU;
            mesh.loadedV = loadedV;
            AddMesh(&model, {{{}, {}, {0.5f, 0.25f}}});
            model.flipV = flip;
            one ? model.ResizeTextCoords1() : model.ResizeTextCoords();
            EXPECT_EQ(TexOf(model, 0), one ? resized1 : resized) << extentU << " " << loadedU << flip << one;
            EXPECT_EQ(TexOf(model, 1), (Tex{0.5f, 0.25f})) << "no material";
        }
}

TEST_F(Model, HandsOnTextureCoordinatesAndColours) {
    FXModel model, other;
    Make(&model);
    Make(&other);
    other.ComputeFrontTexCoords(-1);
    other.meshes.Push(nullptr);
    model.CopyTexCoords(-1, &other);
    EXPECT_EQ(TexOf(model, 1), (Tex{0, 1})) << "not as many meshes";
    model.meshes.Push(nullptr);
    model.CopyTexCoords(-1, &other);
    EXPECT_TRUE(TexOf(model, 2) == (Tex{1.5f, 0.5f}) && VertexOf(*model.meshes[1], 1).tex == (Tex{1, 0}));

    const float half[4] = {0.5f, 0.5f, 0.5f, 1};
    model.PreserveColMat();
    model.UpdateColMat(half);
    model.UpdateColMat(half);
    EXPECT_EQ(model.meshes[0]->material->diffuse[0], 1.0f) << "half of 2";
    model.UpdateColCol(half);
    EXPECT_TRUE(model.meshes[1]->vertices[2].color[0] == 0.5f && model.meshes[0]->colorMode == 1);
}

} // namespace
