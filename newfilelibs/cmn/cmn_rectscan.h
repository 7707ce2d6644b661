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

/// Tells rectangles that overlap one or share at least a corner with it.
class TouchProbe {
  public:
    explicit TouchProbe(const Rect& probe) noexcept
        : mFar(TurnedRound(_mm_shuffle_epi32(Load(&probe), _MM_SHUFFLE(1, 0, 3, 2)))) {}

    /// Bit 4 * k is set when the k-th of four rectangles does.
    [[nodiscard]] unsigned Four(const Rect* rects) const noexcept {
        unsigned bits =
            LaneBits(Apart(rects), Apart(rects + 1), Apart(rects + 2), Apart(rects + 3));
        bits |= bits >> 1;
        return ~(bits | bits >> 2) & 0x1111;
    }
    [[nodiscard]] bool One(const Rect* rect) const noexcept {
        return _mm_movemask_epi8(Apart(rect)) == 0;
    }

  private:
    // Left and top beyond the probe's far edges, right and bottom short of its near ones: for the
    // latter the comparison is turned round.
    [[nodiscard]] __m128i Apart(const Rect* rect) const noexcept {
        return _mm_cmpgt_epi32(TurnedRound(Load(rect)), mFar);
    }
    // The upper two as their complements, which compare the other way.
    [[nodiscard]] static __m128i TurnedRound(__m128i value) noexcept {
        return _mm_xor_si128(value, _mm_set_epi32(-1, -1, 0, 0));
    }

    __m128i mFar;
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

class TouchProbe {
  public:
    explicit TouchProbe(const Rect& probe) noexcept : mProbe(probe) {}
    [[nodiscard]] unsigned Four(const Rect* rects) const noexcept {
        unsigned bits = 0;
        for (int i = 0; i < 4; ++i)
            bits |= static_cast<unsigned>(One(rects + i)) << 4 * i;
        return bits;
    }
    [[nodiscard]] bool One(const Rect* rect) const noexcept {
        return (rect->left <= mProbe.right) & (rect->top <= mProbe.bottom) &
               (rect->right >= mProbe.left) & (rect->bottom >= mProbe.top);
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
    Bounds() noexcept : Bounds(kNowhere) {}
    explicit Bounds(const Rect& start) noexcept : mBox(start) {}
    void Add(const Rect& rect) noexcept { mBox |= rect; }
    [[nodiscard]] Rect Get() const noexcept { return mBox; }

  private:
    Rect mBox;
};

#endif

/// Tells rectangles that overlap one of positive size: those that touch what it has inside its
/// outermost pixels' far sides.
class OverlapProbe : public TouchProbe {
  public:
    explicit OverlapProbe(const Rect& probe) noexcept
        : TouchProbe(Rect(probe.left + 1, probe.top + 1, probe.right - 1, probe.bottom - 1)) {}
};

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

/// Whether found(index) says yes to an index in [from, end) whose rectangle the probe hits; asks in
/// order and no further than needed. Rectangles behind the end up to a multiple of four from the
/// start are in memory, whatever they are.
template <class Probe, class Found>
[[nodiscard]] inline bool Any(const Probe& probe, const Rect* rects, std::size_t from,
                              std::size_t end, Found found) {
    for (; from < end; from += 4) {
        for (unsigned bits = probe.Four(rects + from); bits != 0; bits &= bits - 1) {
            const std::size_t index = from + static_cast<std::size_t>(std::countr_zero(bits)) / 4;
            if (index < end && found(index))
                return true;
        }
    }
    return false;
}

/// Calls found(index) for every rectangle that touches the probe's, in order, until it answers
/// false. The memory goes on to a multiple of four rectangles, as that of lists does, whatever
/// stands there.
template <class Found>
inline void ForEachTouching(const TouchProbe& probe, const Rect* rects, std::size_t count,
                            Found found) {
    for (std::size_t i = 0; i < count; i += 4) {
        unsigned bits = probe.Four(rects + i);
        if (bits == 0) [[likely]]
            continue;
        for (; bits != 0; bits &= bits - 1) {
            const std::size_t index = i + static_cast<std::size_t>(std::countr_zero(bits)) / 4;
            if (index >= count || !found(index))
                return;
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
