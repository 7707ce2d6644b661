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

/// Four vectors of whole-lane truths as bits: four a rectangle, the first rectangle lowest.
inline unsigned LaneBits(__m128i a, __m128i b, __m128i c, __m128i d) noexcept {
    return static_cast<unsigned>(
        _mm_movemask_epi8(_mm_packs_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d))));
}

/// Compares rectangles with one that is asked about.
class OverlapProbe {
  public:
    explicit OverlapProbe(const Rect& probe) noexcept
        : mHigh(_mm_set_epi32(std::numeric_limits<int>::min(), std::numeric_limits<int>::min(),
                              probe.bottom, probe.right)),
          mLow(_mm_set_epi32(probe.top, probe.left, std::numeric_limits<int>::max(),
                             std::numeric_limits<int>::max())) {}

    /// Bit 4 * k is set when the k-th of four rectangles overlaps.
    [[nodiscard]] unsigned Four(const Rect* rects) const noexcept {
        unsigned bits =
            LaneBits(Lanes(rects), Lanes(rects + 1), Lanes(rects + 2), Lanes(rects + 3));
        bits &= bits >> 1;
        return bits & bits >> 2 & 0x1111;
    }
    [[nodiscard]] bool One(const Rect* rect) const noexcept {
        return _mm_movemask_epi8(Lanes(rect)) == 0xFFFF;
    }

  private:
    // Left and top below the probe's far edges, right and bottom above its near ones.
    [[nodiscard]] __m128i Lanes(const Rect* rect) const noexcept {
        const __m128i value = Load(rect);
        return _mm_or_si128(_mm_cmpgt_epi32(mHigh, value), _mm_cmpgt_epi32(value, mLow));
    }

    __m128i mHigh;
    __m128i mLow;
};

/// Finds rectangles that share both rows' edges or both columns' edges with one.
class EdgeProbe {
  public:
    explicit EdgeProbe(const Rect& probe) noexcept : mProbe(Load(&probe)) {}
    [[nodiscard]] unsigned Four(const Rect* rects) const noexcept {
        const unsigned bits =
            LaneBits(Lanes(rects), Lanes(rects + 1), Lanes(rects + 2), Lanes(rects + 3));
        const unsigned pairs = bits & bits >> 2; // left and right, top and bottom
        return (pairs | pairs >> 1) & 0x1111;
    }
    [[nodiscard]] bool One(const Rect* rect) const noexcept {
        const int bits = _mm_movemask_epi8(Lanes(rect));
        return (bits & 0x0F0F) == 0x0F0F || (bits & 0xF0F0) == 0xF0F0;
    }

  private:
    [[nodiscard]] __m128i Lanes(const Rect* rect) const noexcept {
        return _mm_cmpeq_epi32(Load(rect), mProbe);
    }
    __m128i mProbe;
};

/// A bounding box that grows.
class Bounds {
  public:
    Bounds() noexcept : mBox(Load(&kNowhere)) {}
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

class OverlapProbe {
  public:
    explicit OverlapProbe(const Rect& probe) noexcept : mProbe(probe) {}
    [[nodiscard]] unsigned Four(const Rect* rects) const noexcept {
        unsigned bits = 0;
        for (int i = 0; i < 4; ++i)
            bits |= static_cast<unsigned>(One(rects + i)) << 4 * i;
        return bits;
    }
    [[nodiscard]] bool One(const Rect* rect) const noexcept {
        return (rect->left < mProbe.right) & (rect->top < mProbe.bottom) &
               (rect->right > mProbe.left) & (rect->bottom > mProbe.top);
    }

  private:
    Rect mProbe;
};

class EdgeProbe {
  public:
    explicit EdgeProbe(const Rect& probe) noexcept : mProbe(probe) {}
    [[nodiscard]] unsigned Four(const Rect* rects) const noexcept {
        unsigned bits = 0;
        for (int i = 0; i < 4; ++i)
            bits |= static_cast<unsigned>(One(rects + i)) << 4 * i;
        return bits;
    }
    [[nodiscard]] bool One(const Rect* rect) const noexcept {
        return ((rect->left == mProbe.left) & (rect->right == mProbe.right)) |
               ((rect->top == mProbe.top) & (rect->bottom == mProbe.bottom));
    }

  private:
    Rect mProbe;
};

class Bounds {
  public:
    void Add(const Rect& rect) noexcept { mBox |= rect; }
    [[nodiscard]] Rect Get() const noexcept { return mBox; }

  private:
    Rect mBox = kNowhere;
};

#endif

/// The first index in [from, end) whose rectangle the probe hits, or end.
template <class Probe>
[[nodiscard]] inline std::size_t FindFirst(const Probe& probe, const Rect* rects, std::size_t from,
                                           std::size_t end) noexcept {
    for (; from + 4 <= end; from += 4) {
        if (const unsigned bits = probe.Four(rects + from))
            return from + static_cast<std::size_t>(std::countr_zero(bits)) / 4;
    }
    for (; from < end; ++from) {
        if (probe.One(rects + from))
            return from;
    }
    return end;
}

/// Calls found(index) for every index in [from, end) whose rectangle the probe hits, in order.
template <class Probe, class Found>
inline void ForEach(const Probe& probe, const Rect* rects, std::size_t from, std::size_t end,
                    Found found) {
    for (; from + 4 <= end; from += 4) {
        for (unsigned bits = probe.Four(rects + from); bits != 0; bits &= bits - 1)
            found(from + static_cast<std::size_t>(std::countr_zero(bits)) / 4);
    }
    for (; from < end; ++from) {
        if (probe.One(rects + from))
            found(from);
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
