// Every loader on a machine without memory: what it could not load is missing, what it loaded is sound.
#include "base/path_text.h"
#include "image/canvas.h"
#include "image/codec.h"
#include "render/matrix.h"
#include "scene/phaser.h"
#include "unit/failing_heap.h"
#include "unit/scene_parts.h"

namespace {

std::vector<int> Values(const FXArray<int>& a) {
    return {a.begin(), a.end()};
}

class FailingMachine : public testing::Test {
protected:
    TempFolder folder_;
    FXPackage package_;
};

TEST_F(FailingMachine, LoadsAPackageOrIsEmptyAndSaysWhy) {
    const std::string body =
        Table({3, 5, 4}) + Table({0, 2, 2}) + Table({2, 0, 3}) + Table({-1, 0, 7}) + "abcde";
    const std::string file = folder_.Write("p", Header("pck01") + body);
    bool loaded = false;
    FailEachAllocation(
        [&] { loaded = package_.Load(file.c_str()); },
        [&](bool whole) {
            EXPECT_TRUE(!whole || loaded);
            EXPECT_EQ(package_.problem.IsEmpty(), whole);
            EXPECT_EQ(package_.dataSize, loaded ? 5 : 0);
            EXPECT_EQ(Values(package_.ids), loaded ? (std::vector{3, 5, 4}) : std::vector<int>());
            for (const FXArray<int>* table : {&package_.offsets, &package_.sizes, &package_.types})
                EXPECT_EQ(table->count, package_.ids.count);
            EXPECT_LE(package_.cursors.count, package_.ids.count);
            for (const auto& [id, bytes] : {std::pair{3, "ab"}, {5, ""}, {4, "cde"}}) {
                const std::string entry = Entry(package_, id);
                EXPECT_TRUE(entry == bytes || (!whole && entry == "none")) << id << entry;
            }
        });
}

TEST_F(FailingMachine, SavesAPackageWholeOrLeavesTheOldOne) {
    const std::string part = folder_.Write("part", "bytes"), file = folder_.File("p");
    const std::string whole =
        Header("pck01") + Table({1, 2}) + Table({0, 5}) + Table({5, 5}) + Table({-1, -1}) + "bytesbytes";
    int queued = 0;
    bool saved = false;
    FailEachAllocation(
        [&] {
            package_.Destroy();
            queued = 0;
            for (const int id : {1, 2})
                queued += package_.AddDataFile(id, part.c_str());
            saved = package_.Save(file.c_str(), 0);
        },
        [&](bool nothingFailed) {
            EXPECT_TRUE(!nothingFailed || (saved && queued == 2));
            EXPECT_TRUE(!saved || queued < 2 || folder_.Read("p") == whole);
            EXPECT_EQ(package_.ids.count, saved ? queued : 0);
            EXPECT_EQ(package_.pendingFiles.count, saved ? 0 : queued);
            EXPECT_EQ(package_.pendingIds.count, package_.pendingFiles.count);
            EXPECT_FALSE(std::filesystem::exists(folder_.File("p.new")));
            std::filesystem::remove(file);
        });
}

TEST_F(FailingMachine, ReadsListsAsFarAsTheyGo) {
    const std::string bytes = Ints({3, 7, 8, 9}),
                      strings = Ints({3}) + Header("a") + Header("") + Header("bc");
    const FXFile file = fxOpenFile(folder_.Write("list", bytes).c_str(), "rb");
    const FXFile stringFile = fxOpenFile(folder_.Write("strings", strings).c_str(), "rb");
    FXArray<int> ints, fromFile;
    FXFloatArray floats;
    FXStrArray texts, textsFromFile;
    FailEachAllocation(
        [&] {
            ints.DestroyBuf(), floats.DestroyBuf(), fromFile.DestroyBuf();
            texts.DestroyBuf(), textsFromFile.DestroyBuf();
            FXPackageData d;
            d.InitData(bytes.data(), static_cast<int>(bytes.size()));
            d.ReadArray(&ints);
            d.Reseek();
            d.ReadFloatArray(&floats);
            d.InitData(strings.data(), static_cast<int>(strings.size()));
            d.ReadStringArray(&texts);
            std::rewind(file.get());
            fromFile.Load(file.get());
            std::rewind(stringFile.get());
            textsFromFile.Load(stringFile.get());
        },
        [&](bool whole) {
            for (const FXArray<int>* list : {&ints, &fromFile})
                EXPECT_TRUE(Values(*list) == (std::vector{7, 8, 9}) || (!whole && list->IsEmpty()));
            EXPECT_TRUE(floats.count == 3 || (!whole && floats.IsEmpty()));
            for (const FXStrArray* list : {&texts, &textsFromFile}) {
                EXPECT_TRUE(list->count == 3 || !whole);
                const char* const expected[] = {"a", "", "bc"};
                for (int i = 0; i < list->count; ++i)
                    EXPECT_STREQ(list->Get(i), expected[i]);
            }
        });
}

TEST_F(FailingMachine, NeedsNoMemoryForAMatrixOrAPhaser) {
    const std::string bytes = Floats(std::vector<float>(16, 2));
    const FailingHeap heap(0, true);
    FXPackageData d;
    d.InitData(bytes.data(), 64);
    FXMatrix matrix;
    matrix.LoadC(nullptr, &d);
    d.Reseek();
    FXPhaser phaser;
    phaser.LoadC(nullptr, &d);
    EXPECT_FALSE(heap.HasFailed());
    EXPECT_TRUE(matrix.m[15] == 2 && phaser.phase == 2);
}

TEST_F(FailingMachine, MakesAPathOrNone) {
    const struct {
        const char* (*make)();
        const char *made, *none;
    } kPaths[] = {{[] { return fxCombinePaths("/a", "../b"); }, "/b", ""},
                  {[] { return fxBuildRelativePath("/a/b", false, "/a/c", true); }, "../c", "/a/c"},
                  {[] { return fxChangeExt("a.b", "c"); }, "a.c", ""},
                  {[] { return fxAppenfFname("a.b", "_1"); }, "a_1.b", ""}};
    for (const auto& path : kPaths) {
        const char* result = nullptr;
        FailEachAllocation([&] { result = path.make(); },
                           [&](bool whole) { EXPECT_STREQ(result, whole ? path.made : path.none); });
    }
}

TEST_F(FailingMachine, LoadsAPictureOrLeavesTheCanvas) {
    fxLoadDevil();
    LoadTestPackage(package_, folder_, {{7, kTga, Tga(3, 2, std::vector<std::uint32_t>(6, 0x40302010u))}});
    for (const bool mask : {false, true}) {
        FXCanvas canvas, copy;
        bool loaded = false, copied = false;
        FailEachAllocation(
            [&] {
                canvas.Destroy();
                copy.Destroy();
                loaded = canvas.CreateFromPictCN(&package_, 7);
                if (mask)
                    loaded = canvas.LoadMaskCN(&package_, 7);
                copied = copy.Copy(&canvas);
            },
            [&](bool whole) {
                EXPECT_TRUE(!whole || (loaded && copied));
                for (const FXCanvas* c : {&canvas, &copy}) {
                    EXPECT_LE(c->width * c->height, c->capacity);
                    EXPECT_EQ(c->pixels == nullptr, c->capacity == 0);
                    EXPECT_TRUE(c->usedWidth <= c->width && c->usedHeight <= c->height);
                }
                const std::uint32_t first = mask ? 0x10302010u : 0x40302010u;
                EXPECT_TRUE(!loaded || (canvas.usedWidth == 3 && canvas.pixels[0] == first));
                EXPECT_TRUE(!loaded || !copied || copy.pixels[0] == first);
            });
    }
    fxUnloadDevil();
}

} // namespace
