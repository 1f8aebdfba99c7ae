#include "base/memory.h"

#include <bit>

namespace {

std::size_t allocLimit = 0;

bool localRefused(std::size_t n) {
    return allocLimit != 0 && n > allocLimit;
}

} // namespace

void* fxMalloc(std::size_t n) {
    return localRefused(n) ? nullptr : std::calloc(1, n ? n : 1);
}

void* fxRealloc(void* block, std::size_t n) {
    return localRefused(n) ? nullptr : std::realloc(block, n ? n : 1);
}

FXBytes fxNewBytes(std::size_t n) {
    return FXBytes(static_cast<unsigned char*>(fxRealloc(nullptr, n)));
}

int fxPower2(int n) {
    return n <= 1 ? 1 : static_cast<int>(std::bit_ceil(static_cast<unsigned>(n)));
}

void fxSetAllocLimit(std::size_t largestBlock) {
    allocLimit = largestBlock;
}
