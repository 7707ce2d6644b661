#include "newfilelibs/cmn/cmn_rectindex.h"

namespace {

using Rect = Cmn_Rect<int>;
using View = Cmn_RectIndexView;
using Cmn_RectScan::BoundsOf;

constexpr std::size_t kBlocksPerGroup = View::kGroup / View::kBlock;

} // namespace

void Cmn_RectIndexView::FillBoxes(const Rect* rects, std::size_t count, Rect* blocks,
                                  Rect* groups) noexcept {
    const std::size_t blockCount = BlockCount(count);
    for (std::size_t i = 0; i < blockCount; ++i) {
        const std::size_t start = std::min(count, i * kBlock);
        blocks[i] = BoundsOf(rects + start, std::min(kBlock, count - start));
    }
    const std::size_t groupCount = GroupCount(count);
    for (std::size_t i = 0; i < groupCount; ++i) {
        const std::size_t start = std::min(blockCount, i * kBlocksPerGroup);
        groups[i] = BoundsOf(blocks + start, std::min(kBlocksPerGroup, blockCount - start));
    }
}

// The same walk as ForEach, left at the first one.
bool Cmn_RectIndexView::Touches(const Rect& probe) const noexcept {
    if (!mBlocks || probe.Empty())
        return FindFirst(probe, 0) < mCount;
    const Cmn_RectScan::OverlapProbe scan(probe);
    const std::size_t groupCount = GroupCount(mCount);
    for (std::size_t group = 0;
         (group = Cmn_RectScan::FindFirst(scan, mGroups, group, groupCount)) < groupCount;
         ++group) {
        std::size_t block = group * kBlocksPerGroup;
        const std::size_t end = std::min(BlockCount(mCount), block + kBlocksPerGroup);
        for (; (block = Cmn_RectScan::FindFirst(scan, mBlocks, block, end)) < end; ++block) {
            if (TouchesInBlock(scan, block))
                return true;
        }
    }
    return false;
}

bool Cmn_RectIndexView::TouchesInBlock(const Cmn_RectScan::OverlapProbe& scan,
                                       std::size_t block) const noexcept {
    const std::size_t end = std::min(mCount, (block + 1) * kBlock);
    std::size_t i = block * kBlock;
    while ((i = Cmn_RectScan::FindFirst(scan, mRects, i, end)) < end) {
        if (!mRects[i].Empty())
            return true;
        ++i;
    }
    return false;
}

std::size_t Cmn_RectIndexView::SearchBlocks(const Cmn_RectScan::OverlapProbe& scan,
                                            std::size_t block,
                                            std::size_t endBlock) const noexcept {
    for (; (block = Cmn_RectScan::FindFirst(scan, mBlocks, block, endBlock)) < endBlock; ++block) {
        const std::size_t end = std::min(mCount, (block + 1) * kBlock);
        const std::size_t found = Cmn_RectScan::FindFirst(scan, mRects, block * kBlock, end);
        if (found < end)
            return found;
    }
    return mCount;
}

std::size_t Cmn_RectIndexView::SearchBoxes(const Cmn_RectScan::OverlapProbe& scan,
                                           std::size_t from) const noexcept {
    if (from >= mCount)
        return mCount;
    // The rest of the block, then of the group, that the search starts in.
    std::size_t block = (from + kBlock - 1) / kBlock;
    const std::size_t blockStart = std::min(mCount, block * kBlock);
    if (const std::size_t found = Cmn_RectScan::FindFirst(scan, mRects, from, blockStart);
        found < blockStart)
        return found;
    const std::size_t blockCount = BlockCount(mCount);
    std::size_t group = (block + kBlocksPerGroup - 1) / kBlocksPerGroup;
    if (const std::size_t found =
            SearchBlocks(scan, block, std::min(blockCount, group * kBlocksPerGroup));
        found < mCount)
        return found;
    const std::size_t groupCount = GroupCount(mCount);
    for (; (group = Cmn_RectScan::FindFirst(scan, mGroups, group, groupCount)) < groupCount;
         ++group) {
        block = group * kBlocksPerGroup;
        const std::size_t found =
            SearchBlocks(scan, block, std::min(blockCount, block + kBlocksPerGroup));
        if (found < mCount)
            return found;
    }
    return mCount;
}

Cmn_RectIndex::Cmn_RectIndex(const Cmn_RectIndexView& list) : mView(list) {
    const std::size_t count = list.mCount;
    if (list.mBlocks || count < Cmn_RectList::kBoxedFrom)
        return;
    mBoxes.Resize(Cmn_RectIndexView::BoxCount(count));
    Cmn_RectIndexView::FillBoxes(list.mRects, count, mBoxes.data(),
                                 mBoxes.data() + Cmn_RectIndexView::BlockCount(count));
    mView = Cmn_RectIndexView(list.mRects, count, mBoxes.data());
}
