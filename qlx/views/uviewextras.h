// What few views have, kept apart from TView so that ten thousand plain views stay small, and what
// is known for a moment while a tree is walked. For the view's own source files.
#pragma once

#include <string>
#include <vector>

#include "qlx/views/ulayout.h"
#include "qlx/views/uview.h"

/// Owned by its view, made when the first of these is set.
struct TViewExtras {
    TViewExtras() = default;
    TViewExtras(const TViewExtras&) = delete;
    TViewExtras& operator=(const TViewExtras&) = delete;
    ~TViewExtras();
    /// Adorners, environment and states are cloned.
    [[nodiscard]] std::unique_ptr<TViewExtras> Copy() const;

    std::vector<TAdorner*> mAdorners;            // owned, in drawing order
    TDrawingEnvironment* mEnvironment = nullptr; // owned
    std::vector<TViewState*> mStates;            // owned
    std::string mState;
    std::vector<TBehavior*>
        mDescribedBehaviors; // not owned; compared with the live ones before use
    bool mHasLayout = false;
    TViewLayout mLayout;
    VPoint mMinimumSize;
    int mCursor = -1; // -1: none of its own
    int mTabOrder = 0;
    std::string mToolTip;
    std::string mAccessibleName;
};

// So that the subviews need not walk up to their window again. Every change of the tree, of a place
// or of a show state forgets it, and then the walk is made.
struct TView::DrawContext {
    // While the subviews of a view are being drawn: the view, its offset and its invalidate view.
    const TView* superView = nullptr;
    TInvalidateView* invalidateView = nullptr;
    VPoint toInvalidate; // from superView's local coordinates
    // While a point is looked for: a view that is shown, whose subviews are asked.
    const TView* shownSuperView = nullptr;
};
