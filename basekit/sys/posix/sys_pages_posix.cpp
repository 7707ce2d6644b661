#include "basekit/sys/sys_pages.h"

#include <cstdint>
#include <new>

#include <sys/mman.h>

void Sys_AdviseLargePages([[maybe_unused]] void* start,
                          [[maybe_unused]] std::size_t size) noexcept {
#if defined(MADV_HUGEPAGE) // Linux alone has it
    // Only what is covered wholly: a large page that reaches beyond would take memory for nothing.
    const std::uintptr_t from = reinterpret_cast<std::uintptr_t>(start);
    const std::uintptr_t first = (from + kSys_LargePage - 1) / kSys_LargePage * kSys_LargePage;
    const std::uintptr_t last = (from + size) / kSys_LargePage * kSys_LargePage;
    if (first < last)
        static_cast<void>(madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE));
#endif
}

void* Sys_AllocateLargePages(std::size_t size) {
    // A page more than asked for holds an aligned piece; what lies around that goes back.
    const std::size_t mapped = size + kSys_LargePage;
    void* const map =
        mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (map == MAP_FAILED)
        throw std::bad_alloc();
    char* const from = static_cast<char*>(map);
    const std::size_t beyond = reinterpret_cast<std::uintptr_t>(from) % kSys_LargePage;
    const std::size_t before = beyond ? kSys_LargePage - beyond : 0;
    char* const start = from + before;
    if (before)
        munmap(from, before);
    munmap(start + size, kSys_LargePage - before);
    Sys_AdviseLargePages(start, size);
    return start;
}

void Sys_FreeLargePages(void* start, std::size_t size) noexcept { munmap(start, size); }
