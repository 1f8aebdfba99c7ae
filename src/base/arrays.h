// The growable list of the system: ints, floats or pointers in one block that grows by a fixed step.
#pragma once

#include "base/file_handle.h"
#include "base/memory.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>

// Owns its block, never what a pointer element points to. Lists here are short; owners that know the size
// call Realloc first. When there is no memory for growth, the array stays as it is and a push adds nothing.
template <class T> class FXArray {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved as bytes");
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T may well be a pointer
    static constexpr std::size_t kElement = sizeof(T);

public:
    FXArray() = default;
    explicit FXArray(int step) : growBy(step) {}
    ~FXArray() { DestroyBuf(); }
    FXArray(const FXArray&) = delete;
    FXArray& operator=(const FXArray&) = delete;

    // Room for n elements at least. When the block grows, what is in use stays and the rest is zero. False
    // when there is no memory.
    bool Realloc(int n) {
        if (capacity >= n)
            return true;
        if (static_cast<std::size_t>(n) > SIZE_MAX / kElement)
            return false; // a size beyond what 32 bits address
        T* block = static_cast<T*>(fxRealloc(items, static_cast<std::size_t>(n) * kElement));
        if (block == nullptr)
            return false;
        for (int i = count < capacity ? count : capacity; i < n; ++i)
            block[i] = T{};
        items = block;
        capacity = n;
        return true;
    }

    bool Push(T value) { // false: there is no memory for it
        if (!Grow(growBy))
            return false;
        items[count++] = value;
        return true;
    }
    bool Append(const FXArray& other) { // all of it, or, where there is no memory, nothing
        if (other.count > INT_MAX - count || !Realloc(count + other.count))
            return false;
        if (other.count > 0)
            std::memcpy(items + count, other.items, static_cast<std::size_t>(other.count) * kElement);
        count += other.count;
        return true;
    }
    void PushInt(int value) requires std::is_integral_v<T> { Push(value); }
    // One element more, its value left as it is.
    void PushVoid() {
        if (Grow(growBy))
            ++count;
    }
    // The last element, removed; zero when there is none.
    T Pop() { return count > 0 ? items[--count] : T{}; }

    // Before element i; any other i than 0..count appends.
    void Insert(int i, T value) {
        if (i < 0 || i > count) {
            Push(value);
        } else if (Grow(1)) {
            std::memmove(items + i + 1, items + i, static_cast<std::size_t>(count - i) * kElement);
            items[i] = value;
            ++count;
        }
    }

    T First() const { return count > 0 ? items[0] : T{}; }
    T Last() const { return count > 0 ? items[count - 1] : T{}; }
    int Findpos(T value) const {
        for (int i = 0; i < count; ++i)
            if (items[i] == value)
                return i;
        return -1;
    }

    // Swaps element i with the next (dir > 0) or the previous one (dir < 0); nothing when there is none.
    void MovePos(int i, int dir) {
        const int other = dir > 0 ? i + 1 : i - 1;
        if (dir == 0 || i < 0 || i >= count || other < 0 || other >= count)
            return;
        const T moved = items[i];
        items[i] = items[other];
        items[other] = moved;
    }

    // The first element equal to the value; nothing when absent.
    void Remove(T value) { RemovePos(Findpos(value)); }
    void RemovePos(int i) {
        if (i < 0 || i >= count)
            return;
        --count;
        std::memmove(items + i, items + i + 1, static_cast<std::size_t>(count - i) * kElement);
    }
    void RemoveAll() { count = 0; } // the block stays
    bool IsEmpty() const { return count == 0; }
    void DestroyBuf() {
        std::free(items);
        items = nullptr;
        count = capacity = 0;
    }

    // File record: int32 count, then the elements, 32 bits each.
    bool Save(std::FILE* file) const requires(kElement == 4 && std::is_arithmetic_v<T>) {
        const std::int32_t n = count;
        return fxWrite(&n, sizeof n, 1, file) && fxWrite(items, kElement, static_cast<std::size_t>(n), file);
    }
    // Replaces the contents. A count beyond the end of the file gives the elements that are there, and false.
    bool Load(std::FILE* file) requires(kElement == 4 && std::is_arithmetic_v<T>) {
        RemoveAll();
        std::int32_t n = 0;
        if (std::fread(&n, sizeof n, 1, file) != 1)
            return false;
        for (T value; count < n && std::fread(&value, sizeof value, 1, file) == 1;) {
            // Room doubles as elements arrive, so that a malformed count takes no memory.
            const std::int64_t more = 2LL * count + 64;
            if (count == capacity && !Realloc(more < n ? static_cast<int>(more) : n))
                return false;
            items[count++] = value;
        }
        return n >= 0 && count == n;
    }

    T& operator[](int i) { return items[i]; }
    const T& operator[](int i) const { return items[i]; }
    T* begin() { return items; }
    T* end() { return items + count; }
    const T* begin() const { return items; }
    const T* end() const { return items + count; }

    T* items = nullptr;
    int count = 0;
    int capacity = 0;
    int growBy = 1;

private:
    // A step below 1 counts as 1, so that a push always finds room or is dropped.
    bool Grow(int step) {
        const int added = step > 1 ? step : 1;
        return count < capacity || (capacity <= INT_MAX - added && Realloc(capacity + added));
    }
};

using FXFloatArray = FXArray<float>;
