// The linker sends the calls of malloc and its kin from our objects, and from nobody else's, to __wrap_...
// here (failing_machine.cmake names them); __real_... is what was meant. The operators stand in for the
// library's.
#include "unit/failing_heap.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);

void* __wrap_malloc(std::size_t size) {
    return FailingHeap::Refuses() ? nullptr : __real_malloc(size);
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return FailingHeap::Refuses() ? nullptr : __real_calloc(count, size);
}
void* __wrap_realloc(void* block, std::size_t size) {
    return FailingHeap::Refuses() ? nullptr : __real_realloc(block, size);
}
}

namespace {

void* New(std::size_t size, const void* caller) {
    Dl_info module;
    const bool isCodecs = FailingHeap::left >= 0 && dladdr(caller, &module) != 0 &&
                          std::strstr(module.dli_fname, "libIL") != nullptr;
    return !isCodecs && FailingHeap::Refuses() ? nullptr : __real_malloc(size);
}

} // namespace

void* operator new(std::size_t size) {
    if (void* block = New(size, __builtin_return_address(0)))
        return block;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return New(size, __builtin_return_address(0));
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
