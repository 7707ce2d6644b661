// The view world's point and rectangle: 64-bit coordinates, stored vertical first and built
// horizontal first. Painters and regions use the 32-bit pair of newfilelibs/cmn/cmn_rect.h; the
// 16-bit records are for hosts' older data.
#pragma once

#include <algorithm>
#include <iosfwd>
#include <string>

#include "newfilelibs/cmn/cmn_rect.h"

using VCoordinate = std::int64_t;

/// Picks one of two: 0 the first, anything else the second.
using PointSelector = char;
inline constexpr PointSelector kVertical = 0;   ///< a point's v, a rectangle's height
inline constexpr PointSelector kHorizontal = 1; ///< a point's h, a rectangle's width
inline constexpr PointSelector kTopLeft = 0;    ///< a rectangle's first corner
inline constexpr PointSelector kBottomRight = 1;

/// A 16-bit point record, vertical first.
struct _CPoint {
    std::int16_t v = 0;
    std::int16_t h = 0;
    [[nodiscard]] friend constexpr bool operator==(const _CPoint&,
                                                   const _CPoint&) noexcept = default;
};

/// A 16-bit rectangle record.
struct _CRect {
    std::int16_t top = 0;
    std::int16_t left = 0;
    std::int16_t bottom = 0;
    std::int16_t right = 0;
    [[nodiscard]] friend constexpr bool operator==(const _CRect&, const _CRect&) noexcept = default;
};

/// A host's plain point, vertical first.
struct SimpleVPoint {
    VCoordinate v = 0;
    VCoordinate h = 0;
};

class VRect;

/// A point: v, then h. The constructor takes the horizontal coordinate first. Arithmetic wraps.
class QLX_API VPoint {
  public:
    VCoordinate v = 0;
    VCoordinate h = 0;

    constexpr VPoint() noexcept = default;
    constexpr VPoint(VCoordinate horizontal, VCoordinate vertical) noexcept
        : v(vertical), h(horizontal) {}
    constexpr VPoint(const Cmn_Point<int>& point) noexcept : v(point.y), h(point.x) {}
    constexpr VPoint(const _CPoint& point) noexcept : v(point.v), h(point.h) {}
    constexpr VPoint(const SimpleVPoint& point) noexcept : v(point.v), h(point.h) {}

    [[nodiscard]] constexpr VCoordinate& operator[](PointSelector selector) noexcept {
        return selector == kVertical ? v : h;
    }
    [[nodiscard]] constexpr VCoordinate operator[](PointSelector selector) const noexcept {
        return selector == kVertical ? v : h;
    }

    // Conversions

    [[nodiscard]] constexpr VPoint Copy() const noexcept { return *this; }
    /// Each coordinate cut to its low 32 bits.
    [[nodiscard]] constexpr Cmn_Point<int> ToCmn_Point() const noexcept {
        return {static_cast<int>(h), static_cast<int>(v)};
    }
    constexpr operator Cmn_Point<int>() const noexcept { return ToCmn_Point(); }
    /// Each coordinate held within 16 bits.
    [[nodiscard]] constexpr _CPoint ToPoint() const noexcept {
        return {Cmn_ClampTo<std::int16_t>(v), Cmn_ClampTo<std::int16_t>(h)};
    }
    constexpr explicit operator _CPoint() const noexcept { return ToPoint(); }
    /// "VPoint(h, v)" in one buffer that every call, for any point, overwrites: user-interface
    /// thread only.
    explicit operator const char*() const;

    // Changes

    /// Multiplies both coordinates.
    constexpr void Scale(int factor) noexcept {
        v = Cmn_WrappingMultiply<VCoordinate>(v, factor);
        h = Cmn_WrappingMultiply<VCoordinate>(h, factor);
    }
    /// Moves the point into the rectangle, all four edges included: it may end on the right or
    /// bottom edge, which VRect::Contains rejects.
    constexpr void ConstrainTo(const VRect& limits) noexcept;

    constexpr VPoint& operator+=(const VPoint& other) noexcept {
        v = Cmn_WrappingAdd(v, other.v);
        h = Cmn_WrappingAdd(h, other.h);
        return *this;
    }
    constexpr VPoint& operator-=(const VPoint& other) noexcept {
        v = Cmn_WrappingSubtract(v, other.v);
        h = Cmn_WrappingSubtract(h, other.h);
        return *this;
    }
    [[nodiscard]] friend constexpr VPoint operator+(VPoint a, const VPoint& b) noexcept {
        return a += b;
    }
    [[nodiscard]] friend constexpr VPoint operator-(VPoint a, const VPoint& b) noexcept {
        return a -= b;
    }
    [[nodiscard]] friend constexpr VPoint operator-(const VPoint& a) noexcept {
        return VPoint() - a;
    }

    [[nodiscard]] friend constexpr bool operator==(const VPoint&, const VPoint&) noexcept = default;
    /// The vertical coordinate decides, then the horizontal one.
    [[nodiscard]] friend constexpr auto operator<=>(const VPoint&,
                                                    const VPoint&) noexcept = default;
};

/// A rectangle over top <= v < bottom and left <= h < right. Its memory is two points, top-left
/// then bottom-right, hence top, left, bottom, right; the constructor takes left, top, right,
/// bottom. Arithmetic wraps.
class QLX_API VRect {
  public:
    constexpr VRect() noexcept = default;
    constexpr VRect(VCoordinate left, VCoordinate top, VCoordinate right,
                    VCoordinate bottom) noexcept
        : mTopLeft(left, top), mBottomRight(right, bottom) {}
    constexpr VRect(const VPoint& topLeft, const VPoint& bottomRight) noexcept
        : mTopLeft(topLeft), mBottomRight(bottomRight) {}
    constexpr VRect(const Cmn_Rect<int>& rect) noexcept
        : VRect(rect.left, rect.top, rect.right, rect.bottom) {}
    constexpr VRect(const _CRect& rect) noexcept
        : VRect(rect.left, rect.top, rect.right, rect.bottom) {}

    // Edges and corners

    [[nodiscard]] constexpr VCoordinate Top() const noexcept { return mTopLeft.v; }
    [[nodiscard]] constexpr VCoordinate Left() const noexcept { return mTopLeft.h; }
    [[nodiscard]] constexpr VCoordinate Bottom() const noexcept { return mBottomRight.v; }
    [[nodiscard]] constexpr VCoordinate Right() const noexcept { return mBottomRight.h; }
    [[nodiscard]] constexpr VCoordinate& Top() noexcept { return mTopLeft.v; }
    [[nodiscard]] constexpr VCoordinate& Left() noexcept { return mTopLeft.h; }
    [[nodiscard]] constexpr VCoordinate& Bottom() noexcept { return mBottomRight.v; }
    [[nodiscard]] constexpr VCoordinate& Right() noexcept { return mBottomRight.h; }

    [[nodiscard]] constexpr VPoint& operator[](PointSelector selector) noexcept {
        return selector == kTopLeft ? mTopLeft : mBottomRight;
    }
    [[nodiscard]] constexpr const VPoint& operator[](PointSelector selector) const noexcept {
        return selector == kTopLeft ? mTopLeft : mBottomRight;
    }
    [[nodiscard]] constexpr VPoint& GetTopLeft() noexcept { return mTopLeft; }
    [[nodiscard]] constexpr const VPoint& GetTopLeft() const noexcept { return mTopLeft; }
    [[nodiscard]] constexpr VPoint& GetBottomRight() noexcept { return mBottomRight; }
    [[nodiscard]] constexpr const VPoint& GetBottomRight() const noexcept { return mBottomRight; }

    // Queries

    [[nodiscard]] constexpr VCoordinate GetHeight() const noexcept { return GetSize().v; }
    [[nodiscard]] constexpr VCoordinate GetWidth() const noexcept { return GetSize().h; }
    /// Selector kVertical: the height; any other: the width.
    [[nodiscard]] constexpr VCoordinate GetLength(char selector) const noexcept {
        return GetSize()[selector];
    }
    [[nodiscard]] constexpr VPoint GetSize() const noexcept { return mBottomRight - mTopLeft; }

    [[nodiscard]] constexpr bool Empty() const noexcept {
        return Right() <= Left() || Bottom() <= Top();
    }
    /// Edges in order; a zero-sized rectangle is valid.
    [[nodiscard]] constexpr bool Valid() const noexcept {
        return Top() <= Bottom() && Left() <= Right();
    }
    [[nodiscard]] constexpr bool Contains(const VPoint& point) const noexcept {
        return Top() <= point.v && point.v < Bottom() && Left() <= point.h && point.h < Right();
    }
    /// Whether the other's four edges lie within this one's; edges may coincide and an empty
    /// argument is not treated specially.
    [[nodiscard]] constexpr bool Contains(const VRect& other) const noexcept {
        return Top() <= other.Top() && Left() <= other.Left() && other.Bottom() <= Bottom() &&
               other.Right() <= Right();
    }

    // Conversions

    [[nodiscard]] constexpr VRect Copy() const noexcept { return *this; }
    /// Each coordinate cut to its low 32 bits.
    [[nodiscard]] constexpr Cmn_Rect<int> ToCmn_Rect() const noexcept {
        return {mTopLeft.ToCmn_Point(), mBottomRight.ToCmn_Point()};
    }
    constexpr operator Cmn_Rect<int>() const noexcept { return ToCmn_Rect(); }
    /// Each coordinate held within 16 bits.
    [[nodiscard]] constexpr _CRect ToRect() const noexcept {
        const _CPoint first = mTopLeft.ToPoint();
        const _CPoint second = mBottomRight.ToPoint();
        return {first.v, first.h, second.v, second.h};
    }
    constexpr explicit operator _CRect() const noexcept { return ToRect(); }
    /// "VRect(left, top, right, bottom)".
    [[nodiscard]] std::string AsString() const;
    /// The same text in one buffer that every call, for any rectangle, overwrites: user-interface
    /// thread only.
    explicit operator const char*() const;

    // Changes

    /// Swaps edges that stand in the wrong order.
    constexpr void Validate() noexcept {
        if (Top() > Bottom())
            std::swap(mTopLeft.v, mBottomRight.v);
        if (Left() > Right())
            std::swap(mTopLeft.h, mBottomRight.h);
    }
    /// Moves every edge inwards (outwards for negative amounts); may leave the rectangle inverted.
    constexpr void Inset(const VPoint& amount) noexcept {
        mTopLeft += amount;
        mBottomRight -= amount;
    }
    /// Multiplies all four edges.
    constexpr void Scale(int factor) noexcept {
        mTopLeft.Scale(factor);
        mBottomRight.Scale(factor);
    }

    /// Intersection: inner edges; all zeros only when the result is inverted, so rectangles that
    /// merely touch leave a zero-sized one on the shared edge.
    constexpr VRect& operator&=(const VRect& other) noexcept {
        mTopLeft.v = std::max(mTopLeft.v, other.mTopLeft.v);
        mTopLeft.h = std::max(mTopLeft.h, other.mTopLeft.h);
        mBottomRight.v = std::min(mBottomRight.v, other.mBottomRight.v);
        mBottomRight.h = std::min(mBottomRight.h, other.mBottomRight.h);
        if (!Valid())
            *this = VRect();
        return *this;
    }
    /// Union: outer edges. Empty operands are not special, so an all-zero one stretches to the
    /// origin.
    constexpr VRect& operator|=(const VRect& other) noexcept {
        mTopLeft.v = std::min(mTopLeft.v, other.mTopLeft.v);
        mTopLeft.h = std::min(mTopLeft.h, other.mTopLeft.h);
        mBottomRight.v = std::max(mBottomRight.v, other.mBottomRight.v);
        mBottomRight.h = std::max(mBottomRight.h, other.mBottomRight.h);
        return *this;
    }
    constexpr VRect& operator+=(const VPoint& delta) noexcept { return *this += {delta, delta}; }
    constexpr VRect& operator-=(const VPoint& delta) noexcept { return *this -= {delta, delta}; }
    /// Edge by edge.
    constexpr VRect& operator+=(const VRect& other) noexcept {
        mTopLeft += other.mTopLeft;
        mBottomRight += other.mBottomRight;
        return *this;
    }
    constexpr VRect& operator-=(const VRect& other) noexcept {
        mTopLeft -= other.mTopLeft;
        mBottomRight -= other.mBottomRight;
        return *this;
    }

    [[nodiscard]] friend constexpr VRect operator&(VRect a, const VRect& b) noexcept {
        return a &= b;
    }
    [[nodiscard]] friend constexpr VRect operator|(VRect a, const VRect& b) noexcept {
        return a |= b;
    }
    [[nodiscard]] friend constexpr VRect operator+(VRect a, const VPoint& b) noexcept {
        return a += b;
    }
    [[nodiscard]] friend constexpr VRect operator-(VRect a, const VPoint& b) noexcept {
        return a -= b;
    }
    [[nodiscard]] friend constexpr VRect operator+(VRect a, const VRect& b) noexcept {
        return a += b;
    }
    [[nodiscard]] friend constexpr VRect operator-(VRect a, const VRect& b) noexcept {
        return a -= b;
    }
    [[nodiscard]] friend constexpr VRect operator-(const VRect& a) noexcept { return VRect() - a; }
    [[nodiscard]] friend constexpr bool operator==(const VRect&, const VRect&) noexcept = default;

  private:
    VPoint mTopLeft;
    VPoint mBottomRight;
};

constexpr void VPoint::ConstrainTo(const VRect& limits) noexcept {
    v = std::min(std::max(v, limits.Top()), limits.Bottom());
    h = std::min(std::max(h, limits.Left()), limits.Right());
}

// Printers, in the form of the conversions to text.
QLX_API std::ostream& operator<<(std::ostream& out, const VPoint& point);
QLX_API std::ostream& operator<<(std::ostream& out, const VRect& rect);
