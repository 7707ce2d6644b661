#include "qlx/views/ulayout.h"

#include <gtest/gtest.h>

#include "qlx/views/uview.h"

namespace {

struct Row {
    const char* why;
    EEdgeRule left, top, right, bottom;
    VPoint superSize;
    VPoint minimum;
    VRect expected;
};

// The frame (10, 20, 60, 80) was made for a superview of 100 by 200.
TEST(Layout, EdgesGoWhereTheirRulesSay) {
    constexpr EEdgeRule N = kEdge_Near, F = kEdge_Far, M = kEdge_Middle, P = kEdge_Proportional,
                        S = kEdge_Size;
    const Row rows[] = {
        {"fixed in place and size", N, N, S, S, {300, 400}, {}, {10, 20, 60, 80}},
        {"both edges follow: it stretches", N, N, F, F, {300, 400}, {}, {10, 20, 260, 280}},
        {"follows the far corner", F, F, F, F, {300, 400}, {}, {210, 220, 260, 280}},
        {"far edge and its own size", S, S, F, F, {300, 400}, {}, {210, 220, 260, 280}},
        {"in proportion", P, P, P, P, {200, 100}, {}, {20, 10, 120, 40}},
        {"keeps its distance from the middle", M, M, M, M, {200, 300}, {}, {60, 70, 110, 130}},
        {"proportional place, own size", P, P, S, S, {200, 100}, {}, {20, 10, 70, 70}},
        {"no smaller than its minimum", N, N, F, F, {20, 20}, {30, 40}, {10, 20, 40, 60}},
        {"minimum at the far side keeps the far edge",
         F,
         F,
         F,
         F,
         {100, 200},
         {80, 90},
         {-20, -10, 60, 80}},
        {"sizes below zero become zero", N, N, F, F, {0, 0}, {}, {10, 20, 10, 20}},
        {"two edges that only know each other count from the near side",
         S,
         S,
         S,
         S,
         {300, 400},
         {},
         {10, 20, 60, 80}},
    };
    for (const Row& row : rows) {
        TViewLayout layout(row.left, row.top, row.right, row.bottom);
        layout.SetReference({10, 20, 60, 80}, {100, 200});
        EXPECT_EQ(layout.Compute(row.superSize, row.minimum), row.expected) << row.why;
    }
}

TEST(Layout, TheFirstSizeGivesBackTheFirstFrameAfterAnyDetour) {
    auto* super = new TView;
    super->SetFrame({0, 0, 101, 77}, false, false);
    auto* view = new TView;
    view->SetFrame({13, 7, 58, 41}, false, false);
    view->SetLayout({kEdge_Proportional, kEdge_Proportional, kEdge_Proportional, kEdge_Middle});
    super->AddSubView(view);
    auto* inner = new TView;
    inner->IView(view, {5, 5, 40, 20});
    inner->SetLayout({kEdge_Near, kEdge_Near, kEdge_Far, kEdge_Far});
    for (int size = 0; size < 400; ++size)
        super->Resize({size, 400 - size}, false);
    super->Resize({202, 77}, false);
    EXPECT_EQ(view->GetFrame(), VRect(26, 7, 116, 41));
    EXPECT_EQ(inner->GetFrame(), VRect(5, 5, 85, 20));
    super->Resize({101, 77}, false);
    EXPECT_EQ(view->GetFrame(), VRect(13, 7, 58, 41));
    EXPECT_EQ(inner->GetFrame(), VRect(5, 5, 40, 20));
    super->Free();
}

TEST(Layout, APlaceSetByCodeIsTheNewReference) {
    auto* super = new TView;
    super->SetFrame({0, 0, 100, 100}, false, false);
    auto* view = new TView;
    view->IView(super, {10, 10, 20, 20});
    view->SetLayout({kEdge_Far, kEdge_Near, kEdge_Far, kEdge_Size});
    view->Locate({70, 30}, false);
    super->Resize({150, 100}, false);
    EXPECT_EQ(view->GetFrame(), VRect(120, 30, 130, 40));
    super->Free();
}

TEST(Layout, TheMinimumOfAViewCountsWhatIsInside) {
    auto* super = new TView;
    super->SetFrame({0, 0, 100, 100}, false, false);
    auto* view = new TView;
    view->IView(super, {10, 10, 90, 90});
    view->SetLayout({kEdge_Near, kEdge_Near, kEdge_Far, kEdge_Far});
    view->SetMinimumSize({40, 25});
    EXPECT_EQ(super->CalcMinFrame(), VPoint(10 + 40 + 10, 10 + 25 + 10));
    super->Resize({30, 30}, false);
    EXPECT_EQ(view->GetSize(), VPoint(40, 25));
    super->Free();
}

TEST(Layout, RulesAreReadByName) {
    EEdgeRule rule = kEdge_Size;
    for (const EEdgeRule each :
         {kEdge_Near, kEdge_Far, kEdge_Middle, kEdge_Proportional, kEdge_Size}) {
        EXPECT_TRUE(TViewLayout::RuleFromString(TViewLayout::RuleToString(each), rule));
        EXPECT_EQ(rule, each);
    }
    EXPECT_FALSE(TViewLayout::RuleFromString("nearby", rule));
    EXPECT_EQ(rule, kEdge_Size);
}

} // namespace
