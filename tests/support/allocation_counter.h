// Counts allocations through operator new, the library's included. A test program that uses it gets
// a counting operator new.
#pragma once

#include <cstddef>

/// Counts what is allocated while it lives, on every thread.
class AllocationCounter {
  public:
    AllocationCounter();
    /// Allocations since the counter was made.
    [[nodiscard]] std::size_t GetCount() const;
    /// Whether the library's allocations are among them: a DLL keeps its own operator new, so on
    /// Win32 only those of the test program are.
    [[nodiscard]] static bool CountsTheLibrary();

  private:
    std::size_t mStart;
};
