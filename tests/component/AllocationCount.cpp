// Counts every allocation of the test program.
#include <cstdlib>
#include <new>

#include "tests/component/Fixture.h"

namespace {
long allocations = 0;
}

namespace orvo {
long AllocationCount() {
    return allocations;
}
}  // namespace orvo

void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
