// The heap of Tamblor's own code, without what the OpenGL driver and other libraries hold. The linker sends
// every call of malloc and its kin from our objects, and from nobody else's, to __wrap_... here
// (CMakeLists.txt names them); __real_... is what was meant. For one source file of a program.
#pragma once

#include <malloc.h>

#include <atomic>
#include <cstddef>

// Blocks in use that code linked into this program statically has taken, and their bytes. A block of the same
// size may be some bytes larger the next time, where what would be left beside it is too small for a block.
inline std::atomic<std::ptrdiff_t> ownBlocksInUse = 0;
inline std::atomic<std::ptrdiff_t> ownHeapInUse = 0;

inline void* Count(void* block, int sign) {
    ownBlocksInUse += block != nullptr ? sign : 0;
    ownHeapInUse += sign * static_cast<std::ptrdiff_t>(malloc_usable_size(block));
    return block;
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
    return Count(__real_malloc(size), 1);
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return Count(__real_calloc(count, size), 1);
}
void* __wrap_realloc(void* block, std::size_t size) { // never for more than there is
    return Count(__real_realloc(Count(block, -1), size), 1);
}
void __wrap_free(void* block) {
    __real_free(Count(block, -1));
}
void* __wrap__Znwm(std::size_t size) {
    return Count(__real__Znwm(size), 1);
}
void __wrap__ZdlPvm(void* block, std::size_t size) {
    __real__ZdlPvm(Count(block, -1), size);
}
void __wrap__ZdlPv(void* block) {
    __real__ZdlPv(Count(block, -1));
}
}
