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

// Structures are compared by themselves. A pointer to void stands beside any other: we name no type where the
// product passes nothing or raw bytes.
template <class Ours, class Real> constexpr bool Types() {
    using A = std::remove_pointer_t<Ours>;
    using B = std::remove_pointer_t<Real>;
    if constexpr (std::is_pointer_v<Ours> != std::is_pointer_v<Real> ||
                  std::is_void_v<Ours> != std::is_void_v<Real> || std::extent_v<Ours> != std::extent_v<Real>)
        return false;
    else if constexpr (std::is_array_v<Ours>)
        return Types<std::remove_extent_t<Ours>, std::remove_extent_t<Real>>();
    else if constexpr (std::is_function_v<A> && std::is_function_v<B>)
        return Signature<Ours>::Is(Signature<Real>());
    else if constexpr (std::is_pointer_v<Ours>)
        return std::is_const_v<A> == std::is_const_v<B> &&
               (std::is_void_v<A> || std::is_void_v<B> || Types<A, B>());
    else if constexpr (std::is_void_v<Ours>)
        return true;
    else if constexpr (std::is_class_v<Ours> || std::is_class_v<Real>)
        return std::is_class_v<Ours> == std::is_class_v<Real>;
    else
        return sizeof(Ours) == sizeof(Real) && std::is_signed_v<Ours> == std::is_signed_v<Real>;
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
