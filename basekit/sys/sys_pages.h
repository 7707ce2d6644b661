// Memory in large pieces, for what fills much of it at once. Not for hosts.
#pragma once

#include <cstddef>

/// Of this size are the pieces in which a system gives memory most cheaply, where it can.
inline constexpr std::size_t kSys_LargePage = 2 << 20;

/// Says that a range of memory is about to be written as a whole, so that the system may give it in
/// large pages instead of hundreds of small ones. Where the advice is not taken, nothing changes.
void Sys_AdviseLargePages(void* start, std::size_t size) noexcept;

/// Memory of a multiple of kSys_LargePage, aligned to it and to be filled from its start to its
/// end. Throws std::bad_alloc. The caller gives it back by Sys_FreeLargePages with the same size.
[[nodiscard]] void* Sys_AllocateLargePages(std::size_t size);
void Sys_FreeLargePages(void* start, std::size_t size) noexcept;
