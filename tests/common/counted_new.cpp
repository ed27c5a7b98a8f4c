// The test programs' operator new: every allocation, the standard containers'
// included, passes the library's countdown, so a test can make any one fail.
#include <cstdlib>
#include <new>

#include <zel/memory.h>

namespace {
void* Allocate(std::size_t n, const void* site) {
    if (zel::AllocationFails(site)) return nullptr;
    return std::malloc(n ? n : 1);
}
}  // namespace

void* operator new(std::size_t n) {
    if (void* p = Allocate(n, __builtin_return_address(0))) return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t n) {
    if (void* p = Allocate(n, __builtin_return_address(0))) return p;
    throw std::bad_alloc();
}
void* operator new(std::size_t n, const std::nothrow_t&) noexcept { return Allocate(n, __builtin_return_address(0)); }
void* operator new[](std::size_t n, const std::nothrow_t&) noexcept { return Allocate(n, __builtin_return_address(0)); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }
