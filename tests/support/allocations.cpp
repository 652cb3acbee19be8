#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> allocations{0};
std::atomic<long> inUse{0};
std::atomic<size_t> refusedAt{0};
std::atomic<bool> refusedAfter{false};
std::atomic<bool> refused{false};

void* counted(void* memory) {
    inUse += memory != nullptr;
    return memory;
}

bool isRefused() {
    const size_t number = ++allocations, first = refusedAt;
    if (number != first && !(refusedAfter && number > first))
        return false;
    return refused = true;
}

void* plain(size_t size) {
    return isRefused() ? nullptr : counted(std::malloc(size ? size : 1));
}

void* aligned(size_t size, std::align_val_t alignment) {
    const size_t step = size_t(alignment);
    return isRefused() ? nullptr : counted(std::aligned_alloc(step, (size + step - 1) / step * step));
}

void release(void* memory) {
    inUse -= memory != nullptr;
    std::free(memory);
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

long zentrak::test::allocationsInUse() {
    return inUse;
}

void zentrak::test::refuseAllocation(size_t number, bool andAllAfter) {
    refused = false;
    refusedAfter = number && andAllAfter;
    refusedAt = number ? allocations + number : 0;
}

bool zentrak::test::wasRefused() {
    return refused;
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

void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, size_t) noexcept { release(memory); }
void operator delete[](void* memory, size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, size_t, std::align_val_t) noexcept { release(memory); }
void operator delete[](void* memory, size_t, std::align_val_t) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept { release(memory); }
// clang-format on
