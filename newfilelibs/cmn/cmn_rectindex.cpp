#include "newfilelibs/cmn/cmn_rectindex.h"

namespace {

using Rect = Cmn_Rect<int>;
using View = Cmn_RectIndexView;
using Cmn_RectScan::BoundsOf;

constexpr std::size_t kBlocksPerGroup = View::kGroup / View::kBlock;

} // namespace

void Cmn_RectIndexView::FillBoxes(const Rect* rects, std::size_t count, Rect* blocks,
                                  Rect* groups) noexcept {
    for (std::size_t i = 0; i < count; i += kBlock)
        blocks[i / kBlock] = BoundsOf(rects + i, std::min(kBlock, count - i));
    const std::size_t blockCount = BlockCount(count);
    for (std::size_t i = 0; i < blockCount; i += kBlocksPerGroup)
        groups[i / kBlocksPerGroup] =
            BoundsOf(blocks + i, std::min(kBlocksPerGroup, blockCount - i));
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

Cmn_RectIndex::Cmn_RectIndex(const Rect* rects, std::size_t count) : mView{rects, count} {
    if (count < View::kWorthwhile)
        return;
    const std::size_t blockCount = View::BlockCount(count);
    mBoxes.Resize(blockCount + View::GroupCount(count));
    mView.mBlocks = mBoxes.data();
    mView.mGroups = mBoxes.data() + blockCount;
    View::FillBoxes(rects, count, mBoxes.data(), mBoxes.data() + blockCount);
}

void Cmn_PendingRects::Append(const Rect& rect) {
    const std::size_t index = mRects.size();
    if (!mBlocks.empty()) {
        if (index % View::kBlock == 0)
            mBlocks.Append(Cmn_RectScan::kNowhere);
        if (index % View::kGroup == 0)
            mGroups.Append(Cmn_RectScan::kNowhere);
        mBlocks[index / View::kBlock] |= rect;
        mGroups[index / View::kGroup] |= rect;
    }
    mRects.Append(rect);
    if (mRects.size() == View::kWorthwhile)
        FillBoxes();
}

void Cmn_PendingRects::FillBoxes() {
    mBlocks.Resize(View::BlockCount(mRects.size()));
    mGroups.Resize(View::GroupCount(mRects.size()));
    View::FillBoxes(mRects.data(), mRects.size(), mBlocks.data(), mGroups.data());
}

void Cmn_PendingRects::Remove(std::size_t index) noexcept {
    mRects[index] = Cmn_RectScan::kNowhere;
    if (mBlocks.empty())
        return;
    RefreshBlock(index / View::kBlock);
    RefreshGroup(index / View::kGroup);
}

void Cmn_PendingRects::RefreshBlock(std::size_t block) noexcept {
    const std::size_t start = block * View::kBlock;
    mBlocks[block] = BoundsOf(mRects.data() + start, std::min(View::kBlock, mRects.size() - start));
}

void Cmn_PendingRects::RefreshGroup(std::size_t group) noexcept {
    const std::size_t start = group * kBlocksPerGroup;
    mGroups[group] =
        BoundsOf(mBlocks.data() + start, std::min(kBlocksPerGroup, mBlocks.size() - start));
}

std::size_t Cmn_PendingRects::FindFirst(const Rect& probe, std::size_t from) const noexcept {
    View view{mRects.data(), mRects.size()};
    if (!mBlocks.empty()) {
        view.mBlocks = mBlocks.data();
        view.mGroups = mGroups.data();
    }
    return view.FindFirst(probe, from);
}
