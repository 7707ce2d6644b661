// How many device pixels a logical unit takes, and the one rounding that turns logical edges into
// device edges. Painters, windows and damage all map through it, so pieces that partition a view in
// logical units partition its pixels too: no seam, no pixel drawn twice.
#pragma once

#include "basekit/cmn/cmn_types.h"
#include "newfilelibs/cmn/cmn_rect.h"

/// A scale factor, kept as a whole number of 1/120ths (the step of Wayland's fractional-scale-v1),
/// so that edges are mapped in integers and are the same on every machine. A plain value; any
/// thread.
class QLX_API QLX_DeviceScale {
  public:
    static constexpr int kUnit = 120;

    /// One device pixel a logical unit.
    constexpr QLX_DeviceScale() noexcept = default;
    /// Rounds to the nearest 1/120th and holds the result within 1/8 and 16; a NaN gives 1.
    explicit QLX_DeviceScale(double factor) noexcept;
    /// From a count of 1/120ths, held to the same limits.
    [[nodiscard]] static QLX_DeviceScale From120ths(int count) noexcept;

    [[nodiscard]] constexpr double GetFactor() const noexcept { return double(mCount) / kUnit; }
    [[nodiscard]] constexpr int Get120ths() const noexcept { return mCount; }
    /// Whether a logical unit is a whole number of pixels.
    [[nodiscard]] constexpr bool IsWhole() const noexcept { return mCount % kUnit == 0; }
    [[nodiscard]] constexpr bool IsOne() const noexcept { return mCount == kUnit; }

    /// The device edge of a logical edge: the nearest one, halves upward. Monotone, so the order of
    /// edges is kept; held at the limits of int.
    [[nodiscard]] int EdgeToDevice(std::int64_t logical) const noexcept {
        if (mCount == kUnit)
            return Cmn_ClampTo<int>(logical);
        return ScaleEdge(logical);
    }
    /// All four edges.
    [[nodiscard]] Cmn_Rect<int> RectToDevice(const Cmn_Rect<int>& logical) const noexcept;

    /// The smallest logical rectangle whose device rectangle covers the given device pixels: what
    /// has to be redrawn when these pixels are damaged.
    [[nodiscard]] Cmn_Rect<int> RectToLogical(const Cmn_Rect<int>& device) const noexcept;

    /// A thickness in device pixels: nearest, at least one for a positive thickness. Unlike the
    /// distance of two edges it is the same wherever the line lies.
    [[nodiscard]] int ThicknessToDevice(int logical) const noexcept;

    /// Whether a logical distance is a whole number of pixels, so that moving pixels by it gives
    /// what drawing anew would give.
    [[nodiscard]] constexpr bool IsExactDistance(int logical) const noexcept {
        return std::int64_t{logical} * mCount % kUnit == 0;
    }

    [[nodiscard]] friend constexpr bool operator==(QLX_DeviceScale,
                                                   QLX_DeviceScale) noexcept = default;

  private:
    [[nodiscard]] int ScaleEdge(std::int64_t logical) const noexcept;

    int mCount = kUnit; // 1/120ths
};
