#include "newfilelibs/cmn/cmn_rectindex.h"

namespace {

using Rect = Cmn_Rect<int>;
using Cmn_RectScan::BoundsOf;

// The first of `count` that a test which turns from no to yes somewhere says yes to, or the count.
// Without branches: which way they would go is anyone's guess.
template <class Test>
std::size_t FindTurn(std::size_t count, Test test) noexcept {
    std::size_t first = 0;
    for (; count > 1; count -= count / 2)
        first += test(first + count / 2 - 1) ? 0 : count / 2;
    return first + (test(first) ? 0 : 1);
}

} // namespace

void Cmn_RectIndexView::FillBoxes(const Rect* rects, std::size_t count, Rect* boxes) noexcept {
    const std::size_t blockCount = BlockCount(count);
    Rect* const reach = boxes + blockCount;
    Rect sum = Cmn_RectScan::kNowhere;
    for (std::size_t i = 0; i < blockCount; ++i) {
        const std::size_t start = std::min(count, i * kBlock);
        boxes[i] = BoundsOf(rects + start, std::min(kBlock, count - start));
        reach[i].bottom = sum.bottom = std::max(sum.bottom, boxes[i].bottom);
    }
    for (std::size_t i = blockCount; i-- > 0;)
        reach[i].top = sum.top = std::min(sum.top, boxes[i].top);
}

std::size_t Cmn_RectIndexView::FirstReaching(int y) const noexcept {
    return FindTurn(BlockCount(mCount), [&](std::size_t i) { return mReach[i].bottom > y; });
}

std::size_t Cmn_RectIndexView::FirstBelow(int y) const noexcept {
    return FindTurn(BlockCount(mCount), [&](std::size_t i) { return mReach[i].top >= y; });
}

// All at the probe's height are looked at: few for a point, and which boxes are worth entering is
// no easier to tell than the rectangles themselves.
bool Cmn_RectIndexView::Touches(const Rect& probe) const noexcept {
    if (probe.Empty())
        return false;
    std::size_t from = 0;
    std::size_t end = mCount;
    if (mBlocks) {
        from = FirstReaching(probe.top) * kBlock;
        end = std::min(end, FirstBelow(probe.bottom) * kBlock);
    }
    return Cmn_RectScan::Any(Cmn_RectScan::OverlapProbe(probe), mRects, from, end,
                             [&](std::size_t index) { return !mRects[index].Empty(); });
}

Cmn_RectIndex::Cmn_RectIndex(const Cmn_RectIndexView& list) : mView(list) {
    const std::size_t count = list.mCount;
    if (list.mBlocks || count < Cmn_RectList::kBoxedFrom)
        return;
    mBoxes.Resize(Cmn_RectIndexView::BoxCount(count));
    Cmn_RectIndexView::FillBoxes(list.mRects, count, mBoxes.data());
    mView = Cmn_RectIndexView(list.mRects, count, mBoxes.data());
}
