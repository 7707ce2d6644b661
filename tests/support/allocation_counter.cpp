#include "tests/support/allocation_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> sAllocations{0};

} // namespace

void* operator new(std::size_t size) {
    sAllocations.fetch_add(1, std::memory_order_relaxed);
    if (void* const bytes = std::malloc(size == 0 ? 1 : size))
        return bytes;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    sAllocations.fetch_add(1, std::memory_order_relaxed);
    return std::malloc(size == 0 ? 1 : size);
}

void operator delete(void* bytes, const std::nothrow_t&) noexcept { std::free(bytes); }

void operator delete(void* bytes) noexcept { std::free(bytes); }

void operator delete(void* bytes, std::size_t) noexcept { std::free(bytes); }

AllocationCounter::AllocationCounter() : mStart(sAllocations.load()) {}

std::size_t AllocationCounter::GetCount() const { return sAllocations.load() - mStart; }

bool AllocationCounter::CountsTheLibrary() {
#ifdef _WIN32
    return false;
#else
    return true;
#endif
}
