#include "base/file_handle.h"
#include "image/canvas.h"
#include "image/material.h"
#include "unit/recorded_device.h"
#include "unit/test_mesh.h"
#include "unit/test_package.h"

#include <climits>
#include <cmath>
#include <tuple>

namespace {

using Vector = std::array<float, 3>;

TEST(MeshRecord, ThatIsMalformedGivesAMeshWithoutTriangles) {
    const std::tuple<bool, int, int, int, bool> kCases[] = {
        // the header alone, with 6 bytes behind it; vertices, corners, an index; is it good
        {false, 3, 3, 1, true},        {false, -1, 3, 1, false},      {false, INT_MAX, 3, 1, false},
        {false, 2, 3, 1, false},       {false, 4, 3, 1, false},       {false, 3, -1, 1, false},
        {false, 3, INT_MIN, 1, false}, {false, 3, INT_MAX, 1, false}, {false, 3, 4, 1, false},
        {false, 3, 3, -1, false},      {false, 3, 3, 3, false},       {false, 3, 3, INT_MAX, false},
        {true, 3, 6, 0, true},         {true, 3, 7, 0, false},        {true, -1, 6, 0, false},
        {true, 3, -1, 0, false},       {true, INT_MAX, 6, 0, true},   {true, 3, INT_MAX, 0, false}};
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
        EXPECT_LE(mesh.vertexCount, mesh.indexCount) << "a vertex has a corner";
    }
}

TEST(MeshRecord, HeaderKeepsTheExtentsThatWereLoaded) {
    const TempFolder folder;
    for (const auto& [extentU, extentV, u, v] :
         {std::array{1.0f, 0.0f, 1.0f, 0.25f}, {0, 0.75f, 0.5f, 0.75f}}) {
        FXMaterial material;
        material.extentU = extentU;
        material.extentV = extentV;
        FXMesh mesh;
        mesh.material = &material;
        mesh.loadedU = 0.5f;
        mesh.loadedV = 0.25f;
        EXPECT_TRUE(mesh.SaveMeshI(fxOpenFile(folder.File("mesh").c_str(), "wb").get()));
        EXPECT_EQ(folder.Read("mesh"), Header("") + Floats({u, v}) + Ints({0, 0, 0, 0}));
    }
}

TEST(Mesh, IsGivenUpByTheDeviceOnceAndUsableAgain) {
    struct CountingDevice : FXGL {
        void UnprepareMesh(FXMesh*) override { ++unprepared; }
        int unprepared = 0;
    };
    RecordedDevice<CountingDevice> device;
    FXMesh mesh;
    ASSERT_TRUE(mesh.Realloc(10, 12));
    EXPECT_FALSE(mesh.Realloc(-1, 3));
    EXPECT_TRUE(mesh.vertexCount == 0 && mesh.indexCount == 0);
    mesh.Destroy();
    mesh.Destroy();
    EXPECT_EQ(device.gl.unprepared, 1);
    EXPECT_TRUE(mesh.Realloc(3, 3));
}

TEST(MeshNormals, AreTheSumOfTheFacesAroundAVertex) {
    const float half = std::sqrt(0.5f);
    const std::vector<Vector> all = {{0, 0, -1}, {half, 0, -half}, {half, 0, -half}, {1, 0, 0}, {7, 7, 7}};
    const struct {
        const char* what;
        int touched; // this vertex alone counts; -1: all
        float zScale;
        std::vector<Vector> normals;
    } kCases[] = {{"all", -1, 1, all},
                  {"the wall is touched", 3, 1, {{}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}, {7, 7, 7}}},
                  {"flattened", -1, 0, {{0, 0, -1}, {0, 0, -1}, {0, 0, -1}, {}, {7, 7, 7}}}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.what);
        // A step: the floor z = 0 and a smaller wall up at x = 1 meet at vertices 1 and 2; of 4 there is no
        // face.
        FXMesh mesh;
        MakeMesh(&mesh, {{{-2, 0, 0}}, {{1, 0, 0}}, {{1, 1, 0}}, {{1, 0, 1}}, {{9, 9, 9}, {7, 7, 7}}},
                 {0, 1, 2, 1, 3, 2, 0, 0, 0}); // the last triangle has no area
        mesh.vertices[0].normalSum[2] = 5;
        if (c.touched >= 0)
            mesh.vertices[c.touched].touched = 1;
        mesh.ComputeNormalsZ(c.touched >= 0, c.zScale);
        for (int i = 0; i < 5; ++i)
            for (std::size_t axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(mesh.vertices[i].normal[axis], c.normals[i][axis], 1e-6f) << i << " " << axis;
        EXPECT_EQ(mesh.vertices[1].touched, 1);
    }
    FXMesh slope;
    MakeMesh(&slope, {{{0, 0, 0}}, {{1, 0, 1}}, {{0, 1, 1}}, {{3, 3, 3}}}, {0, 1, 2});
    slope.ComputeNormalsZ(false, 0);
    EXPECT_EQ(VertexOf(slope, 0).normal, (Vector{0, 0, -1}));
    slope.vertices[3].normalSum[0] = 5;
    slope.Normalize(true);
    EXPECT_EQ(VertexOf(slope, 3).normal, (Vector{})) << "not touched";
    slope.Normalize(false);
    EXPECT_EQ(VertexOf(slope, 3).normal, (Vector{1, 0, 0}));
}

TEST(MeshMaps, MoveAndColourVerticesByAPicture) {
    FXCanvas picture; // 2 x 2; the left column is black, the right one (0.2, 0.4, 0.6) over (1, 0, 1)
    ASSERT_TRUE(picture.Realloc(2, 2));
    std::ranges::copy(std::array{0u, 0xFF996633u, 0u, 0x80FF00FFu}, picture.pixels);
    const float half[4] = {0.5f, 1, 0.5f, 1};
    for (const bool flipped : {false, true}) {
        FXMesh mesh;
        MakeMesh(&mesh, {{{0.5f, -0.5f, 0}, {0, 0, 2}, {0.75f, 0.25f}}, {{}, {0, 0, 2}, {0.25f, 0.25f}}}, {});
        mesh.flipV = flipped;
        mesh.vertices[1].touched = 1;
        mesh.ApplyBumpMap(&picture, 5);
        EXPECT_EQ(mesh.vertices[0].pos[2], flipped ? 10 : 6);
        EXPECT_TRUE(mesh.vertices[0].touched == 1 && mesh.vertices[1].touched == 0) << "black moves nothing";
        mesh.ApplyBumpMap(&picture, -5);
        mesh.ExtendPositions(0.5f);
        EXPECT_EQ(mesh.vertices[0].pos[2], flipped ? 11 : 7) << "never inwards";
        mesh.ApplyColorMap(&picture, half);
        EXPECT_FLOAT_EQ(mesh.vertices[0].color[0], flipped ? 0.5f : 0.1f);
        mesh.ApplyFrontColorMap(&picture, half); // down to the right
        EXPECT_EQ(mesh.vertices[0].color[0], 0.5f);
    }
}

TEST(Mesh, TurnsAxes) {
    FXMesh mesh;
    MakeMesh(&mesh, {{{1, 2, 3}, {4, 5, 6}}}, {});
    mesh.Transform(2, 0, 1, true, false, true);
    mesh.Transform(0, 3, 1, true, true, true); // no such axis
    mesh.Transform(0, -1, 1, true, true, true);
    EXPECT_EQ(VertexOf(mesh, 0), (TestVertex{{-3, 1, -2}, {-6, 4, -5}}));
}

} // namespace
