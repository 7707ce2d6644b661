#include "newfilelibs/cmn/cmn_rectindex.h"

void Cmn_RectIndexView::FillReach(const Cmn_Rect<int>* rects, std::size_t count,
                                  int* reach) noexcept {
    const std::size_t blockCount = BlockCount(count);
    int* const lowest = reach + blockCount;
    int bottom = std::numeric_limits<int>::min();
    for (std::size_t block = 0; block < blockCount; ++block) {
        int top = std::numeric_limits<int>::max();
        const std::size_t end = std::min(count, (block + 1) * kBlock);
        for (std::size_t i = block * kBlock; i < end; ++i) {
            top = std::min(top, rects[i].top);
            bottom = std::max(bottom, rects[i].bottom);
        }
        reach[block] = top;
        lowest[block] = bottom;
    }
    for (std::size_t block = blockCount; block-- > 1;)
        reach[block - 1] = std::min(reach[block - 1], reach[block]);
}

// Halving without branches, as which way they would go is anyone's guess; the last few are counted.
std::size_t Cmn_RectIndexView::CountAbove(int line) const noexcept {
    constexpr std::size_t kCounted = 8;
    const int* from = mReach;
    std::size_t left = BlockCount(mCount);
    for (; left > kCounted; left -= left / 2)
        from += from[left / 2 - 1] <= line ? left / 2 : 0;
    std::size_t count = 0;
    for (std::size_t i = 0; i < left; ++i)
        count += from[i] <= line ? 1 : 0;
    return static_cast<std::size_t>(from - mReach) + count;
}

// From below upwards: among rectangles that are sorted by top, the last ones above a line are the
// likeliest to be there still.
bool Cmn_RectIndexView::HasAny(int lastLeft, int lastTop, int right, int bottom) const noexcept {
    const Cmn_RectScan::LimitProbe probe(lastLeft, lastTop, right, bottom);
    if (!mReach)
        return Cmn_RectScan::HitsAny(probe, mRects, mCount);
    const int* lowest = mReach + BlockCount(mCount);
    for (std::size_t block = CountAbove(lastTop); block > 0 && lowest[block - 1] > bottom;
         --block) {
        const std::size_t start = (block - 1) * kBlock;
        if (Cmn_RectScan::HitsAny(probe, mRects + start, std::min(kBlock, mCount - start)))
            return true;
    }
    return false;
}
