// The tree of views: adding, removing, order, look-up, showing, copies, and ends at awkward times.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_types.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/udynamicarray.h"
#include "qlx/views/uview.h"
#include "qlx/views/uviewaccessibility.h"
#include "tests/support/assertion_catcher.h"

namespace {

TView* MakeView(unsigned id, const VRect& frame = {0, 0, 10, 10}) {
    auto* view = new TView;
    view->SetIdentifier(id);
    view->SetFrame(frame, false, false);
    return view;
}

// Says what happens to it in one list.
class NotingView : public TView {
  public:
    explicit NotingView(std::vector<std::string>& notes, const std::string& name)
        : mNotes(notes), mName(name) {}
    ~NotingView() override { mNotes.push_back("~" + mName); }
    void BeInSuperView(TView* superView) override {
        mNotes.push_back(mName + (superView ? " in" : " out"));
        TView::BeInSuperView(superView);
    }
    void AddedASubView(TView*) override { mNotes.push_back(mName + " added"); }
    void RemovedASubView(TView*) override { mNotes.push_back(mName + " removed"); }
    void AccessibilityNotification(int code, TObject* argument) override {
        mNotes.push_back(mName + " code " + std::to_string(code) + (argument ? "" : " null"));
    }

  private:
    std::vector<std::string>& mNotes;
    std::string mName;
};

class ViewTree : public testing::Test {
  protected:
    ~ViewTree() override { mRoot->Free(); }
    TView* mRoot = MakeView(1, {0, 0, 100, 100});
};

TEST_F(ViewTree, AddingAppendsAtTheFrontAndTheLastRemovalDropsTheList) {
    TView* a = MakeView(2);
    TView* b = MakeView(3);
    EXPECT_EQ(mRoot->GetSubViews(), nullptr);
    mRoot->AddSubView(nullptr);
    EXPECT_EQ(mRoot->GetSubViews(), nullptr);
    mRoot->AddSubView(a);
    mRoot->AddSubView(b);
    EXPECT_EQ(mRoot->CountSubViews(), 2);
    EXPECT_EQ(mRoot->GetSubView(2), b);
    EXPECT_EQ(a->GetSuperView(), mRoot);
    EXPECT_EQ(a->GetNextHandler(), mRoot);
    mRoot->RemoveSubView(a);
    mRoot->RemoveSubView(a); // no subview any more
    mRoot->RemoveSubView(b);
    EXPECT_EQ(mRoot->GetSubViews(), nullptr);
    EXPECT_EQ(mRoot->CountSubViews(), 0);
    EXPECT_EQ(b->GetNextHandler(), nullptr);
    a->Free();
    b->Free();
}

TEST_F(ViewTree, AViewJoinsAndLeavesInTheStatedOrder) {
    std::vector<std::string> notes;
    auto* super = new NotingView(notes, "super");
    auto* sub = new NotingView(notes, "sub");
    super->AddSubView(sub);
    EXPECT_EQ(notes,
              (std::vector<std::string>{"sub in", "super added", "sub code 1", "sub code 5"}));
    notes.clear();
    super->RemoveSubView(sub);
    EXPECT_EQ(notes, (std::vector<std::string>{"super removed", "sub out"}));

    // Detached superviews keep quiet on adding and speak on removal.
    notes.clear();
    super->SetAccessibilityDetached(true);
    super->AddSubView(sub);
    super->RemoveSubView(sub);
    EXPECT_EQ(notes, (std::vector<std::string>{"sub in", "super added", "sub code 5 null",
                                               "super removed", "sub out"}));
    notes.clear();
    super->SetAccessibilityDetached(false);
    sub->SetAccessibilityDetached(true);
    super->AddSubView(sub);
    EXPECT_EQ(notes, (std::vector<std::string>{"sub in", "super added", "sub code 5"}));
    super->Free();
}

TEST_F(ViewTree, CyclesAreRefusedAndAViewHasOneSuperview) {
    TView* a = MakeView(2);
    TView* b = MakeView(3);
    mRoot->AddSubView(a);
    a->AddSubView(b);
    {
        AssertionCatcher catcher;
        b->AddSubView(b);
        b->AddSubView(a);
        b->AddSubView(mRoot);
        EXPECT_EQ(catcher.TakeTexts(), (std::vector<std::string>(3, "!IsContainedIn(sub)")));
    }
    mRoot->AddSubView(b);
    EXPECT_EQ(b->GetSuperView(), mRoot);
    EXPECT_EQ(a->CountSubViews(), 0);
    EXPECT_TRUE(b->IsContainedIn(mRoot));
    EXPECT_FALSE(b->IsContainedIn(b));
}

TEST_F(ViewTree, FindSubViewGoesDepthFirstAndStopsAtContainers) {
    TView* first = MakeView(2);
    TView* second = MakeView(7);
    TView* inFirst = MakeView(7);
    mRoot->AddSubView(first);
    mRoot->AddSubView(second);
    first->AddSubView(inFirst);
    EXPECT_EQ(mRoot->FindSubView(1, false), mRoot);
    EXPECT_EQ(mRoot->FindSubView(7, false), second);
    EXPECT_EQ(mRoot->FindSubView(7, true), inFirst); // before the later sibling
    first->SetSeparateContainer(true);
    EXPECT_EQ(mRoot->FindSubView(7, true), second);
    EXPECT_EQ(first->FindSubView(7, true), inFirst);
    EXPECT_EQ(mRoot->FindSubView(99, true), nullptr);
}

TEST_F(ViewTree, ViewsMoveToTheBackAndToTheFront) {
    TView* views[] = {MakeView(2), MakeView(3), MakeView(4)};
    for (TView* view : views)
        mRoot->AddSubView(view);
    const auto order = [this] {
        std::string text;
        for (int i = 1; i <= mRoot->CountSubViews(); ++i)
            text += static_cast<char>('0' + mRoot->GetSubView(i)->GetIdentifier());
        return text;
    };
    mRoot->MakeLastSubView(views[0]);
    EXPECT_EQ(order(), "342");
    mRoot->MakeFirstSubView(views[2]);
    EXPECT_EQ(order(), "432");
    mRoot->MakeFirstSubView(views[2]);
    EXPECT_EQ(order(), "432");
    TView* stranger = MakeView(9);
    mRoot->MakeLastSubView(stranger);
    EXPECT_EQ(order(), "432");
    stranger->Free();
}

TEST_F(ViewTree, AViewAddedToAHiddenOneComesBackWithIt) {
    TView* hidden = MakeView(2);
    TView* alsoHidden = MakeView(3);
    alsoHidden->Show(false, false);
    mRoot->Show(false, false);
    mRoot->AddSubView(hidden);
    mRoot->AddSubView(alsoHidden);
    EXPECT_FALSE(hidden->GetShownFlag());
    EXPECT_TRUE(hidden->IsHiddenBySuperView());
    EXPECT_FALSE(alsoHidden->IsHiddenBySuperView());
    mRoot->Show(true, false);
    EXPECT_TRUE(hidden->IsShown());
    EXPECT_FALSE(hidden->IsHiddenBySuperView());
    EXPECT_FALSE(alsoHidden->IsShown());
}

TEST_F(ViewTree, FreeingAViewTakesItOutAndEndsWhatIsInside) {
    std::vector<std::string> notes;
    auto* outer = new NotingView(notes, "outer");
    auto* inner = new NotingView(notes, "inner");
    mRoot->AddSubView(outer);
    outer->AddSubView(inner);
    notes.clear();
    outer->Free();
    EXPECT_EQ(mRoot->CountSubViews(), 0);
    EXPECT_EQ(notes, (std::vector<std::string>{"outer code 2", "outer out", "~outer",
                                               "inner code 2", "~inner"}));
}

TEST_F(ViewTree, InsideADispatchAFreedViewLeavesAtOnceAndIsDeletedLater) {
    std::vector<std::string> notes;
    auto* view = new NotingView(notes, "view");
    mRoot->AddSubView(view);
    {
        const TView::StDispatch outer;
        {
            const TView::StDispatch inner;
            view->Free();
            view->Free(); // twice is once
        }
        EXPECT_EQ(mRoot->CountSubViews(), 0);
        EXPECT_EQ(notes.back(), "view out");
    }
    EXPECT_EQ(notes.back(), "~view");
}

TEST_F(ViewTree, AWalkMeetsEachViewThatStaysOnce) {
    std::vector<TView*> views;
    for (unsigned i = 0; i < 40; ++i) {
        views.push_back(MakeView(10 + i));
        mRoot->AddSubView(views.back());
    }
    std::vector<unsigned> seen;
    TView::SubViewWalk walk(mRoot, TView::SubViewWalk::Order::FrontToBack);
    while (TView* sub = walk.Next()) {
        seen.push_back(sub->GetIdentifier());
        if (seen.size() == 1) {
            views[38]->Free();
            mRoot->RemoveSubView(views[37]);
            mRoot->AddSubView(views[37]); // left and came back: still met once
            mRoot->MakeFirstSubView(views[39]);
            mRoot->AddSubView(MakeView(99));
        }
    }
    ASSERT_EQ(seen.size(), 39U);
    EXPECT_EQ(seen[0], 49U);
    EXPECT_EQ(seen[1], 47U);
    EXPECT_EQ(seen.back(), 10U);
}

TEST_F(ViewTree, ACopyHasItsOwnSubviewsAndNoSuperview) {
    TView* sub = MakeView(2, {1, 2, 3, 4});
    sub->SetToolTip("tip");
    sub->AddAdorner(new TFillAdorner);
    mRoot->AddSubView(sub);
    auto* copy = static_cast<TView*>(mRoot->Clone());
    ASSERT_EQ(copy->CountSubViews(), 1);
    TView* subCopy = copy->GetSubView(1);
    EXPECT_NE(subCopy, sub);
    EXPECT_EQ(subCopy->GetSuperView(), copy);
    EXPECT_EQ(subCopy->GetFrame(), sub->GetFrame());
    EXPECT_EQ(subCopy->CountAdorners(), 1);
    EXPECT_NE(subCopy->GetAdorner(1), sub->GetAdorner(1));
    std::string text;
    VRect area;
    EXPECT_TRUE(subCopy->GetToolTip({}, text, area));
    EXPECT_EQ(text, "tip");
    auto* second = static_cast<TView*>(sub->Clone());
    EXPECT_EQ(second->GetSuperView(), nullptr);
    EXPECT_EQ(second->GetNextHandler(), nullptr);
    second->Free();
    copy->Free();
}

} // namespace
