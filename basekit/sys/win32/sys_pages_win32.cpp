#include "basekit/sys/sys_pages.h"

#include <new>

// Large pages take a privilege here that programs do not have.
void Sys_AdviseLargePages(void*, std::size_t) noexcept {}

void* Sys_AllocateLargePages(std::size_t size) {
    return ::operator new (size, std::align_val_t{kSys_LargePage});
}

void Sys_FreeLargePages(void* start, std::size_t size) noexcept {
    ::operator delete (start, size, std::align_val_t{kSys_LargePage});
}
