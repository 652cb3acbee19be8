#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> allocations{0};

void* plain(size_t size) {
    ++allocations;
    return std::malloc(size ? size : 1);
}

void* aligned(size_t size, std::align_val_t alignment) {
    ++allocations;
    const size_t step = size_t(alignment);
    return std::aligned_alloc(step, (size + step - 1) / step * step);
}

void* orThrow(void* memory) {
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

} // namespace

size_t zentrak::test::allocationCount() {
    return allocations;
}

// All forms: drivers mix them, and memory from our `new` must not end in another's `delete`.
// clang-format off
void* operator new(size_t size) { return orThrow(plain(size)); }
void* operator new[](size_t size) { return orThrow(plain(size)); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return plain(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return plain(size); }
void* operator new(size_t size, std::align_val_t alignment) { return orThrow(aligned(size, alignment)); }
void* operator new[](size_t size, std::align_val_t alignment) { return orThrow(aligned(size, alignment)); }
void* operator new(size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept { return aligned(size, alignment); }
void* operator new[](size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept { return aligned(size, alignment); }

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept { std::free(memory); }
// clang-format on
