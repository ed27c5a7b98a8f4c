// Running out of memory inside a method gives the method's neutral result:
// these run a method's body and turn std::bad_alloc into that result, so the
// exception never leaves through a C entry point. The body must leave its
// object as it was when it throws.
#pragma once

#include <new>
#include <utility>

namespace zel {

template <typename R, typename Body>
R NeutralOnNoMemory(R neutral, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
        return neutral;
    }
}

template <typename Body>
void NeutralOnNoMemory(Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
    }
}

// A new default-made T, or null without memory (a constructor that
// allocates counts too).
template <typename T>
T* NewOrNull() noexcept {
    return NeutralOnNoMemory<T*>(nullptr, [] { return new T(); });
}

}  // namespace zel
