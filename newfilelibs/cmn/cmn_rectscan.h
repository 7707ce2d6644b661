// Searches through rectangles in a row, four at a time where the processor has vectors. A rectangle
// is one vector: left, top, right, bottom.
#pragma once

#include <bit>

#include "newfilelibs/cmn/cmn_rect.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Cmn_RectScan {

using Rect = Cmn_Rect<int>;

/// Covers nothing and overlaps nothing; the start of a bounding box.
inline constexpr Rect kNowhere{std::numeric_limits<int>::max(), std::numeric_limits<int>::max(),
                               std::numeric_limits<int>::min(), std::numeric_limits<int>::min()};

#if defined(__SSE2__)

inline __m128i Load(const Rect* rect) noexcept {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(rect));
}

/// Tells rectangles that begin no further than a corner and end behind another: a limit's left and
/// top are the last that a rectangle's may have, and its right and bottom must be passed.
class LimitProbe {
  public:
    LimitProbe(int lastLeft, int lastTop, int right, int bottom) noexcept
        : mLimits(_mm_set_epi32(bottom, right, lastTop, lastLeft)) {}

    /// Bit 4 * k is set when the k-th of four rectangles does.
    [[nodiscard]] unsigned Four(const Rect* rects) const noexcept {
        const __m128i beyond =
            _mm_packs_epi16(_mm_packs_epi32(Beyond(rects), Beyond(rects + 1)),
                            _mm_packs_epi32(Beyond(rects + 2), Beyond(rects + 3)));
        // A byte an edge: right and bottom beyond the limits, left and top not.
        const __m128i hits = _mm_cmpeq_epi32(beyond, _mm_set1_epi32(static_cast<int>(0xFFFF0000U)));
        return static_cast<unsigned>(_mm_movemask_epi8(hits)) & 0x1111;
    }

  protected:
    explicit LimitProbe(__m128i limits) noexcept : mLimits(limits) {}
    // Right, bottom, left and top.
    [[nodiscard]] static __m128i Crosswise(const Rect& rect) noexcept {
        return _mm_shuffle_epi32(Load(&rect), _MM_SHUFFLE(1, 0, 3, 2));
    }

  private:
    [[nodiscard]] __m128i Beyond(const Rect* rect) const noexcept {
        return _mm_cmpgt_epi32(Load(rect), mLimits);
    }
    __m128i mLimits;
};

/// Tells rectangles of positive size that overlap one or share at least a corner with it.
class TouchProbe : public LimitProbe {
  public:
    explicit TouchProbe(const Rect& probe) noexcept : LimitProbe(Limits(Crosswise(probe))) {}

  private:
    // One less for what is to be reached; nothing ends at the lowest number of all.
    [[nodiscard]] static __m128i Limits(__m128i crosswise) noexcept {
        constexpr int low = std::numeric_limits<int>::min();
        constexpr int high = std::numeric_limits<int>::max();
        return _mm_add_epi32(crosswise,
                             _mm_cmpgt_epi32(crosswise, _mm_set_epi32(low, low, high, high)));
    }
};

/// Tells rectangles that overlap one of positive size; and flat ones inside it, which overlap
/// nothing.
class OverlapProbe : public LimitProbe {
  public:
    explicit OverlapProbe(const Rect& probe) noexcept
        : LimitProbe(_mm_add_epi32(Crosswise(probe), _mm_set_epi32(0, 0, -1, -1))) {}
};

/// A bounding box that grows.
class Bounds {
  public:
    Bounds() noexcept : Bounds(kNowhere) {}
    explicit Bounds(const Rect& start) noexcept : mBox(Load(&start)) {}
    void Add(const Rect& rect) noexcept {
        const __m128i value = Load(&rect);
        // The smaller ones of left and top, the larger ones of right and bottom.
        const __m128i take =
            _mm_xor_si128(_mm_cmpgt_epi32(value, mBox), _mm_set_epi32(0, 0, -1, -1));
        mBox = _mm_or_si128(_mm_and_si128(take, value), _mm_andnot_si128(take, mBox));
    }
    [[nodiscard]] Rect Get() const noexcept {
        Rect rect;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(&rect), mBox);
        return rect;
    }

  private:
    __m128i mBox;
};

#else

class LimitProbe {
  public:
    LimitProbe(int lastLeft, int lastTop, int right, int bottom) noexcept
        : mLimits(lastLeft, lastTop, right, bottom) {}
    [[nodiscard]] unsigned Four(const Rect* rects) const noexcept {
        unsigned bits = 0;
        for (int i = 0; i < 4; ++i)
            bits |= static_cast<unsigned>(One(rects[i])) << 4 * i;
        return bits;
    }

  private:
    [[nodiscard]] bool One(const Rect& rect) const noexcept {
        return (rect.left <= mLimits.left) & (rect.top <= mLimits.top) &
               (rect.right > mLimits.right) & (rect.bottom > mLimits.bottom);
    }
    Rect mLimits;
};

class TouchProbe : public LimitProbe {
  public:
    explicit TouchProbe(const Rect& probe) noexcept
        : LimitProbe(probe.right, probe.bottom, Before(probe.left), Before(probe.top)) {}

  private:
    static int Before(int edge) noexcept {
        return edge == std::numeric_limits<int>::min() ? edge : edge - 1;
    }
};

class OverlapProbe : public LimitProbe {
  public:
    explicit OverlapProbe(const Rect& probe) noexcept
        : LimitProbe(probe.right - 1, probe.bottom - 1, probe.left, probe.top) {}
};

class Bounds {
  public:
    Bounds() noexcept : Bounds(kNowhere) {}
    explicit Bounds(const Rect& start) noexcept : mBox(start) {}
    void Add(const Rect& rect) noexcept { mBox |= rect; }
    [[nodiscard]] Rect Get() const noexcept { return mBox; }

  private:
    Rect mBox;
};

#endif

// The following look at rectangles by fours from the start. Those behind the end, up to a multiple
// of four, are in memory, as in lists, whatever stands there.

/// Whether the probe hits any of the rectangles. All are looked at: where one would be found is not
/// to be foretold, and a wrong guess of the processor costs as much as sixteen of them.
[[nodiscard]] inline bool HitsAny(const LimitProbe& probe, const Rect* rects,
                                  std::size_t count) noexcept {
    unsigned bits = 0;
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4)
        bits |= probe.Four(rects + i);
    if (i < count)
        bits |= probe.Four(rects + i) & ((1U << 4 * (count - i)) - 1);
    return bits != 0;
}

/// Calls found(index) for every rectangle that the probe hits, in order.
template <class Found>
inline void ForEachHit(const LimitProbe& probe, const Rect* rects, std::size_t from,
                       std::size_t end, Found found) {
    for (; from < end; from += 4) {
        unsigned bits = probe.Four(rects + from);
        if (bits == 0) [[likely]]
            continue;
        for (; bits != 0; bits &= bits - 1) {
            const std::size_t index = from + static_cast<std::size_t>(std::countr_zero(bits)) / 4;
            if (index < end)
                found(index);
        }
    }
}

/// The rectangles' bounding box; kNowhere for none.
[[nodiscard]] inline Rect BoundsOf(const Rect* rects, std::size_t count) noexcept {
    Bounds bounds;
    for (std::size_t i = 0; i < count; ++i)
        bounds.Add(rects[i]);
    return bounds.Get();
}

} // namespace Cmn_RectScan
