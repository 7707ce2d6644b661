#include "basekit/cmn/cmn_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "basekit/cmn/cmn_failure.h"

namespace {

constinit std::atomic<std::int64_t> sAllocationsLeft{-1};

} // namespace

bool Cmn_MayAllocate() noexcept {
    std::int64_t left = sAllocationsLeft.load(std::memory_order_relaxed);
    while (left > 0 && !sAllocationsLeft.compare_exchange_weak(left, left - 1)) {
    }
    return left != 0;
}

void* Cmn_AllocateOrFail(std::size_t size) {
    void* bytes = Cmn_MayAllocate() ? ::operator new(size, std::nothrow) : nullptr;
    if (!bytes)
        Cmn_RaiseFailure(kFailure_OutOfMemory);
    return bytes;
}

void* Cmn_Reallocate(void* block, std::size_t size) {
    return Cmn_MayAllocate() ? std::realloc(block, size ? size : 1) : nullptr;
}

void* Cmn_ReallocateOrFail(void* block, std::size_t size) {
    void* moved = Cmn_Reallocate(block, size);
    if (!moved)
        Cmn_RaiseFailure(kFailure_OutOfMemory);
    return moved;
}

void Cmn_FreeBlock(void* block) noexcept { std::free(block); }

void Cmn_FailAllocationsAfter(std::int64_t count) {
    sAllocationsLeft.store(count < 0 ? -1 : count, std::memory_order_relaxed);
}
