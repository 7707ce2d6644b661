#include "newfilelibs/cmn/cmn_rect.h"

#include <gtest/gtest.h>

#include "newfilelibs/cmn/cmn_interval.h"
#include "newfilelibs/cmn/cmn_polygon.h"
#include "tests/support/assertion_catcher.h"

namespace {

using Rect = Cmn_Rect<int>;
using Point = Cmn_Point<int>;

constexpr int kLow = std::numeric_limits<int>::min();
constexpr int kHigh = std::numeric_limits<int>::max();

std::vector<Rect> Subtract(const Rect& source, const Rect& cutter) {
    Rect pieces[4];
    const int count = source.Subtract(cutter, pieces);
    return {pieces, pieces + count};
}

TEST(CmnRect, SubtractGivesPiecesAboveLeftRightBelow) {
    struct Row {
        const char* why;
        Rect source;
        Rect cutter;
        std::vector<Rect> pieces;
    };
    const Row rows[] = {
        {"a hole",
         {0, 0, 10, 10},
         {3, 3, 6, 6},
         {{0, 0, 10, 3}, {0, 3, 3, 6}, {6, 3, 10, 6}, {0, 6, 10, 10}}},
        {"covered", {0, 0, 10, 10}, {-1, -1, 11, 11}, {}},
        {"the same", {0, 0, 10, 10}, {0, 0, 10, 10}, {}},
        {"corner", {0, 0, 10, 10}, {5, 5, 15, 15}, {{0, 0, 10, 5}, {0, 5, 5, 10}}},
        {"beside, in rows partly",
         {0, 0, 10, 10},
         {20, 3, 30, 6},
         {{0, 0, 10, 3}, {0, 3, 10, 6}, {0, 6, 10, 10}}},
        {"above", {0, 10, 10, 20}, {0, 0, 10, 5}, {{0, 10, 10, 20}}},
        {"below", {0, 0, 10, 10}, {0, 15, 10, 20}, {{0, 0, 10, 10}}},
        {"the whole plane",
         {kLow, kLow, kHigh, kHigh},
         {0, 0, 1, 1},
         {{kLow, kLow, kHigh, 0}, {kLow, 0, 0, 1}, {1, 0, kHigh, 1}, {kLow, 1, kHigh, kHigh}}},
        {"nothing from nothing", {5, 5, 5, 9}, {0, 0, 10, 10}, {}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Subtract(row.source, row.cutter), row.pieces) << row.why;
}

TEST(CmnRect, SubtractMayWriteOverItsOperands) {
    Rect pieces[4] = {{0, 0, 10, 10}, {3, 3, 6, 6}};
    EXPECT_EQ(pieces[0].Subtract(pieces[1], pieces), 4);
    EXPECT_EQ(pieces[3], Rect(0, 6, 10, 10));
}

TEST(CmnRect, SubtractReportsNullOutput) {
    AssertionCatcher catcher;
    EXPECT_EQ(Rect(0, 0, 1, 1).Subtract(Rect(), nullptr), 0);
    ASSERT_EQ(catcher.GetFailures().size(), 1U);
    EXPECT_EQ(catcher.GetFailures()[0].mText, "outP");
    EXPECT_EQ(catcher.GetFailures()[0].mSource, "newfilelibs/cmn/cmn_rect");
    EXPECT_EQ(catcher.GetFailures()[0].mLine, 228);
}

TEST(CmnRect, TouchingRectanglesIntersectInAnEdge) {
    EXPECT_EQ(Rect(0, 0, 10, 10) & Rect(10, 0, 20, 10), Rect(10, 0, 10, 10));
    EXPECT_EQ(Rect(0, 0, 10, 10) & Rect(11, 0, 20, 10), Rect());
    EXPECT_FALSE(Rect(0, 0, 10, 10).Overlaps(Rect(10, 0, 20, 10)));
    // A flat rectangle inside another shares no area with it.
    EXPECT_FALSE(Rect(0, 0, 10, 10).Overlaps(Rect(5, 0, 5, 10)));
}

TEST(CmnRect, LengthsHoldAtTheLimits) {
    EXPECT_EQ(Rect(kLow, 0, kHigh, 10).GetWidth(), kHigh);
    EXPECT_EQ(Rect(kHigh, 0, kLow, 10).GetWidth(), kLow);
    EXPECT_EQ(Rect(kHigh, 0, kHigh, 10) + Point(1, 0), Rect(kLow, 0, kLow, 10));
}

TEST(CmnInterval, ReportsLengthsThatDoNotFit) {
    EXPECT_TRUE(Cmn_Interval::CheckRect({0, 0, kHigh, kHigh}));
    EXPECT_TRUE(Cmn_Interval::CheckRect({kLow, kLow, -1, -1}));
    EXPECT_FALSE(Cmn_Interval::CheckRect({kLow, 0, 0, 1}));
    EXPECT_FALSE(Cmn_Interval::CheckRect({0, -1, 1, kHigh}));
    EXPECT_TRUE(Cmn_Interval::CheckRect({kHigh, 0, kLow, 1})) << "inverted: no length";
}

TEST(CmnPolygon, BoundsFollowTheCorners) {
    Cmn_Polygon<int> polygon{{0, 5}, {10, -5}, {3, 8}};
    EXPECT_EQ(polygon.GetBounds(), Rect(0, -5, 10, 8));
    polygon += {1, 1};
    EXPECT_EQ(polygon[1], Point(11, -4));
    EXPECT_EQ(Cmn_Polygon<int>().GetBounds(), Rect());
}

} // namespace
