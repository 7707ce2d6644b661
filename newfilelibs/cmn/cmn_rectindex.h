// "Which rectangles of a list overlap this one?", asked many times. Every eight rectangles of the
// list have a bounding box, in list order, and each box also knows how far down those up to it
// reach, and how far up those from it on. Lists of regions are sorted by top, so that these two
// rows of numbers rise within a narrow strip of each other, and two binary searches leave only the
// boxes at the height of what is asked about.
#pragma once

#include "newfilelibs/cmn/cmn_rectlist.h"
#include "newfilelibs/cmn/cmn_rectscan.h"
#include "newfilelibs/cmn/cmn_scratch.h"

/// A list and its boxes, none of it owned. Without boxes every rectangle is looked at.
struct Cmn_RectIndexView {
    static constexpr std::size_t kBlock = 8; ///< rectangles a box

    // Boxes are scanned by fours, so empty ones fill up the last four.
    [[nodiscard]] static constexpr std::size_t BlockCount(std::size_t count) noexcept {
        return (count + 4 * kBlock - 1) / (4 * kBlock) * 4;
    }
    /// A list's boxes, and behind them how far each reaches, in a rectangle of its own.
    [[nodiscard]] static constexpr std::size_t BoxCount(std::size_t count) noexcept {
        return 2 * BlockCount(count);
    }

    Cmn_RectIndexView(const Cmn_Rect<int>* rects, std::size_t count,
                      const Cmn_Rect<int>* boxes = nullptr) noexcept
        : mRects(rects), mCount(count), mBlocks(boxes),
          mReach(boxes ? boxes + BlockCount(count) : nullptr) {}
    /// With the boxes that the list has.
    explicit Cmn_RectIndexView(const Cmn_RectList& list) noexcept
        : Cmn_RectIndexView(list.data(), list.size(), list.GetBoxes()) {}

    /// Fills the boxes of a whole list: BoxCount(count) of them.
    static void FillBoxes(const Cmn_Rect<int>* rects, std::size_t count,
                          Cmn_Rect<int>* boxes) noexcept;

    /// Calls found(index) for every rectangle that overlaps the probe with positive area, in order.
    template <class Found>
    void ForEach(const Cmn_Rect<int>& probe, Found found) const {
        if (probe.Empty())
            return;
        const Cmn_RectScan::OverlapProbe scan(probe);
        const auto check = [&](std::size_t index) {
            if (!mRects[index].Empty()) // the scan takes a flat one inside the probe for an overlap
                found(index);
            return false;
        };
        if (!mBlocks) {
            (void)Cmn_RectScan::Any(scan, mRects, 0, mCount, check);
            return;
        }
        const auto enterBlock = [&](std::size_t block) {
            const std::size_t start = block * kBlock;
            return Cmn_RectScan::Any(scan, mRects, start, std::min(mCount, start + kBlock), check);
        };
        (void)Cmn_RectScan::Any(scan, mBlocks, FirstReaching(probe.top), FirstBelow(probe.bottom),
                                enterBlock);
    }

    /// Whether any rectangle overlaps the probe with positive area.
    [[nodiscard]] bool Touches(const Cmn_Rect<int>& probe) const noexcept;

    const Cmn_Rect<int>* mRects;
    std::size_t mCount;
    const Cmn_Rect<int>* mBlocks;
    // By block: in bottom the lowest edge of it and those before, in top the highest edge of it and
    // those after it.
    const Cmn_Rect<int>* mReach;

  private:
    // The first block up to which something reaches below a line.
    [[nodiscard]] std::size_t FirstReaching(int y) const noexcept;
    // The first block from which on nothing reaches above a line.
    [[nodiscard]] std::size_t FirstBelow(int y) const noexcept;
};

/// Boxes for a list that stays as it is while they are used.
class Cmn_RectIndex {
  public:
    /// Uses the boxes that the list has, or makes its own where they are worth it.
    explicit Cmn_RectIndex(const Cmn_RectIndexView& list);
    [[nodiscard]] const Cmn_RectIndexView& View() const noexcept { return mView; }

  private:
    Cmn_Scratch<Cmn_Rect<int>, 32> mBoxes;
    Cmn_RectIndexView mView;
};
