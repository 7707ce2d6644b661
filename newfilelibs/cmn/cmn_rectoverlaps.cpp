#include "newfilelibs/cmn/cmn_rectoverlaps.h"

namespace {

using Rect = Cmn_Rect<int>;
using Found = Cmn_Scratch<std::uint32_t, 64>;

// Rectangles that are looked at together.
constexpr std::size_t kBlock = 16;

// A rectangle's first column and row and its last ones, as distances from a corner.
struct Coarse {
    std::int16_t mLeft;
    std::int16_t mTop;
    std::int16_t mRight;
    std::int16_t mLow;
};
constexpr int kDistanceBits = 14; // so that one more is left for what is beyond
constexpr std::int16_t kBeyond = std::numeric_limits<std::int16_t>::max();

std::uint32_t Distance(int from, int to) noexcept {
    return static_cast<std::uint32_t>(to) - static_cast<std::uint32_t>(from);
}

// How many bits too many distances within the hull have.
int FindShift(const Rect& hull) noexcept {
    const std::uint32_t longest =
        std::max(Distance(hull.left, hull.right), Distance(hull.top, hull.bottom));
    return std::max(static_cast<int>(std::bit_width(longest)) - kDistanceBits, 0);
}

#if defined(__SSE2__)

// Makes the rectangles within a hull coarse; where that is too large for the bits, in steps of
// several pixels. Of empty rectangles it does not matter what comes out.
class Scale {
  public:
    explicit Scale(const Rect& hull) noexcept
        : mCorner(_mm_set_epi32(Cmn_WrappingAdd(hull.top, 1), Cmn_WrappingAdd(hull.left, 1),
                                hull.top, hull.left)),
          mShift(_mm_cvtsi32_si128(FindShift(hull))) {}

    void Put(const Rect& rect, Coarse& coarse) const noexcept {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(&coarse), GetTwice(rect));
    }
    [[nodiscard]] __m128i GetTwice(const Rect& rect) const noexcept {
        const __m128i distances =
            _mm_srl_epi32(_mm_sub_epi32(Cmn_RectScan::Load(&rect), mCorner), mShift);
        return _mm_packs_epi32(distances, distances);
    }

  private:
    __m128i mCorner;
    __m128i mShift;
};

// Compares one rectangle with sixteen: like Cmn_RectScan::OverlapProbe, with two in a vector.
class CoarseProbe {
  public:
    CoarseProbe(const Rect& rect, const Scale& scale) noexcept
        : mLimits(_mm_add_epi16(_mm_shuffle_epi32(scale.GetTwice(rect), _MM_SHUFFLE(2, 3, 0, 1)),
                                _mm_set_epi16(-1, -1, 0, 0, -1, -1, 0, 0))) {}

    /// A bit for each that may overlap it.
    [[nodiscard]] unsigned Sixteen(const Coarse* rects) const noexcept {
        const __m128i hits = _mm_packs_epi16(_mm_packs_epi32(Four(rects), Four(rects + 4)),
                                             _mm_packs_epi32(Four(rects + 8), Four(rects + 12)));
        return static_cast<unsigned>(_mm_movemask_epi8(hits));
    }

  private:
    [[nodiscard]] __m128i Beyond(const Coarse* two) const noexcept {
        return _mm_cmpgt_epi16(_mm_load_si128(reinterpret_cast<const __m128i*>(two)), mLimits);
    }
    [[nodiscard]] __m128i Four(const Coarse* four) const noexcept {
        return _mm_cmpeq_epi32(_mm_packs_epi16(Beyond(four), Beyond(four + 2)),
                               _mm_set1_epi32(static_cast<int>(0xFFFF0000U)));
    }
    __m128i mLimits;
};

#else

class Scale {
  public:
    explicit Scale(const Rect& hull) noexcept : mHull(hull), mShift(FindShift(hull)) {}
    void Put(const Rect& rect, Coarse& coarse) const noexcept {
        coarse = {Shifted(Distance(mHull.left, rect.left)), Shifted(Distance(mHull.top, rect.top)),
                  Shifted(Distance(mHull.left, rect.right) - 1),
                  Shifted(Distance(mHull.top, rect.bottom) - 1)};
    }

  private:
    [[nodiscard]] std::int16_t Shifted(std::uint32_t distance) const noexcept {
        return static_cast<std::int16_t>(distance >> mShift);
    }
    Rect mHull;
    int mShift;
};

class CoarseProbe {
  public:
    CoarseProbe(const Rect& rect, const Scale& scale) noexcept { scale.Put(rect, mCoarse); }
    [[nodiscard]] unsigned Sixteen(const Coarse* rects) const noexcept {
        unsigned hits = 0;
        for (std::size_t i = 0; i < kBlock; ++i) {
            const bool hit = (rects[i].mLeft <= mCoarse.mRight) & (rects[i].mTop <= mCoarse.mLow) &
                             (rects[i].mRight >= mCoarse.mLeft) & (rects[i].mLow >= mCoarse.mTop);
            hits |= static_cast<unsigned>(hit) << i;
        }
        return hits;
    }

  private:
    Coarse mCoarse;
};

#endif

// The second list, made ready to be asked about one rectangle of the first after the other.
class Sweep {
  public:
    Sweep(const Rect* rects, std::size_t count, const Rect& hull) : mRects(rects), mScale(hull) {
        const std::size_t blockCount = (count + kBlock - 1) / kBlock;
        mBlocks.Resize(blockCount + 1);
        for (std::size_t i = 0; i < blockCount; ++i)
            Fill(mBlocks[i], rects + i * kBlock, std::min(kBlock, count - i * kBlock));
        for (std::size_t i = 1; i < blockCount; ++i)
            mBlocks[i].mBottomUpToHere =
                std::max(mBlocks[i].mBottom, mBlocks[i - 1].mBottomUpToHere);
        Block& last = mBlocks[blockCount];
        last.mBottomUpToHere = last.mTopFromHere = std::numeric_limits<int>::max();
        for (std::size_t i = blockCount; i-- > 1;)
            mBlocks[i - 1].mTopFromHere =
                std::min(mBlocks[i - 1].mTopFromHere, mBlocks[i].mTopFromHere);
    }

    /// Appends the indices of all that overlap a rectangle, which is not empty.
    void Find(const Rect& rect, Found& found) {
        const CoarseProbe probe(rect, mScale);
        MoveTo(rect.top);
        for (const Block* block = &mBlocks[mFirst]; block->mTopFromHere < rect.bottom; ++block) {
            if (block->mBottom <= rect.top)
                continue;
            if (const unsigned hits = probe.Sixteen(block->mRects))
                Append(static_cast<std::size_t>(block - mBlocks.data()) * kBlock, hits, rect,
                       found);
        }
    }

  private:
    struct Block {
        alignas(16) Coarse mRects[kBlock];
        int mBottom;         // the lowest edge of all
        int mBottomUpToHere; // of these and all before
        int mTopFromHere;    // the highest edge of these and all after
    };

    void Fill(Block& block, const Rect* rects, std::size_t count) noexcept {
        int top = std::numeric_limits<int>::max();
        int bottom = std::numeric_limits<int>::min();
        for (std::size_t i = 0; i < count; ++i) {
            mScale.Put(rects[i], block.mRects[i]);
            top = std::min(top, rects[i].top);
            bottom = std::max(bottom, rects[i].bottom);
        }
        for (std::size_t i = count; i < kBlock; ++i)
            block.mRects[i] = {kBeyond, kBeyond, kBeyond, kBeyond};
        block.mTopFromHere = top;
        block.mBottom = block.mBottomUpToHere = bottom;
    }

    // To the first block up to which something reaches below a line: from one rectangle to the next
    // that is not far. The last block is beyond every line.
    void MoveTo(int line) noexcept {
        while (mFirst > 0 && mBlocks[mFirst - 1].mBottomUpToHere > line)
            --mFirst;
        while (mBlocks[mFirst].mBottomUpToHere <= line)
            ++mFirst;
    }

    // Coarse ones may be neighbours, and empty ones may be anywhere.
    void Append(std::size_t start, unsigned hits, const Rect& rect, Found& found) const {
        for (; hits != 0; hits &= hits - 1) {
            const std::size_t index = start + static_cast<std::size_t>(std::countr_zero(hits));
            if (mRects[index].Overlaps(rect))
                found.Append(static_cast<std::uint32_t>(index));
        }
    }

    const Rect* mRects; // not owned
    Scale mScale;
    std::size_t mFirst = 0;
    Cmn_Scratch<Block, 4> mBlocks;
};

// Asks about each rectangle of the list that reaches the height of the others.
template <class Find>
void FindEach(const Cmn_RectIndexView& list, const Rect& otherBounds, Cmn_RectOverlaps& overlaps,
              Find find) {
    const auto [from, end] = list.FindWindow(otherBounds.top, otherBounds.bottom);
    for (std::size_t i = from; i < end; ++i) {
        if (list.mRects[i].Empty())
            continue;
        const auto first = static_cast<std::uint32_t>(overlaps.mOthers.size());
        find(list.mRects[i]);
        const auto last = static_cast<std::uint32_t>(overlaps.mOthers.size());
        if (last > first)
            overlaps.mSpans.Append({static_cast<std::uint32_t>(i), first, last});
    }
}

// Of a second list that has only one.
void FindOverlapsOfOne(const Cmn_RectIndexView& list, const Rect& other,
                       Cmn_RectOverlaps& overlaps) {
    overlaps.mOthers.Append(0);
    list.ForEach(other, [&](std::size_t i) {
        overlaps.mSpans.Append({static_cast<std::uint32_t>(i), 0, 1});
    });
}

} // namespace

void Cmn_FindOverlaps(const Cmn_RectIndexView& list, const Rect& bounds,
                      const Cmn_RectIndexView& others, const Rect& otherBounds,
                      Cmn_RectOverlaps& overlaps) {
    if (others.mCount == 1) {
        FindOverlapsOfOne(list, others.mRects[0], overlaps);
        return;
    }
    // Getting the others ready for a sweep costs about as much as looking through them three times.
    if (list.mCount <= 3 || others.mCount <= kBlock) {
        FindEach(list, otherBounds, overlaps, [&](const Rect& rect) {
            others.ForEach(rect, [&](std::size_t j) {
                overlaps.mOthers.Append(static_cast<std::uint32_t>(j));
            });
        });
        return;
    }
    Sweep sweep(others.mRects, others.mCount, bounds | otherBounds);
    FindEach(list, otherBounds, overlaps,
             [&](const Rect& rect) { sweep.Find(rect, overlaps.mOthers); });
}
