// The linker sends every call of malloc and its kin from our objects, and from nobody else's, to __wrap_...
// here (CMakeLists.txt names them); __real_... is what was meant.
#include "picture/own_heap.h"

#include <malloc.h>

#include <atomic>

namespace {

std::atomic<std::ptrdiff_t> inUse = 0;

void* Taken(void* block) {
    inUse += static_cast<std::ptrdiff_t>(malloc_usable_size(block));
    return block;
}

void* GivenBack(void* block) {
    inUse -= static_cast<std::ptrdiff_t>(malloc_usable_size(block));
    return block;
}

} // namespace

std::ptrdiff_t OwnHeapInUse() {
    return inUse;
}

extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
void* __real__Znwm(std::size_t size);               // operator new
void __real__ZdlPvm(void* block, std::size_t size); // operator delete, with the block's size
void __real__ZdlPv(void* block);                    // and without

void* __wrap_malloc(std::size_t size) {
    return Taken(__real_malloc(size));
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
    return Taken(__real_calloc(count, size));
}

void* __wrap_realloc(void* block, std::size_t size) {
    const std::size_t before = malloc_usable_size(block);
    void* moved = __real_realloc(block, size);
    if (moved != nullptr)
        inUse -= static_cast<std::ptrdiff_t>(before);
    return Taken(moved);
}

void __wrap_free(void* block) {
    __real_free(GivenBack(block));
}

void* __wrap__Znwm(std::size_t size) {
    return Taken(__real__Znwm(size));
}

void __wrap__ZdlPvm(void* block, std::size_t size) {
    __real__ZdlPvm(GivenBack(block), size);
}

void __wrap__ZdlPv(void* block) {
    __real__ZdlPv(GivenBack(block));
}
}
