// A machine that may have no memory: new and delete of single objects, in place of the library's. For one
// source file of a program or a library, which says what each caller gets. Those for arrays stay the
// library's, or a sanitizer's.
#pragma once

#include <cstdlib>
#include <new>

// Null: it is refused.
void* AnswerToNew(std::size_t size, const void* caller);

// Not inline: the compiler would take new with free for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* block = AnswerToNew(size, __builtin_return_address(0)))
        return block;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return AnswerToNew(size, __builtin_return_address(0));
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
