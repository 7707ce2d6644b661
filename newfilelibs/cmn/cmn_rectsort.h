// Sorting rectangles by their top-left corners.
#pragma once

#include <cstddef>

#include "newfilelibs/cmn/cmn_rectlist.h"

/// The top-left corner as one number that sorts by top, then left.
[[nodiscard]] constexpr std::uint64_t Cmn_RectKey(const Cmn_Rect<int>& rect) noexcept {
    constexpr std::uint64_t signs = 0x8000000080000000U; // negative before positive
    const std::uint64_t top = static_cast<std::uint32_t>(rect.top);
    return (top << 32 | static_cast<std::uint32_t>(rect.left)) ^ signs;
}

/// Puts a rectangle among `count` that are sorted, behind which there is room for one more.
inline void Cmn_InsertSorted(Cmn_Rect<int>* sorted, std::size_t count,
                             const Cmn_Rect<int>& rect) noexcept {
    const Cmn_Rect<int> moved = rect; // may lie among them
    const std::uint64_t key = Cmn_RectKey(moved);
    for (; count > 0 && key < Cmn_RectKey(sorted[count - 1]); --count)
        sorted[count] = sorted[count - 1];
    sorted[count] = moved;
}

/// Writes the rectangles to `out` by top, then left; equal ones keep their order. The first
/// sortedHead are in order already. The rectangles may lie in `out` itself when sortedHead is 0.
void Cmn_SortRects(const Cmn_Rect<int>* rects, std::size_t count, std::size_t sortedHead,
                   Cmn_RectList& out);

/// Writes the indices of disjoint rectangles of positive size by top, then left. Scratch is room
/// for twice as many numbers.
void Cmn_OrderRows(const Cmn_Rect<int>* rects, std::size_t count, std::uint32_t* order,
                   std::uint64_t* scratch);

/// The same where two sorted lists follow each other.
void Cmn_MergeRows(const Cmn_Rect<int>* rects, std::size_t middle, std::size_t count,
                   std::uint32_t* order) noexcept;
