// Advice to the system about memory. Not for hosts.
#pragma once

#include <cstddef>

/// Says that a range of memory is about to be written from its start to its end, so that the system
/// may give all its pages at once instead of each at its first touch. Where the advice is not
/// taken, nothing changes.
void Sys_PreparePages(void* start, std::size_t size) noexcept;
