#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> allocations{0};

void* counted(void* memory) {
    ++allocations;
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

} // namespace

size_t zentrak::test::allocationCount() {
    return allocations;
}

// The forms that the others are made of.
void* operator new(size_t size) {
    return counted(std::malloc(size ? size : 1));
}

void* operator new(size_t size, std::align_val_t alignment) {
    const size_t step = size_t(alignment);
    return counted(std::aligned_alloc(step, (size + step - 1) / step * step));
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t, std::align_val_t) noexcept {
    std::free(memory);
}
