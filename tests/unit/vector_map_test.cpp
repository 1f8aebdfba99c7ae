// The packed form of meshes.
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"
#include "unit/test_mesh.h"
#include "unit/test_package.h"

#include <climits>
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

// A mesh of different vertices whose numbers start at `start`: a corner for each of them in order, then
// `tail`.
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
        {"no bytes", "", 2, 0},
        {"half a word", two + "\x20" + zero, 2, 0},
        {"beyond the positions, by one more", two + zero, 9, 0},
        {"beyond the normals", two + std::string("\x05\0\x02", 3), 9, 0},
        {"beyond the texture coordinates", two + std::string("\x15\0\0\x02", 4), 9, 0},
        {"below", two + "\x03" + Ints({-1}), 9, 0},
        {"after the last int", "\x03" + Ints({INT_MAX}) + zero, 9, 0},
        {"more vertices than the header says", three, 1, 0},
        {"nothing asked for", zero, 0, 0}};
    for (const auto& [what, stream, room, vertices] : cases) {
        FXNumPool pool;
        for (const char byte : stream)
            pool.PushByte(static_cast<unsigned char>(byte));
        FXMesh mesh;
        ASSERT_TRUE(mesh.Realloc(room, 3));
        EXPECT_EQ(mesh.FromVMap(&map, &pool), vertices > 0 || room == 0) << what;
        EXPECT_TRUE(mesh.indexCount == (vertices > 0 ? 3 : 0) && mesh.vertexCount == vertices) << what;
    }
}

TEST(VectorMapRecord, KeepsWholeVectorsOfWhatIsThere) {
    const std::string rest = Ints({3}) + Floats({0, 0, 1}) + Ints({2}) + Floats({0.5f, 0.25f});
    const std::pair<std::string, std::array<int, 3>> cases[] = {
        {Ints({7}) + Floats({1, 2, 3, 4, 5, 6, 7}) + rest, {2, 1, 1}},
        {Ints({-1}) + rest, {0, 1, 1}},
        {Ints({INT_MAX}), {0, 0, 0}}};
    FXVectorMap map;
    for (const auto& [record, counts] : cases) {
        Load(&map, record);
        EXPECT_EQ((std::array{map.posCount, map.normCount, map.texCount}), counts) << record.size();
    }
}

} // namespace
