#include "qlx/views/crgbcolor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "qlx/views/ucolortable.h"
#include "tests/support/assertion_catcher.h"

namespace {

TEST(CRGBColor, StartsOpaqueBlack) {
    EXPECT_EQ(CRGBColor(), CRGBColor(0, 0, 0, 65535));
    EXPECT_TRUE(CRGBColor().IsOpaque());
    EXPECT_FALSE(CRGBColor(0, 0, 0, 65534).IsOpaque());
    EXPECT_EQ(CRGBColor(0x1234, 0x5678, 0x9ABC).AsInt32(), 0xFF12569AU);
}

TEST(CRGBColor, ArithmeticWrapsAndIsOpaque) {
    struct Row {
        const char* why;
        CRGBColor result;
        CRGBColor expected;
    };
    const CRGBColor a(65535, 10, 300, 5);
    const CRGBColor b(1, 20, 300, 7);
    constexpr unsigned short two = 2;
    const Row rows[] = {
        {"sum", a + b, {0, 30, 600}},
        {"difference", a - b, {65534, 65526, 0}},
        {"product", a * b, {65535, 200, 24464}},
        {"largest product", CRGBColor(65535, 65535, 0) * CRGBColor(65535, 65534, 1), {1, 2, 0}},
        {"quotient", a / b, {65535, 0, 1}},
        {"scalar sum", a + two, {1, 12, 302}},
        {"scalar difference", b - two, {65535, 18, 298}},
        {"scalar product", a * two, {65534, 20, 600}},
        {"scalar quotient", a / two, {32767, 5, 150}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.result, row.expected) << row.why;
}

TEST(CRGBColor, ArithmeticInPlaceKeepsAlpha) {
    CRGBColor color(65535, 10, 300, 5);
    color += CRGBColor(1, 1, 1, 1);
    EXPECT_EQ(color, CRGBColor(0, 11, 301, 5));
    color -= static_cast<unsigned short>(1);
    EXPECT_EQ(color, CRGBColor(65535, 10, 300, 5));
    color *= static_cast<unsigned short>(3);
    EXPECT_EQ(color, CRGBColor(65533, 30, 900, 5));
}

TEST(CRGBColor, FloatProductRoundsAndKeepsLow16Bits) {
    const CRGBColor color(100, 65535, 3);
    EXPECT_EQ(color * 0.5F, CRGBColor(50, 32768, 2));
    EXPECT_EQ(color * 2.0F, CRGBColor(200, 65534, 6));
    EXPECT_EQ(color * -1.0F,
              CRGBColor(static_cast<unsigned short>(-99), 2, static_cast<unsigned short>(-2)))
        << "-99.5, -65534.5 and -2.5 cut toward zero";
    EXPECT_EQ(color * 1e30F, CRGBColor(0, 0, 0)) << "far beyond any integer";
    EXPECT_EQ(color * std::numeric_limits<float>::infinity(), CRGBColor());
    EXPECT_EQ(color * std::numeric_limits<float>::quiet_NaN(), CRGBColor());
}

// Floats of this size are multiples of a power of two: the low bits are known from integers.
TEST(CRGBColor, FloatProductsBeyondIntAreExactInTheirLowBits) {
    for (const int exponent : {15, 16, 17, 20, 30, 31, 40}) {
        const float factor = std::ldexp(1.0F, exponent);
        const auto low = static_cast<unsigned short>(std::uint64_t{3} << exponent);
        EXPECT_EQ((CRGBColor(3, 0, 0) * factor).GetRed(), low) << exponent;
    }
}

TEST(CRGBColor, OrdersByRedBlueGreenAlpha) {
    EXPECT_LT(CRGBColor(10, 20, 5, 0), CRGBColor(10, 0, 6, 0)) << "blue decides before green";
    EXPECT_LT(CRGBColor(9, 9, 9), CRGBColor(10, 0, 0));
    EXPECT_LT(CRGBColor(1, 1, 1, 2), CRGBColor(1, 1, 1, 3));
    EXPECT_LT(CRGBColor(1, 1, 1, 9), CRGBColor(1, 2, 1, 3));
    EXPECT_FALSE(CRGBColor(1, 1, 1) < CRGBColor(1, 1, 1));
}

TEST(CRGBColor, BlendMovesInPlace) {
    CRGBColor color(100, 1000, 65535, 9);
    const CRGBColor other(200, 0, 0, 77);
    EXPECT_EQ(CRGBColor(color).Blend(other, 0), color);
    EXPECT_EQ(CRGBColor(color).Blend(other, 1), CRGBColor(200, 0, 0, 9));
    EXPECT_EQ(&color.Blend(other, 0.25F), &color);
    EXPECT_EQ(color, CRGBColor(125, 750, 49151, 9));
    EXPECT_EQ(CRGBColor(0, 0, 0, 3).GetScaledBetween(other, 0.5F), CRGBColor(100, 0, 0));
    EXPECT_EQ(CRGBColor(10, 0, 0).GetScaledBetween(CRGBColor(), 2).GetRed(),
              static_cast<unsigned short>(-10))
        << "below zero: the low 16 bits";
}

TEST(CRGBColor, ScalesByPercent) {
    const CRGBColor color(0, 1000, 65535, 12);
    EXPECT_EQ(color.GetScaled(false, 50), CRGBColor(32767, 33267, 65535));
    EXPECT_EQ(color.GetScaled(true, 50), CRGBColor(0, 500, 32767));
    EXPECT_EQ(color.GetScaled(true, 0), CRGBColor());
    EXPECT_EQ(color.GetScaled(true, 100), CRGBColor(0, 1000, 65535));
    EXPECT_EQ(CRGBColor(65535, 0, 0).GetScaled(true, 65535).GetRed(),
              static_cast<unsigned short>(65535LL * 65535 / 100));
}

TEST(CRGBColor, OffsetsHoldAtTheLimits) {
    struct Row {
        bool darken;
        unsigned short amount;
        unsigned short component;
        unsigned short expected;
    };
    const Row rows[] = {
        {false, 100, 65435, 65535}, {false, 100, 65434, 65534}, {false, 65535, 0, 65535},
        {true, 100, 100, 0},        {true, 100, 101, 1},        {true, 65535, 65535, 0},
    };
    for (const Row& row : rows) {
        const CRGBColor result =
            CRGBColor(row.component, 0, 0, 4).GetOffsetBy(row.darken, row.amount);
        EXPECT_EQ(result.GetRed(), row.expected) << row.component << " by " << row.amount;
        EXPECT_TRUE(result.IsOpaque());
    }
}

TEST(CRGBColor, MultipliesWithABound) {
    EXPECT_EQ(CRGBColor(1, 2, 3).WithMultipliedAlpha(2.0F), CRGBColor(1, 2, 3));
    EXPECT_EQ(CRGBColor(1, 2, 3).WithMultipliedAlpha(0.5F), CRGBColor(1, 2, 3, 32767));
    CRGBColor color(40000, 10, 65535, 100);
    color.MultiplyByScalarAndBound(2.0F);
    EXPECT_EQ(color, CRGBColor(65535, 20, 65535, 100));
    color.MultiplyAlphaByScalarAndBound(1.5F);
    EXPECT_EQ(color.GetAlpha(), 150);
    color.MultiplyAlphaByScalarAndBound(1000.0F);
    EXPECT_TRUE(color.IsOpaque());
    color.MultiplyByScalarAndBound(-1.0F);
    EXPECT_EQ(color.GetGreen(), static_cast<unsigned short>(-20));
}

TEST(CRGBColorDeathTest, DivisionByZeroIsFatal) {
    const CRGBColor color(1, 2, 3);
    EXPECT_DEATH((void)(color / CRGBColor(1, 0, 1)), "CRGBColor: division by zero");
    EXPECT_DEATH((void)(color / static_cast<unsigned short>(0)), "CRGBColor: division by zero");
}

// Named colours

class PresentTable {
  public:
    PresentTable() : mPrevious(CColorTable::SetPresent(&mTable)) {}
    ~PresentTable() { CColorTable::SetPresent(mPrevious); }
    CColorTable mTable;

  private:
    CColorTable* mPrevious; // not owned
};

TEST(CRGBColor, NamedWithoutATableStaysAsGiven) {
    CColorTable* previous = CColorTable::SetPresent(nullptr);
    const CRGBColor color("meter", 1, 2, 3, 4, kRGBColorType_Font);
    CColorTable::SetPresent(previous);
    EXPECT_EQ(color, CRGBColor(1, 2, 3, 4));
    EXPECT_FALSE(color.IsNamed());
    EXPECT_TRUE(color.IsFontColor());
}

TEST(CRGBColor, NamedTakesTheTablesComponents) {
    PresentTable present;
    present.mTable.SetLayerColor(CColorTable::Layer::kTheme, "meter", CRGBColor(9, 9, 9, 9));
    const CRGBColor meter("meter", CRGBColor(1, 2, 3), kRGBColorType_General);
    EXPECT_EQ(meter, CRGBColor(9, 9, 9, 9));
    EXPECT_TRUE(meter.IsNamed());
    EXPECT_FALSE(meter.IsFontColor());
    const CRGBColor first("text", CRGBColor(1, 1, 1), kRGBColorType_Font);
    const CRGBColor second("text", CRGBColor(2, 2, 2), kRGBColorType_Font);
    EXPECT_EQ(second, first) << "the first registration gives the default";
    EXPECT_FALSE((meter + first).IsNamed());
    EXPECT_FALSE(second.WithMultipliedAlpha(1.0F).IsFontColor());
    CRGBColor changed = meter;
    changed += first;
    EXPECT_TRUE(changed.IsNamed()) << "in place keeps the flags";
}

TEST(CColorTable, TheHighestLayerWins) {
    CColorTable table;
    CRGBColor color(7, 7, 7);
    EXPECT_FALSE(table.Find("a", color));
    EXPECT_EQ(color, CRGBColor(7, 7, 7)) << "untouched when absent";
    table.Register("a", CRGBColor(1, 0, 0), kRGBColorType_Frame);
    table.SetLayerColor(CColorTable::Layer::kUser, "a", CRGBColor(3, 0, 0));
    table.SetLayerColor(CColorTable::Layer::kTheme, "a", CRGBColor(2, 0, 0));
    table.SetLayerColor(CColorTable::Layer::kTheme, "b", CRGBColor(5, 0, 0));
    const std::uint32_t generation = table.GetGeneration();
    ASSERT_TRUE(table.Find("a", color));
    EXPECT_EQ(color.GetRed(), 3);
    table.ClearLayer(CColorTable::Layer::kUser);
    ASSERT_TRUE(table.Find("a", color));
    EXPECT_EQ(color.GetRed(), 2);
    EXPECT_NE(table.GetGeneration(), generation);
    const std::vector<CColorTable::Entry> entries = table.GetEntries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].mName, "a");
    EXPECT_EQ(entries[0].mType, kRGBColorType_Frame);
    EXPECT_EQ(entries[0].mLayer, CColorTable::Layer::kTheme);
    table.ClearLayer(CColorTable::Layer::kTheme);
    EXPECT_FALSE(table.Find("b", color)) << "known to the theme alone";
}

TEST(CColorTable, TheDefaultLayerIsSetByRegistering) {
    CColorTable table;
    AssertionCatcher catcher;
    table.SetLayerColor(CColorTable::Layer::kDefault, "a", CRGBColor());
    table.ClearLayer(CColorTable::Layer::kDefault);
    EXPECT_EQ(catcher.TakeTexts(), std::vector<std::string>(2, "layer != Layer::kDefault"));
    EXPECT_TRUE(table.GetEntries().empty());
}

TEST(CColorTable, ATableThatEndsIsNoLongerPresent) {
    CColorTable* previous = CColorTable::GetPresent();
    {
        CColorTable table;
        CColorTable::SetPresent(&table);
    }
    EXPECT_EQ(CColorTable::GetPresent(), nullptr);
    CColorTable::SetPresent(previous);
}

TEST(CColorTable, RegistersFromSeveralThreads) {
    PresentTable present;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            for (int i = 0; i < 200; ++i)
                CRGBColor("name" + std::to_string(i), static_cast<unsigned short>(thread), 0, 0, 0,
                          kRGBColorType_General);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(present.mTable.GetEntries().size(), 200U);
    EXPECT_EQ(present.mTable.GetGeneration(), 200U);
}

} // namespace
