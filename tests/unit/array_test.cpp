#include "base/arrays.h"
#include "base/byte_block.h"
#include "base/file_handle.h"
#include "base/rect.h"
#include "base/str_array.h"
#include "unit/temp_folder.h"

#include <functional>

namespace {

struct AllocLimit {
    explicit AllocLimit(std::size_t bytes) { fxSetAllocLimit(bytes); }
    ~AllocLimit() { fxSetAllocLimit(0); }
};

TEST(Array, GrowsByItsStep) {
    const int cases[][3] = {{1, 3, 3}, {16, 3, 16}, {16, 17, 32}, {0, 2, 2}, {-5, 2, 2}};
    for (const auto& [step, pushes, capacity] : cases) {
        FXArray<int> a(step);
        for (int i = 0; i < pushes; ++i)
            a.Push(i);
        EXPECT_EQ(a.count, pushes);
        EXPECT_EQ(a.capacity, capacity) << step;
        a.DestroyBuf();
        EXPECT_EQ(a.Pop() + a.First() + a.Last() + a.capacity, 0);
    }
    FXArray<int> shrunk(4);
    for (const int v : {7, 8, 9})
        shrunk.Push(v);
    shrunk.Pop();
    ASSERT_TRUE(shrunk.Realloc(6));
    EXPECT_EQ(std::vector<int>(shrunk.items, shrunk.items + 6), (std::vector<int>{7, 8, 0, 0, 0, 0}))
        << "what is not in use";
    EXPECT_EQ(fxPower2(-3) + fxPower2(1), 2);
    EXPECT_EQ(fxPower2(1024) + fxPower2(1025), 1024 + 2048);
}

TEST(Array, EditsAndIgnoresPlacesOutside) {
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
        EXPECT_EQ(std::vector<int>(a.begin(), a.end()), to);
    }
}

TEST(Array, WithoutMemoryStaysAsItIs) {
    const AllocLimit limit(32);
    FXArray<int> a;
    for (int i = 0; i < 20; ++i)
        a.Push(i);
    a.Insert(0, 7);
    EXPECT_EQ(a.count, 8);
    EXPECT_EQ(a.First() + a.Last(), 7);
    FXStrArray strings;
    strings.Push("kept");
    strings.Push(std::string(100, 'x').c_str());
    strings.Change(0, std::string(100, 'x').c_str());
    EXPECT_EQ(strings.count, 1);
    EXPECT_STREQ(strings.Get(0), "kept");
}

TEST(Array, RecordsComeBackAndACountThatLiesCostsNoMemory) {
    const TempFolder folder;
    const AllocLimit limit(4096);
    for (const int count : {2, 0, INT_MAX, 3, -1}) {
        FXFile file = fxOpenFile(folder.Write("record", Ints({count, 1, 2})).c_str(), "rb");
        FXArray<int> a;
        a.Push(9);
        EXPECT_EQ(a.Load(file.get()), count == 2 || count == 0);
        EXPECT_EQ(std::vector<int>(a.begin(), a.end()),
                  count > 0 ? (std::vector<int>{1, 2}) : std::vector<int>{});
        file = fxOpenFile(folder.File("saved").c_str(), "wb");
        EXPECT_TRUE(a.Save(file.get()) && fxCloseWritten(std::move(file)));
        EXPECT_EQ(folder.Read("saved"), count > 0 ? Ints({2, 1, 2}) : Ints({0}));
    }
}

TEST(StrArray, OwnsItsStrings) {
    FXStrArray a;
    std::string changing = "one";
    a.Push(changing.c_str());
    changing = "two";
    a.Push("");
    a.Insert(1, "half");
    EXPECT_STREQ(a.Get(0), "one");
    EXPECT_EQ(a.items[2], nullptr);
    EXPECT_EQ(a.Findpos("") + a.Findpos(nullptr), 2 + 2);
    EXPECT_EQ(a.Findpos("One"), -1);
    a.Change(2, "four");
    a.Change(3, "five");
    a.RemovePos(1);
    a.Pop();
    EXPECT_EQ(a.count, 1);
    EXPECT_TRUE(a.First() == a.items[0] && a.Last() == a.items[0]);
    a.Pop();
    EXPECT_TRUE(a.First() == nullptr && a.Last() == nullptr);
}

TEST(StrArray, EditsAndIgnoresPlacesOutside) {
    using A = FXStrArray;
    const std::pair<std::function<void(A&)>, std::vector<std::string>> cases[] = {
        {[](A& a) { a.Remove("b"), a.Remove("x"); }, {"a", "", "b"}},
        {[](A& a) { a.Remove(nullptr), a.MovePos(0, 1); }, {"b", "a", "b"}},
        {[](A& a) { a.MovePos(3, -1), a.MovePos(3, 1), a.MovePos(0, -1); }, {"a", "b", "b", ""}},
        {[](A& a) { a.Pop(), a.PushVoid(); }, {"a", "b", "", ""}}, // nothing of the popped one
    };
    for (const auto& [edit, to] : cases) {
        A a;
        for (const char* s : {"a", "b", "", "b"})
            a.Push(s);
        edit(a);
        std::vector<std::string> left;
        for (int i = 0; i < a.count; ++i)
            left.emplace_back(a.Get(i));
        EXPECT_EQ(left, to);
    }
}

TEST(Memory, GrowsAndKeepsWhatIsThere) {
    FXMemory memory;
    EXPECT_EQ(memory.GetItemPtr(0), nullptr);
    ASSERT_TRUE(memory.Realloc(2));
    *memory.GetItemPtr(1) = 7;
    ASSERT_TRUE(memory.Realloc(100) && memory.Realloc(5));
    EXPECT_TRUE(memory.GetSize() == 100 && *memory.GetItemPtr(1) == 7 && *memory.GetItemPtr(99) == 0);
    EXPECT_TRUE(memory.GetItemPtr(100) == nullptr && memory.GetItemPtr(-1) == nullptr);
    const AllocLimit limit(200);
    EXPECT_FALSE(memory.Realloc(201));
    EXPECT_EQ(*memory.GetItemPtr(1), 7);
}

TEST(Rect, CombinesWithAnother) {
    const struct {
        FXRect a, b, around, common;
    } cases[] = {{{0, 0, 4, 4}, {2, 1, 6, 3}, {0, 0, 6, 4}, {2, 1, 4, 3}},
                 {{5, 6, 7, 8}, {1, 2, 3, 4}, {1, 2, 7, 8}, {}},
                 {{0, 0, 4, 4}, {4, 0, 8, 4}, {0, 0, 8, 4}, {}}, // side by side
                 {{0, 0, 4, 4}, {9, 9, 9, 20}, {0, 0, 4, 4}, {}},
                 {{}, {-3, -2, -1, 5}, {-3, -2, -1, 5}, {}}};
    const auto same = [](const FXRect& a, const FXRect& b) {
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    };
    for (const auto& c : cases) {
        FXRect around = c.a, common;
        common.Set(c.a.left, c.a.top, c.a.right, c.a.bottom);
        around.CombineOr(c.b);
        common.CombineAnd(c.b);
        EXPECT_TRUE(same(around, c.around) && same(common, c.common)) << &c - cases;
        EXPECT_EQ(common.IsEmpty(), &c != cases);
    }
}

TEST(StrArray, RecordsComeBackAndALengthThatLiesCostsNoMemory) {
    const TempFolder folder;
    const std::string longer(3000, 'x');
    const std::string record = Ints({3, 2}) + "ab" + Ints({0, 3000}) + longer;
    FXStrArray a;
    FXFile file = fxOpenFile(folder.Write("record", record).c_str(), "rb");
    EXPECT_TRUE(a.Load(file.get()));
    EXPECT_EQ(a.items[1], nullptr);
    EXPECT_EQ(a.Get(2), longer);
    file = fxOpenFile(folder.File("saved").c_str(), "wb");
    EXPECT_TRUE(a.Save(file.get()) && fxCloseWritten(std::move(file)));
    EXPECT_EQ(folder.Read("saved"), record);
    const AllocLimit limit(4096);
    file = fxOpenFile(folder.Write("lie", Ints({2, 1}) + "a" + Ints({INT_MAX}) + "b").c_str(), "rb");
    EXPECT_FALSE(a.Load(file.get()));
    EXPECT_EQ(a.count, 1);
    EXPECT_EQ(std::fgetc(file.get()), EOF) << "what was there has been read, piece by piece";
}

} // namespace
