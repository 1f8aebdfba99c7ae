#include "base/arrays.h"
#include "base/byte_block.h"
#include "base/file_handle.h"
#include "base/rect.h"
#include "base/str_array.h"
#include "unit/temp_folder.h"

#include <functional>

namespace {

std::vector<int> Contents(const FXArray<int>& a) {
    return {a.begin(), a.end()};
}

TEST(Array, GrowsByItsStepAndFillsWithZero) {
    const int cases[][3] = {{1, 3, 3}, {16, 3, 16}, {16, 17, 32}, {0, 2, 2}, {-5, 2, 2}};
    for (const auto& [step, pushes, capacity] : cases) {
        FXArray<int> a(step);
        for (int i = 0; i < pushes; ++i)
            a.Push(i);
        EXPECT_EQ(a.capacity, capacity) << step;
    }
    FXArray<int> a(4);
    for (const int v : {7, 8, 9})
        a.Push(v);
    a.Pop();
    ASSERT_TRUE(a.Realloc(6));
    EXPECT_EQ(std::vector<int>(a.items, a.items + 6), (std::vector<int>{7, 8, 0, 0, 0, 0}));
    a.DestroyBuf();
    for (const int nothing : {a.Pop(), a.First(), a.Last(), a.capacity})
        EXPECT_EQ(nothing, 0);
    for (const auto& [n, power] : {std::pair{-3, 1}, {1, 1}, {1024, 1024}, {1025, 2048}})
        EXPECT_EQ(fxPower2(n), power);
}

TEST(Array, IsEditedInPlaceAndIgnoresPlacesOutside) {
    using A = FXArray<int>;
    const std::pair<std::function<void(A&)>, std::vector<int>> cases[] = {
        {[](A& a) { a.Insert(0, 9), a.Insert(3, 9), a.Insert(5, 8); }, {9, 1, 2, 9, 1, 8}},
        {[](A& a) { a.Insert(-5, 9), a.Insert(7, 8); }, {1, 2, 1, 9, 8}},
        {[](A& a) { a.Remove(1), a.Remove(7); }, {2, 1}},
        {[](A& a) { a.RemovePos(2), a.RemovePos(2), a.RemovePos(-1); }, {1, 2}},
        {[](A& a) { a.MovePos(0, 1); }, {2, 1, 1}},
        {[](A& a) { a.MovePos(2, -1); }, {1, 1, 2}},
        {[](A& a) { a.MovePos(2, 1), a.MovePos(0, -1), a.MovePos(-1, 1), a.MovePos(1, 0); }, {1, 2, 1}},
    };
    for (const auto& [edit, to] : cases) {
        A a;
        for (const int v : {1, 2, 1})
            a.Push(v);
        edit(a);
        EXPECT_EQ(Contents(a), to);
    }
}

TEST(Array, RecordsComeBackAndAWrongCountCostsNoMemory) {
    const TempFolder folder;
    for (const int count : {2, 0, INT_MAX, 3, -1}) {
        FXFile file = fxOpenFile(folder.Write("record", Ints({count, 1, 2})).c_str(), "rb");
        FXArray<int> a;
        a.Push(9);
        EXPECT_EQ(a.Load(file.get()), count == 2 || count == 0);
        EXPECT_EQ(Contents(a), count > 0 ? (std::vector<int>{1, 2}) : std::vector<int>());
        EXPECT_LT(a.capacity, 1000);
        file = fxOpenFile(folder.File("saved").c_str(), "wb");
        EXPECT_TRUE(a.Save(file.get()) && fxCloseWritten(std::move(file)));
        EXPECT_EQ(folder.Read("saved"), count > 0 ? Ints({2, 1, 2}) : Ints({0}));
    }
}

TEST(StrArray, OwnsItsStringsAndIsEditedLikeAnyArray) {
    using A = FXStrArray;
    const std::pair<std::function<void(A&)>, std::vector<std::string>> cases[] = {
        {[](A& a) { a.Remove("b"), a.Remove("x"); }, {"a", "", "b"}},
        {[](A& a) { a.Remove(nullptr), a.MovePos(0, 1); }, {"b", "a", "b"}},
        {[](A& a) { a.MovePos(3, -1), a.MovePos(3, 1), a.MovePos(0, -1); }, {"a", "b", "b", ""}},
        {[](A& a) { a.Pop(), a.PushVoid(); }, {"a", "b", "", ""}}, // nothing of the popped one
        {[](A& a) { a.Insert(1, "c"), a.Change(2, "d"), a.Change(9, "e"); }, {"a", "c", "d", "", "b"}},
    };
    for (const auto& [edit, to] : cases) {
        A a;
        std::string given;
        for (const char* s : {"a", "b", "", "b"})
            a.Push((given = s).c_str());
        EXPECT_EQ(a.items[2], nullptr) << "an empty string";
        EXPECT_EQ(a.Findpos(nullptr), 2);
        EXPECT_EQ(a.Findpos("B"), -1);
        edit(a);
        std::vector<std::string> left;
        for (int i = 0; i < a.count; ++i)
            left.emplace_back(a.Get(i));
        EXPECT_EQ(left, to);
    }
    A empty;
    EXPECT_TRUE(empty.First() == nullptr && empty.Last() == nullptr);
}

TEST(StrArray, RecordsComeBackAndAWrongLengthCostsNoMemory) {
    const TempFolder folder;
    const std::string longer(3000, 'x');
    const std::string record = Ints({3, 2}) + "ab" + Ints({0, 3000}) + longer;
    FXStrArray a;
    FXFile file = fxOpenFile(folder.Write("record", record).c_str(), "rb");
    EXPECT_TRUE(a.Load(file.get()));
    EXPECT_EQ(a.Get(2), longer);
    file = fxOpenFile(folder.File("saved").c_str(), "wb");
    EXPECT_TRUE(a.Save(file.get()) && fxCloseWritten(std::move(file)));
    EXPECT_EQ(folder.Read("saved"), record);
    file = fxOpenFile(folder.Write("cut", Ints({2, 1}) + "a" + Ints({INT_MAX}) + "b").c_str(), "rb");
    EXPECT_FALSE(a.Load(file.get()));
    EXPECT_EQ(a.count, 1);
    EXPECT_EQ(std::fgetc(file.get()), EOF) << "what was there has been read, piece by piece";
}

TEST(Memory, GrowsAndKeepsWhatIsThere) {
    FXMemory memory;
    EXPECT_EQ(memory.GetItemPtr(0), nullptr);
    ASSERT_TRUE(memory.Realloc(2));
    *memory.GetItemPtr(1) = 7;
    ASSERT_TRUE(memory.Realloc(100) && memory.Realloc(5));
    EXPECT_TRUE(memory.GetSize() == 100 && *memory.GetItemPtr(1) == 7 && *memory.GetItemPtr(99) == 0);
    EXPECT_TRUE(memory.GetItemPtr(100) == nullptr && memory.GetItemPtr(-1) == nullptr);
}

TEST(Rect, CombinesWithAnother) {
    const FXRect cases[][4] = {{{0, 0, 4, 4}, {2, 1, 6, 3}, {0, 0, 6, 4}, {2, 1, 4, 3}},
                               {{5, 6, 7, 8}, {1, 2, 3, 4}, {1, 2, 7, 8}, {}},
                               {{0, 0, 4, 4}, {4, 0, 8, 4}, {0, 0, 8, 4}, {}}, // side by side
                               {{0, 0, 4, 4}, {9, 9, 9, 20}, {0, 0, 4, 4}, {}},
                               {{}, {-3, -2, -1, 5}, {-3, -2, -1, 5}, {}}};
    for (const auto& [a, b, around, common] : cases) {
        FXRect either = a, both = a;
        either.CombineOr(b);
        both.CombineAnd(b);
        EXPECT_EQ(std::memcmp(&either, &around, sizeof around), 0) << a.left;
        EXPECT_EQ(std::memcmp(&both, &common, sizeof common), 0) << a.left;
    }
}

} // namespace
