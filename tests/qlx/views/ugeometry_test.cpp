#include "qlx/views/ugeometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr VCoordinate kLow = std::numeric_limits<VCoordinate>::min();
constexpr VCoordinate kHigh = std::numeric_limits<VCoordinate>::max();

TEST(VPoint, IsBuiltHorizontalFirstAndKeptVerticalFirst) {
    VPoint point(3, 7);
    EXPECT_EQ(point.h, 3);
    EXPECT_EQ(point[kVertical], 7);
    EXPECT_EQ(point[kHorizontal], 3);
    EXPECT_EQ(point[static_cast<PointSelector>(9)], 3) << "any other selector is horizontal";
    point[kVertical] = 8;
    EXPECT_EQ(*reinterpret_cast<const VCoordinate*>(&point), 8) << "v comes first in memory";
}

TEST(VPoint, ConvertsByCuttingOrClamping) {
    EXPECT_EQ(VPoint(Cmn_Point<int>(1, 2)), VPoint(1, 2));
    EXPECT_EQ(VPoint(_CPoint{2, 1}), VPoint(1, 2));
    EXPECT_EQ(VPoint(SimpleVPoint{2, 1}), VPoint(1, 2));
    const VPoint far((VCoordinate{1} << 32) + 5, -40000);
    EXPECT_EQ(far.ToCmn_Point(), Cmn_Point<int>(5, -40000));
    EXPECT_EQ(far.ToPoint(), (_CPoint{-32768, 32767}));
}

TEST(VPoint, OrdersVerticallyFirst) {
    EXPECT_LT(VPoint(9, 1), VPoint(0, 2));
    EXPECT_LT(VPoint(1, 2), VPoint(2, 2));
    EXPECT_GE(VPoint(2, 2), VPoint(2, 2));
}

TEST(VPoint, ArithmeticWraps) {
    EXPECT_EQ(VPoint(kHigh, kLow) + VPoint(1, -1), VPoint(kLow, kHigh));
    EXPECT_EQ(-VPoint(kLow, 5), VPoint(kLow, -5));
    VPoint point(kHigh, 3);
    point.Scale(2);
    EXPECT_EQ(point, VPoint(-2, 6));
}

TEST(VPoint, ConstrainsToAllFourEdges) {
    struct Row {
        const char* why;
        VPoint point;
        VPoint constrained;
    };
    const Row rows[] = {
        {"inside stays", {5, 5}, {5, 5}},
        {"the far edges are included", {25, 45}, {20, 40}},
        {"the near edges", {-1, -1}, {0, 0}},
    };
    const VRect limits(0, 0, 20, 40);
    for (const Row& row : rows) {
        VPoint point = row.point;
        point.ConstrainTo(limits);
        EXPECT_EQ(point, row.constrained) << row.why;
    }
    EXPECT_FALSE(limits.Contains(VPoint(20, 40))) << "though it may end there";
}

TEST(VPoint, TextIsHorizontalFirstInOneBuffer) {
    const char* text = static_cast<const char*>(VPoint(-1, 2));
    EXPECT_STREQ(text, "VPoint(-1, 2)");
    EXPECT_EQ(static_cast<const char*>(VPoint(kLow, kHigh)), text);
    EXPECT_STREQ(text, "VPoint(-9223372036854775808, 9223372036854775807)");
}

TEST(VRect, IsTwoPointsInMemory) {
    VRect rect(10, 20, 30, 40);
    EXPECT_EQ(rect.Top(), 20);
    EXPECT_EQ(rect.Left(), 10);
    EXPECT_EQ(rect.GetSize(), VPoint(20, 20));
    EXPECT_EQ(rect.ToCmn_Rect(), Cmn_Rect<int>(10, 20, 30, 40));
    EXPECT_EQ(VRect(Cmn_Rect<int>(10, 20, 30, 40)), rect);
    EXPECT_EQ(VRect(_CRect{20, 10, 40, 30}), rect);
    rect[kTopLeft].v = 21;
    rect[kBottomRight].h = 31;
    rect.GetBottomRight().v = 41;
    EXPECT_EQ(rect, VRect(VPoint(10, 21), VPoint(31, 41)));
    const auto* fields = reinterpret_cast<const VCoordinate*>(&rect);
    EXPECT_EQ(fields[0], 21);
    EXPECT_EQ(fields[1], 10);
    EXPECT_EQ(fields[2], 41);
    EXPECT_EQ(fields[3], 31);
}

TEST(VRect, LengthsBySelector) {
    const VRect rect(0, 0, 20, 7);
    EXPECT_EQ(rect.GetLength(0), 7);
    EXPECT_EQ(rect.GetLength(1), 20);
    EXPECT_EQ(rect.GetLength(5), 20);
}

TEST(VRect, ConvertsBySaturatingTo16Bits) {
    EXPECT_EQ(VRect(-40000, 5, 40000, 6).ToRect(), (_CRect{5, -32768, 6, 32767}));
}

TEST(VRect, EmptyAndValidDifferOnZeroSizes) {
    struct Row {
        const char* why;
        VRect rect;
        bool empty;
        bool valid;
    };
    const Row rows[] = {
        {"plain", {0, 0, 1, 1}, false, true},
        {"flat", {0, 0, 5, 0}, true, true},
        {"inverted across", {5, 0, 4, 9}, true, false},
        {"inverted down", {0, 9, 4, 5}, true, false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.rect.Empty(), row.empty) << row.why;
        EXPECT_EQ(row.rect.Valid(), row.valid) << row.why;
    }
    VRect rect(5, 9, 4, 1);
    rect.Validate();
    EXPECT_EQ(rect, VRect(4, 1, 5, 9));
}

TEST(VRect, ContainsByEdges) {
    const VRect rect(0, 0, 10, 10);
    EXPECT_TRUE(rect.Contains(VPoint(0, 9)));
    EXPECT_FALSE(rect.Contains(VPoint(10, 9)));
    EXPECT_TRUE(rect.Contains(rect));
    EXPECT_TRUE(rect.Contains(VRect(10, 10, 10, 10))) << "an empty one on the edge counts";
    EXPECT_FALSE(rect.Contains(VRect(20, 20, 20, 20)));
}

TEST(VRect, IntersectionAndUnion) {
    struct Row {
        const char* why;
        VRect a;
        VRect b;
        VRect both;
        VRect either;
    };
    const Row rows[] = {
        {"touching edges leave a zero-width strip",
         {0, 0, 10, 10},
         {10, 0, 20, 10},
         {10, 0, 10, 10},
         {0, 0, 20, 10}},
        {"one pixel apart leaves all zeros",
         {0, 0, 10, 10},
         {11, 0, 20, 10},
         {0, 0, 0, 0},
         {0, 0, 20, 10}},
        {"apart in one direction only", {0, 0, 5, 5}, {1, 8, 2, 9}, {0, 0, 0, 0}, {0, 0, 5, 9}},
        {"an all-zero one stretches to the origin",
         {5, 5, 9, 9},
         {0, 0, 0, 0},
         {0, 0, 0, 0},
         {0, 0, 9, 9}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.a & row.b, row.both) << row.why;
        EXPECT_EQ(row.a | row.b, row.either) << row.why;
    }
}

TEST(VRect, ArithmeticMovesOrCombines) {
    const VRect rect(1, 2, 3, 4);
    EXPECT_EQ(rect + VPoint(10, 20), VRect(11, 22, 13, 24));
    EXPECT_EQ(rect - VPoint(1, 2), VRect(0, 0, 2, 2));
    EXPECT_EQ(rect + VRect(10, 20, 30, 40), VRect(11, 22, 33, 44));
    EXPECT_EQ(rect - rect, VRect());
    EXPECT_EQ(-rect, VRect(-1, -2, -3, -4));
    VRect changed = rect;
    changed.Inset(VPoint(2, 3));
    EXPECT_EQ(changed, VRect(3, 5, 1, 1)) << "no clamping";
    changed = rect;
    changed.Scale(-3);
    EXPECT_EQ(changed, VRect(-3, -6, -9, -12));
}

TEST(VRect, TextIsLeftTopRightBottom) {
    EXPECT_EQ(VRect(10, 20, 30, 40).AsString(), "VRect(10, 20, 30, 40)");
    const char* text = static_cast<const char*>(VRect(1, 2, 3, 4));
    EXPECT_EQ(static_cast<const char*>(VRect(kLow, kLow, kLow, kLow)), text);
    EXPECT_STREQ(text, "VRect(-9223372036854775808, -9223372036854775808, -9223372036854775808, "
                       "-9223372036854775808)");
}

} // namespace
