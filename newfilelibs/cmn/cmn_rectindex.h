// "Which rectangles of a list overlap this one?", asked of a list again and again. For every
// sixteen rectangles, in list order, it is known how far down those up to them reach, and how far
// up those from them on. Lists of regions are sorted by top, so that these two rows of numbers rise
// within a narrow strip of each other: a search in the one leads to the height of what is asked
// about, and the other tells where to stop.
#pragma once

#include "newfilelibs/cmn/cmn_rectlist.h"
#include "newfilelibs/cmn/cmn_rectscan.h"

/// A list and its reach, none of it owned. Without the reach every rectangle is looked at.
struct Cmn_RectIndexView {
    static constexpr std::size_t kBlock = 16; ///< rectangles that share an entry of the reach

    [[nodiscard]] static constexpr std::size_t BlockCount(std::size_t count) noexcept {
        return (count + kBlock - 1) / kBlock;
    }
    /// How many numbers a list's reach has.
    [[nodiscard]] static constexpr std::size_t ReachCount(std::size_t count) noexcept {
        return 2 * BlockCount(count);
    }

    Cmn_RectIndexView(const Cmn_Rect<int>* rects, std::size_t count,
                      const int* reach = nullptr) noexcept
        : mRects(rects), mCount(count), mReach(reach) {}
    /// With the reach that the list has.
    explicit Cmn_RectIndexView(const Cmn_RectList& list) noexcept
        : Cmn_RectIndexView(list.data(), list.size(), list.GetReach()) {}

    /// Fills the reach of a whole list: ReachCount(count) numbers.
    static void FillReach(const Cmn_Rect<int>* rects, std::size_t count, int* reach) noexcept;

    /// A part of the list with all rectangles that reach below a line and begin above another one;
    /// it starts at a multiple of four.
    struct Window {
        std::size_t mFrom;
        std::size_t mEnd;
    };
    [[nodiscard]] Window FindWindow(int top, int bottom) const noexcept {
        if (!mReach)
            return {0, mCount};
        const std::size_t blocks = CountAbove(Cmn_WrappingSubtract(bottom, 1));
        return {FirstBelow(top, blocks) * kBlock, std::min(mCount, blocks * kBlock)};
    }

    /// Calls found(index) for every rectangle that overlaps the probe with positive area, in order.
    template <class Found>
    void ForEach(const Cmn_Rect<int>& probe, Found found) const {
        if (probe.Empty())
            return;
        const auto [from, end] = FindWindow(probe.top, probe.bottom);
        Cmn_RectScan::ForEachHit(Cmn_RectScan::OverlapProbe(probe), mRects, from, end,
                                 [&](std::size_t index) {
                                     if (!mRects[index].Empty())
                                         found(index);
                                 });
    }

    /// Whether the list has a rectangle with left <= lastLeft, top <= lastTop, right > right and
    /// bottom > bottom.
    [[nodiscard]] bool HasAny(int lastLeft, int lastTop, int right, int bottom) const noexcept;

    const Cmn_Rect<int>* mRects;
    std::size_t mCount;
    // By block the highest edge of it and those after it; and then by block the lowest edge of it
    // and those before.
    const int* mReach;

  private:
    // How many blocks it takes until no rectangle begins at a line or above it any more.
    [[nodiscard]] std::size_t CountAbove(int line) const noexcept;
    // The first block, up to the given one, from which on some rectangle may end below a line.
    [[nodiscard]] std::size_t FirstBelow(int line, std::size_t block) const noexcept {
        const int* lowest = mReach + BlockCount(mCount);
        while (block > 0 && lowest[block - 1] > line)
            --block;
        return block;
    }
};
