// The linker sends the calls of malloc and its kin from our objects, and from nobody else's, to __wrap_...
// here (failing_machine.cmake names them); __real_... is what was meant. The operators stand in for the
// library's.
#include "unit/failing_heap.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

namespace {

thread_local int left = -1; // allocations until one fails; -1: none will
thread_local bool goesOn = false;
thread_local bool failed = false;

bool Refused() {
    if (left < 0 || left-- > 0)
        return false;
    failed = true;
    if (goesOn)
        left = 0;
    return true;
}

bool IsCodec(const void* caller) {
    Dl_info module;
    return dladdr(caller, &module) != 0 && std::strstr(module.dli_fname, "libIL") != nullptr;
}

} // namespace

extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);

void* __wrap_malloc(std::size_t size) {
    return Refused() ? nullptr : __real_malloc(size);
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return Refused() ? nullptr : __real_calloc(count, size);
}
void* __wrap_realloc(void* block, std::size_t size) {
    return Refused() ? nullptr : __real_realloc(block, size);
}
}

namespace {

void* New(std::size_t size, const void* caller) {
    return left >= 0 && !IsCodec(caller) && Refused() ? nullptr : __real_malloc(size);
}
void* NewOrThrow(std::size_t size, const void* caller) {
    if (void* block = New(size, caller))
        return block;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size) {
    return NewOrThrow(size, __builtin_return_address(0));
}
void* operator new[](std::size_t size) {
    return NewOrThrow(size, __builtin_return_address(0));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return New(size, __builtin_return_address(0));
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return New(size, __builtin_return_address(0));
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}

FailingHeap::FailingHeap(int n, bool alsoAllLater) {
    failed = false;
    goesOn = alsoAllLater;
    left = n;
}

FailingHeap::~FailingHeap() {
    left = -1;
}

bool FailingHeap::HasFailed() const {
    return failed;
}

FailingHeap::Pause::Pause() : left_(left) {
    left = -1;
}

FailingHeap::Pause::~Pause() {
    left = left_;
}
