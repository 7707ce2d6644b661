// TView: drawing, invalidation, adorners.
#include <algorithm>

#include "basekit/cmn/cmn_assert.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/uinvalidateview.h"
#include "qlx/views/uview.h"
#include "qlx/views/uviewenvironment.h"
#include "qlx/views/uviewextras.h"

TView::DrawContext TView::sDrawContext;

void TView::ForgetDrawContext() {
    sDrawContext.superView = nullptr;
    sDrawContext.shownSuperView = nullptr;
}

TInvalidateView* TView::GetInvalidateView() {
    if (!mSuperView)
        return nullptr;
    if (mSuperView == sDrawContext.superView)
        return sDrawContext.invalidateView;
    return mSuperView->GetInvalidateView();
}

bool TView::IsShown() const {
    if (!mShown)
        return false;
    return !mSuperView || mSuperView == sDrawContext.superView ||
           mSuperView == sDrawContext.shownSuperView || mSuperView->IsShown();
}

VPoint TView::GetOffsetTo(const TInvalidateView* invalidateView) const {
    VPoint offset;
    for (const TView* view = this; view && view != invalidateView; view = view->mSuperView) {
        if (view->mSuperView && view->mSuperView == sDrawContext.superView &&
            invalidateView == sDrawContext.invalidateView) {
            view->LocalToSuper(offset);
            return offset + sDrawContext.toInvalidate;
        }
        view->LocalToSuper(offset);
    }
    return offset;
}

// Drawing

void TView::Draw(const VRect&) {}

void TView::HandleDraw(const VRect& area) {
    const StDispatch dispatch;
    TInvalidateView* invalidateView = GetInvalidateView();
    if (!invalidateView) {
        Cmn_Assert("invalidateView", "qlx/views/uview", __LINE__);
        return;
    }
    ++invalidateView->mCosts.mViewsVisited;
    const VPoint toInvalidate = GetOffsetTo(invalidateView);
    VRect mapped = (area & GetExtent()) + toInvalidate;
    if (!invalidateView->ClipToDrawing(mapped) || !IsShown())
        return;
    const VRect piece = mapped - toInvalidate;

    invalidateView->ExpectFocus(this, toInvalidate, mapped);
    ++invalidateView->mCosts.mViewsDrawn;
    if (invalidateView->mDrawLog)
        invalidateView->mDrawLog->push_back(
            {GetClassDescDynamic()->GetClassName(), GetIdentifier(), piece});
    DrawSelf(piece);
    if (mSubViews)
        DrawSubViews(piece, invalidateView, toInvalidate);
    if (HasAdorners() && GetInvalidateView() == invalidateView) {
        invalidateView->ExpectFocus(this, toInvalidate, mapped);
        try {
            HighlightAdorners(piece, true, GetCurrentHL());
        } catch (...) {
            ReportException("HighlightAdorners");
        }
    }
}

void TView::DrawSelf(const VRect& area) {
    try {
        if (HasAdorners())
            DrawAdorners(area);
        else
            Draw(area);
        if (TBehavior* behavior = GetFirstEnabledBehavior())
            behavior->Draw(area);
    } catch (...) {
        ReportException("Draw");
    }
}

void TView::DrawSubViews(const VRect& area, TInvalidateView* invalidateView,
                         const VPoint& toInvalidate) {
    const DrawContext outer = sDrawContext;
    const std::uint32_t stamp = sCoordinateStamp;
    sDrawContext = {this, invalidateView, toInvalidate, nullptr};
    ++sDrawNesting;
    SubViewWalk walk(this, SubViewWalk::Order::BackToFront);
    while (TView* sub = walk.Next()) {
        if (!sub->IsShown())
            continue;
        VRect piece = area;
        sub->SuperToLocalVRect(piece);
        piece &= sub->GetExtent();
        if (piece.Empty())
            continue;
        VRect mapped = piece + sub->GetOffsetTo(invalidateView);
        if (invalidateView->ClipToDrawing(mapped))
            sub->HandleDraw(piece);
    }
    --sDrawNesting;
    if (stamp == sCoordinateStamp)
        sDrawContext = outer;
    else
        ForgetDrawContext();
}

// Painter

const TView::PainterPtr& TView::GetPainter() {
    static const PainterPtr kNone;
    TInvalidateView* invalidateView = GetInvalidateView();
    if (!invalidateView)
        return kNone;
    if (invalidateView->mFocused != this)
        invalidateView->FocusOn(this);
    return invalidateView->GetDrawingPainter();
}

bool TView::Focus() {
    TInvalidateView* invalidateView = GetInvalidateView();
    return invalidateView && (invalidateView->mFocused == this || invalidateView->FocusOn(this));
}

void TView::InvalidateFocus() {
    if (TInvalidateView* invalidateView = GetInvalidateView())
        invalidateView->DropFocus();
}

// Every view begins with the same state, whichever view was drawn before it: a partial repaint
// would otherwise differ from a full one.
void TView::DoFocus(const PainterPtr& painter) {
    painter->NormalizePen();
    painter->SetTextMode(kPenMode_Copy);
    painter->SetAlpha(1.0F);
    painter->SetForeground(kThemeColor_Text);
    painter->SetBackground(kThemeColor_WindowBackground);
    painter->SetFont(QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Plain));
    if (const TDrawingEnvironment* environment = GetDrawingEnvironment())
        environment->Apply(*painter);
}

void TView::SetDrawingEnvironment(TDrawingEnvironment* environment) {
    TViewExtras& extras = NeedExtras();
    if (extras.mEnvironment == environment)
        return;
    if (extras.mEnvironment)
        extras.mEnvironment->Free();
    extras.mEnvironment = environment;
    InvalidateFocus();
    ForceRedraw();
}

TDrawingEnvironment* TView::GetDrawingEnvironment() const {
    return mExtras ? mExtras->mEnvironment : nullptr;
}

// Invalidation

void TView::InvalidateVRect(const VRect& local) {
    if (!IsShown())
        return;
    TInvalidateView* invalidateView = GetInvalidateView();
    if (!invalidateView)
        return;
    // Cut at every superview on the way, so that what is scrolled out of sight costs nothing.
    VRect rect = local;
    for (TView* view = this; view; view = view->mSuperView) {
        rect &= view->GetExtent();
        if (rect.Empty())
            return;
        if (view == invalidateView)
            break;
        view->LocalToSuperVRect(rect);
    }
    invalidateView->InvalidateRect(rect);
}

void TView::ForceRedraw() { InvalidateVRect(GetExtent()); }

void TView::UpdateNow() {
    if (TInvalidateView* invalidateView = GetInvalidateView())
        invalidateView->DrawInvalid();
}

// Adorners

bool TView::HasAdorners() const { return mExtras && !mExtras->mAdorners.empty(); }

int TView::CountAdorners() const {
    return mExtras ? static_cast<int>(mExtras->mAdorners.size()) : 0;
}

TAdorner* TView::GetAdorner(int n) const {
    return n >= 1 && n <= CountAdorners() ? mExtras->mAdorners[static_cast<std::size_t>(n) - 1]
                                          : nullptr;
}

void TView::AddAdorner(TAdorner* adorner, bool redraw) {
    if (!adorner)
        return;
    auto& adorners = NeedExtras().mAdorners;
    const auto place = std::upper_bound(
        adorners.begin(), adorners.end(), adorner,
        [](const TAdorner* a, const TAdorner* b) { return a->GetOrder() < b->GetOrder(); });
    adorners.insert(place, adorner);
    if (redraw)
        ForceRedraw();
}

void TView::RemoveAdorner(TAdorner* adorner, bool redraw) {
    if (mExtras && std::erase(mExtras->mAdorners, adorner) > 0 && redraw)
        ForceRedraw();
}

TAdorner* TView::GetAdornerWithIdentifier(std::uint32_t identifier) const {
    if (!mExtras)
        return nullptr;
    for (TAdorner* adorner : mExtras->mAdorners) {
        if (adorner->GetIdentifier() == identifier)
            return adorner;
    }
    return nullptr;
}

// By index, since an adorner may take itself out of the list.
void TView::DrawAdorners(const VRect& area) {
    int next = 1;
    for (; next <= CountAdorners() && GetAdorner(next)->GetOrder() < 0; ++next) {
        if (GetAdorner(next)->IsEnabled())
            GetAdorner(next)->Draw(this, area);
    }
    Draw(area);
    for (; next <= CountAdorners(); ++next) {
        if (GetAdorner(next)->IsEnabled())
            GetAdorner(next)->Draw(this, area);
    }
}

void TView::HighlightAdorners(const VRect& area, bool on, EHighlight highlight) {
    for (int i = 1; i <= CountAdorners(); ++i) {
        if (GetAdorner(i)->IsEnabled())
            GetAdorner(i)->Highlight(this, area, on, highlight);
    }
}

EHighlight TView::GetCurrentHL() const { return kHighlight_Off; }
