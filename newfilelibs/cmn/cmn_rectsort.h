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
    constexpr std::uint32_t sign = 0x80000000U;
    const std::uint64_t top = static_cast<std::uint32_t>(rect.top) ^ sign;
    const std::uint64_t left = static_cast<std::uint32_t>(rect.left) ^ sign;
    return order == Cmn_RectOrder::kRows ? top << 32 | left : left << 32 | top;
}

/// Writes to `sorted` the entries of `indices` (count of them, ascending) in the order of the
/// rectangles they name; equal rectangles keep theirs. May be the same array.
void Cmn_SortRectIndices(const Cmn_Rect<int>* rects, const std::uint32_t* indices,
                         std::size_t count, Cmn_RectOrder order, std::uint32_t* sorted);
