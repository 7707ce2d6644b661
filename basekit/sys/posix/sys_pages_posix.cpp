#include "basekit/sys/sys_pages.h"

#include <cstdint>

#include <sys/mman.h>

void Sys_PreparePages([[maybe_unused]] void* start, [[maybe_unused]] std::size_t size) noexcept {
#if defined(MADV_POPULATE_WRITE) // Linux alone has it, from 5.14 on
    constexpr std::uintptr_t kPage = 4096;
    const std::uintptr_t from = reinterpret_cast<std::uintptr_t>(start);
    const std::uintptr_t first = (from + kPage - 1) / kPage * kPage;
    const std::uintptr_t last = (from + size) / kPage * kPage;
    if (first < last)
        static_cast<void>(
            madvise(reinterpret_cast<void*>(first), last - first, MADV_POPULATE_WRITE));
#endif
}
