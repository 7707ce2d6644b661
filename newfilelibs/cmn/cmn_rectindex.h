// "Which is the first rectangle of a list that overlaps this one?", asked many times. Every eight
// rectangles of the list have a bounding box and every eight boxes another, in list order, so a
// search goes down the list and leaves out what lies elsewhere. Lists of regions are sorted by top,
// which makes eight neighbours a flat strip: of n rectangles spread evenly some sqrt(n) are looked
// at.
#pragma once

#include "newfilelibs/cmn/cmn_rectlist.h"
#include "newfilelibs/cmn/cmn_rectscan.h"
#include "newfilelibs/cmn/cmn_scratch.h"

/// A list and its boxes, none of it owned. Without boxes every rectangle is looked at.
struct Cmn_RectIndexView {
    static constexpr std::size_t kBlock = 8;  ///< rectangles a box
    static constexpr std::size_t kGroup = 64; ///< rectangles a box of boxes

    // Boxes are scanned by fours, so empty ones fill up the last four.
    [[nodiscard]] static constexpr std::size_t BlockCount(std::size_t count) noexcept {
        return (count + 4 * kBlock - 1) / (4 * kBlock) * 4;
    }
    [[nodiscard]] static constexpr std::size_t GroupCount(std::size_t count) noexcept {
        return (count + 4 * kGroup - 1) / (4 * kGroup) * 4;
    }
    /// Boxes and boxes of boxes together; the former come first.
    [[nodiscard]] static constexpr std::size_t BoxCount(std::size_t count) noexcept {
        return BlockCount(count) + GroupCount(count);
    }

    Cmn_RectIndexView(const Cmn_Rect<int>* rects, std::size_t count,
                      const Cmn_Rect<int>* boxes = nullptr) noexcept
        : mRects(rects), mCount(count), mBlocks(boxes),
          mGroups(boxes ? boxes + BlockCount(count) : nullptr) {}
    /// With the boxes that the list has.
    explicit Cmn_RectIndexView(const Cmn_RectList& list) noexcept
        : Cmn_RectIndexView(list.data(), list.size(), list.GetBoxes()) {}

    /// Fills the boxes of a whole list: BlockCount(count) and GroupCount(count) of them.
    static void FillBoxes(const Cmn_Rect<int>* rects, std::size_t count, Cmn_Rect<int>* blocks,
                          Cmn_Rect<int>* groups) noexcept;

    /// Calls found(index) for every rectangle that overlaps the probe with positive area, in order.
    template <class Found>
    void ForEach(const Cmn_Rect<int>& probe, Found found) const {
        if (probe.Empty())
            return;
        const Cmn_RectScan::OverlapProbe scan(probe);
        const auto check = [&](std::size_t index) {
            if (!mRects[index].Empty()) // see FindFirst
                found(index);
        };
        if (!mBlocks) {
            Cmn_RectScan::ForEach(scan, mRects, 0, mCount, check);
            return;
        }
        const auto enterBlock = [&](std::size_t block) {
            Cmn_RectScan::ForEach(scan, mRects, block * kBlock,
                                  std::min(mCount, (block + 1) * kBlock), check);
        };
        Cmn_RectScan::ForEach(scan, mGroups, 0, GroupCount(mCount), [&](std::size_t group) {
            constexpr std::size_t blocks = kGroup / kBlock;
            Cmn_RectScan::ForEach(scan, mBlocks, group * blocks,
                                  std::min(BlockCount(mCount), (group + 1) * blocks), enterBlock);
        });
    }

    /// Whether any rectangle overlaps the probe with positive area.
    [[nodiscard]] bool Touches(const Cmn_Rect<int>& probe) const noexcept;

    /// The first index from `from` on whose rectangle overlaps the probe with positive area, or the
    /// count.
    [[nodiscard]] std::size_t FindFirst(const Cmn_Rect<int>& probe,
                                        std::size_t from) const noexcept {
        if (probe.Empty())
            return mCount;
        const Cmn_RectScan::OverlapProbe scan(probe);
        // The scan takes a flat rectangle inside the probe for an overlap; such ones are passed
        // over.
        while ((from = Search(scan, from)) < mCount && mRects[from].Empty())
            ++from;
        return from;
    }

    const Cmn_Rect<int>* mRects;
    std::size_t mCount;
    const Cmn_Rect<int>* mBlocks;
    const Cmn_Rect<int>* mGroups;

  private:
    [[nodiscard]] std::size_t Search(const Cmn_RectScan::OverlapProbe& scan,
                                     std::size_t from) const noexcept {
        return mBlocks ? SearchBoxes(scan, from)
                       : Cmn_RectScan::FindFirst(scan, mRects, from, mCount);
    }
    [[nodiscard]] bool TouchesInBlock(const Cmn_RectScan::OverlapProbe& scan,
                                      std::size_t block) const noexcept;
    [[nodiscard]] std::size_t SearchBoxes(const Cmn_RectScan::OverlapProbe& scan,
                                          std::size_t from) const noexcept;
    [[nodiscard]] std::size_t SearchBlocks(const Cmn_RectScan::OverlapProbe& scan,
                                           std::size_t block, std::size_t endBlock) const noexcept;
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
