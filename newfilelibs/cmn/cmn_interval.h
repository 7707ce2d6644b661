// The coordinate check that rectangles pass before they become regions.
#pragma once

#include "newfilelibs/cmn/cmn_rect.h"

/// Checks of intervals; never an object.
class QLX_API Cmn_Interval {
  public:
    /// Whether an interval's length fits the coordinate type, so that widths and heights may be
    /// computed without overflow. Intervals that are not in order have no length and pass.
    [[nodiscard]] static constexpr bool IsInRange(int low, int high) noexcept {
        return std::int64_t{high} - std::int64_t{low} <= std::numeric_limits<int>::max();
    }

    /// Whether a rectangle is not empty and passes CheckRect, in one go.
    [[nodiscard]] static constexpr bool HasPlainSize(const Cmn_Rect<int>& rect) noexcept {
        return rect.left < rect.right && rect.top < rect.bottom &&
               Cmn_WrappingSubtract(rect.right, rect.left) > 0 &&
               Cmn_WrappingSubtract(rect.bottom, rect.top) > 0;
    }

    /// Reports (as a trace assertion; nothing is changed) a rectangle whose width or height does
    /// not fit. Returns whether both do.
    static bool CheckRect(const Cmn_Rect<int>& rect) noexcept {
        return (IsInRange(rect.left, rect.right) && IsInRange(rect.top, rect.bottom)) ||
               Report(rect);
    }

  private:
    static bool Report(const Cmn_Rect<int>& rect) noexcept;
};
