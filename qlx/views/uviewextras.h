// What few views have, kept apart from TView so that ten thousand plain views stay small. For the
// view's own source files.
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
