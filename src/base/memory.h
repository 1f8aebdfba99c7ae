// Heap blocks, and the limit under which tests see them run out.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

// A block of n bytes filled with zero, to be freed with std::free; null when there is no memory for it.
void* fxMalloc(std::size_t n);

// Grows, shrinks or moves a block as std::realloc does; null, with the old block untouched, when that fails.
void* fxRealloc(void* block, std::size_t n);

// A block that frees itself.
struct FXFree {
    void operator()(void* block) const { std::free(block); }
};
using FXBytes = std::unique_ptr<unsigned char, FXFree>;

// n bytes with nothing in them yet; null when there is no memory.
FXBytes fxNewBytes(std::size_t n);

// The smallest power of two that is at least n; 1 for n <= 1. n is at most 2^30.
int fxPower2(int n);

// For tests of a machine without memory: blocks larger than this many bytes fail. 0 lifts the limit.
void fxSetAllocLimit(std::size_t largestBlock);
