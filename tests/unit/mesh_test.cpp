#include "base/file_handle.h"
#include "base/memory.h"
#include "image/material.h"
#include "image/material_library.h"
#include "unit/recorded_device.h"
#include "unit/test_mesh.h"
#include "unit/test_package.h"
#include "unit/trace_lines.h"

#include <climits>
#include <cmath>
#include <cstring>

namespace {

using Vector = std::array<float, 3>;

Vector PositionOf(const FXMesh& mesh, int i) {
    return VertexOf(mesh, i).pos;
}
Vector NormalOf(const FXMesh& mesh, int i) {
    return VertexOf(mesh, i).normal;
}

// Three vertices of which word w holds 100 * vertex + w, and the given indices.
std::string FullRecord(int vertexCount, int indexCount, const std::vector<std::int32_t>& indices) {
    std::vector<float> words;
    for (int vertex = 0; vertex < 3; ++vertex)
        for (int word = 0; word < 19; ++word)
            words.push_back(static_cast<float>(100 * vertex + word));
    return Header("Metal") + Floats({0.5f, 0.25f}) + Ints({1, 7, vertexCount}) + Floats(words) +
           Ints({indexCount}) + Ints(indices);
}

void LoadFull(FXMesh* mesh, const std::string& record, FXMatlib* library) {
    FXPackageData data;
    data.InitData(record.data(), static_cast<int>(record.size()));
    mesh->LoadMeshC(nullptr, &data, library);
}

std::string Saved(const TempFolder& folder, const FXMesh& mesh, bool (FXMesh::*save)(std::FILE*) const) {
    FXFile file = fxOpenFile(folder.File("mesh").c_str(), "wb");
    EXPECT_TRUE((mesh.*save)(file.get()));
    EXPECT_TRUE(fxCloseWritten(std::move(file)));
    return folder.Read("mesh");
}

TEST(MeshRecord, HoldsTheWholeMesh) {
    const TempFolder folder;
    const std::string record = FullRecord(3, 6, {0, 1, 2, 2, 1, 0});
    FXMaterial metal;
    metal.name.Set("Metal");
    metal.extentU = 0.75f;
    FXMatlib library;
    library.AddMaterial(&metal);
    FXMesh mesh;
    LoadFull(&mesh, record, &library);
    EXPECT_EQ(mesh.material, &metal);
    EXPECT_TRUE(mesh.loadedU == 0.5f && mesh.loadedV == 0.25f && mesh.transparent == 1 &&
                mesh.colorMode == 7);
    ASSERT_TRUE(mesh.vertexCount == 3 && mesh.indexCount == 6);
    EXPECT_EQ(mesh.vertices[2].pos[0], 200.0f);
    EXPECT_EQ(mesh.vertices[1].normal[2], 105.0f);
    EXPECT_EQ(mesh.vertices[1].tex[1], 107.0f);
    EXPECT_EQ(mesh.vertices[0].color[3], 11.0f);
    EXPECT_EQ(mesh.indices[3], 2);

    std::string expected = record;
    expected.replace(9, 8, Floats({0.75f, 0})); // the extents of the material
    EXPECT_EQ(Saved(folder, mesh, &FXMesh::SaveMesh), expected);
    LoadFull(&mesh, record, nullptr);
    EXPECT_EQ(mesh.material, nullptr);
    EXPECT_STREQ(mesh.materialName.text, "Metal");
}

TEST(MeshRecord, ThatLiesGivesAMeshWithoutTriangles) {
    const std::vector<std::int32_t> good = {0, 1, 2};
    const std::string whole = FullRecord(3, 3, good);
    std::vector<std::string> lies = {FullRecord(-1, 3, good),
                                     FullRecord(INT_MIN, 3, good),
                                     FullRecord(INT_MAX, 3, good),
                                     FullRecord(4, 3, good), // swallows the indices
                                     FullRecord(3, -1, good),
                                     FullRecord(3, INT_MIN, good),
                                     FullRecord(3, INT_MAX, good),
                                     FullRecord(3, 4, good),
                                     FullRecord(3, 3, {0, 1, 3}),
                                     FullRecord(3, 3, {0, -1, 2}),
                                     FullRecord(3, 3, {INT_MAX, 1, 2}),
                                     FullRecord(0, 3, good),
                                     FullRecord(2, 3, good)};
    for (std::size_t length = 0; length < whole.size(); ++length)
        lies.push_back(whole.substr(0, length));
    fxSetAllocLimit(4096); // counts that lie cost no memory
    FXMesh mesh;
    for (const std::string& record : lies) {
        LoadFull(&mesh, whole, nullptr);
        EXPECT_EQ(mesh.indexCount, 3);
        LoadFull(&mesh, record, nullptr);
        EXPECT_EQ(mesh.indexCount, 0) << record.size();
    }
    fxSetAllocLimit(0);
}

TEST(MeshRecord, HeaderKeepsTheExtentsThatWereLoaded) {
    const TempFolder folder;
    const TraceLines trace(folder);
    FXMaterial material;
    FXMesh mesh;
    mesh.materialName.Set("Metal");
    mesh.loadedU = 0.5f;
    mesh.loadedV = 0.25f;
    mesh.transparent = 2;
    const auto header = [](float u, float v) {
        return Header("Metal") + Floats({u, v}) + Ints({2, 0, 0, 0});
    };
    EXPECT_EQ(Saved(folder, mesh, &FXMesh::SaveMeshI), header(0.5f, 0.25f));
    mesh.material = &material;
    material.extentU = 1;
    EXPECT_EQ(Saved(folder, mesh, &FXMesh::SaveMeshI), header(1, 0.25f));
    material.extentU = 0;
    material.extentV = 0.75f;
    EXPECT_EQ(Saved(folder, mesh, &FXMesh::SaveMeshI), header(0.5f, 0.75f));
    EXPECT_EQ(trace.Lines(),
              (std::vector<std::string>{"save u from loaded_u (0.5)", "save u from loaded_u (0.5)"}));
}

TEST(MeshRecord, HeaderIsBelievedAsFarAsTheBytesGo) {
    const struct {
        int vertices, corners, rest; // bytes behind the header
        int expected;                // corners
    } kCases[] = {{3, 6, 6, 6},       {3, 6, 5, 0},       {-1, 6, 6, 0},      {3, -1, 6, 0},
                  {INT_MAX, 6, 6, 6}, {3, INT_MAX, 6, 0}, {INT_MIN, 6, 6, 0}, {0, 0, 0, 0}};
    fxSetAllocLimit(4096);
    for (const auto& c : kCases) {
        const std::string record = Header("m") + Floats({0, 0}) + Ints({0, 0, c.vertices, c.corners}) +
                                   std::string(static_cast<std::size_t>(c.rest), '\0');
        FXPackageData data;
        data.InitData(record.data(), static_cast<int>(record.size()));
        FXMesh mesh;
        mesh.LoadMeshIC(nullptr, &data, nullptr);
        EXPECT_EQ(mesh.indexCount, c.expected) << c.vertices << " " << c.corners;
        EXPECT_LE(mesh.vertexCount, mesh.indexCount) << "a vertex has a corner";
        EXPECT_EQ(data.left, c.rest);
    }
    fxSetAllocLimit(0);
}

TEST(Mesh, KeepsItsBuffersAndTellsTheDevice) {
    struct CountingDevice : FXGL {
        void UnprepareMesh(FXMesh*) override { ++unprepared; }
        int unprepared = 0;
    };
    RecordedDevice<CountingDevice> device;
    FXMesh mesh;
    ASSERT_TRUE(mesh.Realloc(10, 12));
    const tagFXVertex* vertices = mesh.vertices;
    const int* indices = mesh.indices;
    ASSERT_TRUE(mesh.Realloc(5, 12));
    EXPECT_TRUE(mesh.vertices == vertices && mesh.indices == indices && mesh.vertexCount == 5);
    EXPECT_FALSE(mesh.Realloc(-1, 3));
    EXPECT_TRUE(mesh.vertexCount == 0 && mesh.indexCount == 0);
    fxSetAllocLimit(1000);
    EXPECT_FALSE(mesh.Realloc(100, 3));
    EXPECT_TRUE(mesh.vertexCount == 0 && mesh.indexCount == 0);
    fxSetAllocLimit(0);
    ASSERT_TRUE(mesh.Realloc(3, 3));
    EXPECT_EQ(device.gl.unprepared, 0);
    mesh.materialName.Set("kept");
    mesh.Destroy();
    mesh.Destroy();
    EXPECT_EQ(device.gl.unprepared, 1) << "there is nothing to forget the second time";
    EXPECT_TRUE(mesh.vertices == nullptr && mesh.vertexCapacity == 0 && mesh.indexCapacity == 0);
    EXPECT_STREQ(mesh.materialName.text, "kept");
}

TEST(Mesh, CopyIsEnabledAndAlone) {
    FXMaterial material;
    FXMesh mesh, copy;
    MakeMesh(&mesh, {{{1, 2, 3}, {0, 0, 1}, {0.5f, 0.25f}}, {{4, 5, 6}}}, {0, 1, 1});
    mesh.disabled = mesh.flipV = true;
    mesh.secondMesh = &copy;
    mesh.transparent = 2;
    mesh.colorMode = 1;
    mesh.material = &material;
    mesh.loadedU = 0.5f;
    copy.Copy(&mesh);
    EXPECT_FALSE(copy.disabled || copy.flipV || copy.secondMesh != nullptr);
    EXPECT_TRUE(copy.transparent == 2 && copy.colorMode == 1 && copy.material == &material &&
                copy.loadedU == 0.5f);
    EXPECT_EQ(CornersOf(copy), CornersOf(mesh));
    fxSetAllocLimit(50);
    FXMesh without;
    without.Copy(&mesh);
    fxSetAllocLimit(0);
    EXPECT_TRUE(without.vertexCount == 0 && without.indexCount == 0) << "no memory";
    mesh.secondMesh = nullptr;
}

TEST(Mesh, DiscardsWhatNoIndexUses) {
    FXMesh mesh;
    MakeMesh(&mesh, {{{0}}, {{1}}, {{2}}, {{3}}, {{4}}}, {3, 1, 3});
    mesh.DiscardVertices();
    EXPECT_TRUE(mesh.vertexCount == 2 && mesh.vertexCapacity == 2);
    EXPECT_EQ(CornersOf(mesh), (std::vector<TestVertex>{{{3}}, {{1}}, {{3}}}));
    EXPECT_EQ(mesh.vertices[1].touched, 1) << "its new number";
    mesh.indexCount = 0;
    mesh.DiscardVertices();
    EXPECT_EQ(mesh.vertexCount, 0);
}

// A step: the floor z = 0, and a smaller wall up at x = 1; vertices 1 and 2 are where they meet.
const std::vector<TestVertex> kStep = {{{-2, 0, 0}}, {{1, 0, 0}}, {{1, 1, 0}}, {{1, 0, 1}}};

TEST(MeshNormals, AreTheSumOfTheFacesAroundAVertex) {
    FXMesh mesh;
    MakeMesh(&mesh, kStep, {0, 1, 2, 1, 3, 2, 0, 0, 0});
    mesh.ComputeNormals(false);
    const float half = std::sqrt(0.5f);
    // Seen along z, the floor's corners turn counter-clockwise: its normal looks at -z.
    const Vector floor = {0, 0, -1}, wall = {1, 0, 0}, both = {half, 0, -half};
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(NormalOf(mesh, 0)[axis], floor[axis], 1e-6f);
        EXPECT_NEAR(NormalOf(mesh, 1)[axis], both[axis], 1e-6f);
        EXPECT_NEAR(NormalOf(mesh, 2)[axis], both[axis], 1e-6f);
        EXPECT_NEAR(NormalOf(mesh, 3)[axis], wall[axis], 1e-6f);
    }
}

TEST(MeshNormals, ScaleZAndSkipWhatIsNotTouched) {
    FXMesh mesh;
    MakeMesh(&mesh, {{{0, 0, 0}}, {{1, 0, 1}}, {{0, 1, 0}}, {{9, 9, 9}, {7, 7, 7}}}, {0, 1, 2});
    mesh.ComputeNormalsZ(false, 0);
    EXPECT_EQ(NormalOf(mesh, 0), (Vector{0, 0, -1}));
    EXPECT_EQ(NormalOf(mesh, 3), (Vector{7, 7, 7})) << "of no face: unchanged";
    mesh.ComputeNormals(false);
    EXPECT_NEAR(NormalOf(mesh, 1)[0], std::sqrt(0.5f), 1e-6f);

    MakeMesh(&mesh, kStep, {0, 1, 2, 1, 3, 2});
    mesh.vertices[3].touched = 1;
    mesh.ComputeNormals(true);
    EXPECT_EQ(NormalOf(mesh, 0), (Vector{})) << "the floor was not touched";
    EXPECT_EQ(NormalOf(mesh, 1), (Vector{1, 0, 0}));
    EXPECT_EQ(mesh.vertices[1].touched, 1);

    mesh.vertices[0].normalSum[0] = 5;
    mesh.indexCount = 2;
    mesh.ComputeNormals(false);
    EXPECT_EQ(mesh.vertices[0].normalSum[0], 5.0f) << "no triangle";
    mesh.Normalize(true);
    EXPECT_EQ(NormalOf(mesh, 0), (Vector{}));
    mesh.Normalize(false);
    EXPECT_EQ(NormalOf(mesh, 0), (Vector{1, 0, 0}));
}

TEST(MeshTexCoords, FollowTheMaterialsExtents) {
    const struct {
        float extentU, extentV, loadedU, loadedV;
        bool flip;
        std::array<float, 2> resized, resized1; // from (0.5, 0.25)
    } kCases[] = {
        {0.5f, 0.25f, 1, 0.5f, false, {0.25f, 0.125f}, {0.25f, 0.0625f}},
        {0.5f, 0.25f, 1, 0.5f, true, {0.25f, 0.375f}, {0.25f, 0.1875f}},
        {0.5f, 0.25f, 0, -1, false, {0.25f, 0.0625f}, {0.25f, 0.0625f}},
        {0, 0.25f, 1, 1, true, {0.5f, 0.25f}, {0.5f, 0.25f}},
        {0.5f, 0, 1, 1, true, {0.5f, 0.25f}, {0.5f, 0.25f}},
    };
    for (const auto& c : kCases) {
        FXMaterial material;
        material.extentU = c.extentU;
        material.extentV = c.extentV;
        FXMesh mesh, mesh1;
        for (FXMesh* m : {&mesh, &mesh1}) {
            MakeMesh(m, {{{}, {}, {0.5f, 0.25f}}}, {});
            m->ResizeTexCoords(); // no material: nothing
            m->ResizeTexCoords1();
            m->material = &material;
            m->loadedU = c.loadedU;
            m->loadedV = c.loadedV;
            m->flipV = c.flip;
        }
        mesh.ResizeTexCoords();
        mesh1.ResizeTexCoords1();
        EXPECT_EQ(VertexOf(mesh, 0).tex, c.resized) << c.flip << c.extentU;
        EXPECT_EQ(VertexOf(mesh1, 0).tex, c.resized1) << c.flip << c.extentU;
    }
}

TEST(MeshTexCoords, AreProjectedAndCopied) {
    FXMesh mesh, longer;
    MakeMesh(&mesh, {{{-1, -1, 5}}, {{1, 1, 0}}, {{0, 0.5f, 0}}}, {});
    mesh.ComputeFrontTexCoords();
    EXPECT_EQ(VertexOf(mesh, 0).tex, (std::array<float, 2>{0, 1}));
    EXPECT_EQ(VertexOf(mesh, 1).tex, (std::array<float, 2>{1, 0}));
    EXPECT_EQ(VertexOf(mesh, 2).tex, (std::array<float, 2>{0.5f, 0.25f}));
    MakeMesh(&longer, std::vector<TestVertex>(4, {{}, {}, {9, 9}}), {});
    longer.CopyTexCoords(&mesh);
    EXPECT_EQ(VertexOf(longer, 1).tex, (std::array<float, 2>{1, 0}));
    EXPECT_EQ(VertexOf(longer, 3).tex, (std::array<float, 2>{9, 9})) << "beyond the source";
}

TEST(MeshFit, BringsABoxInto1) {
    const struct {
        const char* what;
        std::vector<TestVertex> vertices;
        void (*fit)(FXMesh& m);
        std::array<float, 6> box;
    } cases[] = {
        {"keeps proportions",
         {{{0, 0, 0}}, {{4, 2, 1}}},
         [](FXMesh& m) { m.Unitize(); },
         {-1, 1, -0.5f, 0.5f, -0.25f, 0.25f}},
        {"stretches",
         {{{0, 0, 0}}, {{4, 2, 1}}},
         [](FXMesh& m) {
             float box[6];
             m.FindMaxims(box);
             m.UnitizeMaximsStretch(box);
         },
         {-1, 1, -1, 1, -1, 1}},
        {"stretches x and y",
         {{{0, 0, 3}}, {{4, 2, 3}}},
         [](FXMesh& m) {
             float box[6];
             m.FindMaxims(box);
             m.UnitizeMaximsStretch1(box);
         },
         {-1, 1, -1, 1, 0, 0}},
        {"only centres z",
         {{{0, 0, 0}}, {{4, 2, 8}}},
         [](FXMesh& m) {
             float box[6];
             m.FindMaxims(box);
             m.UnitizeMaximsStretch1(box);
         },
         {-1, 1, -1, 1, -4, 4}},
        {"a flat axis",
         {{{5, 0, 3}}, {{5, 2, 3}}},
         [](FXMesh& m) {
             float box[6];
             m.FindMaxims(box);
             m.UnitizeMaximsStretch(box);
         },
         {0, 0, -1, 1, 0, 0}},
        {"a box without width",
         {{{3, 0, 0}}, {{3, 2, 1}}},
         [](FXMesh& m) {
             const float box[6] = {1, 1, 0, 2, 0, 1};
             m.UnitizeMaximsStretch(box);
         },
         {2, 2, -1, 1, -1, 1}},
        {"a point", {{{5, 6, 7}}}, [](FXMesh& m) { m.Unitize(); }, {0, 0, 0, 0, 0, 0}},
        {"nothing", {}, [](FXMesh& m) { m.Unitize(); }, {0, 0, 0, 0, 0, 0}},
        {"mirrors", {{{-1, 0, 0}}, {{4, 2, 1}}}, [](FXMesh& m) { m.FlipHoriz(); }, {-4, 1, 0, 2, 0, 1}},
    };
    for (const auto& c : cases) {
        FXMesh mesh;
        MakeMesh(&mesh, c.vertices, {});
        c.fit(mesh);
        std::array<float, 6> box;
        mesh.FindMaxims(box.data());
        EXPECT_EQ(box, c.box) << c.what;
    }
    FXMesh a, b;
    MakeMesh(&a, {{{1, 5, 3}}, {{2, 4, 3}}}, {});
    MakeMesh(&b, {{{0, 6, 2}}}, {});
    std::array<float, 6> box = {9, 9, 9, 9, 9, 9};
    bool first = true;
    FXMesh().FindMultiMaxims(&first, box.data());
    EXPECT_TRUE(first && box[0] == 9) << "no vertex";
    a.FindMultiMaxims(&first, box.data());
    b.FindMultiMaxims(&first, box.data());
    EXPECT_EQ(box, (std::array<float, 6>{0, 2, 4, 6, 2, 3}));
}

TEST(MeshFit, TurnsAxes) {
    FXMesh mesh;
    MakeMesh(&mesh, {{{1, 2, 3}, {4, 5, 6}}}, {});
    mesh.Transform(2, 0, 1, true, false, true);
    EXPECT_EQ(PositionOf(mesh, 0), (Vector{-3, 1, -2}));
    EXPECT_EQ(NormalOf(mesh, 0), (Vector{-6, 4, -5}));
    for (const int axis : {-1, 3}) {
        mesh.Transform(0, axis, 1, true, true, true);
        EXPECT_EQ(PositionOf(mesh, 0), (Vector{-3, 1, -2})) << "no such axis";
    }
    const std::pair<const char*, int> kAxes[] = {{"x", 0},  {"y", 1}, {"zebra", 2},
                                                 {"X", -1}, {"", -1}, {nullptr, -1}};
    for (const auto& [text, axis] : kAxes)
        EXPECT_EQ(FXMesh::TextToIndi(text), axis);
    const float color[4] = {1, 2, 3, 4};
    mesh.SetVerticesCol(color);
    EXPECT_TRUE(std::equal(color, color + 4, mesh.vertices[0].color));
}

} // namespace
