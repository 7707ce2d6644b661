// Frames, local coordinates, mapping, visible parts, scrolling, and coordinates beyond 32 bits.
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "qlx/foundation/qlx_region.h"
#include "qlx/views/uview.h"

namespace {

TView* MakeView(TView* superView, const VRect& frame) {
    auto* view = new TView;
    view->IView(superView, frame);
    return view;
}

class ViewCoordinates : public testing::Test {
  protected:
    ~ViewCoordinates() override { mRoot->Free(); }
    TView* mRoot = MakeView(nullptr, {0, 0, 200, 100});
};

TEST_F(ViewCoordinates, LocalOriginMovesTheExtentAndNotTheFrame) {
    TView* view = MakeView(mRoot, {20, 10, 60, 40});
    VPoint point(0, 0);
    view->LocalToSuper(point);
    EXPECT_EQ(point, VPoint(20, 10));
    view->SetLocalOrigin({5, 5}, false);
    EXPECT_EQ(view->GetExtent(), VRect(-5, -5, 35, 25));
    EXPECT_EQ(view->GetFrame(), VRect(20, 10, 60, 40));
    point = {-5, -5};
    view->LocalToSuper(point);
    EXPECT_EQ(point, VPoint(20, 10));
    VPoint offset;
    view->GetLocalOffsetInSuper(offset);
    EXPECT_EQ(offset, VPoint(25, 15));
}

TEST_F(ViewCoordinates, MappingThereAndBackIsTheIdentityInAnyTree) {
    std::mt19937 random(20240607);
    const auto any = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    std::vector<TView*> views{mRoot};
    for (int i = 0; i < 60; ++i) {
        TView* super = views[static_cast<std::size_t>(any(0, static_cast<int>(views.size()) - 1))];
        const int left = any(-50, 50);
        const int top = any(-50, 50);
        views.push_back(MakeView(super, {left, top, left + any(0, 80), top + any(0, 80)}));
        views.back()->SetLocalOrigin({any(-30, 30), any(-30, 30)}, false);
    }
    for (const TView* view : views) {
        const VPoint point(any(-500, 500), any(-500, 500));
        VPoint there = point;
        view->LocalToWindow(there);
        VPoint back = there;
        view->WindowToLocal(back);
        EXPECT_EQ(back, point);
        VRect rect(point, point + VPoint(7, 5));
        view->LocalToWindowVRect(rect);
        EXPECT_EQ(rect[kTopLeft], there);
        VPoint other = point;
        views[7]->ConvertVPointFromOtherView(view, other);
        views[7]->LocalToWindow(other);
        EXPECT_EQ(other, there);
    }
}

TEST_F(ViewCoordinates, RegionsMoveWithTheView) {
    TView* view = MakeView(mRoot, {20, 10, 60, 40});
    QLX_Region region(Cmn_Rect<int>(0, 0, 5, 5));
    view->LocalToSuperRegion(region);
    EXPECT_EQ(region.GetBounds(), (Cmn_Rect<int>(20, 10, 25, 15)));
    view->SuperToLocalRegion(region);
    EXPECT_EQ(region.GetBounds(), (Cmn_Rect<int>(0, 0, 5, 5)));
}

TEST_F(ViewCoordinates, TheExtentIsHalfOpen) {
    TView* view = MakeView(mRoot, {20, 10, 60, 40});
    struct Row {
        VPoint point;
        bool inside;
    };
    for (const Row& row : {Row{{0, 0}, true}, Row{{39, 29}, true}, Row{{40, 0}, false},
                           Row{{0, 30}, false}, Row{{-1, 0}, false}, Row{{0, -1}, false}})
        EXPECT_EQ(view->ContainsMouse(row.point), row.inside) << row.point;
    view->Show(false, false);
    EXPECT_FALSE(view->ContainsMouse({0, 0}));
}

TEST_F(ViewCoordinates, TheVisibleRectangleFollowsEveryChangeAbove) {
    TView* outer = MakeView(mRoot, {150, 0, 250, 100}); // half of it beyond the root's edge
    TView* inner = MakeView(outer, {10, 10, 90, 90});
    EXPECT_EQ(inner->GetVisibleRect(), VRect(0, 0, 40, 80));
    EXPECT_TRUE(inner->IsRectVisible({0, 0, 5, 5}));
    EXPECT_FALSE(inner->IsRectVisible({40, 0, 80, 80}));
    outer->Locate({0, 0}, false);
    EXPECT_EQ(inner->GetVisibleRect(), VRect(0, 0, 80, 80));
    outer->SetLocalOrigin({-30, 0}, false);
    EXPECT_EQ(inner->GetVisibleRect(), VRect(20, 0, 80, 80));
    outer->Locate({500, 0}, false);
    EXPECT_EQ(inner->GetVisibleRect(), VRect());
    EXPECT_FALSE(inner->IsVisible());
    EXPECT_TRUE(inner->IsShown());
}

TEST_F(ViewCoordinates, AccessibilityHearsOfAMoveOnlyWhenItMoved) {
    class Noting : public TView {
      public:
        void AccessibilityNotification(int code, TObject*) override {
            if (code == kAccessibility_LocationChanged)
                ++mMoves;
        }
        int mMoves = 0;
    };
    auto* view = new Noting;
    view->IView(mRoot, {0, 0, 10, 10});
    view->Locate({5, 5}, false);
    view->Locate({5, 5}, false);
    EXPECT_EQ(view->mMoves, 1);
    EXPECT_EQ(view->GetFrame(), VRect(5, 5, 15, 15));
}

TEST_F(ViewCoordinates, SettingTheSameOriginDoesNothing) {
    class Counting : public TView {
      public:
        void InvalidateFocus() override { ++mCalls; }
        int mCalls = 0;
    };
    auto* view = new Counting;
    view->IView(mRoot, {0, 0, 10, 10});
    view->mCalls = 0;
    view->SetLocalOrigin({3, 4}, true);
    view->SetLocalOrigin({3, 4}, true);
    EXPECT_EQ(view->mCalls, 1);
}

TEST_F(ViewCoordinates, HugeAndInvertedFramesAreHeld) {
    constexpr std::int64_t kHuge = std::int64_t{1} << 62;
    TView* view = MakeView(mRoot, {-kHuge, -kHuge, kHuge, kHuge});
    EXPECT_EQ(view->GetFrame().Left(), -kView_MaxCoordinate);
    EXPECT_EQ(view->GetFrame().Right(), kView_MaxCoordinate);
    // The root's part of it, in coordinates beyond 32 bits.
    EXPECT_EQ(view->GetVisibleRect(), VRect(kView_MaxCoordinate, kView_MaxCoordinate,
                                            kView_MaxCoordinate + 200, kView_MaxCoordinate + 100));
    view->SetFrame({50, 50, 10, 10}, false, false);
    EXPECT_EQ(view->GetFrame(), VRect(50, 50, 50, 50));
    view->SetLocalOrigin({kHuge, -kHuge}, false);
    EXPECT_EQ(view->GetLocalOffset(), VPoint(-kView_MaxCoordinate, kView_MaxCoordinate));
}

// What scrolls is what a subclass says is scrollable.
class Scroller : public TView {
  public:
    bool IsScrollable() const override { return true; }
};

TEST_F(ViewCoordinates, RevealingScrollsNoFurtherThanNeeded) {
    auto* scroller = new Scroller;
    scroller->IView(mRoot, {0, 0, 50, 50});
    TView* item = MakeView(scroller, {0, 120, 30, 140});
    item->RevealRect(item->GetExtent());
    EXPECT_EQ(scroller->GetLocalOffset(), VPoint(0, 90)); // its bottom at the bottom
    item->RevealRect(item->GetExtent());
    EXPECT_EQ(scroller->GetLocalOffset(), VPoint(0, 90));
    TView* before = MakeView(scroller, {0, 10, 30, 20});
    before->RevealRect(before->GetExtent());
    EXPECT_EQ(scroller->GetLocalOffset(), VPoint(0, 10));
    TView* tall = MakeView(scroller, {0, 30, 30, 330});
    tall->RevealRect(tall->GetExtent());
    EXPECT_EQ(scroller->GetLocalOffset(), VPoint(0, 30)); // its beginning
}

} // namespace
