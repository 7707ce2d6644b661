// The count of a benchmark that is linked with counted_allocations.cpp.
#pragma once

#include <cstddef>

extern std::size_t gCountedAllocations;
