#include "base/file_handle.h"
#include "image/material.h"
#include "unit/recorded_device.h"
#include "unit/test_mesh.h"
#include "unit/test_package.h"

#include <climits>
#include <cmath>
#include <tuple>

namespace {

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
    const std::tuple<const char*, int, float, std::vector<std::array<float, 3>>> kCases[] = {
        // the vertex that alone counts, or -1; the scale of z
        {"all", -1, 1, {{0, 0, -1}, {half, 0, -half}, {half, 0, -half}, {1, 0, 0}, {7, 7, 7}}},
        {"the wall is touched", 3, 1, {{}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}, {7, 7, 7}}},
        {"flattened", -1, 0, {{0, 0, -1}, {0, 0, -1}, {0, 0, -1}, {}, {7, 7, 7}}}};
    for (const auto& [what, touched, zScale, normals] : kCases) {
        // The floor z = 0 and a smaller wall up at x = 1 meet at vertices 1 and 2; vertex 4 has no face.
        FXMesh mesh;
        MakeMesh(&mesh, {{{-2, 0, 0}}, {{1, 0, 0}}, {{1, 1, 0}}, {{1, 0, 1}}, {{9, 9, 9}, {7, 7, 7}}},
                 {0, 1, 2, 3, 2, 1, 0, 0, 0}); // the last triangle has no area
        mesh.vertices[0].normalSum[2] = 5;
        if (touched >= 0)
            mesh.vertices[touched].touched = 1;
        mesh.ComputeNormalsZ(touched >= 0, zScale);
        for (int i = 0; i < 5; ++i)
            for (std::size_t axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(mesh.vertices[i].normal[axis], normals[i][axis], 1e-6f) << what << i << axis;
        EXPECT_EQ(mesh.vertices[1].touched, 1);
    }
}

} // namespace
