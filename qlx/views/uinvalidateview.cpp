#include "qlx/views/uinvalidateview.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "newfilelibs/cmn/cmn_rectindex.h"
#include "qlx/views/uviewextras.h"

QLX_DEFINE_CLASS(TInvalidateView, TView);

namespace {

constexpr VRect kRegionLimits(std::numeric_limits<int>::min(), std::numeric_limits<int>::min(),
                              std::numeric_limits<int>::max(), std::numeric_limits<int>::max());

bool FitsRegion(const VPoint& point) { return kRegionLimits.Contains(point); }

/// Halves joined pairwise: n rectangles cost O(n log n) unions of small regions instead of n unions
/// with the whole.
QLX_Region UnionOf(const Cmn_Rect<int>* rects, std::size_t count) {
    if (count == 0)
        return QLX_Region();
    if (count == 1)
        return QLX_Region(*rects);
    const std::size_t half = count / 2;
    return UnionOf(rects, half).Union(UnionOf(rects + half, count - half));
}

std::uint64_t CountPixels(const Cmn_Rect<int>& rect) {
    return static_cast<std::uint64_t>(std::int64_t{rect.right} - rect.left) *
           static_cast<std::uint64_t>(std::int64_t{rect.bottom} - rect.top);
}

std::uint64_t CountPixels(const QLX_Region& region) {
    std::uint64_t pixels = 0;
    for (const Cmn_Rect<int>& rect : region.GetRectList())
        pixels += CountPixels(rect);
    return pixels;
}

} // namespace

TInvalidateView::TInvalidateView() = default;

TInvalidateView::~TInvalidateView() = default;

TObject* TInvalidateView::Clone() {
    auto* copy = static_cast<TInvalidateView*>(TView::Clone());
    if (!copy)
        return nullptr;
    // Bytes so far: what has a destructor is made anew.
    new (&copy->mPending) std::vector<Cmn_Rect<int>>();
    new (&copy->mInvalid) QLX_Region();
    new (&copy->mDrawRegion) QLX_Region();
    new (&copy->mMoved) QLX_Region();
    new (&copy->mPainter) PainterPtr();
    new (&copy->mNextPainter) PainterPtr();
    copy->mPainterChanges = false;
    copy->mFocused = nullptr;
    copy->mExpected = {};
    copy->mDrawing = false;
    copy->mDrawLog = nullptr;
    return copy;
}

TInvalidateView* TInvalidateView::GetInvalidateView() {
    return mPainter || !mSuperView ? this : TView::GetInvalidateView();
}

// The invalid region

void TInvalidateView::InvalidateRect(const VRect& rect) {
    const VRect cut = rect & GetExtent() & kRegionLimits;
    if (cut.Empty())
        return;
    const Cmn_Rect<int> narrow = cut.ToCmn_Rect();
    if (!mPending.empty() && VRect(mPending.back()).Contains(cut))
        return;
    const bool first = !NeedsDrawing();
    mPending.push_back(narrow);
    if (first)
        BecameInvalid();
}

void TInvalidateView::InvalidateRegion(const QLX_Region& region) {
    for (const Cmn_Rect<int>& rect : region.GetRectList())
        InvalidateRect(rect);
}

void TInvalidateView::ValidateAll() {
    mPending.clear();
    mInvalid = QLX_Region();
}

const QLX_Region& TInvalidateView::GetInvalidRegion() const {
    MergePending();
    return mInvalid;
}

bool TInvalidateView::NeedsDrawing() const {
    return !mPending.empty() || !mInvalid.IsEmpty() || !mMoved.IsEmpty();
}

void TInvalidateView::MergePending() const {
    if (mPending.empty())
        return;
    const QLX_Region pending = UnionOf(mPending.data(), mPending.size());
    mPending.clear();
    mInvalid = mInvalid.IsEmpty() ? pending : QLX_Region(mInvalid.Union(pending));
}

void TInvalidateView::BecameInvalid() {}

void TInvalidateView::Drawn(const QLX_Region&) {}

void TInvalidateView::DrawnRect(const Cmn_Rect<int>& rect) { Drawn(QLX_Region(rect)); }

// Drawing

void TInvalidateView::SetDrawingPainter(const PainterPtr& painter) {
    if (mDrawing) {
        mNextPainter = painter;
        mPainterChanges = true;
        mDrawRegion = QLX_Region(); // nothing more is drawn on the old one
        mDrawRegionIsRect = true;
        mDrawBounds = {0, 0, 0, 0};
        return;
    }
    mPainter = painter;
    mFocused = nullptr;
    mExpected = {};
    mMoved = QLX_Region();
}

void TInvalidateView::DrawInvalid() {
    if (mDrawing || !mPainter || !NeedsDrawing() || !mPainter->IsValid())
        return;
    const StDispatch dispatch;
    if (DrawOneRect())
        return;
    MergePending();
    const VRect limits = GetExtent() & kRegionLimits;
    mDrawRegion = mInvalid.Intersection(QLX_Region(limits.ToCmn_Rect()));
    mInvalid = QLX_Region();
    if (!mDrawRegion.IsEmpty())
        DrawFrame(mDrawRegion.GetBounds(), mDrawRegion.IsRectangular(), CountPixels(mDrawRegion));
    const QLX_Region shown = mMoved.IsEmpty() ? mDrawRegion : QLX_Region(mDrawRegion.Union(mMoved));
    mMoved = QLX_Region();
    mDrawRegion = QLX_Region();
    Drawn(shown);
}

// What one control invalidates, a digit that was typed or a meter that moved, is one rectangle. It
// is drawn without making a region, so without allocating.
bool TInvalidateView::DrawOneRect() {
    if (mPending.size() != 1 || !mInvalid.IsEmpty() || !mMoved.IsEmpty())
        return false;
    const VRect cut = VRect(mPending.front()) & GetExtent() & kRegionLimits;
    mPending.clear();
    if (cut.Empty())
        return true;
    const Cmn_Rect<int> rect = cut.ToCmn_Rect();
    DrawFrame(rect, /*isRect*/ true, CountPixels(rect));
    DrawnRect(rect);
    return true;
}

void TInvalidateView::DrawFrame(const Cmn_Rect<int>& bounds, bool isRect, std::uint64_t pixels) {
    mDrawBounds = bounds;
    mDrawRegionIsRect = isRect;
    mFocused = nullptr;
    mExpected = {};
    mDrawing = true;
    HandleDraw(mDrawBounds);
    mDrawing = false;
    mPainter->Flush();
    ++mCosts.mFrames;
    mCosts.mPixelsPainted += pixels;
    mFocused = nullptr;
    mExpected = {};
}

void TInvalidateView::DrawViewOn(const PainterPtr& painter, TView* view, const VRect& area) {
    if (!painter || !view || mDrawing)
        return;
    const StDispatch dispatch;
    const PainterPtr own = std::exchange(mPainter, painter);
    const TDrawCosts costs = mCosts;
    std::vector<TDrawnView>* log = std::exchange(mDrawLog, nullptr);
    mFocused = nullptr;
    mExpected = {};
    view->HandleDraw(area);
    painter->Flush();
    mFocused = nullptr;
    mExpected = {};
    mDrawLog = log;
    mCosts = costs;
    mPainter = own;
}

// With many small places to draw, each view is told of what lies in it alone: a view that knows how
// to draw a part of itself does so however far the other places reach.
bool TInvalidateView::ClipToDrawing(VRect& rect) const {
    rect &= GetExtent();
    if (mDrawing)
        rect &= VRect(mDrawBounds);
    if (rect.Empty())
        return false;
    if (!mDrawing || mDrawRegionIsRect || rect == VRect(mDrawBounds))
        return true;
    int pieces = 0;
    const Cmn_Rect<int> drawn = BoundsInDrawing((rect & kRegionLimits).ToCmn_Rect(), pieces);
    if (pieces == 0)
        return false;
    rect = VRect(drawn);
    return true;
}

Cmn_Rect<int> TInvalidateView::BoundsInDrawing(const Cmn_Rect<int>& rect, int& pieces) const {
    const Cmn_RectList& list = mDrawRegion.GetRectList();
    Cmn_Rect<int> bounds(0, 0, 0, 0);
    pieces = 0;
    Cmn_RectIndexView(list).ForEach(rect, [&](std::size_t index) {
        const Cmn_Rect<int>& drawn = list[index];
        const Cmn_Rect<int> piece(std::max(drawn.left, rect.left), std::max(drawn.top, rect.top),
                                  std::min(drawn.right, rect.right),
                                  std::min(drawn.bottom, rect.bottom));
        if (pieces++ == 0)
            bounds = piece;
        bounds = {std::min(bounds.left, piece.left), std::min(bounds.top, piece.top),
                  std::max(bounds.right, piece.right), std::max(bounds.bottom, piece.bottom)};
    });
    return bounds;
}

void TInvalidateView::ExpectFocus(const TView* view, const VPoint& toHere, const VRect& rect) {
    mExpected = {view, toHere, rect};
    mFocused = nullptr;
}

bool TInvalidateView::FocusOn(TView* view) {
    if (!mPainter || !mPainter->IsValid())
        return false;
    if (mExpected.view == view) {
        SetClipFor(mExpected.toHere, mExpected.rect);
    } else {
        const VPoint toHere = view->GetOffsetTo(this);
        VRect rect = view->GetVisibleRect() + toHere;
        if (!ClipToDrawing(rect))
            rect = VRect();
        SetClipFor(toHere, rect);
    }
    mFocused = view;
    view->DoFocus(mPainter);
    return true;
}

// A place that painters cannot express (beyond 32 bits) gets an empty clip: nothing wrong is drawn.
void TInvalidateView::SetClipFor(const VPoint& toHere, const VRect& rect) {
    const VPoint origin = -toHere + GetLocalOffset();
    const VRect local = rect - toHere;
    if (!FitsRegion(origin) || !FitsRegion(local[kTopLeft]) || !FitsRegion(local[kBottomRight]) ||
        local.Empty()) {
        mPainter->SetWindowOrigin({0, 0});
        mPainter->SetClip(Cmn_Rect<int>(0, 0, 0, 0));
        return;
    }
    mPainter->SetWindowOrigin(origin.ToCmn_Point());
    int pieces = 1;
    if (mDrawing && !mDrawRegionIsRect)
        (void)BoundsInDrawing((rect & kRegionLimits).ToCmn_Rect(), pieces);
    // The rectangle is cut to what is drawn in it: a single piece is all of it.
    if (pieces == 1) {
        mPainter->SetClip(local.ToCmn_Rect());
        return;
    }
    const QLX_Region clip =
        mDrawRegion.Intersection(QLX_Region((rect & kRegionLimits).ToCmn_Rect()));
    mPainter->SetClip(
        QLX_Region(clip.Offset(static_cast<int>(-toHere.h), static_cast<int>(-toHere.v))));
}

// Scrolling

bool TInvalidateView::IsCovered(const TView* view, const VRect& rect) const {
    if (view->HasAdorners())
        return true; // they stay where they are while the contents move
    for (const TView* each = view; each != this && each->mSuperView; each = each->mSuperView) {
        const TView* super = each->mSuperView;
        if (super->HasAdorners() && super->GetCurrentHL() != kHighlight_Off)
            return true;
        const VPoint superToHere = super->GetOffsetTo(this);
        for (int i = super->CountSubViews(); i >= 1 && super->GetSubView(i) != each; --i) {
            const TView* front = super->GetSubView(i);
            if (front->IsShown() && !((front->GetFrame() + superToHere) & rect).Empty())
                return true;
        }
    }
    return false;
}

bool TInvalidateView::ScrollPixels(const TView* view, const VRect& rect, const VPoint& delta) {
    const VRect cut = rect & kRegionLimits;
    if (mDrawing || !mPainter || !mPainter->IsValid() || cut.Empty() || !FitsRegion(delta) ||
        IsCovered(view, cut))
        return false;
    const Cmn_Rect<int> area = cut.ToCmn_Rect();
    const int dx = static_cast<int>(delta.h);
    const int dy = static_cast<int>(delta.v);
    mFocused = nullptr;
    mExpected = {};
    mPainter->SetWindowOrigin(GetLocalOffset().ToCmn_Point());
    mPainter->SetClip(area);
    QLX_Region toRepaint;
    mPainter->ScrollCanvas(area, dx, dy, toRepaint);
    const bool first = !NeedsDrawing();
    MergePending();
    mInvalid = QLX_Region(mInvalid.OffsetWithin(dx, dy, area).Union(toRepaint));
    mMoved = QLX_Region(mMoved.Union(QLX_Region(area)));
    if (first)
        BecameInvalid();
    return true;
}
