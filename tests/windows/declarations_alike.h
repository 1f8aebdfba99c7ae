// Whether two declarations of one thing would be called, passed and laid out alike.
#pragma once

#include "win32/win32.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace alike {

template <class Ours, class Real> constexpr bool Types();

template <class Pointer> struct Signature {}; // of what is not called as the system calls
template <class Result, class... Parameters> struct Signature<Result(WINAPI*)(Parameters...)> {
    template <class Other, class... Others> static constexpr bool Is(Signature<Other(WINAPI*)(Others...)>) {
        if constexpr (sizeof...(Parameters) != sizeof...(Others))
            return false;
        else
            return Types<Result, Other>() && (Types<Parameters, Others>() && ...);
    }
};

// Of functions, given by their pointers.
template <class Ours, class Real> constexpr bool Functions() {
    return Signature<Ours>::Is(Signature<Real>());
}

template <class Ours, class Real> constexpr bool Pointees() {
    if (std::is_const_v<Ours> != std::is_const_v<Real>)
        return false;
    using A = std::remove_const_t<Ours>;
    using B = std::remove_const_t<Real>;
    if constexpr (std::is_void_v<A> || std::is_void_v<B>)
        return true; // we name no type where the product passes nothing or raw bytes
    else if constexpr (std::is_class_v<A> || std::is_class_v<B>)
        return std::is_class_v<A> == std::is_class_v<B>; // structures are compared by themselves
    else
        return Types<A, B>();
}

template <class Ours, class Real> constexpr bool Types() {
    if constexpr (std::is_void_v<Ours> || std::is_void_v<Real>)
        return std::is_void_v<Ours> == std::is_void_v<Real>;
    else if constexpr (sizeof(Ours) != sizeof(Real) || std::is_pointer_v<Ours> != std::is_pointer_v<Real>)
        return false;
    else if constexpr (std::is_pointer_v<Ours>) {
        if constexpr (std::is_function_v<std::remove_pointer_t<Ours>> &&
                      std::is_function_v<std::remove_pointer_t<Real>>)
            return Functions<Ours, Real>();
        else
            return Pointees<std::remove_pointer_t<Ours>, std::remove_pointer_t<Real>>();
    } else
        return std::is_signed_v<Ours> == std::is_signed_v<Real>;
}

// Of structures' fields, which may be arrays or structures.
template <class Ours, class Real> constexpr bool Fields() {
    if constexpr (std::is_array_v<Ours> && std::is_array_v<Real>)
        return std::extent_v<Ours> == std::extent_v<Real> &&
               Types<std::remove_extent_t<Ours>, std::remove_extent_t<Real>>();
    else
        return Types<Ours, Real>();
}

template <class Ours, class Real> constexpr bool Values(Ours ours, Real real) {
    return static_cast<std::uintptr_t>(ours) == static_cast<std::uintptr_t>(real);
}

[[gnu::error("a handle has another value than the system's")]] void HandlesDiffer();

} // namespace alike

// Handles that are numbers are no constants to the language, but the optimiser knows them: the call stays
// only where they differ, and then it does not compile.
#define ALIKE_HANDLES(Real, Ours)                                                                            \
    void Check##Real() {                                                                                     \
        if (reinterpret_cast<std::uintptr_t>(Ours()) != reinterpret_cast<std::uintptr_t>(Real()))            \
            alike::HandlesDiffer();                                                                          \
    }
