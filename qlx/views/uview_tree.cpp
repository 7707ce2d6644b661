// TView: construction, copies and the end, the tree, showing and hiding.
#include <algorithm>
#include <exception>
#include <new>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_trace.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/udynamicarray.h"
#include "qlx/views/uinvalidateview.h"
#include "qlx/views/uview.h"
#include "qlx/views/uviewenvironment.h"
#include "qlx/views/uviewextras.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwindow.h"

QLX_DEFINE_CLASS(TView, TCommandHandler);

int TView::sDrawNesting = 0;
std::uint32_t TView::sCoordinateStamp = 1;

namespace {

int sDispatchDepth = 0;
std::vector<TView*> sFreedViews; // out of their trees, waiting for the outermost dispatch to end

} // namespace

// Extras

TViewExtras::~TViewExtras() {
    for (TAdorner* adorner : mAdorners)
        adorner->Free();
    for (TViewState* state : mStates)
        state->Free();
    if (mEnvironment)
        mEnvironment->Free();
}

std::unique_ptr<TViewExtras> TViewExtras::Copy() const {
    auto copy = std::make_unique<TViewExtras>();
    for (TAdorner* adorner : mAdorners)
        copy->mAdorners.push_back(static_cast<TAdorner*>(adorner->Clone()));
    for (TViewState* state : mStates)
        copy->mStates.push_back(static_cast<TViewState*>(state->Clone()));
    if (mEnvironment)
        copy->mEnvironment = static_cast<TDrawingEnvironment*>(mEnvironment->Clone());
    copy->mState = mState;
    copy->mHasLayout = mHasLayout;
    copy->mLayout = mLayout;
    copy->mMinimumSize = mMinimumSize;
    copy->mCursor = mCursor;
    copy->mTabOrder = mTabOrder;
    copy->mToolTip = mToolTip;
    copy->mAccessibleName = mAccessibleName;
    return copy;
}

// Life

TView::TView() = default;

TView::~TView() { FreeSubViews(); }

void TView::IView(TView* superView, const VRect& frame) {
    SetFrame(frame, /*redraw*/ false, /*layOut*/ false);
    if (superView)
        superView->AddSubView(this);
}

TViewExtras& TView::NeedExtras() {
    if (!mExtras)
        mExtras = std::make_unique<TViewExtras>();
    return *mExtras;
}

// The copy begins as the original's bytes; what the original owns is taken out of it before
// anything can fail, so that a copy that is given up frees nothing of the original's.
TObject* TView::Clone() {
    auto* copy = static_cast<TView*>(TCommandHandler::Clone());
    if (!copy)
        return nullptr;
    new (&copy->mExtras) std::unique_ptr<TViewExtras>();
    copy->mSuperView = nullptr;
    copy->mSubViews = nullptr;
    copy->mVisibleStamp = 0;
    copy->mMouseOver = false;
    copy->mFreed = false;
    copy->IEventHandler(nullptr);
    try {
        if (mExtras)
            copy->mExtras = mExtras->Copy();
        for (int i = 1; i <= CountSubViews(); ++i) {
            if (auto* sub = static_cast<TView*>(GetSubView(i)->Clone()))
                copy->AddSubView(sub);
        }
    } catch (...) {
        copy->AbandonCopy();
        throw;
    }
    return copy;
}

// Ends a copy that could not be finished without running a destructor: a class further down has not
// yet taken its own pointers out of the copied bytes, and they are the original's.
void TView::AbandonCopy() {
    FreeSubViews();
    mExtras.reset();
    while (TBehavior* behavior = GetFirstBehavior()) {
        RemoveBehavior(behavior);
        behavior->Free();
    }
    ::operator delete(static_cast<void*>(this));
}

void TView::Free() {
    if (mFreed)
        return;
    mFreed = true;
    AccessibilityNotification(kAccessibility_Destroyed, this);
    LeaveTarget();
    if (mSuperView)
        mSuperView->RemoveSubView(this);
    if (sDispatchDepth > 0)
        sFreedViews.push_back(this);
    else
        TCommandHandler::Free();
}

// While all of the view is still there, as who listens to the target may look at any of it. The
// base class moves the target too, but only when the object goes, and then the view has left its
// chain already, and classes further down have ended.
void TView::LeaveTarget() {
    TEventHandler* const target = gApplication ? gApplication->GetTarget() : nullptr;
    if (!target || (target != this && !HasInside(target)))
        return;
    TEventHandler* next = GetNextHandler();
    gApplication->SetTarget(next ? next : gApplication);
}

bool TView::HasInside(const TEventHandler* handler) const {
    if (CountSubViews() == 0 || !handler->DescendsFrom(&TView::fgClassDesc))
        return false;
    const auto* view = static_cast<const TView*>(handler);
    while (view && view != this)
        view = view->mSuperView;
    return view != nullptr;
}

void TView::FreeSubViews() {
    TList* list = std::exchange(mSubViews, nullptr);
    if (!list)
        return;
    for (int i = list->GetSize(); i >= 1; --i) {
        TView* sub = *static_cast<TView**>(list->ComputeAddress(i));
        sub->mSuperView = nullptr;
        sub->IEventHandler(nullptr);
        sub->Free();
    }
    list->Free();
}

TView::StDispatch::StDispatch() { ++sDispatchDepth; }

TView::StDispatch::~StDispatch() {
    if (sDispatchDepth == 1 && !sFreedViews.empty())
        DeleteFreedViews();
    --sDispatchDepth;
}

// The depth stays at one meanwhile: what a view's end frees joins the queue instead of nesting.
void TView::DeleteFreedViews() {
    while (!sFreedViews.empty()) {
        TView* view = sFreedViews.back();
        sFreedViews.pop_back();
        view->TCommandHandler::Free();
    }
}

// The tree

int TView::CountSubViews() const { return mSubViews ? mSubViews->GetSize() : 0; }

TView* TView::GetSubView(int n) const {
    if (!mSubViews || n < 1 || n > mSubViews->GetSize())
        return nullptr;
    return *static_cast<TView**>(mSubViews->ComputeAddress(n));
}

bool TView::ContainsSubView(const TView* sub) const { return sub && sub->mSuperView == this; }

bool TView::IsContainedIn(const TView* other) const {
    for (const TView* view = mSuperView; view; view = view->mSuperView) {
        if (view == other)
            return true;
    }
    return false;
}

TView* TView::GetRootView() {
    TView* view = this;
    while (view->mSuperView)
        view = view->mSuperView;
    return view;
}

TWindow* TView::GetWindow() { return mSuperView ? mSuperView->GetWindow() : nullptr; }

const TWindow* TView::GetWindow() const {
    return mSuperView ? static_cast<const TView*>(mSuperView)->GetWindow() : nullptr;
}

void TView::AddSubView(TView* sub) {
    if (!sub)
        return;
    if (sub == this || IsContainedIn(sub)) {
        Cmn_Assert("!IsContainedIn(sub)", "qlx/views/uview", __LINE__);
        return;
    }
    const StDispatch dispatch;
    if (sub->mSuperView)
        sub->mSuperView->RemoveSubView(sub);
    // Leaving calls the views that were hovered or targets. Whatever they did with it stands: a
    // view that ended, or went elsewhere, is not added.
    if (sub->mFreed || sub->mSuperView || IsContainedIn(sub))
        return;
    if (!mSubViews) {
        mSubViews = new TList;
        mSubViews->IList();
    }
    mSubViews->InsertLast(sub);
    sub->BeInSuperView(this);
    if (!IsShown() && sub->mShown) {
        sub->Show(false, /*redraw*/ false);
        sub->mHiddenBySuperView = true;
    }
    AddedASubView(sub);
    if (!mAccessibilityDetached) {
        if (!sub->mAccessibilityDetached)
            sub->AccessibilityNotification(kAccessibility_Created, sub);
        sub->AccessibilityNotification(kAccessibility_SuperViewChanged, this);
    }
    sub->ForceRedraw();
}

void TView::RemoveSubView(TView* sub) {
    if (!mSubViews || !ContainsSubView(sub))
        return;
    const StDispatch dispatch;
    // Deliberate: the flag is tested with the opposite sense to AddSubView's.
    if (mAccessibilityDetached)
        sub->AccessibilityNotification(kAccessibility_SuperViewChanged, nullptr);
    if (sub->mShown) {
        VRect frame = sub->GetFrame();
        InvalidateVRect(frame);
    }
    if (TWindow* window = GetWindow())
        window->SubTreeLeaves(sub);
    if (!ContainsSubView(sub))
        return; // it went while it was left
    mSubViews->Delete(sub);
    if (mSubViews->GetSize() == 0) {
        mSubViews->Free();
        mSubViews = nullptr;
    }
    RemovedASubView(sub);
    sub->BeInSuperView(nullptr);
}

void TView::MakeFirstSubView(TView* sub) { Reorder(sub, /*toFront*/ false); }

void TView::MakeLastSubView(TView* sub) { Reorder(sub, /*toFront*/ true); }

void TView::Reorder(TView* sub, bool toFront) {
    if (!ContainsSubView(sub) || GetSubView(toFront ? CountSubViews() : 1) == sub)
        return;
    mSubViews->Delete(sub);
    if (toFront)
        mSubViews->InsertLast(sub);
    else
        mSubViews->InsertFirst(sub);
    sub->ForceRedraw();
    AccessibilityNotification(kAccessibility_ChildrenReordered, sub);
}

TView* TView::FindSubView(unsigned id, bool deep) {
    if (GetIdentifier() == id)
        return this;
    const int count = CountSubViews();
    for (int i = 1; i <= count; ++i) {
        TView* sub = GetSubView(i);
        if (sub->GetIdentifier() == id)
            return sub;
        if (deep && sub->mSubViews && !sub->mSeparateContainer) {
            if (TView* found = sub->FindSubView(id, deep))
                return found;
        }
    }
    return nullptr;
}

void TView::AddedASubView(TView*) {}

void TView::RemovedASubView(TView*) {}

void TView::BeInSuperView(TView* superView) {
    mSuperView = superView;
    IEventHandler(superView);
    ++sCoordinateStamp;
    ForgetDrawContext();
    if (!superView)
        return;
    if (mExtras && mExtras->mHasLayout && !mExtras->mLayout.HasReference())
        mExtras->mLayout.SetReference(GetFrame(), superView->mSize);
}

// The walk

TView::SubViewWalk::SubViewWalk(const TView* view, Order order)
    : mView(view), mViews(mInline), mCount(view->CountSubViews()), mNext(0),
      mBackToFront(order == Order::BackToFront) {
    if (mCount == 0)
        return;
    if (mCount > kInline)
        mViews = new TView*[static_cast<std::size_t>(mCount)];
    const auto* first = static_cast<TView**>(view->mSubViews->ComputeAddress(1));
    std::copy(first, first + mCount, mViews);
}

TView::SubViewWalk::~SubViewWalk() {
    if (mViews != mInline)
        delete[] mViews;
}

TView* TView::SubViewWalk::Next() {
    while (mNext < mCount) {
        TView* sub = mViews[mBackToFront ? mNext : mCount - 1 - mNext];
        ++mNext;
        if (sub->mSuperView == mView)
            return sub;
    }
    return nullptr;
}

// Showing

void TView::Show(bool shown, bool redraw) {
    mHiddenBySuperView = false;
    if (shown == mShown)
        return;
    const StDispatch dispatch;
    if (redraw && mShown)
        ForceRedraw();
    if (!shown) {
        if (TWindow* window = GetWindow())
            window->SubTreeLeaves(this);
    }
    mShown = shown;
    ++sCoordinateStamp;
    ForgetDrawContext();
    if (shown) {
        // What was hidden only because this view was comes back with it.
        for (int i = 1; i <= CountSubViews(); ++i) {
            TView* sub = GetSubView(i);
            if (sub->mHiddenBySuperView)
                sub->Show(true, /*redraw*/ false);
        }
        if (redraw)
            ForceRedraw();
    }
    AccessibilityNotification(kAccessibility_ShownChanged, nullptr);
}

void TView::SetEnable(bool enable) {
    if (enable == IsEnabled())
        return;
    TCommandHandler::SetEnable(enable);
    ForceRedraw();
    AccessibilityNotification(kAccessibility_EnabledChanged, nullptr);
}

// Accessibility

void TView::AccessibilityNotification(int code, TObject* argument) {
    if (QLX_AccessibilityListener* listener = QLX_AccessibilityListener::Get())
        listener->ViewNotified(this, code, argument);
}

void TView::SetAccessibleName(const std::string& name) {
    if (!mExtras && name.empty())
        return;
    NeedExtras().mAccessibleName = name;
    AccessibilityNotification(kAccessibility_NameChanged, nullptr);
}

void TView::GetAccessibleInfo(TAccessibleInfo& info) const {
    if (mExtras)
        info.mName = mExtras->mAccessibleName;
    auto* self = const_cast<TView*>(this); // the two questions are not const in the base
    info.mEnabled = self->IsEnabled();
    info.mTarget = self->IsTarget();
}

void TView::ReportException(const char* operation) {
    if (mReportedException)
        return;
    mReportedException = true;
    const std::string who = GetClassDescDynamic()->GetClassName();
    try {
        throw;
    } catch (const std::exception& failure) {
        Cmn_TraceWrite("TView: exception out of %s::%s: %s", who.c_str(), operation,
                       failure.what());
    } catch (...) {
        Cmn_TraceWrite("TView: exception out of %s::%s", who.c_str(), operation);
    }
}
