// "Which rectangles of a list overlap this one?", asked for each rectangle of another list in turn.
// What both lists have in common makes it cheap: they are sorted by top, so that the rectangles to
// look at move down the list along with the questions; and all lie in one drawing, so that 16 bits
// are enough for a coordinate and a vector compares eight.
#pragma once

#include <bit>

#include "newfilelibs/cmn/cmn_rect.h"
#include "newfilelibs/cmn/cmn_scratch.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Coordinates as distances from a corner that fit 15 bits, in coarser steps where they would not.
class Cmn_CoarseScale {
  public:
    /// For the pixels of a rectangle.
    explicit Cmn_CoarseScale(const Cmn_Rect<int>& hull) noexcept
        : mLeft(static_cast<std::uint32_t>(hull.left)), mTop(static_cast<std::uint32_t>(hull.top)) {
        const std::uint64_t width = static_cast<std::uint32_t>(hull.right) - mLeft;
        const std::uint64_t height = static_cast<std::uint32_t>(hull.bottom) - mTop;
        mShift = std::max(static_cast<int>(std::bit_width(std::max(width, height) + 1)) - kBits, 0);
    }
    [[nodiscard]] std::int16_t Column(int x) const noexcept { return Distance(x, mLeft); }
    [[nodiscard]] std::int16_t Row(int y) const noexcept { return Distance(y, mTop); }

    /// More than any distance.
    static constexpr std::int16_t kBeyond = std::numeric_limits<std::int16_t>::max();

  private:
    static constexpr int kBits = 15;
    [[nodiscard]] std::int16_t Distance(int value, std::uint32_t from) const noexcept {
        return static_cast<std::int16_t>((static_cast<std::uint32_t>(value) - from) >> mShift);
    }
    std::uint32_t mLeft;
    std::uint32_t mTop;
    int mShift;
};

/// A list that stays as it is while it is asked. Neither list need be sorted; then the answers take
/// longer. Memory that runs out raises -108.
class Cmn_RectSweep {
  public:
    /// The hull holds all rectangles of this list and all that it is asked about, but for those
    /// that are empty.
    Cmn_RectSweep(const Cmn_Rect<int>* rects, std::size_t count, const Cmn_Rect<int>& hull);

    /// Calls found(index) for every rectangle that overlaps the probe with positive area, in order.
    template <class Found>
    void ForEach(const Cmn_Rect<int>& probe, Found found) {
        if (probe.Empty())
            return;
        MoveTo(probe.top);
        const CoarseProbe coarse(probe, mScale);
        for (std::size_t i = mFirst; i < mBlocks.size(); ++i) {
            const Block& block = mBlocks[i];
            if (block.mTopFromHere >= probe.bottom)
                break;
            if (block.mBottom <= probe.top)
                continue;
            for (unsigned hits = coarse.Hits(block); hits != 0; hits &= hits - 1) {
                const std::size_t index =
                    i * kBlock + static_cast<std::size_t>(std::countr_zero(hits));
                if (mRects[index].Overlaps(probe)) // coarse ones may be neighbours
                    found(index);
            }
        }
    }

    static constexpr std::size_t kBlock = 16;

  private:
    // Sixteen rectangles of the list: the first and the last column and row of each, those of
    // missing ones beyond all others; and how far they reach.
    struct Block {
        alignas(16) std::int16_t mLeft[kBlock];
        alignas(16) std::int16_t mTop[kBlock];
        alignas(16) std::int16_t mRight[kBlock];
        alignas(16) std::int16_t mLow[kBlock];
        int mBottom;         // the lowest edge
        int mBottomUpToHere; // the lowest edge of these and all before
        int mTopFromHere;    // the highest edge of these and all after
    };

#if defined(__SSE2__)
    class CoarseProbe {
      public:
        CoarseProbe(const Cmn_Rect<int>& probe, const Cmn_CoarseScale& scale) noexcept
            : mLeft(_mm_set1_epi16(scale.Column(probe.left))),
              mTop(_mm_set1_epi16(scale.Row(probe.top))),
              mRight(_mm_set1_epi16(scale.Column(probe.right - 1))),
              mLow(_mm_set1_epi16(scale.Row(probe.bottom - 1))) {}

        /// A bit for each rectangle that may overlap the probe.
        [[nodiscard]] unsigned Hits(const Block& block) const noexcept {
            const __m128i apart = _mm_packs_epi16(Apart(block, 0), Apart(block, kBlock / 2));
            return ~static_cast<unsigned>(_mm_movemask_epi8(apart)) & 0xFFFF;
        }

      private:
        static __m128i Load(const std::int16_t* eight) noexcept {
            return _mm_load_si128(reinterpret_cast<const __m128i*>(eight));
        }
        [[nodiscard]] __m128i Apart(const Block& block, std::size_t from) const noexcept {
            return _mm_or_si128(_mm_or_si128(_mm_cmpgt_epi16(Load(block.mLeft + from), mRight),
                                             _mm_cmpgt_epi16(mLeft, Load(block.mRight + from))),
                                _mm_or_si128(_mm_cmpgt_epi16(Load(block.mTop + from), mLow),
                                             _mm_cmpgt_epi16(mTop, Load(block.mLow + from))));
        }
        __m128i mLeft;
        __m128i mTop;
        __m128i mRight;
        __m128i mLow;
    };
#else
    class CoarseProbe {
      public:
        CoarseProbe(const Cmn_Rect<int>& probe, const Cmn_CoarseScale& scale) noexcept
            : mLeft(scale.Column(probe.left)), mTop(scale.Row(probe.top)),
              mRight(scale.Column(probe.right - 1)), mLow(scale.Row(probe.bottom - 1)) {}
        [[nodiscard]] unsigned Hits(const Block& block) const noexcept {
            unsigned hits = 0;
            for (std::size_t i = 0; i < kBlock; ++i) {
                const bool hit = (block.mLeft[i] <= mRight) & (mLeft <= block.mRight[i]) &
                                 (block.mTop[i] <= mLow) & (mTop <= block.mLow[i]);
                hits |= static_cast<unsigned>(hit) << i;
            }
            return hits;
        }

      private:
        std::int16_t mLeft;
        std::int16_t mTop;
        std::int16_t mRight;
        std::int16_t mLow;
    };
#endif

    void FillBlock(Block& block, const Cmn_Rect<int>* rects, std::size_t count) noexcept;

    // To the first block that reaches below a line. From one question to the next it is not far.
    void MoveTo(int line) noexcept {
        while (mFirst > 0 && mBlocks[mFirst - 1].mBottomUpToHere > line)
            --mFirst;
        while (mFirst < mBlocks.size() && mBlocks[mFirst].mBottomUpToHere <= line)
            ++mFirst;
    }

    const Cmn_Rect<int>* mRects; // not owned
    Cmn_CoarseScale mScale;
    Cmn_Scratch<Block, 4> mBlocks;
    std::size_t mFirst = 0;
};
