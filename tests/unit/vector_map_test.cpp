#include "base/memory.h"
#include "geometry/num_pool.h"
#include "geometry/vector_map.h"
#include "unit/test_mesh.h"
#include "unit/test_package.h"

#include <climits>
#include <cmath>
#include <cstring>
#include <numeric>
#include <tuple>

namespace {

std::string BytesOf(const FXNumPool& pool) {
    return {reinterpret_cast<const char*>(pool.buffer), static_cast<std::size_t>(pool.size)};
}

// Vertices 0..n-1, all different in position, normal and texture coordinate.
std::vector<TestVertex> Different(int n) {
    std::vector<TestVertex> vertices;
    for (int i = 0; i < n; ++i) {
        const auto f = static_cast<float>(i);
        vertices.push_back({{f, 1, 2}, {0, f, 1}, {f, f}});
    }
    return vertices;
}

TEST(NumPool, GrowsInStepsAndReadsWhatWasWritten) {
    FXNumPool pool(4);
    pool.PushByte(0xAB);
    EXPECT_EQ(pool.capacity, 4);
    pool.PushWord(0x1234);
    pool.PushInt(0x01020304);
    EXPECT_EQ(pool.capacity, 8);
    EXPECT_EQ(BytesOf(pool), "\xAB\x34\x12\x04\x03\x02\x01");
    unsigned char byte = 0;
    unsigned short word = 0;
    int number = 0;
    pool.Reseek();
    EXPECT_TRUE(pool.GetNextByte(&byte) && pool.GetNextWord(&word));
    EXPECT_TRUE(pool.GetNextByte(&byte) && byte == 4);
    EXPECT_FALSE(pool.GetNextInt(&number)) << "three bytes are left";
    EXPECT_TRUE(pool.GetNextWord(&word) && word == 0x0203);
    EXPECT_FALSE(pool.GetNextWord(&word));
    EXPECT_TRUE(pool.GetNextByte(&byte) && byte == 1 && !pool.GetNextByte(&byte));
    fxSetAllocLimit(8);
    pool.PushWord(5);
    fxSetAllocLimit(0);
    EXPECT_EQ(pool.size, 7) << "no memory";
}

TEST(NumPool, LoadsNoMoreThanTheBytesThereAre) {
    FXNumPool pool;
    const std::pair<std::string, std::string> kCases[] = {
        {Ints({3}) + "abcd", "abc"},    {Ints({5}) + "abcd", ""}, {Ints({-1}) + "abcd", ""},
        {Ints({INT_MAX}) + "abcd", ""}, {Ints({0}), ""},          {"ab", ""},
    };
    for (const auto& [record, bytes] : kCases) {
        FXPackageData data;
        data.InitData(record.data(), static_cast<int>(record.size()));
        pool.LoadC(nullptr, &data);
        EXPECT_EQ(BytesOf(pool), bytes);
    }
}

// Packs a mesh of different vertices whose numbers start at `start`: a corner for each of them in order, then
// `tail`.
std::string Packed(int start, int count, const std::vector<int>& tail) {
    FXVectorMap map;
    const std::string floats =
        Floats(std::vector<float>(static_cast<std::size_t>(start) * 3, -1)); // nobody's
    const std::string record = Ints({3 * start}) + floats + Ints({3 * start}) + floats + Ints({2 * start}) +
                               floats.substr(0, floats.size() / 3 * 2);
    FXPackageData data;
    data.InitData(record.data(), static_cast<int>(record.size()));
    map.LoadC(nullptr, &data); // so many are there before
    std::vector<int> indices(static_cast<std::size_t>(count));
    std::iota(indices.begin(), indices.end(), 0);
    for (const int number : tail)
        indices.push_back(number - start);
    FXMesh mesh, unpacked;
    MakeMesh(&mesh, Different(count), indices);
    FXNumPool pool(64);
    mesh.ToVMap(&map, &pool, nullptr, 0, nullptr);
    unpacked.CopyMeshI(&mesh);
    EXPECT_TRUE(unpacked.FromVMap(&map, &pool));
    EXPECT_EQ(unpacked.vertexCount, count);
    EXPECT_EQ(CornersOf(unpacked), CornersOf(mesh));
    return BytesOf(pool);
}

TEST(Packing, TakesTheShortestOfFourCodes) {
    const auto thrice = [](char flags, const std::string& number) {
        return flags + number + number + number;
    };
    const std::string next(1, '\0'), zero(1, '\0');
    EXPECT_EQ(Packed(0, 301, {17, 300, 255, 256, 300, 0, 1}),
              std::string(301, '\0') + thrice('\x15', "\x11") + thrice('\x2A', "\x2C\x01") +
                  thrice('\x15', "\xFF") + next + thrice('\x2A', "\x2C\x01") + thrice('\x15', zero) + next);
    EXPECT_EQ(Packed(65530, 10, {65535, 65536, 65535, 65537, 65539, 65530}),
              thrice('\x2A', "\xFA\xFF") + std::string(9, '\0') + thrice('\x2A', "\xFF\xFF") + next +
                  thrice('\x2A', "\xFF\xFF") + thrice('\x3F', {"\1\0\1\0", 4}) +
                  thrice('\x3F', {"\3\0\1\0", 4}) + thrice('\x2A', "\xFA\xFF"));
}

TEST(Packing, SharesWhatIsEqualAndMakesOneVertexPerTriple) {
    // Two positions, two normals, two texture coordinates; vertex 4 repeats vertex 0, nobody uses vertex 5.
    const std::vector<TestVertex> vertices = {
        {{0, 0, 0}, {0, 0, 1}, {0, 0}},     {{0, 0, 0}, {0, 1, 0}, {0, 0}},
        {{-0.0f, 0, 0}, {0, 1, 0}, {1, 0}}, {{1e-30f, 0, 0}, {0, 0, 1}, {0, 0}},
        {{0, 0, 0}, {0, 0, 1}, {0, 0}},     {{9, 9, 9}, {9, 9, 9}, {9, 9}}};
    FXMesh mesh;
    MakeMesh(&mesh, vertices, {0, 1, 2, 3, 4, 1});
    const std::vector<TestVertex> corners = CornersOf(mesh);
    FXVectorMap map;
    FXNumPool pool;
    mesh.ToVMap(&map, &pool, nullptr, 0, nullptr);
    EXPECT_EQ(mesh.vertexCount, 5);
    EXPECT_TRUE(map.posCount == 2 && map.normCount == 2 && map.texCount == 2);
    FXMesh unpacked;
    unpacked.CopyMeshI(&mesh);
    std::fill_n(unpacked.vertices, 5, tagFXVertex{{7}, {7}, {7}, {7}, {7}, 7, {7}});
    ASSERT_TRUE(unpacked.FromVMap(&map, &pool));
    EXPECT_EQ(unpacked.vertexCount, 4);
    EXPECT_EQ(CornersOf(unpacked), corners);
    EXPECT_EQ(std::vector<int>(unpacked.indices, unpacked.indices + 6), (std::vector<int>{0, 1, 2, 3, 0, 1}));
    EXPECT_EQ(unpacked.vertices[3].normalSum[0], 0.0f);
    EXPECT_EQ(unpacked.vertices[3].touched, 0);
}

TEST(Packing, ManyVerticesOnOnePositionStayApart) {
    std::vector<TestVertex> vertices;
    for (int i = 0; i < 2000; ++i) // every tenth stands alone
        vertices.push_back({{i % 10 == 0 ? static_cast<float>(i) : -1.0f, 0, 0},
                            {0, static_cast<float>(i % 37), 0},
                            {static_cast<float>(i / 37), 0}});
    std::vector<int> indices;
    for (int i = 0; i < 6000; ++i)
        indices.push_back(i * 7 % 2000);
    FXMesh mesh, unpacked;
    MakeMesh(&mesh, vertices, indices);
    FXVectorMap map;
    FXNumPool pool(4096);
    mesh.ToVMap(&map, &pool, nullptr, 0, nullptr);
    EXPECT_EQ(map.posCount, 201);
    unpacked.CopyMeshI(&mesh);
    for (int again = 0; again < 2; ++again) { // the map serves mesh after mesh
        unpacked.Realloc(2000, 6000);
        ASSERT_TRUE(unpacked.FromVMap(&map, &pool));
        EXPECT_EQ(unpacked.vertexCount, 2000);
        EXPECT_TRUE(CornersOf(unpacked) == CornersOf(mesh));
    }
}

// Writes down what it is asked, and consents to vertices of one mesh only.
struct OneMesh : PMeshSaveClb {
    bool TestRedirect(int meshA, int vertexA, int meshB, int vertexB) override {
        asked.push_back({meshA, vertexA, meshB, vertexB});
        return meshB == consenting;
    }
    int consenting = 0;
    std::vector<std::array<int, 4>> asked;
};

TEST(Packing, SharesOnlyWithConsent) {
    tagFXVertex v = {};
    OneMesh clb;
    FXVectorMap map;
    EXPECT_EQ(map.PushVecPos(&v, &clb, 1, 10), 0);
    EXPECT_TRUE(clb.asked.empty()) << "nothing to share with";
    clb.consenting = 9;
    EXPECT_EQ(map.PushVecPos(&v, &clb, 2, 20), 1);
    EXPECT_EQ(map.PushVecPos(&v, &clb, 2, 21), 2);
    EXPECT_EQ(clb.asked, (std::vector<std::array<int, 4>>{{2, 20, 1, 10}, {2, 21, 1, 10}, {2, 21, 2, 20}}));
    clb.consenting = 2;
    EXPECT_EQ(map.FindVecPos(3, 30, &v, &clb), 1) << "the lowest that may be shared";
    EXPECT_EQ(map.PushVecPos(&v, nullptr, 3, 30), 0) << "nobody to ask";
    v.pos[2] = 1;
    clb.asked.clear();
    EXPECT_EQ(map.FindVecPos(3, 30, &v, &clb), -1);
    EXPECT_TRUE(clb.asked.empty()) << "not equal";
    EXPECT_EQ(map.FindVecNorm(1, 1, &v, nullptr), -1);
    EXPECT_EQ(map.FindVecTex(1, 1, &v, nullptr), -1);
    v.pos[0] = std::nanf("");
    EXPECT_EQ(map.PushVecPos(&v, nullptr, 4, 1), 3);
    EXPECT_EQ(map.PushVecPos(&v, nullptr, 4, 1), 4) << "equals nothing, not even itself";
    EXPECT_EQ(map.posCount, 5);
}

TEST(Packing, FindsWhatWasLoadedAndWhatWasSet) {
    const std::string record = Ints({7}) + Floats({1, 2, 3, 4, 5, 6, 7}) + Ints({6}) +
                               Floats({1, 2, 3, 4, 5, 6}) + Ints({4}) + Floats({1, 2, 4, 5});
    FXPackageData data;
    data.InitData(record.data(), static_cast<int>(record.size()));
    FXVectorMap map;
    map.LoadC(nullptr, &data);
    using Find = int (FXVectorMap::*)(int, int, const tagFXVertex*, PMeshSaveClb*);
    using Push = int (FXVectorMap::*)(const tagFXVertex*, PMeshSaveClb*, int, int);
    using Set = void (FXVectorMap::*)(const tagFXVertex*, int);
    const std::tuple<Find, Push, Set> kKinds[] = {
        {&FXVectorMap::FindVecPos, &FXVectorMap::PushVecPos, &FXVectorMap::SetVecPos},
        {&FXVectorMap::FindVecNorm, &FXVectorMap::PushVecNorm, &FXVectorMap::SetVecNorm},
        {&FXVectorMap::FindVecTex, &FXVectorMap::PushVecTex, &FXVectorMap::SetVecTex}};
    const auto vertex = [](float x, float y, float z) {
        return tagFXVertex{{x, y, z}, {x, y, z}, {x, y}, {}, {}, 0, {}};
    };
    const tagFXVertex first = vertex(1, 2, 3), second = vertex(4, 5, 6), other = vertex(9, 9, 9);
    for (const auto& [find, push, set] : kKinds) {
        OneMesh clb;
        clb.consenting = -1; // what a loaded vector was taken from is not known
        EXPECT_EQ((map.*find)(0, 0, &second, &clb), 1);
        clb.asked.clear();
        EXPECT_EQ((map.*push)(&other, nullptr, 7, 70), 2);
        (map.*set)(&first, 1);
        EXPECT_EQ((map.*find)(0, 0, &second, nullptr), -1) << "under its new value alone";
        clb.consenting = 7;
        EXPECT_EQ((map.*find)(3, 30, &first, &clb), -1);
        EXPECT_EQ((map.*find)(3, 30, &other, &clb), 2);
        EXPECT_EQ(clb.asked,
                  (std::vector<std::array<int, 4>>{{3, 30, -1, -1}, {3, 30, -1, -1}, {3, 30, 7, 70}}));
        (map.*set)(&other, 0);
        EXPECT_EQ((map.*push)(&other, nullptr, 8, 80), 0) << "the lowest, set after it was searched";
    }
}

TEST(Packing, LaterFramesRewriteTheMap) {
    FXMesh frame1, frame2, unpacked;
    MakeMesh(&frame1, Different(4), {0, 1, 2, 2, 1, 3});
    std::vector<TestVertex> moved = Different(4);
    for (TestVertex& v : moved)
        v = {{v.pos[0] * 2, 7, 7}, {1, 0, v.normal[1]}, {v.tex[0] / 2, 5}};
    MakeMesh(&frame2, moved, {0, 1, 2, 2, 1, 3});
    FXVectorMap map;
    FXNumPool pool;
    FXArray<int> p, n, t;
    FXArray<int>* const redirect[3] = {&p, &n, &t};
    frame1.ToVMap(&map, &pool, nullptr, 0, redirect);
    EXPECT_EQ(p.count, 6);
    frame2.ApplyRedir(&map, redirect);
    unpacked.CopyMeshI(&frame1);
    ASSERT_TRUE(unpacked.FromVMap(&map, &pool));
    EXPECT_EQ(CornersOf(unpacked), CornersOf(frame2));
}

TEST(Unpacking, OfWhatDoesNotAddUpGivesAnEmptyMesh) {
    // Two of each vector; three corners.
    FXVectorMap map;
    for (const TestVertex& v : Different(2)) {
        FXMesh mesh;
        MakeMesh(&mesh, {v}, {});
        map.PushVecPos(&mesh.vertices[0], nullptr, 0, 0);
        map.PushVecNorm(&mesh.vertices[0], nullptr, 0, 0);
        map.PushVecTex(&mesh.vertices[0], nullptr, 0, 0);
    }
    const std::string zero(1, '\0'), first = zero, second = zero, backToFirst = {"\x15\0\0\0", 4};
    const struct {
        const char* what;
        std::string stream;
        int room, corners, vertices;
    } cases[] = {{"good", first + second + backToFirst, 2, 3, 2},
                 {"good, more room and bytes", first + second + backToFirst + "rest", 9, 3, 2},
                 {"no bytes", "", 2, 0, 0},
                 {"one corner short", first + second, 2, 0, 0},
                 {"half a corner", first + second + "\x15" + zero, 2, 0, 0},
                 {"half a word", first + second + "\x20" + zero, 2, 0, 0},
                 {"half an int", first + second + "\x03" + zero + zero + zero, 2, 0, 0},
                 {"beyond the positions, by one more", first + second + zero, 9, 0, 0},
                 {"beyond the positions", first + second + "\x01\x02", 9, 0, 0},
                 {"beyond the normals", first + second + std::string("\x05\0\x02", 3), 9, 0, 0},
                 {"beyond the texture coordinates", first + second + std::string("\x15\0\0\x02", 4), 9, 0, 0},
                 {"below", first + second + "\x03" + Ints({-1}), 9, 0, 0},
                 {"far below", "\x03" + Ints({INT_MIN}), 9, 0, 0},
                 {"after the last int", "\x03" + Ints({INT_MAX}) + zero, 9, 0, 0},
                 {"more vertices than the header says", first + second + backToFirst, 1, 0, 0},
                 {"a third triple", first + second + std::string("\x15\0\1\0", 4), 2, 0, 0},
                 {"nothing asked for", first, 0, 0, 0}};
    for (const auto& c : cases) {
        FXNumPool pool;
        for (const char byte : c.stream)
            pool.PushByte(static_cast<unsigned char>(byte));
        FXMesh mesh;
        ASSERT_TRUE(mesh.Realloc(c.room, 3));
        EXPECT_EQ(mesh.FromVMap(&map, &pool), c.corners > 0 || c.room == 0) << c.what;
        EXPECT_EQ(mesh.indexCount, c.corners) << c.what;
        EXPECT_EQ(mesh.vertexCount, c.vertices) << c.what;
    }
}

TEST(VectorMap, IsMangledAndComesBackBitForBit) {
    using Map = FXVectorMap;
    const struct {
        void (Map::*mangle)(bool);
        FXFloatArray Map::*kind;
        int Map::*count;
        int width;
        std::vector<std::uint32_t> from, to; // as bits
    } kCases[] = {
        // Less the next vector: 7 7 7, 9 12 15, 1 2 3; then less the next number.
        {&Map::ManglePos,
         &Map::positions,
         &Map::posCount,
         3,
         {17, 21, 25, 10, 14, 18, 1, 2, 3},
         {0, 0, ~1u, ~2u, ~2u, 14, ~0u, ~0u, 3}},
        // Not numbers, of both kinds, infinite and -0.
        {&Map::MangleNorm,
         &Map::normals,
         &Map::normCount,
         3,
         {0x7FA00001, 0, 0x80000000, 0x7F800000, ~0u, 1},
         {0x00200000, 0x80000002, 0x007FFFFF, 0x7F800001, ~1u, 1}},
        {&Map::MangleTex, &Map::texCoords, &Map::texCount, 2, {5, 3, 2, 1}, {1, 0, 1, 1}},
        {&Map::MangleTex, &Map::texCoords, &Map::texCount, 2, {}, {}},
    };
    for (const auto& c : kCases) {
        Map map;
        FXFloatArray& values = map.*c.kind;
        ASSERT_TRUE(values.Realloc(9));
        values.count = static_cast<int>(c.from.size());
        map.*c.count = values.count / c.width;
        for (std::size_t i = 0; i < c.from.size(); ++i)
            std::memcpy(&values.items[i], &c.from[i], sizeof c.from[i]);
        for (const auto& [forward, expected] : {std::pair{true, &c.to}, {false, &c.from}}) {
            (map.*c.mangle)(forward);
            std::vector<std::uint32_t> bits(c.from.size());
            for (std::size_t i = 0; i < bits.size(); ++i)
                std::memcpy(&bits[i], &values.items[i], sizeof bits[i]);
            EXPECT_EQ(bits, *expected) << &c - kCases << " " << forward;
        }
    }
}

TEST(VectorMapRecord, KeepsWholeVectorsOfWhatIsThere) {
    const std::vector<float> seven = {1, 2, 3, 4, 5, 6, 7};
    const std::string normals = Ints({3}) + Floats({0, 0, 1}), tex = Ints({2}) + Floats({0.5f, 0.25f});
    const struct {
        std::string record;
        int counts[3];
    } cases[] = {{Ints({7}) + Floats(seven) + normals + tex, {2, 1, 1}},
                 {Ints({0}) + normals + tex, {0, 1, 1}},
                 {Ints({-1}) + normals + tex, {0, 1, 1}},
                 {Ints({INT_MAX}), {0, 0, 0}},
                 {Ints({3}) + Floats({1, 2}), {0, 0, 0}},
                 {Ints({6}) + Floats(seven).substr(0, 24) + normals, {2, 1, 0}}};
    fxSetAllocLimit(4096);
    FXVectorMap map;
    for (const auto& c : cases) {
        FXPackageData data;
        data.InitData(c.record.data(), static_cast<int>(c.record.size()));
        map.LoadC(nullptr, &data);
        EXPECT_TRUE(map.posCount == c.counts[0] && map.normCount == c.counts[1] &&
                    map.texCount == c.counts[2])
            << c.record.size();
    }
    fxSetAllocLimit(0);
}

} // namespace
