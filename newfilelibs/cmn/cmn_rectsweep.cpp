#include "newfilelibs/cmn/cmn_rectsweep.h"

Cmn_RectSweep::Cmn_RectSweep(const Cmn_Rect<int>* rects, std::size_t count,
                             const Cmn_Rect<int>& hull)
    : mRects(rects), mScale(hull) {
    mBlocks.Resize((count + kBlock - 1) / kBlock);
    int bottom = std::numeric_limits<int>::min();
    for (std::size_t i = 0; i < mBlocks.size(); ++i) {
        FillBlock(mBlocks[i], rects + i * kBlock, std::min(kBlock, count - i * kBlock));
        mBlocks[i].mBottomUpToHere = bottom = std::max(bottom, mBlocks[i].mBottom);
    }
    for (std::size_t i = mBlocks.size(); i-- > 1;)
        mBlocks[i - 1].mTopFromHere =
            std::min(mBlocks[i - 1].mTopFromHere, mBlocks[i].mTopFromHere);
}

void Cmn_RectSweep::FillBlock(Block& block, const Cmn_Rect<int>* rects,
                              std::size_t count) noexcept {
    int top = std::numeric_limits<int>::max();
    int bottom = std::numeric_limits<int>::min();
    for (std::size_t i = 0; i < count; ++i) {
        const Cmn_Rect<int>& rect = rects[i];
        block.mLeft[i] = mScale.Column(rect.left);
        block.mTop[i] = mScale.Row(rect.top);
        // Wrapping matters to empty ones only, whatever comes of them.
        block.mRight[i] = mScale.Column(Cmn_WrappingSubtract(rect.right, 1));
        block.mLow[i] = mScale.Row(Cmn_WrappingSubtract(rect.bottom, 1));
        top = std::min(top, rect.top);
        bottom = std::max(bottom, rect.bottom);
    }
    for (std::size_t i = count; i < kBlock; ++i)
        block.mLeft[i] = block.mTop[i] = block.mRight[i] = block.mLow[i] = Cmn_CoarseScale::kBeyond;
    block.mTopFromHere = top;
    block.mBottom = block.mBottomUpToHere = bottom;
}
