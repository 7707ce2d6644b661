// Drawing: order, clipping, what is visited, adorners, behaviours, failures, and ends in the
// middle.
#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_trace.h"
#include "basekit/cmn/cmn_types.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/uinvalidateview.h"
#include "tests/support/assertion_catcher.h"

namespace {

std::vector<std::string> sLog;

class Drawer : public TView {
  public:
    Drawer(TView* superView, const std::string& name, const VRect& frame) : mName(name) {
        IView(superView, frame);
    }
    void Draw(const VRect& area) override {
        sLog.push_back(mName + " " + area.AsString());
        if (mAction)
            mAction();
    }
    EHighlight GetCurrentHL() const override { return kHighlight_On; }
    std::function<void()> mAction;

  private:
    std::string mName;
};

class NotingAdorner : public TAdorner {
  public:
    NotingAdorner(const std::string& name, int order) : mName(name) { mOrder = order; }
    void Draw(TView*, const VRect&) override { sLog.push_back(mName); }
    void Highlight(TView*, const VRect&, bool on, EHighlight highlight) override {
        sLog.push_back(mName + (on ? " on " : " off ") + std::to_string(highlight));
    }

  private:
    std::string mName;
};

class NotingBehavior : public TBehavior {
  public:
    explicit NotingBehavior(const std::string& name) : mName(name) {}
    void Draw(const VRect&) override { sLog.push_back(mName); }

  private:
    std::string mName;
};

class Drawing : public testing::Test {
  protected:
    Drawing() {
        sLog.clear();
        mRoot->SetFrame({0, 0, 100, 100}, false, false);
        mRoot->SetDrawingPainter(QLX_Painter::Ptr(mPainter));
    }
    ~Drawing() override { mRoot->Free(); }

    std::vector<std::string> DrawAll() {
        sLog.clear();
        mRoot->ForceRedraw();
        mRoot->DrawInvalid();
        return sLog;
    }

    Cmn_RefCountPtr<QLX_PainterRecording> mPainter{new QLX_PainterRecording(100, 100)};
    TInvalidateView* mRoot = new TInvalidateView;
};

using Lines = std::vector<std::string>;

TEST_F(Drawing, LaterSubviewsAreDrawnOnTop) {
    auto* a = new Drawer(mRoot, "a", {0, 0, 50, 50});
    new Drawer(a, "a1", {0, 0, 10, 10});
    new Drawer(mRoot, "b", {25, 25, 75, 75});
    EXPECT_EQ(DrawAll(),
              (Lines{"a VRect(0, 0, 50, 50)", "a1 VRect(0, 0, 10, 10)", "b VRect(0, 0, 50, 50)"}));
    EXPECT_EQ(TView::GetDrawNesting(), 0);
}

TEST_F(Drawing, TheAreaIsCutByEveryExtentOnTheWay) {
    auto* a = new Drawer(mRoot, "a", {50, 50, 150, 150});
    auto* b = new Drawer(a, "b", {-20, -20, 30, 30});
    b->SetLocalOrigin({-100, -100}, false);
    new Drawer(a, "outside", {60, 60, 90, 90});
    auto* hidden = new Drawer(mRoot, "hidden", {0, 0, 100, 100});
    hidden->Show(false, false);
    EXPECT_EQ(DrawAll(), (Lines{"a VRect(0, 0, 50, 50)", "b VRect(120, 120, 150, 150)"}));
}

TEST_F(Drawing, OnlyWhatMeetsTheDamageIsVisited) {
    for (int i = 0; i < 10; ++i) {
        auto* column = new Drawer(mRoot, "c" + std::to_string(i), {10 * i, 0, 10 * i + 10, 100});
        for (int j = 0; j < 10; ++j)
            new Drawer(column, "r", {0, 10 * j, 10, 10 * j + 10});
    }
    DrawAll();
    mRoot->GetCosts() = {};
    mRoot->InvalidateRect({12, 12, 18, 18});
    mRoot->InvalidateRect({82, 82, 88, 88});
    sLog.clear();
    mRoot->DrawInvalid();
    // Two far corners: nothing between them, and each view once.
    EXPECT_EQ(sLog.size(), 4U);
    EXPECT_EQ(mRoot->GetCosts().mViewsVisited, 5U);
    EXPECT_EQ(mRoot->GetCosts().mPixelsPainted, 72U);
    EXPECT_FALSE(mRoot->NeedsDrawing());
}

// Three subviews side by side in every view, turn about in rows and columns.
void Divide(TView* view, int levels, std::vector<TView*>& all) {
    all.push_back(view);
    if (levels == 0)
        return;
    const VPoint size = view->GetSize();
    for (int i = 0; i < 3; ++i) {
        const VRect frame = levels % 2 == 0
                                ? VRect(size.h * i / 3, 0, size.h * (i + 1) / 3, size.v)
                                : VRect(0, size.v * i / 3, size.h, size.v * (i + 1) / 3);
        auto* sub = new TView;
        sub->IView(view, frame);
        Divide(sub, levels - 1, all);
    }
}

TEST_F(Drawing, OfTenThousandViewsTheOnesThatMeetTheDamageAreVisited) {
    mRoot->SetFrame({0, 0, 1620, 1620}, false, false);
    std::vector<TView*> all;
    Divide(mRoot, 8, all);
    ASSERT_EQ(all.size(), 9841U);
    DrawAll();
    std::mt19937 random(9841);
    for (int round = 0; round < 50; ++round) {
        const int left = static_cast<int>(random() % 1600);
        const int top = static_cast<int>(random() % 1600);
        const VRect damage(left, top, left + 20, top + 20);
        const auto met = std::count_if(all.begin(), all.end(), [&](TView* view) {
            VRect place = view->GetExtent();
            view->LocalToWindowVRect(place);
            return !(place & damage).Empty();
        });
        mRoot->GetCosts() = {};
        mRoot->InvalidateRect(damage);
        mRoot->DrawInvalid();
        EXPECT_EQ(mRoot->GetCosts().mViewsVisited, static_cast<std::uint64_t>(met));
        EXPECT_LE(met, 1 + 8 * 4) << "depth and siblings hit, not the tree";
        EXPECT_EQ(mRoot->GetCosts().mPixelsPainted, 400U);
    }
}

TEST_F(Drawing, AdornersDrawAroundTheView) {
    auto* view = new Drawer(mRoot, "view", {0, 0, 10, 10});
    new Drawer(view, "sub", {0, 0, 5, 5});
    view->AddAdorner(new NotingAdorner("above", 1));
    view->AddAdorner(new NotingAdorner("below", -1));
    view->AddAdorner(new NotingAdorner("also above", 1));
    auto* off = new NotingAdorner("off", 0);
    off->SetEnabled(false);
    view->AddAdorner(off);
    view->AddBehavior(new NotingBehavior("behaviour"));
    EXPECT_EQ(DrawAll(),
              (Lines{"below", "view VRect(0, 0, 10, 10)", "above", "also above", "behaviour",
                     "sub VRect(0, 0, 5, 5)", "below on 2", "above on 2", "also above on 2"}));
}

TEST_F(Drawing, WithoutAnInvalidateViewDrawingIsAnAssertion) {
    auto* view = new Drawer(nullptr, "loose", {0, 0, 10, 10});
    AssertionCatcher catcher;
    view->HandleDraw({0, 0, 10, 10});
    ASSERT_EQ(catcher.GetFailures().size(), 1U);
    EXPECT_EQ(catcher.GetFailures()[0].mText, "invalidateView");
    EXPECT_EQ(catcher.GetFailures()[0].mSource, "qlx/views/uview");
    EXPECT_TRUE(sLog.empty());
    view->Free();
}

TEST_F(Drawing, AnExceptionIsReportedOnceAndTheFrameGoesOn) {
    static Lines sTrace;
    sTrace.clear();
    const Cmn_TraceSink sink =
        Cmn_SetTraceSink([](const char* line) { sTrace.emplace_back(line); });
    auto* bad = new Drawer(mRoot, "bad", {0, 0, 10, 10});
    new Drawer(bad, "inside", {0, 0, 5, 5});
    new Drawer(mRoot, "after", {0, 0, 10, 10});
    bad->mAction = [] { throw std::runtime_error("out of paint"); };
    for (int frame = 0; frame < 3; ++frame)
        EXPECT_EQ(DrawAll().size(), 3U);
    Cmn_SetTraceSink(sink);
    EXPECT_EQ(sTrace, (Lines{"TView: exception out of TView::Draw: out of paint"}));
    EXPECT_EQ(TView::GetDrawNesting(), 0);
    EXPECT_FALSE(mRoot->IsDrawing());
}

TEST_F(Drawing, ViewsMayEndHideAndMoveWhileTheyAreDrawn) {
    auto* self = new Drawer(mRoot, "self", {0, 0, 10, 10});
    new Drawer(self, "inside", {0, 0, 5, 5});
    auto* next = new Drawer(mRoot, "next", {0, 0, 10, 10});
    auto* hider = new Drawer(mRoot, "hider", {0, 0, 10, 10});
    auto* hidden = new Drawer(mRoot, "hidden", {0, 0, 10, 10});
    auto* mover = new Drawer(mRoot, "mover", {0, 0, 10, 10});
    self->mAction = [&] {
        next->Free();
        self->Free();
    };
    hider->mAction = [&] { hidden->Show(false, true); };
    mover->mAction = [&] {
        mover->Locate({20, 20}, true);
        mRoot->SetLocalOrigin({0, 0}, true);
    };
    DrawAll();
    EXPECT_EQ(sLog, (Lines{"self VRect(0, 0, 10, 10)", "inside VRect(0, 0, 5, 5)",
                           "hider VRect(0, 0, 10, 10)", "mover VRect(0, 0, 10, 10)"}));
    EXPECT_EQ(mRoot->CountSubViews(), 3);
    // What changed meanwhile is drawn the next time.
    EXPECT_TRUE(mRoot->NeedsDrawing());
}

TEST_F(Drawing, RedrawingFromInsideIsLeftForTheNextFrame) {
    auto* view = new Drawer(mRoot, "view", {0, 0, 10, 10});
    view->mAction = [&] {
        view->ForceRedraw();
        view->UpdateNow(); // under way already
    };
    EXPECT_EQ(DrawAll().size(), 1U);
    EXPECT_TRUE(mRoot->NeedsDrawing());
}

TEST_F(Drawing, InvalidationIsCutAndMappedThroughTheTree) {
    auto* outer = new Drawer(mRoot, "outer", {10, 10, 60, 60});
    auto* inner = new Drawer(outer, "inner", {40, 40, 90, 90});
    mRoot->DrawInvalid();
    inner->InvalidateVRect({5, 5, 50, 50});
    EXPECT_EQ(mRoot->GetInvalidRegion().GetBounds(), (Cmn_Rect<int>(55, 55, 60, 60)));
    mRoot->ValidateAll();
    inner->InvalidateVRect({20, 20, 50, 50});
    EXPECT_FALSE(mRoot->NeedsDrawing()) << "beyond the superview's edge";
    outer->Show(false, false);
    mRoot->ValidateAll();
    inner->ForceRedraw();
    EXPECT_FALSE(mRoot->NeedsDrawing()) << "not shown";
}

TEST_F(Drawing, AThousandChangesAreOneRegionOfTheirOwnPixels) {
    mRoot->DrawInvalid();
    for (int i = 0; i < 1000; ++i)
        mRoot->InvalidateRect({(i * 37) % 99, (i * 53) % 98, (i * 37) % 99 + 1, (i * 53) % 98 + 1});
    std::uint64_t pixels = 0;
    for (const Cmn_Rect<int>& rect : mRoot->GetInvalidRegion().GetRectList())
        pixels += static_cast<std::uint64_t>((rect.right - rect.left) * (rect.bottom - rect.top));
    EXPECT_EQ(pixels, 1000U); // 99 and 98 have no common factor with the steps: no pixel twice
}

TEST_F(Drawing, PaintersAreSetUpForTheViewThatAsks) {
    auto* view = new Drawer(mRoot, "view", {10, 20, 60, 70});
    view->SetLocalOrigin({-5, -5}, false);
    Cmn_Rect<int> clip(0, 0, 0, 0);
    Cmn_Point<int> origin{0, 0};
    CRGBColor color;
    view->mAction = [&] {
        const TView::PainterPtr& painter = view->GetPainter();
        clip = painter->GetClipRegion().GetBounds();
        origin = painter->GetWindowOrigin();
        color = painter->GetForegroundColor();
        painter->SetForegroundColor(CRGBColor(1, 2, 3));
    };
    auto* second = new Drawer(mRoot, "second", {0, 0, 10, 10});
    CRGBColor leaked;
    second->mAction = [&] { leaked = second->GetPainter()->GetForegroundColor(); };
    DrawAll();
    EXPECT_EQ(clip, (Cmn_Rect<int>(5, 5, 55, 55)));
    EXPECT_EQ(origin, (Cmn_Point<int>{-5, -15}));
    EXPECT_EQ(leaked, color) << "a view's colours reach no other view";
}

TEST_F(Drawing, PlacesBeyondThirtyTwoBitsDrawNothingWrong) {
    auto* wide = new Drawer(mRoot, "wide", {-kView_MaxCoordinate, 0, 1000000, 50});
    QLX_Region clip;
    wide->mAction = [&] { clip = wide->GetPainter()->GetClipRegion(); };
    EXPECT_EQ(DrawAll().size(), 1U);
    EXPECT_TRUE(clip.IsEmpty());
    wide->SetFrame({0, 0, 1000000, 50}, false, false);
    DrawAll();
    EXPECT_EQ(clip.GetBounds(), (Cmn_Rect<int>(0, 0, 100, 50)));
    mRoot->SetFrame({0, 0, 0, 0}, false, false);
    EXPECT_TRUE(DrawAll().empty());
}

} // namespace
