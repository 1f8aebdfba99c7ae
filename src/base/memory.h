// Heap blocks, and the limit that tests set to see them fail.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

// A block of n bytes filled with zero, to be freed with std::free; null when there is no memory for it.
void* fxMalloc(std::size_t n);

// Grows, shrinks or moves a block as std::realloc does; null, with the old block untouched, when that fails.
void* fxRealloc(void* block, std::size_t n);

// Owns what one call gives back, as std::unique_ptr does, whose header would cost every file that includes
// this one 50,000 lines.
template <class T, class Release> class FXOwner {
public:
    FXOwner(T* owned = nullptr) : owned_(owned) {}
    FXOwner(FXOwner&& from) noexcept : owned_(from.release()) {}
    FXOwner& operator=(FXOwner&& from) noexcept {
        T* const taken = from.release();
        if (owned_ != nullptr)
            Release()(owned_);
        owned_ = taken;
        return *this;
    }
    ~FXOwner() {
        if (owned_ != nullptr)
            Release()(owned_);
    }

    T* get() const { return owned_; }
    T* operator->() const { return owned_; }
    explicit operator bool() const { return owned_ != nullptr; }
    T* release() { // the caller owns it now
        T* const owned = owned_;
        owned_ = nullptr;
        return owned;
    }

private:
    T* owned_;
};

// A block that frees itself.
struct FXFree {
    void operator()(void* block) const { std::free(block); }
};
using FXBytes = FXOwner<unsigned char, FXFree>;

// n bytes with nothing in them yet; null when there is no memory.
FXBytes fxNewBytes(std::size_t n);

// The smallest power of two that is at least n; 1 for n <= 1. n is at most 2^30.
int fxPower2(int n);

// A new object; null when there is no memory for it.
template <class T> T* fxNew() {
    return new (std::nothrow) T;
}

// For tests of a machine without memory: blocks larger than this many bytes fail. 0 lifts the limit.
void fxSetAllocLimit(std::size_t largestBlock);
