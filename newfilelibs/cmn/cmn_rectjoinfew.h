// The joining pass for few rectangles, all of it in words of bits: no search structure is built and
// nothing is allocated.
#pragma once

#include <bit>

#include "newfilelibs/cmn/cmn_rectlist.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// A list of up to kMost disjoint rectangles of positive size that is to be joined as Cmn_JoinRects
/// tells.
///
/// Every rectangle has a number, which is its place in the list: merged ones get new numbers at the
/// end, and those merged away leave theirs. Sets of rectangles are words with a bit for each
/// number. A rectangle knows its neighbours, those that share a whole edge, as such a set; they are
/// found by comparing it with four others at a time, for which the edges lie in a row each.
class Cmn_FewRects {
  public:
    static constexpr std::size_t kMost = 32;

    [[nodiscard]] std::size_t size() const noexcept { return mCount; }

    /// The caller keeps within kMost.
    void Append(const Cmn_Rect<int>& rect) noexcept {
        mEdges[0][mCount] = rect.left;
        mEdges[1][mCount] = rect.top;
        mEdges[2][mCount] = rect.right;
        mEdges[3][mCount] = rect.bottom;
        ++mCount;
    }

    /// Merges what can be merged. Among the first `head` rectangles, and among the `next` ones
    /// after them, no two can.
    void Join(std::size_t head, std::size_t next) noexcept;

    /// The joined list, sorted, in place of what is there. The first `head` were sorted before.
    void MoveTo(Cmn_RectList& out, std::size_t head) const;

  private:
    using Set = std::uint64_t;
    enum Axis : int { kHorizontal = 0, kVertical = 1 };

    // Merging takes two away and adds one, so there are at most as many merges as rectangles.
    static constexpr std::size_t kNumbers = 2 * kMost;

    [[nodiscard]] static Set Bit(std::size_t number) noexcept { return Set{1} << number; }
    [[nodiscard]] static Set Below(std::size_t number) noexcept {
        return number < kNumbers ? Bit(number) - 1 : ~Set{0};
    }
    [[nodiscard]] static Set Above(std::size_t number) noexcept { return ~Set{1} << number; }
    [[nodiscard]] static std::size_t First(Set set) noexcept {
        return static_cast<std::size_t>(std::countr_zero(set));
    }
    [[nodiscard]] Cmn_Rect<int> Get(std::size_t number) const noexcept {
        return {mEdges[0][number], mEdges[1][number], mEdges[2][number], mEdges[3][number]};
    }

    template <Axis axis>
    [[nodiscard]] Set FindNeighbours(std::size_t number, std::size_t end) const noexcept;
    void LinkBoth(std::size_t number, std::size_t end) noexcept;
    template <Axis axis>
    void Link(std::size_t number, Set neighbours) noexcept;
    template <Axis axis>
    bool Sweep() noexcept;
    template <Axis axis>
    void Merge(std::size_t a, std::size_t b) noexcept;
    template <Axis axis>
    void LinkMerged(std::size_t from) noexcept;

    std::size_t mCount = 0; // numbers given
    Set mThere = 0;
    Set mLinked[2] = {0, 0}; // along an axis: those that have had a neighbour
    // By axis and number; may name rectangles that are gone. Not set before the number is given.
    Set mNeighbours[2][kNumbers];
    alignas(16) int mEdges[4][kNumbers]; // left, top, right, bottom
};
