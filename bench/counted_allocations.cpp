// Counts what a benchmark's code allocates; the library's own operator new calls land here too.
#include "bench/counted_allocations.h"

#include <cstdlib>
#include <new>

std::size_t gCountedAllocations = 0;

void* operator new(std::size_t size) {
    ++gCountedAllocations;
    if (void* bytes = std::malloc(size))
        return bytes;
    throw std::bad_alloc();
}
void operator delete(void* bytes) noexcept { std::free(bytes); }
void operator delete(void* bytes, std::size_t) noexcept { std::free(bytes); }
