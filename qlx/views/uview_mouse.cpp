// TView: the mouse, the wheel, the pointer's shape, tool tips, and typed text.
#include <utility>

#include "qlx/views/ubehavior.h"
#include "qlx/views/utracker.h"
#include "qlx/views/uview.h"
#include "qlx/views/uviewextras.h"
#include "qlx/views/uwindow.h"

namespace {

/// Offers a point to the subviews under it, front-most first; true when one of them took it.
template <class Offer>
bool OfferToSubViews(TView* view, const VPoint& local, Offer&& offer) {
    TView::SubViewWalk walk(view, TView::SubViewWalk::Order::FrontToBack);
    while (TView* sub = walk.Next()) {
        VPoint point = local;
        sub->SuperToLocal(point);
        if (sub->ContainsMouse(point) && offer(sub, point))
            return true;
    }
    return false;
}

} // namespace

// The point decides first: it is the cheaper question.
bool TView::ContainsMouse(const VPoint& local) const {
    return GetExtent().Contains(local) && IsShown();
}

// Done for every movement of the pointer: the subviews need not ask upwards whether they are shown.
TView* TView::FindViewAt(const VPoint& local) {
    if (!ContainsMouse(local))
        return nullptr;
    struct StShown {
        const TView* outer;
        ~StShown() { sDrawContext.shownSuperView = outer; }
    } const restore{std::exchange(sDrawContext.shownSuperView, this)};
    TView* found = nullptr;
    for (int i = CountSubViews(); i >= 1 && !found; --i) {
        TView* sub = GetSubView(i);
        VPoint point = local;
        sub->SuperToLocal(point);
        found = sub->FindViewAt(point);
    }
    return found ? found : this;
}

// An exception counts as taking the press: the view meant to, and what lies behind was not meant.
bool TView::HandleMouseDown(const VPoint& local, TToolboxEvent* event) {
    const StDispatch dispatch;
    if (mSubViewsTakePresses && mSubViews &&
        OfferToSubViews(this, local, [event](TView* sub, const VPoint& point) {
            return sub->HandleMouseDown(point, event);
        }))
        return true;
    if (mFreed)
        return true;
    try {
        TBehavior* behavior = GetFirstEnabledBehavior();
        if ((behavior && behavior->DoMouseCommand(local, event)) || mFreed ||
            DoMouseCommand(local, event)) {
            if (TWindow* window = GetWindow())
                window->PressTaken(this);
            return true;
        }
    } catch (...) {
        ReportException("DoMouseCommand");
        return true;
    }
    return false;
}

bool TView::DoMouseCommand(const VPoint&, TToolboxEvent*) { return false; }

bool TView::HandleOtherButton(const VPoint& local, TToolboxEvent* event) {
    const StDispatch dispatch;
    if (mSubViewsTakePresses && mSubViews &&
        OfferToSubViews(this, local, [event](TView* sub, const VPoint& point) {
            return sub->HandleOtherButton(point, event);
        }))
        return true;
    try {
        return !mFreed && DoOtherButton(local, event);
    } catch (...) {
        ReportException("DoOtherButton");
        return true;
    }
}

bool TView::DoOtherButton(const VPoint&, TToolboxEvent*) { return false; }

bool TView::HandleMouseUp(const VPoint& local, TToolboxEvent* event) {
    const StDispatch dispatch;
    try {
        TBehavior* behavior = GetFirstEnabledBehavior();
        return (behavior && behavior->DoMouseUp(local, event)) || mFreed || DoMouseUp(local, event);
    } catch (...) {
        ReportException("DoMouseUp");
        return true;
    }
}

bool TView::DoMouseUp(const VPoint&, TToolboxEvent*) { return false; }

bool TView::HandleMouseWheel(const VPoint& local, TToolboxEvent* event) {
    const StDispatch dispatch;
    if (mSubViews && OfferToSubViews(this, local, [event](TView* sub, const VPoint& point) {
            return sub->HandleMouseWheel(point, event);
        }))
        return true;
    try {
        TBehavior* behavior = mFreed ? nullptr : GetFirstEnabledBehavior();
        return (behavior && behavior->DoMouseWheel(local, event)) || mFreed ||
               DoMouseWheel(local, event);
    } catch (...) {
        ReportException("DoMouseWheel");
        return true;
    }
}

bool TView::DoMouseWheel(const VPoint&, TToolboxEvent*) { return false; }

bool TView::HandleSetCursor(const VPoint& local) {
    const StDispatch dispatch;
    if (mSubViews && OfferToSubViews(this, local, [](TView* sub, const VPoint& point) {
            return sub->HandleSetCursor(point);
        }))
        return true;
    try {
        TBehavior* behavior = mFreed ? nullptr : GetFirstEnabledBehavior();
        return (behavior && behavior->DoSetCursor(local)) || mFreed || DoSetCursor(local);
    } catch (...) {
        ReportException("DoSetCursor");
        return true;
    }
}

bool TView::DoSetCursor(const VPoint&) {
    if (!mExtras || mExtras->mCursor < 0)
        return false;
    if (TWindow* window = GetWindow())
        window->ShowCursor(static_cast<ECursor>(mExtras->mCursor));
    return true;
}

void TView::DoMouseEnter(const VPoint&, TToolboxEvent*) {}

void TView::DoMouseMove(const VPoint&, TToolboxEvent*) {}

void TView::DoMouseLeave(TToolboxEvent*) {}

bool TView::BeginTracking(TTracker* tracker, const VPoint& local, TToolboxEvent* event) {
    if (!tracker)
        return false;
    if (TWindow* window = GetWindow()) {
        window->StartTracker(tracker, this, local, event);
        return true;
    }
    tracker->Free();
    return false;
}

void TView::SetCursor(ECursor cursor) { NeedExtras().mCursor = cursor; }

ECursor TView::GetCursor() const {
    return mExtras && mExtras->mCursor >= 0 ? static_cast<ECursor>(mExtras->mCursor)
                                            : kCursor_Arrow;
}

void TView::SetToolTip(const std::string& text) {
    if (mExtras || !text.empty())
        NeedExtras().mToolTip = text;
}

bool TView::GetToolTip(const VPoint&, std::string& text, VRect& area) const {
    if (!mExtras || mExtras->mToolTip.empty())
        return false;
    text = mExtras->mToolTip;
    area = GetExtent();
    return true;
}

// The keyboard

void TView::SetTabOrder(int order) { NeedExtras().mTabOrder = order; }

int TView::GetTabOrder() const { return mExtras ? mExtras->mTabOrder : 0; }

bool TView::DoTextInput(const std::string& text) {
    return mSuperView && mSuperView->DoTextInput(text);
}

bool TView::DoTextComposition(const std::string& text, int caret, int selectionLength) {
    return mSuperView && mSuperView->DoTextComposition(text, caret, selectionLength);
}

bool TView::GetTextInputArea(VRect&) const { return false; }

bool TView::IsScrollable() const { return false; }
