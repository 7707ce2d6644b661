// TView: frames, the local coordinate system, mapping, scrolling, layout.
#include <algorithm>

#include "qlx/foundation/qlx_region.h"
#include "qlx/views/uinvalidateview.h"
#include "qlx/views/uview.h"
#include "qlx/views/uviewextras.h"

namespace {

VCoordinate Held(VCoordinate coordinate) {
    return std::clamp(coordinate, -kView_MaxCoordinate, kView_MaxCoordinate);
}

} // namespace

// Mapping. The functions of one point are virtual and the rectangle and region forms follow them.

void TView::GetLocalOffsetInSuper(VPoint& offset) const { offset = mLocation - mOffset; }

void TView::LocalToSuper(VPoint& point) const {
    VPoint offset;
    GetLocalOffsetInSuper(offset);
    point += offset;
}

void TView::SuperToLocal(VPoint& point) const {
    VPoint offset;
    GetLocalOffsetInSuper(offset);
    point -= offset;
}

void TView::SuperToLocalVRect(VRect& rect) const {
    VPoint offset;
    GetLocalOffsetInSuper(offset);
    rect -= offset;
}

void TView::LocalToSuperVRect(VRect& rect) const {
    VPoint offset;
    GetLocalOffsetInSuper(offset);
    rect += offset;
}

void TView::LocalToWindow(VPoint& point) const {
    if (!mSuperView)
        return;
    LocalToSuper(point);
    mSuperView->LocalToWindow(point);
}

void TView::WindowToLocal(VPoint& point) const {
    if (!mSuperView)
        return;
    mSuperView->WindowToLocal(point);
    SuperToLocal(point);
}

void TView::LocalToWindowVRect(VRect& rect) const {
    VPoint delta;
    LocalToWindow(delta);
    rect += delta;
}

void TView::WindowToLocalVRect(VRect& rect) const {
    VPoint delta;
    WindowToLocal(delta);
    rect += delta;
}

void TView::LocalToSuperRegion(QLX_Region& region) const {
    VPoint offset;
    GetLocalOffsetInSuper(offset);
    region = region.Offset(Cmn_ClampTo<int>(offset.h), Cmn_ClampTo<int>(offset.v));
}

void TView::SuperToLocalRegion(QLX_Region& region) const {
    VPoint offset;
    GetLocalOffsetInSuper(offset);
    region = region.Offset(Cmn_ClampTo<int>(-offset.h), Cmn_ClampTo<int>(-offset.v));
}

void TView::ConvertVPointFromOtherView(const TView* other, VPoint& point) const {
    if (!other || other == this)
        return;
    other->LocalToWindow(point);
    WindowToLocal(point);
}

void TView::ConvertVRectFromOtherView(const TView* other, VRect& rect) const {
    VPoint delta;
    ConvertVPointFromOtherView(other, delta);
    rect += delta;
}

// Frame

VRect TView::GetFrame() const { return {mLocation, mLocation + mSize}; }

VRect TView::GetExtent() const { return {mOffset, mOffset + mSize}; }

void TView::SetFrame(const VRect& frame, bool redraw, bool layOut) {
    const VPoint location(Held(frame.Left()), Held(frame.Top()));
    const VPoint size(std::max<VCoordinate>(Held(frame.Right()) - location.h, 0),
                      std::max<VCoordinate>(Held(frame.Bottom()) - location.v, 0));
    const bool moved = !(location == mLocation);
    const bool resized = !(size == mSize);
    if (!moved && !resized)
        return;
    const VPoint oldSize = mSize;
    if (redraw)
        ForceRedraw();
    mLocation = location;
    mSize = size;
    InvalidateFocus();
    UpdateCoordinates(/*subViewsNow*/ false);
    if (mSuperView && mExtras && mExtras->mHasLayout)
        mExtras->mLayout.SetReference(GetFrame(), mSuperView->mSize);
    if (resized) {
        if (layOut)
            DoLayout(oldSize, size, /*redraw*/ false);
        AccessibilityNotification(kAccessibility_SizeChanged, nullptr);
    }
    if (redraw)
        ForceRedraw();
}

void TView::Locate(const VPoint& where, bool redraw) {
    const VPoint before = mLocation;
    SetFrame({where, where + mSize}, redraw, /*layOut*/ true);
    if (!(mLocation == before))
        AccessibilityNotification(kAccessibility_LocationChanged, nullptr);
}

void TView::Resize(const VPoint& size, bool redraw) {
    SetFrame({mLocation, mLocation + size}, redraw, /*layOut*/ true);
}

void TView::SetLocalOrigin(const VPoint& origin, bool redraw) {
    const VPoint offset(Held(-origin.h), Held(-origin.v));
    if (offset == mOffset)
        return;
    mOffset = offset;
    InvalidateFocus();
    UpdateCoordinates(/*subViewsNow*/ false);
    if (redraw)
        ForceRedraw();
    AccessibilityNotification(kAccessibility_ScrollChanged, nullptr);
}

// The visible rectangle. A change anywhere moves a stamp on, and a view whose stamp is behind asks
// its superview when it is asked itself: moving a large tree costs nothing, asking costs its depth
// once.

void TView::UpdateCoordinates(bool subViewsNow) {
    ++sCoordinateStamp;
    ForgetDrawContext();
    (void)GetVisibleRect();
    if (!subViewsNow)
        return;
    for (int i = 1; i <= CountSubViews(); ++i)
        GetSubView(i)->UpdateCoordinates(/*subViewsNow*/ true);
}

VRect TView::GetVisibleRect() const {
    if (mVisibleStamp == sCoordinateStamp)
        return mVisibleRect;
    VRect visible = GetExtent();
    if (mSuperView) {
        VRect through = mSuperView->GetVisibleRect();
        SuperToLocalVRect(through);
        visible &= through;
    }
    mVisibleRect = visible.Empty() ? VRect() : visible;
    mVisibleStamp = sCoordinateStamp;
    return mVisibleRect;
}

bool TView::IsRectVisible(const VRect& local) const { return !(local & GetVisibleRect()).Empty(); }

bool TView::IsVisible() const { return IsShown() && IsRectVisible(GetExtent()); }

// Scrolling

void TView::ScrollTo(const VPoint& localOrigin) {
    const VPoint before = mOffset;
    SetLocalOrigin(localOrigin, /*redraw*/ false);
    if (mOffset == before)
        return;
    TInvalidateView* invalidateView = GetInvalidateView();
    if (!invalidateView || !IsShown())
        return;
    VRect visible = GetVisibleRect();
    if (visible.Empty())
        return;
    visible += GetOffsetTo(invalidateView);
    if (!invalidateView->ScrollPixels(this, visible, before - mOffset))
        ForceRedraw();
}

void TView::RevealRect(const VRect& local) {
    VRect rect = local;
    for (TView* view = this; view; view = view->mSuperView) {
        const VRect extent = view->GetExtent();
        VPoint offset = view->mOffset;
        for (const PointSelector axis : {kVertical, kHorizontal}) {
            const VCoordinate first = rect[kTopLeft][axis];
            const VCoordinate last = rect[kBottomRight][axis];
            const VCoordinate length = extent.GetLength(axis);
            // A rectangle that does not fit shows its beginning.
            if (last > extent[kBottomRight][axis])
                offset[axis] = last - length;
            if (first < offset[axis] || last - first > length)
                offset[axis] = first;
        }
        if (!(offset == view->mOffset) && view->IsScrollable())
            view->ScrollTo(-offset);
        view->LocalToSuperVRect(rect);
    }
}

// Layout

void TView::SetLayout(const TViewLayout& layout) {
    TViewExtras& extras = NeedExtras();
    extras.mLayout = layout;
    extras.mHasLayout = true;
    if (mSuperView && !layout.HasReference())
        extras.mLayout.SetReference(GetFrame(), mSuperView->mSize);
}

const TViewLayout* TView::GetLayout() const {
    return mExtras && mExtras->mHasLayout ? &mExtras->mLayout : nullptr;
}

void TView::SetMinimumSize(const VPoint& size) {
    NeedExtras().mMinimumSize = {std::max<VCoordinate>(Held(size.h), 0),
                                 std::max<VCoordinate>(Held(size.v), 0)};
}

VPoint TView::GetMinimumSize() const { return mExtras ? mExtras->mMinimumSize : VPoint(); }

VRect TView::ComputeFrame(const VPoint& superSize) const {
    const TViewLayout* layout = GetLayout();
    if (!layout || !layout->HasReference())
        return GetFrame();
    return layout->Compute(superSize, CalcMinFrame());
}

void TView::SuperViewChangedSize(const VPoint&, const VPoint& newSize, bool redraw) {
    const TViewLayout* layout = GetLayout();
    if (!layout || !layout->HasReference())
        return;
    const TViewLayout kept = *layout;
    SetFrame(ComputeFrame(newSize), redraw, /*layOut*/ true);
    // SetFrame took the result for a new reference; the layout's own stays.
    if (mExtras)
        mExtras->mLayout = kept;
}

void TView::DoLayout(const VPoint& oldSize, const VPoint& newSize, bool redraw) {
    SubViewWalk walk(this, SubViewWalk::Order::BackToFront);
    while (TView* sub = walk.Next())
        sub->SuperViewChangedSize(oldSize, newSize, redraw);
}

VPoint TView::CalcMinFrame() const {
    VPoint least = GetMinimumSize();
    for (int i = 1; i <= CountSubViews(); ++i) {
        const TView* sub = GetSubView(i);
        const TViewLayout* layout = sub->GetLayout();
        if (!layout || !layout->HasReference())
            continue;
        const VPoint needed = layout->LeastSuperSize(sub->CalcMinFrame());
        least.v = std::max(least.v, needed.v);
        least.h = std::max(least.h, needed.h);
    }
    return least;
}
