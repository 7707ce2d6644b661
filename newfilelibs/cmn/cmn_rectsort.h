// Sorting rectangles by one corner coordinate and then the other.
#pragma once

#include <cstddef>

#include "newfilelibs/cmn/cmn_rect.h"

enum class Cmn_RectOrder {
    kRows,   ///< by top, then left
    kColumns ///< by left, then top
};

/// The corner as one number that sorts as the order says.
[[nodiscard]] constexpr std::uint64_t Cmn_RectKey(const Cmn_Rect<int>& rect,
                                                  Cmn_RectOrder order) noexcept {
    constexpr std::uint64_t signs = 0x8000000080000000U; // negative before positive
    const std::uint64_t top = static_cast<std::uint32_t>(rect.top);
    const std::uint64_t left = static_cast<std::uint32_t>(rect.left);
    return (order == Cmn_RectOrder::kRows ? top << 32 | left : left << 32 | top) ^ signs;
}

/// Puts a rectangle among `count` that are sorted by rows, behind which there is room for one more.
inline void Cmn_InsertSorted(Cmn_Rect<int>* sorted, std::size_t count,
                             const Cmn_Rect<int>& rect) noexcept {
    const Cmn_Rect<int> moved = rect; // may lie among them
    const std::uint64_t key = Cmn_RectKey(moved, Cmn_RectOrder::kRows);
    for (; count > 0 && key < Cmn_RectKey(sorted[count - 1], Cmn_RectOrder::kRows); --count)
        sorted[count] = sorted[count - 1];
    sorted[count] = moved;
}

/// Writes to `sorted` the entries of `indices` (count of them, ascending) in the order of the
/// rectangles they name; equal rectangles keep theirs. May be the same array.
void Cmn_SortRectIndices(const Cmn_Rect<int>* rects, const std::uint32_t* indices,
                         std::size_t count, Cmn_RectOrder order, std::uint32_t* sorted);
