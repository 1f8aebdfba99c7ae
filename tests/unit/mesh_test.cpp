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
#include <span>

namespace {

using Vector = std::array<float, 3>;
using Tex = std::array<float, 2>;

// Three vertices of which word w holds 100 * vertex + w, and the given indices.
std::string FullRecord(int vertexCount, int indexCount, const std::vector<std::int32_t>& indices) {
    std::vector<float> words;
    for (int i = 0; i < 3 * 19; ++i)
        words.push_back(static_cast<float>(100 * (i / 19) + i % 19));
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
    std::string record = FullRecord(3, 6, {0, 1, 2, 2, 1, 0});
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
    const tagFXVertex& v = mesh.vertices[1];
    EXPECT_TRUE(v.pos[0] == 100 && v.normal[2] == 105 && v.tex[1] == 107 && v.color[3] == 111);
    EXPECT_EQ(mesh.indices[3], 2);
    record.replace(9, 8, Floats({0.75f, 0})); // the extents of the material
    EXPECT_EQ(Saved(folder, mesh, &FXMesh::SaveMesh), record);
}

TEST(MeshRecord, ThatLiesGivesAMeshWithoutTriangles) {
    const std::vector<std::int32_t> good = {0, 1, 2};
    const std::string whole = FullRecord(3, 3, good);
    std::vector<std::string> lies;
    for (const int count : {-1, INT_MIN, INT_MAX, 0, 2, 4})
        lies.push_back(FullRecord(count, 3, good));
    for (const int count : {-1, INT_MIN, INT_MAX, 4})
        lies.push_back(FullRecord(3, count, good));
    for (const int index : {-1, 3, INT_MAX})
        lies.push_back(FullRecord(3, 3, {0, index, 2}));
    for (std::size_t length = 0; length < whole.size(); ++length)
        lies.push_back(whole.substr(0, length));
    fxSetAllocLimit(4096); // counts that lie cost no memory
    FXMesh mesh;
    for (const std::string& record : lies) {
        LoadFull(&mesh, whole, nullptr);
        EXPECT_TRUE(mesh.indexCount == 3 && mesh.material == nullptr);
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
    mesh.material = &material;
    mesh.loadedU = 0.5f;
    mesh.loadedV = 0.25f;
    const auto header = [](float u, float v) { return Header("") + Floats({u, v}) + Ints({0, 0, 0, 0}); };
    material.extentU = 1;
    EXPECT_EQ(Saved(folder, mesh, &FXMesh::SaveMeshI), header(1, 0.25f));
    EXPECT_TRUE(trace.Lines().empty());
    material.extentU = 0;
    material.extentV = 0.75f;
    EXPECT_EQ(Saved(folder, mesh, &FXMesh::SaveMeshI), header(0.5f, 0.75f));
    mesh.material = nullptr;
    EXPECT_EQ(Saved(folder, mesh, &FXMesh::SaveMeshI), header(0.5f, 0.25f));
    EXPECT_EQ(trace.Lines(), std::vector<std::string>(2, "save u from loaded_u (0.5)"));
}

TEST(MeshRecord, HeaderIsBelievedAsFarAsTheBytesGo) {
    const struct {
        int vertices, corners, rest; // bytes behind the header
        int expected;                // corners
    } kCases[] = {{3, 6, 6, 6},       {3, 6, 5, 0},       {-1, 6, 6, 0},     {3, -1, 6, 0},
                  {INT_MAX, 6, 6, 6}, {3, INT_MAX, 6, 0}, {INT_MIN, 6, 6, 0}};
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
    fxSetAllocLimit(1000);
    for (const int count : {-1, 100}) {
        EXPECT_FALSE(mesh.Realloc(count, 3));
        EXPECT_TRUE(mesh.vertexCount == 0 && mesh.indexCount == 0);
    }
    fxSetAllocLimit(0);
    ASSERT_TRUE(mesh.Realloc(3, 3));
    EXPECT_EQ(device.gl.unprepared, 0);
    mesh.Destroy();
    mesh.Destroy();
    EXPECT_EQ(device.gl.unprepared, 1) << "there is nothing to forget the second time";
    EXPECT_TRUE(mesh.vertices == nullptr && mesh.vertexCapacity == 0 && mesh.indexCapacity == 0);
}

TEST(Mesh, CopyIsEnabledAndAlone) {
    FXMaterial material;
    FXMesh mesh, copy, without;
    MakeMesh(&mesh, {{{1, 2, 3}, {0, 0, 1}, {0.5f, 0.25f}}, {{4, 5, 6}}}, {0, 1, 1});
    mesh.disabled = mesh.flipV = true;
    mesh.secondMesh = &without;
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
    without.Copy(&mesh);
    fxSetAllocLimit(0);
    EXPECT_TRUE(without.vertexCount == 0 && without.indexCount == 0) << "no memory";
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

void ExpectNormal(const FXMesh& mesh, int i, const Vector& expected) {
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(mesh.vertices[i].normal[axis], expected[axis], 1e-6f) << i << " " << axis;
}

// A step: the floor z = 0, and a smaller wall up at x = 1; vertices 1 and 2 are where they meet.
const std::vector<TestVertex> kStep = {
    {{-2, 0, 0}}, {{1, 0, 0}}, {{1, 1, 0}}, {{1, 0, 1}}, {{9, 9, 9}, {7, 7, 7}}};

TEST(MeshNormals, AreTheSumOfTheFacesAroundAVertex) {
    FXMesh mesh;
    MakeMesh(&mesh, kStep, {0, 1, 2, 1, 3, 2, 0, 0, 0}); // the last face is none
    mesh.ComputeNormals(false);
    const float half = std::sqrt(0.5f);
    ExpectNormal(mesh, 0, {0, 0, -1}); // seen along z, the floor turns counter-clockwise
    ExpectNormal(mesh, 1, {half, 0, -half});
    ExpectNormal(mesh, 2, {half, 0, -half});
    ExpectNormal(mesh, 3, {1, 0, 0});
    ExpectNormal(mesh, 4, {7, 7, 7}); // of no face: unchanged
    MakeMesh(&mesh, {{{0, 0, 0}}, {{1, 0, 1}}, {{0, 1, 0}}}, {0, 1, 2});
    mesh.ComputeNormalsZ(false, 0);
    ExpectNormal(mesh, 0, {0, 0, -1});
}

TEST(MeshNormals, OfWhatIsNotTouchedStay) {
    FXMesh mesh;
    MakeMesh(&mesh, kStep, {0, 1, 2, 1, 3, 2});
    mesh.vertices[3].touched = 1;
    mesh.ComputeNormals(true);
    ExpectNormal(mesh, 0, {0, 0, 0}); // the floor was not touched
    ExpectNormal(mesh, 1, {1, 0, 0});
    EXPECT_EQ(mesh.vertices[1].touched, 1);
    mesh.vertices[0].normalSum[0] = 5;
    mesh.indexCount = 2;
    mesh.ComputeNormals(false);
    EXPECT_EQ(mesh.vertices[0].normalSum[0], 5.0f) << "no triangle";
    mesh.Normalize(true);
    ExpectNormal(mesh, 0, {0, 0, 0});
    mesh.Normalize(false);
    ExpectNormal(mesh, 0, {1, 0, 0});
}

TEST(MeshTexCoords, FollowTheMaterialsExtents) {
    const struct {
        float extentU, extentV, loadedU, loadedV;
        bool flip;
        Tex resized, resized1; // from (0.5, 0.25)
    } kCases[] = {{0.5f, 0.25f, 1, 0.5f, false, {0.25f, 0.125f}, {0.25f, 0.0625f}},
                  {0.5f, 0.25f, 1, 0.5f, true, {0.25f, 0.375f}, {0.25f, 0.1875f}},
                  {0.5f, 0.25f, 0, -1, false, {0.25f, 0.0625f}, {0.25f, 0.0625f}},
                  {0, 0.25f, 1, 1, true, {0.5f, 0.25f}, {0.5f, 0.25f}},
                  {0.5f, 0, 1, 1, true, {0.5f, 0.25f}, {0.5f, 0.25f}}};
    for (const auto& c : kCases) {
        FXMaterial material;
        material.extentU = c.extentU;
        material.extentV = c.extentV;
        FXMesh mesh;
        mesh.loadedU = c.loadedU;
        mesh.loadedV = c.loadedV;
        mesh.flipV = c.flip;
        MakeMesh(&mesh, {{{}, {}, {0.5f, 0.25f}}}, {});
        mesh.ResizeTexCoords(); // no material: nothing
        mesh.ResizeTexCoords1();
        mesh.material = &material;
        mesh.ResizeTexCoords();
        EXPECT_EQ(VertexOf(mesh, 0).tex, c.resized) << c.flip << c.extentU;
        MakeMesh(&mesh, {{{}, {}, {0.5f, 0.25f}}}, {});
        mesh.ResizeTexCoords1();
        EXPECT_EQ(VertexOf(mesh, 0).tex, c.resized1) << c.flip << c.extentU;
    }
}

TEST(MeshTexCoords, AreProjectedAndCopied) {
    FXMesh mesh, longer;
    MakeMesh(&mesh, {{{-1, -1, 5}}, {{0, 0.5f, 0}}}, {});
    MakeMesh(&longer, std::vector<TestVertex>(3, {{}, {}, {9, 9}}), {});
    mesh.ComputeFrontTexCoords();
    longer.CopyTexCoords(&mesh);
    EXPECT_EQ(VertexOf(longer, 0).tex, (Tex{0, 1}));
    EXPECT_EQ(VertexOf(longer, 1).tex, (Tex{0.5f, 0.25f}));
    EXPECT_EQ(VertexOf(longer, 2).tex, (Tex{9, 9})) << "beyond the source";
}

TEST(MeshMaps, MoveAndColourVerticesByAPicture) {
    FXCanvas picture; // 2 x 2; the left column is black, the right one (0.2, 0.4, 0.6) over (1, 0, 1)
    ASSERT_TRUE(picture.Realloc(2, 2));
    std::ranges::copy(std::array{0u, 0xFF996633u, 0u, 0x80FF00FFu}, picture.pixels);
    const float half[4] = {0.5f, 1, 0.5f, 1};
    const struct {
        const char* what;
        void (*apply)(FXMesh& mesh, const FXCanvas& picture, const float* rgba);
        bool flipV;
        Vector pos;     // of the vertex whose texture coordinate is (0.75, 0.25)
        int touched[2]; // there, and where the picture is black
        std::array<float, 3> color;
    } kCases[] = {
        {"extend",
         [](FXMesh& m, const FXCanvas&, const float*) { m.ExtendPositions(0.5f); },
         false,
         {0.5f, -0.5f, 1},
         {1, 1},
         {9, 9, 9}},
        {"bump",
         [](FXMesh& m, const FXCanvas& p, const float*) { m.ApplyBumpMap(&p, 5); },
         false,
         {0.5f, -0.5f, 6},
         {1, 0},
         {9, 9, 9}},
        {"bump, flipped",
         [](FXMesh& m, const FXCanvas& p, const float*) { m.ApplyBumpMap(&p, 5); },
         true,
         {0.5f, -0.5f, 10},
         {1, 0},
         {9, 9, 9}},
        {"bump inwards",
         [](FXMesh& m, const FXCanvas& p, const float*) { m.ApplyBumpMap(&p, -5); },
         false,
         {0.5f, -0.5f, 0},
         {0, 0},
         {9, 9, 9}},
        {"colour",
         [](FXMesh& m, const FXCanvas& p, const float* c) { m.ApplyColorMap(&p, c); },
         false,
         {0.5f, -0.5f, 0},
         {7, 7},
         {0.1f, 0.4f, 0.3f}},
        {"colour, flipped",
         [](FXMesh& m, const FXCanvas& p, const float* c) { m.ApplyColorMap(&p, c); },
         true,
         {0.5f, -0.5f, 0},
         {7, 7},
         {0.5f, 0, 0.5f}},
        {"colour from the front", // down to the right
         [](FXMesh& m, const FXCanvas& p, const float* c) { m.ApplyFrontColorMap(&p, c); },
         false,
         {0.5f, -0.5f, 0},
         {7, 7},
         {0.5f, 0, 0.5f}},
    };
    for (const auto& c : kCases) {
        FXMesh mesh;
        MakeMesh(&mesh,
                 {{{0.5f, -0.5f, 0}, {0, 0, 2}, {0.75f, 0.25f}}, {{0.5f, 0.5f, 0}, {}, {0.25f, 0.25f}}}, {});
        for (tagFXVertex& v : std::span(mesh.vertices, 2)) {
            v.touched = 7;
            std::fill_n(v.color, 4, 9.0f);
        }
        mesh.flipV = c.flipV;
        c.apply(mesh, picture, half);
        EXPECT_EQ(VertexOf(mesh, 0).pos, c.pos) << c.what;
        EXPECT_TRUE(mesh.vertices[0].touched == c.touched[0] && mesh.vertices[1].touched == c.touched[1])
            << c.what;
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_FLOAT_EQ(mesh.vertices[0].color[i], c.color[i]) << c.what << " " << i;
    }
}

TEST(MeshFit, BringsABoxInto1) {
    const struct {
        const char* what;
        Vector a, b; // two vertices
        void (FXMesh::*fit)(const float*);
        std::array<float, 6> box;
    } kCases[] = {
        {"in proportion", {0, 0, 0}, {4, 2, 1}, &FXMesh::UnitizeMaxims, {-1, 1, -0.5f, 0.5f, -0.25f, 0.25f}},
        {"a point", {5, 6, 7}, {5, 6, 7}, &FXMesh::UnitizeMaxims, {}},
        {"each axis", {0, 0, 0}, {4, 2, 1}, &FXMesh::UnitizeMaximsStretch, {-1, 1, -1, 1, -1, 1}},
        {"flat in x and z", {5, 0, 3}, {5, 2, 3}, &FXMesh::UnitizeMaximsStretch, {0, 0, -1, 1, 0, 0}},
        {"x and y", {0, 0, 0}, {4, 2, 8}, &FXMesh::UnitizeMaximsStretch1, {-1, 1, -1, 1, -4, 4}},
        {"flat in z", {0, 0, 3}, {4, 2, 3}, &FXMesh::UnitizeMaximsStretch1, {-1, 1, -1, 1, 0, 0}}};
    FXMesh mesh;
    std::array<float, 6> box;
    for (const auto& c : kCases) {
        MakeMesh(&mesh, {{c.a}, {c.b}}, {});
        mesh.FindMaxims(box.data());
        (mesh.*c.fit)(box.data());
        mesh.FindMaxims(box.data());
        EXPECT_EQ(box, c.box) << c.what;
    }
    MakeMesh(&mesh, {{{-1, 0, 0}}, {{3, 2, 1}}}, {});
    const float flat[6] = {1, 1, 0, 2, 0, 1}; // of another mesh
    mesh.UnitizeMaximsStretch(flat);
    mesh.FlipHoriz();
    bool first = false;
    box = {-1, 1, 0, 3, -5, -4};
    mesh.FindMultiMaxims(&first, box.data());
    EXPECT_EQ(box, (std::array<float, 6>{-2, 2, -1, 3, -5, 1})) << "grown";
    mesh.Unitize();
    EXPECT_EQ(VertexOf(mesh, 1).pos, (Vector{-1, 0.5f, 0.5f}));
}

TEST(MeshFit, TurnsAxes) {
    FXMesh mesh;
    MakeMesh(&mesh, {{{1, 2, 3}, {4, 5, 6}}}, {});
    mesh.Transform(2, 0, 1, true, false, true);
    mesh.Transform(0, 3, 1, true, true, true); // no such axis
    mesh.Transform(0, -1, 1, true, true, true);
    EXPECT_EQ(VertexOf(mesh, 0), (TestVertex{{-3, 1, -2}, {-6, 4, -5}}));
    const std::pair<const char*, int> kAxes[] = {{"x", 0},  {"y", 1}, {"zebra", 2},
                                                 {"X", -1}, {"", -1}, {nullptr, -1}};
    for (const auto& [text, axis] : kAxes)
        EXPECT_EQ(FXMesh::TextToIndi(text), axis);
}

} // namespace
