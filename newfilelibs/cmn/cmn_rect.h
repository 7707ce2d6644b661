// Points and rectangles with horizontal-first coordinates: what painters, clips and regions are
// made of. The view world's vertical-first pair is in qlx/views/ugeometry.h and converts both ways.
#pragma once

#include <algorithm>
#include <concepts>
#include <iosfwd>

#include "basekit/cmn/cmn_types.h"

/// A point, x before y. Sums and differences wrap on overflow.
template <class T>
struct Cmn_Point {
    T x{};
    T y{};

    constexpr Cmn_Point() noexcept = default;
    constexpr Cmn_Point(T xValue, T yValue) noexcept : x(xValue), y(yValue) {}

    constexpr Cmn_Point& operator+=(const Cmn_Point& other) noexcept {
        x = Add(x, other.x);
        y = Add(y, other.y);
        return *this;
    }
    constexpr Cmn_Point& operator-=(const Cmn_Point& other) noexcept {
        x = Subtract(x, other.x);
        y = Subtract(y, other.y);
        return *this;
    }
    [[nodiscard]] friend constexpr Cmn_Point operator+(Cmn_Point a, const Cmn_Point& b) noexcept {
        return a += b;
    }
    [[nodiscard]] friend constexpr Cmn_Point operator-(Cmn_Point a, const Cmn_Point& b) noexcept {
        return a -= b;
    }
    [[nodiscard]] friend constexpr bool operator==(const Cmn_Point&,
                                                   const Cmn_Point&) noexcept = default;

  private:
    static constexpr T Add(T a, T b) noexcept {
        if constexpr (std::integral<T>)
            return Cmn_WrappingAdd(a, b);
        else
            return a + b;
    }
    static constexpr T Subtract(T a, T b) noexcept {
        if constexpr (std::integral<T>)
            return Cmn_WrappingSubtract(a, b);
        else
            return a - b;
    }
};

/// A rectangle: left, top, right, bottom in that order, covering left <= x < right and
/// top <= y < bottom. One whose right <= left or bottom <= top is empty, and keeps its fields.
template <class T>
struct Cmn_Rect {
    T left{};
    T top{};
    T right{};
    T bottom{};

    constexpr Cmn_Rect() noexcept = default;
    constexpr Cmn_Rect(T leftEdge, T topEdge, T rightEdge, T bottomEdge) noexcept
        : left(leftEdge), top(topEdge), right(rightEdge), bottom(bottomEdge) {}
    constexpr Cmn_Rect(const Cmn_Point<T>& topLeft, const Cmn_Point<T>& bottomRight) noexcept
        : left(topLeft.x), top(topLeft.y), right(bottomRight.x), bottom(bottomRight.y) {}

    // Queries

    /// Right minus left, negative for an inverted rectangle, held at the type's limits.
    [[nodiscard]] constexpr T GetWidth() const noexcept { return Length(left, right); }
    /// Bottom minus top, likewise.
    [[nodiscard]] constexpr T GetHeight() const noexcept { return Length(top, bottom); }
    [[nodiscard]] constexpr Cmn_Point<T> GetTopLeft() const noexcept { return {left, top}; }
    [[nodiscard]] constexpr Cmn_Point<T> GetBottomRight() const noexcept { return {right, bottom}; }

    [[nodiscard]] constexpr bool Empty() const noexcept { return right <= left || bottom <= top; }
    /// Edges in order; a zero-sized rectangle is valid.
    [[nodiscard]] constexpr bool Valid() const noexcept { return left <= right && top <= bottom; }

    [[nodiscard]] constexpr bool Contains(const Cmn_Point<T>& point) const noexcept {
        return left <= point.x && point.x < right && top <= point.y && point.y < bottom;
    }
    /// Whether the other's four edges lie within this one's; edges may coincide and an empty
    /// argument is not treated specially.
    [[nodiscard]] constexpr bool Contains(const Cmn_Rect& other) const noexcept {
        return left <= other.left && top <= other.top && other.right <= right &&
               other.bottom <= bottom;
    }
    /// Whether the two share an area of positive width and height.
    [[nodiscard]] constexpr bool Overlaps(const Cmn_Rect& other) const noexcept {
        // Not &&: which side tells is not to be foretold, and a wrong guess costs more than both.
        return (std::max(left, other.left) < std::min(right, other.right)) &
               (std::max(top, other.top) < std::min(bottom, other.bottom));
    }

    // Changes

    /// Intersection: inner edges; all zeros only when the result is inverted, so rectangles that
    /// merely touch leave a zero-sized one on the shared edge.
    constexpr Cmn_Rect& operator&=(const Cmn_Rect& other) noexcept {
        left = std::max(left, other.left);
        top = std::max(top, other.top);
        right = std::min(right, other.right);
        bottom = std::min(bottom, other.bottom);
        if (!Valid())
            *this = Cmn_Rect();
        return *this;
    }
    /// Union: outer edges. Empty operands are not special, so an all-zero one stretches to the
    /// origin.
    constexpr Cmn_Rect& operator|=(const Cmn_Rect& other) noexcept {
        left = std::min(left, other.left);
        top = std::min(top, other.top);
        right = std::max(right, other.right);
        bottom = std::max(bottom, other.bottom);
        return *this;
    }
    /// Moves all four edges; wraps on overflow.
    constexpr Cmn_Rect& operator+=(const Cmn_Point<T>& delta) noexcept {
        return *this = Cmn_Rect(GetTopLeft() + delta, GetBottomRight() + delta);
    }
    constexpr Cmn_Rect& operator-=(const Cmn_Point<T>& delta) noexcept {
        return *this = Cmn_Rect(GetTopLeft() - delta, GetBottomRight() - delta);
    }

    [[nodiscard]] friend constexpr Cmn_Rect operator&(Cmn_Rect a, const Cmn_Rect& b) noexcept {
        return a &= b;
    }
    [[nodiscard]] friend constexpr Cmn_Rect operator|(Cmn_Rect a, const Cmn_Rect& b) noexcept {
        return a |= b;
    }
    [[nodiscard]] friend constexpr Cmn_Rect operator+(Cmn_Rect a, const Cmn_Point<T>& b) noexcept {
        return a += b;
    }
    [[nodiscard]] friend constexpr Cmn_Rect operator-(Cmn_Rect a, const Cmn_Point<T>& b) noexcept {
        return a -= b;
    }
    [[nodiscard]] friend constexpr bool operator==(const Cmn_Rect&,
                                                   const Cmn_Rect&) noexcept = default;

    // Subtraction

    /// This rectangle without the cutter, as at most four disjoint pieces of positive size, in this
    /// order: above the cutter in full width, left of it and right of it within its rows, below it
    /// in full width. Writes them to outP (room for four, never null: a null one is asserted and
    /// answers 0) and returns their number. Defined for int.
    int Subtract(const Cmn_Rect& cutter, Cmn_Rect* outP) const noexcept;

    /// Subtract without the check, for loops.
    constexpr int Cut(const Cmn_Rect& cutter, Cmn_Rect* pieces) const noexcept {
        const Cmn_Rect source = *this; // the pieces may be written over both operands
        const Cmn_Rect cut = cutter;
        const T rowsTop = std::max(source.top, cut.top);
        const T rowsBottom = std::min(source.bottom, cut.bottom);
        int count = 0;
        const auto keep = [&](const Cmn_Rect& piece) {
            pieces[count] = piece;
            count += piece.Empty() ? 0 : 1;
        };
        keep({source.left, source.top, source.right, std::min(source.bottom, cut.top)});
        keep({source.left, rowsTop, std::min(source.right, cut.left), rowsBottom});
        keep({std::max(source.left, cut.right), rowsTop, source.right, rowsBottom});
        // Written only when it is kept: four pieces leave no place after them.
        if (const Cmn_Rect below{source.left, std::max(source.top, cut.bottom), source.right,
                                 source.bottom};
            !below.Empty())
            pieces[count++] = below;
        return count;
    }

  private:
    static constexpr T Length(T from, T to) noexcept {
        if constexpr (std::integral<T> && sizeof(T) < sizeof(std::int64_t))
            return Cmn_ClampTo<T>(std::int64_t{to} - std::int64_t{from});
        else if constexpr (std::integral<T>)
            return Cmn_WrappingSubtract(to, from);
        else
            return to - from;
    }
};

/// @cond a specialisation, which the reference would list twice
template <>
QLX_API int Cmn_Rect<int>::Subtract(const Cmn_Rect& cutter, Cmn_Rect* outP) const noexcept;
/// @endcond

// Printers: "(x, y)" and "(left, top, right, bottom)".
QLX_API std::ostream& operator<<(std::ostream& out, const Cmn_Point<int>& point);
QLX_API std::ostream& operator<<(std::ostream& out, const Cmn_Rect<int>& rect);
