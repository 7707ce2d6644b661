// The one rounding from logical edges to pixels, held to exact arithmetic.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "qlx/imaging/qlx_devicescale.h"

namespace {

std::vector<int> Scales() {
    std::vector<int> counts{15, 16, 100, 119, 1920};
    for (int count = 120; count <= 360; ++count)
        counts.push_back(count);
    return counts;
}

std::vector<std::int64_t> Edges() {
    std::mt19937 random(11);
    std::vector<std::int64_t> edges;
    for (std::int64_t edge = -250; edge <= 250; ++edge)
        edges.push_back(edge);
    for (int i = 0; i < 200; ++i)
        edges.push_back(std::int64_t{int(random())} / (1 << (i % 12)));
    return edges;
}

} // namespace

TEST(DeviceScale, FactorsAreHeldToSense) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    for (const auto& [factor, count] : {std::pair{1.0, 120},
                                        {1.25, 150},
                                        {1.5, 180},
                                        {2.0, 240},
                                        {1.333333, 160},
                                        {0.0, 15},
                                        {-3.0, 15},
                                        {1000.0, 1920},
                                        {kInfinite, 1920},
                                        {-kInfinite, 15},
                                        {kNone, 120}})
        EXPECT_EQ(QLX_DeviceScale(factor).Get120ths(), count) << factor;
    EXPECT_EQ(QLX_DeviceScale::From120ths(0).Get120ths(), 15);
    EXPECT_EQ(QLX_DeviceScale::From120ths(1 << 30).Get120ths(), 1920);
}

TEST(DeviceScale, EdgesGoToTheNearestPixelHalvesUp) {
    for (const int count : Scales()) {
        const QLX_DeviceScale scale = QLX_DeviceScale::From120ths(count);
        for (const std::int64_t edge : Edges()) {
            // pixel - 1/2 <= edge * count / 120 < pixel + 1/2, in 240ths
            const std::int64_t exact = 2 * edge * count;
            const std::int64_t pixel = scale.EdgeToDevice(edge);
            if (pixel == std::numeric_limits<int>::max()) {
                ASSERT_GE(exact, 240 * pixel - 120);
            } else if (pixel == std::numeric_limits<int>::min()) {
                ASSERT_LT(exact, 240 * pixel + 120);
            } else {
                ASSERT_LE(240 * pixel - 120, exact) << edge << " at " << count;
                ASSERT_LT(exact, 240 * pixel + 120) << edge << " at " << count;
            }
        }
    }
}

TEST(DeviceScale, DamageIsCoveredByTheSmallestLogicalRectangle) {
    std::mt19937 random(12);
    for (const int count : Scales()) {
        const QLX_DeviceScale scale = QLX_DeviceScale::From120ths(count);
        for (int turn = 0; turn < 40; ++turn) {
            const int left = int(random() % 4000) - 2000, top = int(random() % 4000) - 2000;
            const Cmn_Rect<int> damage(left, top, left + 1 + int(random() % 50),
                                       top + 1 + int(random() % 50));
            const Cmn_Rect<int> logical = scale.RectToLogical(damage);
            ASSERT_TRUE(scale.RectToDevice(logical).Contains(damage)) << count;
            for (const Cmn_Rect<int>& smaller :
                 {Cmn_Rect<int>(logical.left + 1, logical.top, logical.right, logical.bottom),
                  Cmn_Rect<int>(logical.left, logical.top + 1, logical.right, logical.bottom),
                  Cmn_Rect<int>(logical.left, logical.top, logical.right - 1, logical.bottom),
                  Cmn_Rect<int>(logical.left, logical.top, logical.right, logical.bottom - 1)})
                ASSERT_FALSE(scale.RectToDevice(smaller).Contains(damage)) << count;
        }
    }
}

TEST(DeviceScale, ThicknessIsTheSameEverywhereAndNeverVanishes) {
    for (const int count : Scales()) {
        const QLX_DeviceScale scale = QLX_DeviceScale::From120ths(count);
        EXPECT_EQ(scale.ThicknessToDevice(0), 0);
        for (int thickness = 1; thickness < 40; ++thickness) {
            const double exact = double(thickness) * count / 120;
            ASSERT_GE(scale.ThicknessToDevice(thickness), 1);
            ASSERT_NEAR(scale.ThicknessToDevice(thickness), std::max(1.0, exact), 0.5);
        }
        for (int distance = -240; distance <= 240; ++distance)
            for (int from = -130; scale.IsExactDistance(distance) && from < 130; from += 7)
                ASSERT_EQ(scale.EdgeToDevice(from + distance) - scale.EdgeToDevice(from),
                          distance * count / 120)
                    << distance << " at " << count;
    }
}
